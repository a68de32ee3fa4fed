#include "filesizelimit.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "simulationtool/toolrun.h"

#include <algorithm>
#include <csignal>

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int s_iHeaderLines = 2;

const QString s_sBuiltIn = QStringLiteral(":/DefaultData/Default.sce.exp");

/// A scenario with these elements.
QByteArray scenario(const QByteArray& a_elements, const QByteArray& a_attributes = {})
{
    return R"(<Scenario FileFormatVersion="4" )" + a_attributes + ">" + a_elements + "</Scenario>";
}

QStringList lines(const QString& a_sText)
{
    return a_sText.split(u'\n', Qt::SkipEmptyParts);
}

/// The rows of a play's table, with single blanks between the cells.
QStringList tableRows(const QString& a_sText)
{
    return simplifiedLines(a_sText).mid(s_iHeaderLines);
}

} // namespace

class TestSimulationTool : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongFiles_data();
    void wrongFiles();
    void wrongUsage_data();
    void wrongUsage();
    void help();
    void schemas();
    void builtInScenarioIsAsWritten();
    void playRow_data();
    void playRow();
    void window_data();
    void window();
    void csvFields();
    void csvOnStandardOutput();
    void chosenEmitters_data();
    void chosenEmitters();
    void csvIsAllOrNothing_data();
    void csvIsAllOrNothing();
    void fullDisk_data();
    void fullDisk();
    void inspectBuiltIn_data();
    void inspectBuiltIn();
    void inspectTamesHostileTexts();
    void olderFile();
    void csvOverScenario();
    void outputFails();
    void traceOnDemand();
    void decimalComma();

private:
    QString write(const QString& a_sName, const QByteArray& a_data);

    QTemporaryDir m_dir;
};

QString TestSimulationTool::write(const QString& a_sName, const QByteArray& a_data)
{
    QFile file(m_dir.filePath(a_sName));
    return file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size() ? file.fileName()
                                                                                  : QString();
}

void TestSimulationTool::wrongFiles_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no file is written
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("reason");

    QTest::newRow("missing") << QByteArray() << 2 << "No such file or directory";
    QTest::newRow("empty") << QByteArray("") << 2 << "line 1, column 0: Premature end of document.";
    QTest::newRow("other root") << QByteArray("<?xml version=\"1.0\"?>\n<Deployment/>") << 2
                                << "line 2, column 13: the root element is \"Deployment\", not \"Scenario\"";
    QTest::newRow("breaks off") << QByteArray("<Scenario>\n<Emitter ID=\"kept\"/>\n<Network") << 1
                                << "line 3, column 8: Premature end of document.";
    QByteArray nested = "<Scenario>\n<Emitter ID=\"kept\"/>\n";
    for (int i = 0; i < 1'000'000; ++i) {
        nested += "<a>";
    }
    QTest::newRow("a million nested elements")
        << nested << 1 << "line 3, column 766: nesting depth limit of 256 exceeded";
}

void TestSimulationTool::wrongFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(int, code);
    QFETCH(QString, reason);
    QString sFile = m_dir.filePath(QStringLiteral("missing.xml"));
    if (!content.isNull()) {
        sFile = write(QStringLiteral("wrong.xml"), content);
    }
    for (const QString& command : {QStringLiteral("inspect"), QStringLiteral("play")}) {
        const ToolResult result = runTool({command, sFile});
        QCOMPARE(withoutCounts(result.err), QStringLiteral("simulationtool: %1: %2\n").arg(sFile, reason));
        QCOMPARE(result.err.contains(s_sSeeCheck), code == 1 && command == QStringLiteral("play"));
        QCOMPARE(result.code, code);
        // The content before the error is shown.
        QCOMPARE(result.out.contains(QStringLiteral("kept")), code == 1);
        QCOMPARE(result.out.isEmpty(), code == 2);
    }
}

void TestSimulationTool::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    // The arguments are separated by bars. The error text ends with a reference to
    // the help.
    const auto add = [](const char* a_szName, const char* a_szArguments, const char* a_szMessage,
                        const char* a_szHelp) {
        const QString sArguments = QString::fromLatin1(a_szArguments);
        QTest::newRow(a_szName) << (sArguments.isEmpty() ? QStringList() : sArguments.split(u'|'))
                                << QStringLiteral("%1 (see simulationtool %2--help)")
                                       .arg(QString::fromLatin1(a_szMessage), QString::fromLatin1(a_szHelp));
    };
    add("control characters", "a\x1b[31m\nb", "there is no command \"a\\u{1b}[31m\\nb\"", "");
    add("unknown option", "--loud", "Unknown option 'loud'", "");
    add("nothing to inspect", "inspect", "inspect: one FILE is needed, 0 given", "inspect ");
    add("two scenarios", "play|a|b", "play: at most one SCENARIO can be played, 2 given", "play ");
    add("no file name", "play|--csv|", "play: --csv needs a name", "play ");
    add("no schema", "schema", "schema: a NAME is needed: scenario, deployment, signalpackage or command",
        "schema ");
    add("unknown schema", "schema|Scenario",
        "schema: there is no schema \"Scenario\": give scenario, deployment, signalpackage or command",
        "schema ");
    add("empty name for a schema", "schema|scenario|",
        "schema: at most one OUT is possible, and its name cannot be empty", "schema ");
    add("empty window", "play|--from|5|--to|5", "play: --to (5 ms) must be later than --from (5 ms)",
        "play ");

    const auto addNumber = [&](const char* a_szName, const char* a_szOption, const char* a_szMin,
                               const char* a_szValue) {
        const QByteArray option(a_szOption);
        const QByteArray message = "play: " + option + " needs a time from " + a_szMin +
                                   " to 4294967295 ms, in whole ms or with a unit (1500, 1500ms, 1.5s, "
                                   "2min, 1h), not \"" +
                                   a_szValue + '"';
        add(a_szName, ("play|" + option + '=' + a_szValue).constData(), message.constData(), "play ");
    };
    addNumber("fraction", "--to", "1", "1.5");
    addNumber("too large", "--to", "1", "4294967296");
    addNumber("step 0", "--step", "1", "0");
    addNumber("part of a millisecond", "--to", "1", "1.0005s");
    addNumber("unit that is none", "--from", "0", "5m");
    addNumber("negative", "--from", "0", "-1s");
    addNumber("too many hours", "--to", "1", "1193.1h");
    addNumber("more digits than any time", "--to", "1", "99999999999999999999h");
    add("two reports on one output", "play|--csv|-|--json",
        "play: --csv - and --json both write to standard output: give one of them", "play ");

    const auto addEmitter = [](const char* a_szRow, const char* a_szName, const char* a_szProposal) {
        QTest::newRow(a_szRow) << QStringList{QStringLiteral("play"), QStringLiteral("--emitter"),
                                              QStringLiteral("drone"), QStringLiteral("--emitter"),
                                              QString::fromUtf8(a_szName)}
                               << QStringLiteral("play: the scenario has no emitter \"%1\"%2")
                                      .arg(QString::fromUtf8(a_szName), QString::fromUtf8(a_szProposal));
    };
    addEmitter("emitter id with a slip", "feryr", ": did you mean \"ferry\"?");
    addEmitter("emitter name with a slip", "ferry mowe", ": did you mean \"Ferry Möwe\"?");
    addEmitter("emitter like no other", "submarine", "");
    addEmitter("emitter without a name", "", "");

    QTest::newRow("behind the default window")
        << QStringList{QStringLiteral("play"), QStringLiteral("--from"), QStringLiteral("10000")}
        << "play: the window would end at 10000 ms, not after its begin at 10000 ms: give a later --to";
}

void TestSimulationTool::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const ToolResult result = runTool(arguments);
    QCOMPARE(result.err, QStringLiteral("simulationtool: ") + message + u'\n');
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
}

void TestSimulationTool::help()
{
    const QStringList calls{QStringLiteral("--help"), QStringLiteral("inspect --help"),
                            QStringLiteral("play --help --step"), QStringLiteral("--version")};
    for (const QString& call : calls) {
        const ToolResult result = runTool(call.split(u' '));
        QCOMPARE(result.code, 0);
        QCOMPARE(result.err, QString());
        QCOMPARE(result.out.contains(QStringLiteral("Examples:")), call != u"--version");
    }
}

/// A schema is written to standard output or to a file, as the library carries it.
void TestSimulationTool::schemas()
{
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("out.xsd"));
    for (const char* szName : {"scenario", "deployment", "signalpackage", "command"}) {
        const QString sName = QString::fromLatin1(szName);
        QFile embedded(QStringLiteral(":/Schemas/%1.xsd").arg(sName));
        QVERIFY(embedded.open(QIODevice::ReadOnly));
        const QString sText = QString::fromUtf8(embedded.readAll());
        for (const QStringList& out : {QStringList(), QStringList{QStringLiteral("-")}, QStringList{sFile}}) {
            const ToolResult result = runTool(QStringList{QStringLiteral("schema"), sName} + out);
            QCOMPARE(result.code, 0);
            QCOMPARE(result.err, QString());
            QCOMPARE(result.out, out.contains(sFile) ? QString() : sText);
        }
        QFile written(sFile);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(written.readAll()), sText);
    }
    const ToolResult result = runTool(
        {QStringLiteral("schema"), QStringLiteral("command"), folder.filePath(QStringLiteral("none/out"))});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(QStringLiteral("none/out")), qPrintable(result.err));
}

void TestSimulationTool::builtInScenarioIsAsWritten()
{
    QFile file(s_sBuiltIn);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray xml = file.readAll();
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml document(&provider);
    QVERIFY(document.fromXml(xml));
    QCOMPARE(document.errorString(), QString());
    QCOMPARE(document.toXml(), xml);
}

void TestSimulationTool::playRow_data()
{
    QTest::addColumn<int>("time");
    QTest::addColumn<QString>("emitter");
    QTest::addColumn<QString>("rest"); // the rest of the row

    const auto add = [](const char* a_szName, int a_iTime, const char* a_szEmitter, const char* a_szRest) {
        QTest::newRow(a_szName) << a_iTime << QString::fromLatin1(a_szEmitter)
                                << QString::fromLatin1(a_szRest);
    };
    const char* const szSilent = "no 156.800000 10.998700 54.431100 0.0 0.0 -";
    const char* const szSpeaks =
        "yes 156.800000 10.998700 54.431100 0.0 0.0 9a567123-d88f-4177-9b57-b02c1ec104f7";
    add("not yet on at its start", 200, "coast-station", szSilent);
    add("on after its start", 201, "coast-station", szSpeaks);
    add("still on at its end", 2000, "coast-station", szSpeaks);
    add("off after its end", 2001, "coast-station", szSilent);
    add("on again in the next period", 12'201, "coast-station", szSpeaks);
    add("network begins its steps again", 3101, "survey-lead",
        "yes 75.500000 10.987100 54.427600 0.0 0.0 c0d40372-37c8-4ad4-9fb1-97bfc477769c");
    add("last instant of the movement", 8273, "drone", "yes 2480.000000 11.010500 54.451200");
    add("movement has ended", 8274, "drone", "no 2480.000000 11.010500 54.451200");
}

void TestSimulationTool::playRow()
{
    QFETCH(int, time);
    QFETCH(QString, emitter);
    QFETCH(QString, rest);
    const ToolResult result =
        runTool({QStringLiteral("play"), s_sBuiltIn, QStringLiteral("--from"), QString::number(time),
                 QStringLiteral("--to"), QString::number(time + 1)});
    QCOMPARE(result.code, 0);
    const QString sBegin = QStringLiteral("%1 %2 ").arg(QString::number(time), emitter);
    const QStringList rows = tableRows(result.out).filter(QRegularExpression(u'^' + sBegin));
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.constFirst().left(sBegin.size() + rest.size()), sBegin + rest);
}

void TestSimulationTool::window_data()
{
    QTest::addColumn<QByteArray>("duration");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("times"); // first, last, count
    const auto add = [](const char* a_szName, const char* a_szDuration, const char* a_szOptions,
                        const char* a_szTimes) {
        QTest::newRow(a_szName) << QByteArray(a_szDuration) << QString::fromLatin1(a_szOptions)
                                << QString::fromLatin1(a_szTimes);
    };
    add("no duration", "0", "", "0 9900 100");
    add("short scenario", "450", "", "0 400 5");
    add("long scenario", "60000", "", "0 9900 100");
    add("end is left out", "0", "--to 200", "0 100 2");
    add("end just beyond a step", "0", "--to 201", "0 200 3");
    add("beyond the duration", "450", "--from 400 --to 700", "400 600 3");
    add("own step", "0", "--from 5 --to 20 --step 7", "5 19 3");
    add("units", "0", "--from 1.5s --to 0.1min --step 1000ms", "1500 5500 5");
    add("hours", "0", "--from 1h --to 3600001", "3600000 3600000 1");
    add("step beyond the window", "0", "--to 10 --step 4294967295", "0 0 1");
    add("end of time", "0", "--from 4294967293 --to 4294967295 --step 1", "4294967293 4294967294 2");
}

void TestSimulationTool::window()
{
    QFETCH(QByteArray, duration);
    QFETCH(QString, options);
    const QString sFile = write(QStringLiteral("window.xml"), scenario(R"(<Emitter ID="e" Active="true"/>)",
                                                                       "Duration=\"" + duration + '"'));
    const ToolResult result =
        runTool(QStringList{QStringLiteral("play"), sFile} + options.split(u' ', Qt::SkipEmptyParts));
    QCOMPARE(result.code, 0);
    const QStringList rows = tableRows(result.out);
    QVERIFY(!rows.isEmpty());
    QTEST(QStringLiteral("%1 %2 %3")
              .arg(rows.constFirst().section(u' ', 0, 0), rows.constLast().section(u' ', 0, 0),
                   QString::number(rows.size())),
          "times");
}

void TestSimulationTool::csvFields()
{
    // The scenario has ids that need quoting, a frequency and a position with many
    // digits, and a movement due north at its end.
    const QString sFile = write(QStringLiteral("csv.xml"), scenario(R"(
<Emitter ID="a,b" Active="true"><Frequency><Fixed>433925100.125</Fixed></Frequency>
 <EmissionSettings Broadcast="false" Duration="0"><Emission ID="1" StartTime="-1" Duration="9" SignalPackage="p &quot;1&quot;"/></EmissionSettings>
 <Position><Fixed><Lon>-8.1234567890123</Lon><Lat>1e-7</Lat></Fixed></Position></Emitter>
<Emitter ID="c&#10;d" Active="false"><Frequency><Fixed>5</Fixed></Frequency>
 <Position><Movement EndBehavior="STOP">
  <Position Major="true" Speed="0"><Lon>10</Lon><Lat>50</Lat></Position>
  <Position Major="true" Speed="0"><Lon>10</Lon><Lat>50.5</Lat></Position>
 </Movement></Position></Emitter>
<Emitter ID="Möwe" Active="true"><Frequency><Fixed>1e300</Fixed></Frequency></Emitter>)"));
    const QString sCsv = m_dir.filePath(QStringLiteral("fields.csv"));
    const ToolResult result = runTool({QStringLiteral("play"), sFile, QStringLiteral("--to"),
                                       QStringLiteral("1"), QStringLiteral("--csv"), sCsv});
    QCOMPARE(withoutCounts(result.err), QString());
    QCOMPARE(result.code, 0);
    QCOMPARE(result.out, QStringLiteral("3 rows written\n"));
    QFile csv(sCsv);
    QVERIFY(csv.open(QIODevice::ReadOnly));
    QCOMPARE(csv.readAll(),
             QByteArray("time_ms,emitter,active,frequency_hz,longitude,latitude,heading,speed_kmh,package\r\n"
                        "0,Möwe,false,1e+300,0,0,0,0,\r\n"
                        "0,\"a,b\",true,433925100.125,-8.1234567890123,1e-07,0,0,\"p \"\"1\"\"\"\r\n"
                        "0,\"c\nd\",false,5,10,50.5,0,0,\r\n"));
}

/// Standard output contains only the rows, also after errors. The scenario is read
/// from standard input.
void TestSimulationTool::csvOnStandardOutput()
{
    const ToolResult result = runTool({QStringLiteral("play"), QStringLiteral("-"), QStringLiteral("--to"),
                                       QStringLiteral("1"), QStringLiteral("--csv"), QStringLiteral("-")},
                                      "<Scenario><Emitter ID='a&#9;,'/>");
    QCOMPARE(
        result.out,
        QStringLiteral("time_ms,emitter,active,frequency_hz,longitude,latitude,heading,speed_kmh,package\r\n"
                       "0,\"a\t,\",false,25000000,0,0,0,0,\r\n"));
    QCOMPARE(
        withoutCounts(result.err),
        QStringLiteral("simulationtool: standard input: line 1, column 32: Premature end of document.\n"));
    QCOMPARE(result.code, 1);
}

void TestSimulationTool::chosenEmitters_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("ids");

    QTest::newRow("all") << QStringList()
                         << QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
    QTest::newRow("id before name") << QStringList{QStringLiteral("b")} << QStringList{QStringLiteral("b")};
    QTest::newRow("name of two") << QStringList{QStringLiteral("twin")}
                                 << QStringList{QStringLiteral("a"), QStringLiteral("c")};
    QTest::newRow("id and name, one twice")
        << QStringList{QStringLiteral("c"), QStringLiteral("twin"), QStringLiteral("c")}
        << QStringList{QStringLiteral("a"), QStringLiteral("c")};
}

void TestSimulationTool::chosenEmitters()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, ids);
    QStringList arguments{QStringLiteral("play"), QStringLiteral("-"), QStringLiteral("--to"),
                          QStringLiteral("1")};
    for (const QString& name : names) {
        arguments << QStringLiteral("--emitter") << name;
    }
    const ToolResult result = runTool(arguments, scenario("<Emitter ID='a' Name='twin'/><Emitter ID='b'/>"
                                                          "<Emitter ID='c' Name='twin'/>"));
    QStringList played;
    for (const QString& row : tableRows(result.out)) {
        played.append(row.section(u' ', 1, 1));
    }
    QCOMPARE(played, ids);
    QCOMPARE(result.code, 0);
}

void TestSimulationTool::csvIsAllOrNothing_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<QString>("csv");
    QTest::addColumn<QString>("message");

    const QString sOld = m_dir.filePath(QStringLiteral("old.csv"));
    const QString sMissing = m_dir.filePath(QStringLiteral("none.xml"));
    QTest::newRow("no scenario") << sMissing << sOld
                                 << sMissing + QStringLiteral(": No such file or directory");
    QTest::newRow("folder") << s_sBuiltIn << m_dir.path() << m_dir.path() + QStringLiteral(": is a folder");
    QTest::newRow("device") << s_sBuiltIn << "/dev/full"
                            << "/dev/full: is not a regular file";
}

void TestSimulationTool::csvIsAllOrNothing()
{
    QFETCH(QString, scenario);
    QFETCH(QString, csv);
    QFETCH(QString, message);
    const QString sOld = write(QStringLiteral("old.csv"), "old");
    const ToolResult result = runTool({QStringLiteral("play"), scenario, QStringLiteral("--csv"), csv});
    QCOMPARE(result.err, QStringLiteral("simulationtool: ") + message + u'\n');
    QCOMPARE(result.code, 2);
    QFile old(sOld);
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("old"));
}

void TestSimulationTool::fullDisk_data()
{
    QTest::addColumn<QStringList>("arguments"); // FILE stands for the output file
    QTest::addColumn<int>("room");              // bytes

    QTest::newRow("rows of a play") << QStringList{QStringLiteral("play"), QStringLiteral("--csv"),
                                                   QStringLiteral("FILE")}
                                    << 70'000;
    QTest::newRow("few rows") << QStringList{QStringLiteral("play"), QStringLiteral("--to"),
                                             QStringLiteral("100"), QStringLiteral("--csv"),
                                             QStringLiteral("FILE")}
                              << 100;
    QTest::newRow("compact scenario")
        << QStringList{QStringLiteral("convert"), s_sBuiltIn, QStringLiteral("FILE")} << 100;
    QTest::newRow("repaired scenario") << QStringList{QStringLiteral("check"), s_sBuiltIn,
                                                      QStringLiteral("--repair"), QStringLiteral("FILE")}
                                       << 2'000;
    QTest::newRow("standard output") << QStringList{QStringLiteral("play")} << 20'000;
    QTest::newRow("standard input") << QStringList{QStringLiteral("inspect"), QStringLiteral("-")} << 1'000;
    QTest::newRow("little on standard output") << QStringList{QStringLiteral("--help")} << 10;
}

/// The error text contains the system's error text, and an existing file is kept.
void TestSimulationTool::fullDisk()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, room);
    const QString sFile = write(QStringLiteral("old"), "old");
    const QString sOutput = m_dir.filePath(QStringLiteral("output"));
    QFile::remove(sOutput);
    arguments.replaceInStrings(QStringLiteral("FILE"), sFile);
    const FileSizeLimit limit(static_cast<rlim_t>(room));
    QProcess process;
    process.setStandardOutputFile(sOutput);
    process.start(QStringLiteral(SIMULATIONTOOL_PATH), arguments);
    process.write(QByteArray(3'000, ' '));
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             QStringLiteral("simulationtool: %1: File too large\n")
                 .arg(arguments.contains(sFile) ? sFile
                      : arguments.contains(QStringLiteral("-"))
                          ? QStringLiteral("standard input: cannot be copied to a temporary file (TMPDIR "
                                           "chooses its folder)")
                          : QStringLiteral("standard output")));
    QCOMPARE(process.exitCode(), 2);
    QFile old(sFile);
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("old"));
}

void TestSimulationTool::inspectBuiltIn_data()
{
    QTest::addColumn<QString>("line"); // with single blanks

    const auto add = [](const char* a_szLine) { QTest::newRow(a_szLine) << QString::fromUtf8(a_szLine); };
    add("ferry Ferry Möwe yes calling-channel fixed moves over 5 points, then begins again");
    add("survey Road survey yes Hierarchical 3 5 survey-lead");
    add("Antenna gain 2.15, height over ground 6, direction 0 degrees, type Dipole");
    add("Frequency chirp, 9.38 GHz to 9.44 GHz in 500 ms, offset 0");
    add("Frequency fast hopper, 440 MHz to 443.2 MHz, 128 channels, 50 hops/s, set 7, offset 0.5");
    add("2 76.125 MHz 1500");
    add("3 11.010900 54.451450 4987 500 36 yes Mast");
    add("Schedule broadcast: always on, whatever the schedule says");
    add("Schedule 5 emissions, repeated every 12000 ms");
    add("3 4400 1200 ms 9a567123-d88f-4177-9b57-b02c1ec104f7 pilot-boat");
    add("Members coast-station, ferry, pilot-boat");
    add("3 Round 2 4, 5");
}

void TestSimulationTool::inspectBuiltIn()
{
    QFETCH(QString, line);
    static const ToolResult s_result = runTool({QStringLiteral("inspect"), s_sBuiltIn});
    QCOMPARE(s_result.code, 0);
    QCOMPARE(s_result.err, QString());
    const QStringList all = lines(s_result.out);
    QVERIFY(std::any_of(all.cbegin(), all.cend(),
                        [&](const QString& a_sLine) { return a_sLine.simplified() == line; }));
}

void TestSimulationTool::inspectTamesHostileTexts()
{
    const QByteArray longName(100'000, 'x');
    const QString sFile = write(
        QStringLiteral("hostile.xml"),
        scenario("<Description>first&#10;second \xc2\x9b[31m \xe2\x80\xae end</Description>"
                 "<Emitter ID=\"1\" Name=\"" +
                     longName + "\" Active=\"true\"/><Emitter ID=\"2\" Name=\"öä𝄞&#9;x\" Active=\"true\"/>",
                 "Name=\"a&#10;b\""));
    const ToolResult result = runTool({QStringLiteral("inspect"), sFile});
    QCOMPARE(result.code, 0);
    const QStringList all = lines(result.out);
    QVERIFY(all.contains(QStringLiteral("  Description   first")));
    QVERIFY(all.contains(QStringLiteral("                second \\u{9b}[31m \\u{202e} end")));
    // The long name is cut in the table, and the columns stay aligned: the musical
    // sign takes two code units but one column.
    const qsizetype iHeader = all.indexOf(QStringLiteral("Emitters: 2")) + 1;
    const qsizetype iActive = all.at(iHeader).indexOf(QStringLiteral("Active"));
    QCOMPARE(all.at(iHeader + 2).indexOf(QStringLiteral("yes")), iActive);
    QCOMPARE(all.at(iHeader + 3).indexOf(QStringLiteral("yes")), iActive + 1);
    QVERIFY(all.at(iHeader + 3).contains(QStringLiteral("öä𝄞\\tx ")));
    QVERIFY(result.out.contains(QString::fromLatin1(longName)));
}

void TestSimulationTool::olderFile()
{
    const QString sFile = write(QStringLiteral("older.xml"), "<Scenario FileFormatVersion=\"3\"/>");
    const ToolResult result = runTool({QStringLiteral("inspect"), sFile});
    QVERIFY(result.code == 0 && result.out.contains(QStringLiteral("File version  older than 4")));
}

/// A typing error in the options must not overwrite the scenario.
void TestSimulationTool::csvOverScenario()
{
    const QString sFile = write(QStringLiteral("kept.xml"), "<Scenario><Emitter ID='e'/></Scenario>");
    const QString sLink = sFile + QStringLiteral(".link");
    QVERIFY(QFile::link(sFile, sLink));
    for (const QString& sTarget : {sFile, sLink}) {
        const auto result = runTool({QStringLiteral("play"), sFile, QStringLiteral("--csv"), sTarget});
        QCOMPARE(result.code, 2);
        QVERIFY(result.err.contains(QStringLiteral("is the scenario itself")));
    }
    QCOMPARE(runTool({QStringLiteral("inspect"), sFile}).code, 0);
}

void TestSimulationTool::outputFails()
{
    for (const QString& command : {QStringLiteral("play"), QStringLiteral("--help")}) {
        QProcess process;
        process.setStandardOutputFile(QStringLiteral("/dev/full"));
        process.start(QStringLiteral(SIMULATIONTOOL_PATH), {command});
        QVERIFY(process.waitForFinished(s_iToolTimeout));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 2);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("simulationtool: standard output: No space left on device\n"));
    }
    // A closed pipe ends a play that takes days. No message is written. The reader is
    // the program itself, which does not read its input here.
    QProcess process;
    QProcess reader;
    process.setStandardOutputProcess(&reader);
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  {QStringLiteral("play"), QStringLiteral("--to"), QStringLiteral("4294967295")});
    reader.start(QStringLiteral(SIMULATIONTOOL_PATH), {QStringLiteral("--version")});
    QVERIFY(reader.waitForFinished(s_iToolTimeout));
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGPIPE);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    // A network command of the tool survives a closed pipe. It writes no message either.
    int iPipe[2] = {};
    QCOMPARE(::pipe(iPipe), 0);
    ::close(iPipe[0]);
    QProcess demo;
    demo.setChildProcessModifier([&] { ::dup2(iPipe[1], STDOUT_FILENO); });
    demo.start(QStringLiteral(SIMULATIONTOOL_PATH), {QStringLiteral("demo")});
    QVERIFY(demo.waitForFinished(s_iToolTimeout));
    ::close(iPipe[1]);
    QCOMPARE(demo.exitCode(), 2);
    QCOMPARE(demo.readAllStandardError(), QByteArray());
}

void TestSimulationTool::traceOnDemand()
{
    const QString sFile = write(QStringLiteral("trace.xml"), "<Other/>");
    QCOMPARE(lines(runTool({QStringLiteral("inspect"), sFile}).err).size(), 1);
    for (const QStringList& arguments :
         {QStringList{QStringLiteral("--trace"), QStringLiteral("inspect"), sFile},
          QStringList{QStringLiteral("inspect"), sFile, QStringLiteral("--trace")}}) {
        const QStringList errors = lines(runTool(arguments).err);
        QCOMPARE(errors.size(), 2);
        QVERIFY(errors.constFirst().startsWith(QStringLiteral("simulationtool: trace: Scenario refused: ")));
    }
}

/// The output does not change in a locale with a decimal comma.
void TestSimulationTool::decimalComma()
{
    const QString sFile = QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce");
    const QByteArray before = qgetenv("LC_ALL");
    for (const QString& command : {QStringLiteral("inspect"), QStringLiteral("play")}) {
        const ToolResult point = runTool({command, sFile});
        qputenv("LC_ALL", "de_DE.UTF-8");
        const ToolResult comma = runTool({command, sFile});
        qputenv("LC_ALL", before);
        QVERIFY(point.code == 0 && point.out.contains(QStringLiteral(".")));
        QCOMPARE(comma.out, point.out);
        QCOMPARE(comma.code, point.code);
    }
}

QTEST_GUILESS_MAIN(TestSimulationTool)

#include "tst_simulationtool.moc"
