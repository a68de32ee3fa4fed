#include "simulationtool/toolrun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString s_sMistakes = QStringLiteral(TEST_DATA_DIR "/mistakes/");

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

QJsonObject objectOf(const ToolResult& a_result)
{
    return QJsonDocument::fromJson(a_result.out.toUtf8()).object();
}

} // namespace

/// The forms of the report of "check", the choice of files and rules, and the commands that
/// refer to it.
class TestCheckReports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void mistakes();
    void sarifRules();
    void sarifResults();
    void uris_data();
    void uris();
    void json();
    void hostileTexts_data();
    void hostileTexts();
    void excerpts_data();
    void excerpts();
    void unlisted();
    void folders_data();
    void folders();
    void linksInCircle();
    void packageFolder();
    void deployment();
    void usage_data();
    void usage();
    void rules();
    void strict_data();
    void strict();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir.filePath(a_sName); }
    [[nodiscard]] bool write(const QString& a_sName, const QByteArray& a_data) const
    {
        QFile file(path(a_sName));
        return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(a_data) == a_data.size();
    }
    /// Runs the tool in the test's folder.
    [[nodiscard]] static ToolResult run(const QStringList& a_arguments) { return runTool(a_arguments); }
    [[nodiscard]] static QJsonObject sarifRun(const QStringList& a_paths)
    {
        const QJsonObject document = objectOf(run(QStringList{u"check"_s, u"--sarif"_s} + a_paths));
        return document.value(u"runs"_s).toArray().at(0).toObject();
    }

    QTemporaryDir m_dir;
    int m_iLine = 0; ///< of the mistake in faulty.sce
};

void TestCheckReports::initTestCase()
{
    QVERIFY(QDir::setCurrent(m_dir.path()));
    QVERIFY(write(u"clean.sce"_s, contentOf(s_sMistakes + u"scenario/original.xml"_s)));
    QVERIFY(write(u"mast.xml"_s, contentOf(s_sMistakes + u"deployment/original.xml"_s)));
    // One misspelt element in the line before the last one.
    const QByteArray clean = contentOf(path(u"clean.sce"_s));
    m_iLine = static_cast<int>(clean.trimmed().count('\n')) + 1;
    QVERIFY(
        write(u"faulty.sce"_s, QByteArray(clean).replace("</Scenario>", "  <Emiter ID='a'/>\n</Scenario>")));
    QVERIFY(write(u"in here/ö:1.sce"_s, contentOf(path(u"faulty.sce"_s))));
    QCOMPARE(run({u"convert"_s, u"clean.sce"_s, u"clean.compact"_s}).code, 0);
}

/// One run over all planted mistakes. Each file that plants exactly one mistake, of a
/// rule in `sample`, gets the finding that its comment announces, in the line that the
/// comment announces.
void TestCheckReports::mistakes()
{
    const QSet<QString> sample{u"out-of-range"_s, u"not-a-color"_s, u"not-a-boolean"_s, u"broken-off"_s};
    static const QRegularExpression s_comment(u"<!-- expect: ([a-z-]+) line ([0-9]+) -->"_s);
    const ToolResult result = run({u"check"_s, u"--json"_s, s_sMistakes});
    QCOMPARE(result.code, 2);
    int iCompared = 0;
    const QJsonArray files = objectOf(result).value(u"files"_s).toArray();
    for (const auto value : files) {
        const QString sFile = value[u"file"].toString();
        const QString sXml = QString::fromLatin1(contentOf(sFile));
        const QRegularExpressionMatch comment = s_comment.match(sXml);
        if (sXml.count(s_comment) != 1 || !sample.contains(comment.captured(1))) {
            continue;
        }
        ++iCompared;
        bool bFound = false;
        const QJsonArray findings = value.toObject()[u"findings"].toArray();
        for (const auto finding : findings) {
            bFound = bFound || (finding[u"rule"].toString() == comment.captured(1) &&
                                finding[u"line"].toInt() == comment.captured(2).toInt());
        }
        QVERIFY2(bFound, qPrintable(sFile));
    }
    QVERIFY2(iCompared >= 35, qPrintable(QString::number(iCompared)));
}

/// The frame of the document, and the rules with the fields that the standard requires.
void TestCheckReports::sarifRules()
{
    const ToolResult result = run({u"check"_s, u"clean.sce"_s, u"--sarif"_s});
    QCOMPARE(result.code, 0);
    const QJsonObject document = objectOf(result);
    QCOMPARE(document.value(u"version"_s).toString(), u"2.1.0"_s);
    QVERIFY(document.value(u"$schema"_s).toString().endsWith(u"/sarif-schema-2.1.0.json"));
    QCOMPARE(document.keys(), QStringList({u"$schema"_s, u"runs"_s, u"version"_s}));
    QCOMPARE(document.value(u"runs"_s).toArray().size(), 1);
    const QJsonValue sarif = document.value(u"runs"_s).toArray().at(0);
    QCOMPARE(sarif[u"columnKind"].toString(), u"unicodeCodePoints"_s);
    QCOMPARE(sarif[u"results"].toArray(), QJsonArray());
    QCOMPARE(sarif[u"invocations"][0][u"executionSuccessful"], QJsonValue(true));
    const QJsonValue driver = sarif[u"tool"][u"driver"];
    QCOMPARE(driver[u"name"].toString(), u"simulationtool"_s);
    QCOMPARE(u"simulationtool "_s + driver[u"version"].toString() + u'\n', run({u"--version"_s}).out);
    const QSet<QString> levels{u"error"_s, u"warning"_s, u"note"_s};
    QSet<QString> ids;
    const QJsonArray rules = driver[u"rules"].toArray();
    for (const auto rule : rules) {
        ids.insert(rule[u"id"].toString());
        QVERIFY(rule[u"shortDescription"][u"text"].toString().endsWith(u'.'));
        QVERIFY(rule[u"fullDescription"][u"text"].toString().endsWith(u'.'));
        QVERIFY(levels.contains(rule[u"defaultConfiguration"][u"level"].toString()));
    }
    QCOMPARE(ids.size(), driver[u"rules"].toArray().size());
    QVERIFY(ids.contains(u"unknown-element"_s) && ids.contains(u"unreached-station"_s));
}

void TestCheckReports::sarifResults()
{
    const QJsonValue sarif = sarifRun({u"faulty.sce"_s, u"none.sce"_s, u"clean.compact"_s});
    QCOMPARE(sarif[u"results"].toArray().size(), 1);
    const QJsonValue result = sarif[u"results"][0];
    QCOMPARE(result[u"ruleId"].toString(), u"unknown-element"_s);
    QCOMPARE(sarif[u"tool"][u"driver"][u"rules"][result[u"ruleIndex"].toInt()][u"id"], result[u"ruleId"]);
    QCOMPARE(result[u"level"].toString(), u"error"_s);
    QCOMPARE(result[u"message"][u"text"].toString(),
             u"\"Emiter\": The element is not known here: it is skipped with its content. Did you mean "
             "\"Emitter\"?"_s);
    QCOMPARE(result[u"locations"].toArray().size(), 1);
    const QJsonValue place = result[u"locations"][0][u"physicalLocation"];
    QCOMPARE(place[u"artifactLocation"][u"uri"].toString(), u"faulty.sce"_s);
    QCOMPARE(place[u"region"].toObject(), QJsonObject({{u"startLine"_s, m_iLine}, {u"startColumn"_s, 3}}));
    // A file that cannot be read is no result.
    const QJsonValue invocation = sarif[u"invocations"][0];
    QCOMPARE(invocation[u"executionSuccessful"], QJsonValue(false));
    const QJsonValue notification = invocation[u"toolExecutionNotifications"][0];
    QCOMPARE(notification[u"level"].toString(), u"error"_s);
    QCOMPARE(notification[u"message"][u"text"].toString(), u"No such file or directory"_s);
    QCOMPARE(notification[u"locations"][0][u"physicalLocation"].toObject(),
             QJsonObject({{u"artifactLocation"_s, QJsonObject({{u"uri"_s, u"none.sce"_s}})}}));
}

void TestCheckReports::uris_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("uri");
    QTest::newRow("blank, umlaut and colon") << u"in here/ö:1.sce"_s << u"in%20here/%C3%B6%3A1.sce"_s;
    QTest::newRow("not clean") << u"./in here/../faulty.sce"_s << u"faulty.sce"_s;
    QTest::newRow("absolute, below") << path(u"faulty.sce"_s) << u"faulty.sce"_s;
    const QString sAbove = s_sMistakes + u"scenario/color-in-words.xml"_s;
    QTest::newRow("absolute, elsewhere") << sAbove << u"file://"_s + sAbove;
}

void TestCheckReports::uris()
{
    QFETCH(QString, file);
    QFETCH(QString, uri);
    const QJsonValue result = sarifRun({file})[u"results"][0];
    QCOMPARE(result[u"locations"][0][u"physicalLocation"][u"artifactLocation"][u"uri"].toString(), uri);
}

void TestCheckReports::json()
{
    const QJsonValue report(objectOf(run({u"check"_s, u"faulty.sce"_s, u"clean.compact"_s, u"--json"_s})));
    const QJsonObject expected{
        {u"rule"_s, u"unknown-element"_s},
        {u"severity"_s, u"error"_s},
        {u"line"_s, m_iLine},
        {u"column"_s, 3},
        {u"path"_s, u"Scenario/Emiter[a]"_s},
        {u"found"_s, u"Emiter"_s},
        {u"object_id"_s, QJsonValue::Null},
        {u"object_name"_s, QJsonValue::Null},
        {u"text"_s, u"The element is not known here: it is skipped with its content."_s},
        {u"suggestion"_s, u"Emitter"_s},
        {u"repaired"_s, false}};
    QCOMPARE(report[u"files"][0][u"findings"][0].toObject(), expected);
    QCOMPARE(report[u"files"][1][u"kind"].toString(), u"compact scenario"_s);
    QCOMPARE(report[u"files"][1][u"findings"].toArray(), QJsonArray());
    QCOMPARE(report[u"error_count"].toInt(), 1);
    QCOMPARE(report[u"warning_count"].toInt(), 0);
    QCOMPARE(report[u"checked_count"].toInt(), 2);
}

void TestCheckReports::hostileTexts_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QString>("shown");
    QTest::newRow("text") << QString() << u"\\u{9b}31m\\u{202e}\\n"_s;
    QTest::newRow("json") << u"--json"_s << u"\\u009b31m\\u202e\\n"_s;
    QTest::newRow("sarif") << u"--sarif"_s << u"\\u009b31m\\u202e\\n"_s;
}

/// Ids reach the output without the characters that control a terminal.
void TestCheckReports::hostileTexts()
{
    QFETCH(QString, form);
    QFETCH(QString, shown);
    QVERIFY(write(u"hostile.sce"_s, "<Scenario FileFormatVersion='4'><Emitter ID='\xC2\x9B"
                                    "31m\xE2\x80\xAE&#10;' Active='2'/></Scenario>"));
    const QStringList arguments{u"check"_s, u"hostile.sce"_s, u"--class=Radar"_s};
    const ToolResult result = run(form.isEmpty() ? arguments : arguments + QStringList{form});
    QCOMPARE(result.code, 1);
    QVERIFY2(result.out.contains(shown), qPrintable(result.out));
    for (const QChar cHostile : u"\u009b\u202e\x1b"_s) {
        QVERIFY(!result.out.contains(cHostile) && !result.err.contains(cHostile));
    }
}

void TestCheckReports::excerpts_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("caret");
    QTest::newRow("short line") << QByteArray("\t<Emiter ID='ö'/>\r") << u" <Emiter ID='ö'/>"_s << u" ^"_s;
    QTest::newRow("long line") << QByteArray(500, ' ') + "<!-- \x7f --><Emiter ID='a'/>" +
                                      QByteArray(500, ' ')
                               << u"…"_s + QString(30, u' ') + u"<!-- \\u{7f} --><Emiter ID='a'/>"_s +
                                      QString(44, u' ') + u"…"_s
                               << QString(46, u' ') + u'^';
    QTest::newRow("not UTF-8") << QByteArray("<Emitter ID='a'><Class>\xE4</Class></Emitter>")
                               << u"<Emitter ID='a'><Class>\\x{e4}</Class></Emitter>"_s
                               << QString(23, u' ') + u'^';
}

/// On a terminal, the line of the document and a caret follow the finding.
void TestCheckReports::excerpts()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, shown);
    QFETCH(QString, caret);
    QVERIFY(write(u"line.sce"_s, "<Scenario FileFormatVersion='4'>\n" + line + "\n</Scenario>"));
    const int iMaster = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(iMaster >= 0 && ::grantpt(iMaster) == 0 && ::unlockpt(iMaster) == 0);
    const QByteArray terminal = ::ptsname(iMaster);
    const int iSlave = ::open(terminal.constData(), O_RDWR | O_NOCTTY);
    QProcess process;
    process.setStandardOutputFile(QString::fromLocal8Bit(terminal));
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  {u"check"_s, u"line.sce"_s, u"--rule=unknown-element"_s, u"--rule=broken-off"_s});
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QByteArray output;
    const auto isComplete = [&] { // a terminal passes output on with a delay
        char part[4096];
        const ssize_t iRead = ::read(iMaster, part, sizeof(part));
        output.append(part, std::max<ssize_t>(0, iRead));
        return output.contains("file checked");
    };
    QTRY_VERIFY(isComplete());
    ::close(iSlave);
    ::close(iMaster);
    const QStringList lines = QString::fromUtf8(output).remove(u'\r').split(u'\n');
    QCOMPARE(lines.value(1), u"    "_s + shown);
    QCOMPARE(lines.value(2), u"    "_s + caret);
}

/// Findings beyond the listed ones are counted.
void TestCheckReports::unlisted()
{
    QByteArray content;
    for (int i = 0; i < 1200; ++i) {
        content += "<x/>";
    }
    QVERIFY(write(u"many.sce"_s,
                  contentOf(path(u"clean.sce"_s)).replace("</Scenario>", content + "</Scenario>")));
    const QStringList arguments{u"check"_s, u"many.sce"_s};
    const QStringList lines = simplifiedLines(run(arguments).out);
    QCOMPARE(lines.size(), 1002);
    QCOMPARE(lines.value(1000), u"many.sce: 200 more: unknown-element 200"_s);
    QCOMPARE(lines.value(1001), u"1 file checked: 1200 errors, 0 warnings"_s);
    const QJsonValue report(objectOf(run(arguments + QStringList{u"--json"_s})));
    QCOMPARE(report[u"files"][0][u"unlisted"].toArray(),
             QJsonArray({QJsonObject({{u"rule"_s, u"unknown-element"_s}, {u"count"_s, 200}})}));
    const QJsonValue sarif = sarifRun(arguments.mid(1));
    QCOMPARE(sarif[u"results"].toArray().size(), 1000);
    QCOMPARE(sarif[u"invocations"][0][u"toolExecutionNotifications"][0][u"message"][u"text"].toString(),
             u"200 more: unknown-element 200"_s);
}

void TestCheckReports::folders_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("kind"); ///< empty: not a document
    const QByteArray scenario = "<Scenario FileFormatVersion='4'/>";
    QTest::newRow("by its root") << u"any/where/x.txt"_s << scenario << u"scenario"_s;
    QTest::newRow("by a root in other letter case") << u"x"_s << QByteArray("<scenario/>") << u"scenario"_s;
    QTest::newRow("by a similar root") << u"x"_s << QByteArray("<Deployment/>") << u"deployment"_s;
    QTest::newRow("by its ending") << u"x.sce.exp"_s << QByteArray("<Other/>") << u"scenario"_s;
    QTest::newRow("descriptor") << u"x.xml"_s << QByteArray("<SignalPackage/>")
                                << u"signal package descriptor"_s;
    QTest::newRow("bytes that are not UTF-8")
        << u"x"_s << QByteArray("<Scenario Name='\xE4'/>") << u"scenario"_s;
    QTest::newRow("compact form") << u"x"_s << contentOf(path(u"clean.compact"_s)) << u"compact scenario"_s;
    QTest::newRow("hidden") << u".x/x.sce"_s << scenario << QString();
    QTest::newRow("other XML") << u"x.xml"_s << QByteArray("<Other/>") << QString();
    QTest::newRow("four bytes of zero") << u"x"_s << QByteArray(4, '\0') << QString();
    QTest::newRow("empty") << u"x"_s << QByteArray() << QString();
    QTest::newRow("data file") << u"Signal.wav"_s << QByteArray("RIFF1234WAVE") << QString();
}

/// A folder's documents are recognised among other files.
void TestCheckReports::folders()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, kind);
    QVERIFY(QDir(path(u"f"_s)).removeRecursively());
    QVERIFY(write(u"f/"_s + file, content));
    const ToolResult result = run({u"check"_s, u"f"_s, u"--json"_s});
    const QJsonValue checked = objectOf(result)[u"files"][0];
    if (kind.isEmpty()) {
        QCOMPARE(result.err, u"simulationtool: f: the folder holds no documents\n"_s);
        QCOMPARE(result.code, 2);
        return;
    }
    QCOMPARE(checked[u"file"].toString(), u"f/"_s + file);
    QCOMPARE(checked[u"kind"].toString(), kind);
}

/// Links are skipped, so a circle ends, and pipes are not opened.
void TestCheckReports::linksInCircle()
{
    QVERIFY(write(u"c/b/x.sce"_s, contentOf(path(u"clean.sce"_s))));
    QVERIFY(write(u"c/a.sce"_s, contentOf(path(u"clean.sce"_s))));
    QVERIFY(QFile::link(path(u"c"_s), path(u"c/b/circle"_s)));
    QVERIFY(QFile::link(path(u"none"_s), path(u"c/dangling.sce"_s)));
    QCOMPARE(::mkfifo(qPrintable(path(u"c/pipe.sce"_s)), S_IRUSR | S_IWUSR), 0);
    const ToolResult result = run({u"check"_s, u"c"_s});
    QCOMPARE(result.out, u"2 files checked: 0 errors, 0 warnings\n"_s);
    QCOMPARE(result.code, 0);
}

/// A package in a folder is checked with its data files, a descriptor alone is not.
void TestCheckReports::packageFolder()
{
    QCOMPARE(run({u"repository"_s, u"init"_s, u"r"_s}).code, 0);
    QCOMPARE(run({u"check"_s, u"r"_s}).code, 0);
    const QString sFolder = u"r/SignalPackages/TuK-Default/Default/"_s;
    const QByteArray shape = contentOf(path(sFolder + u"Signal.ssf"_s));
    const auto first = [&](const QString& a_sPath) {
        return simplifiedLines(run({u"check"_s, a_sPath, u"--no-rule=jump-at-restart"_s}).out).value(0);
    };
    const QString sDescriptor = sFolder + u"Signal.xml"_s;
    QVERIFY(write(sFolder + u"Signal.ssf"_s, shape.chopped(1)));
    QCOMPARE(first(u"r"_s), sDescriptor + u": error: [damaged-package] The package is damaged: Signal.ssf "
                                          "truncated by 1 byte. Put a whole one in its place."_s);
    QCOMPARE(first(sDescriptor), u"1 file checked: 0 errors, 0 warnings"_s);
    QVERIFY(write(sFolder + u"Signal.ssf"_s, QByteArray(shape).replace(shape.size() - 1, 1, "x")));
    const QString sChanged = first(sFolder);
    QVERIFY2(sChanged.contains(u": warning: [contradicting-package] Signal.ssf has the checksum "),
             qPrintable(sChanged));
}

/// The deployment is checked once, and the scenarios against it.
void TestCheckReports::deployment()
{
    QVERIFY(
        write(u"d.xml"_s,
              "<SimulationDeployment FileFormatVersion='1'>\n<Device ID='a'/>\n"
              "<Station ID='south' Name='S'><Position><Fixed><Lon>0</Lon><Lat>-80</Lat></Fixed></Position>"
              "</Station></SimulationDeployment>"));
    // The emitter has the id of the station, but the finding has no line of the scenario.
    QVERIFY(write(u"vhf.sce"_s,
                  "<Scenario FileFormatVersion='4'><Emitter ID='south' Active='true'><Frequency>"
                  "<Fixed>160000000</Fixed></Frequency></Emitter></Scenario>"));
    const QStringList rules{u"--rule=unreached-station"_s, u"--rule=device-without-station"_s};
    const ToolResult result =
        run(QStringList{u"check"_s, u"vhf.sce"_s, u"d.xml"_s, u"--deployment=d.xml"_s} + rules);
    const QStringList lines = simplifiedLines(result.out);
    QCOMPARE(result.code, 1);
    QCOMPARE(lines.value(0).section(u"] "_s, 0, 0), u"d.xml:2:1: error: [device-without-station"_s);
    const QStringList unreached = lines.filter(u"[unreached-station]"_s);
    QVERIFY2(!unreached.isEmpty() && lines.size() == unreached.size() + 2, qPrintable(result.out));
    QVERIFY(unreached.at(0).startsWith(u"vhf.sce: warning: "));
    QCOMPARE(lines.constLast().section(u':', 0, 0), u"2 files checked"_s);
    QCOMPARE(run({u"check"_s, u"clean.sce"_s, u"--deployment=faulty.sce"_s}).code, 2);
}

void TestCheckReports::usage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("err");
    const QString sList = u"\"simulationtool check --rules\" lists the rules"_s;
    QTest::newRow("only another rule") << QStringList{u"--rule=broken-off"_s} << 0 << QString();
    QTest::newRow("only this rule") << QStringList{u"--rule=unknown-element"_s} << 1 << QString();
    QTest::newRow("two rules") << QStringList{u"--rule=broken-off"_s, u"--rule=unknown-element"_s} << 1
                               << QString();
    QTest::newRow("without the rule")
        << QStringList{u"--no-rule=unknown-element"_s, u"--no-rule=missing-element"_s,
                       u"--no-rule=missing-attribute"_s}
        << 0 << QString();
    QTest::newRow("misspelt rule") << QStringList{u"--no-rule=unknown-elements"_s} << 2
                                   << u"did you mean \"unknown-element\"? "_s + sList;
    QTest::newRow("no rule at all") << QStringList{u"--rule=zzz"_s} << 2
                                    << u"there is no rule \"zzz\": "_s + sList;
    QTest::newRow("two forms") << QStringList{u"--json"_s, u"--sarif"_s} << 2 << u"give one of them"_s;
    QTest::newRow("page without rules") << QStringList{u"--markdown"_s} << 2 << u"belongs to --rules"_s;
    QTest::newRow("deployment without a name") << QStringList{u"--deployment="_s} << 2 << u"needs a name"_s;
    QTest::newRow("missing deployment")
        << QStringList{u"--deployment=none"_s} << 2 << u"none: cannot be read as a deployment document"_s;
    QTest::newRow("a folder, and a repair") << QStringList{u"--repair=out"_s, u"c"_s} << 2 << u"one PATH"_s;
}

void TestCheckReports::usage()
{
    QFETCH(QStringList, options);
    QFETCH(int, code);
    QFETCH(QString, err);
    const ToolResult result = run(QStringList{u"check"_s, u"faulty.sce"_s} + options);
    QCOMPARE(result.code, code);
    QVERIFY2(err.isEmpty() ? result.err.isEmpty() : result.err.contains(err), qPrintable(result.err));
    QVERIFY(code != 2 || result.out.isEmpty());
}

/// Every rule is in the list and has one heading in the page.
void TestCheckReports::rules()
{
    const ToolResult list = run({u"check"_s, u"--rules"_s});
    const ToolResult page = run({u"check"_s, u"--rules"_s, u"--markdown"_s});
    QCOMPARE(list.code, 0);
    const QStringList headings = page.out.split(u'\n').filter(QRegularExpression(u"^## [a-z-]+$"_s));
    const QStringList listed = list.out.split(u'\n').filter(QRegularExpression(u"^[a-z-]+ \\("_s));
    QCOMPARE(headings.size(), listed.size());
    QVERIFY(headings.size() > 40);
    for (const QString& sLine : listed) {
        QCOMPARE(headings.count(u"## "_s + sLine.section(u' ', 0, 0)), 1);
    }
}

void TestCheckReports::strict_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("err"); ///< without the program's name; empty: none
    const QString sSee = u"%1: 1 error, 0 warnings: see them with: simulationtool check %1"_s;
    const QStringList play{u"play"_s, u"--to"_s, u"1"_s};
    QTest::newRow("play") << play + QStringList{u"faulty.sce"_s} << 0 << sSee.arg(u"faulty.sce"_s);
    QTest::newRow("strict play") << play + QStringList{u"faulty.sce"_s, u"--strict"_s} << 1
                                 << sSee.arg(u"faulty.sce"_s);
    QTest::newRow("strict play of a clean scenario")
        << play + QStringList{u"clean.sce"_s, u"--strict"_s} << 0 << QString();
    QTest::newRow("strict play of the built-in scenario")
        << play + QStringList{u"--strict"_s} << 0 << QString();
    QTest::newRow("name in quotes") << play + QStringList{u"in here/ö:1.sce"_s} << 0
                                    << u"in here/ö:1.sce: 1 error, 0 warnings: see them with: simulationtool "
                                       "check 'in here/ö:1.sce'"_s;
    // Port 1 has no service: a file that is refused never leads to a connection.
    const QStringList load{u"control"_s, u"--server"_s, u"127.0.0.1:1"_s, u"--timeout"_s, u"1"_s};
    QTest::newRow("strict load") << load + QStringList{u"load"_s, u"faulty.sce"_s, u"--strict"_s} << 1
                                 << sSee.arg(u"faulty.sce"_s);
    QTest::newRow("strict deployment")
        << load + QStringList{u"deploy"_s, u"d.xml"_s, u"--strict"_s} << 1 << u"d.xml: "_s;
    QTest::newRow("load") << load + QStringList{u"load"_s, u"faulty.sce"_s} << 2 << sSee.arg(u"faulty.sce"_s);
    QTest::newRow("strict start") << load + QStringList{u"start"_s, u"--strict"_s} << 2
                                  << u"control: --strict belongs to load and deploy"_s;
}

/// Commands that load a document count the errors and warnings; --strict refuses it.
void TestCheckReports::strict()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, err);
    const ToolResult result = run(arguments);
    QCOMPARE(result.code, code);
    QVERIFY2(err.isEmpty() ? result.err.isEmpty() : result.err.startsWith(u"simulationtool: "_s + err),
             qPrintable(result.err));
    QCOMPARE(result.out.isEmpty(), code != 0);
}

QTEST_GUILESS_MAIN(TestCheckReports)

#include "tst_checkreports.moc"
