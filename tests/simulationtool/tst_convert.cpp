#include "filesizelimit.h"
#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationtool/toolrun.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Simulation;

namespace {

const QString s_sConvert = QStringLiteral("convert");
const QString s_sInspect = QStringLiteral("inspect");
const QString s_sDefault = QStringLiteral(":/DefaultData/Default.sce.exp");

QByteArray document(const QByteArray& a_content)
{
    return "<Scenario FileFormatVersion=\"4\">" + a_content + "</Scenario>";
}

/// A compact scenario. Its emitters have these letters as ids and their indices as
/// names. The first emitter is the default emitter, and the second emitter is linked to
/// it.
QByteArray compact(const QByteArray& a_ids)
{
    QList<std::shared_ptr<SzenarioEmitter>> emitters;
    for (const char cId : a_ids) {
        emitters.append(
            std::make_shared<SzenarioEmitter>(QString(QLatin1Char(cId)), QString::number(emitters.size())));
    }
    if (emitters.size() > 1) {
        emitters[1]->setLinkTargetEmitter(emitters[0]);
    }
    ScenarioDataBinary scenario(nullptr);
    scenario.setScenarioEmitter({emitters.cbegin(), emitters.cend()});
    scenario.setDefaultEmitter(emitters[0]);
    return scenario.toBinary();
}

} // namespace

class TestConvert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void thereAndBack();
    void reportsLosses_data();
    void reportsLosses();
    void inspectsCompact_data();
    void inspectsCompact();
    void refuses_data();
    void refuses();
    void deathKeepsOut();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir->filePath(a_sName); }
    [[nodiscard]] QString write(const QString& a_sName, const QByteArray& a_data) const
    {
        QFile file(path(a_sName));
        return file.open(QIODevice::WriteOnly) && file.write(a_data) == a_data.size() ? path(a_sName)
                                                                                      : QString();
    }
    [[nodiscard]] QByteArray read(const QString& a_sName) const
    {
        QFile file(path(a_sName));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestConvert::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void TestConvert::thereAndBack()
{
    const ToolResult there = runTool({s_sConvert, s_sDefault, path(QStringLiteral("1"))});
    QCOMPARE(there.err, QString());
    QCOMPARE(there.code, 0);
    const QStringList lines = simplifiedLines(there.out);
    QCOMPARE(lines.value(0), QStringLiteral("Compact scenario written"));
    QCOMPARE(lines.mid(3),
             QStringList({QStringLiteral("Not carried by the compact form"),
                          QStringLiteral("Networks 2 networks, 6 members"),
                          QStringLiteral("Emissions 17 emissions, 4 groups, 7 periods, 1 broadcast"),
                          QStringLiteral("Frequencies 15 settings"), QStringLiteral("Positions 12 settings"),
                          QStringLiteral("Transmitters 13 settings"),
                          QStringLiteral("ELINT 1 emitter, 1 file"), QStringLiteral("Noise settings"),
                          QStringLiteral("Header name, author, description, uid, duration")}));

    const ToolResult back = runTool({s_sConvert, path(QStringLiteral("1")), path(QStringLiteral("2"))});
    QCOMPARE(back.err, QString());
    QCOMPARE(back.code, 0);
    QVERIFY(simplifiedLines(back.out).contains(QStringLiteral("Frequencies fixed, 25 MHz")));
    QVERIFY(!back.out.contains(QStringLiteral("Links")) && !back.out.contains(QStringLiteral("changed")));

    // Converting the document again gives the same compact scenario, byte for byte.
    QCOMPARE(runTool({s_sConvert, path(QStringLiteral("2")), path(QStringLiteral("3"))}).code, 0);
    QVERIFY(read(QStringLiteral("1")).size() > 1000);
    QCOMPARE(read(QStringLiteral("3")), read(QStringLiteral("1")));
}

void TestConvert::reportsLosses_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("message"); ///< part of the error text; if set the exit code is 1
    QTest::addColumn<QString>("logged");  ///< expected lines of the output

    const auto add = [](const char* a_szRow, const QByteArray& a_input, const char* a_szLogged,
                        const char* a_szMessage = "") {
        QTest::newRow(a_szRow) << a_input << QString::fromLatin1(a_szMessage)
                               << QString::fromLatin1(a_szLogged);
    };
    add("nothing", document(""), "Everything of the scenario is carried");
    add("circle of links", document(R"(<Emitter ID="a" LinkTarget="b"/><Emitter ID="b" LinkTarget="a"/>)"),
        "Links that cannot be read back: 1:\na b the links form a cycle");
    add("id that stands for none", document(R"(<Emitter ID="a" LinkTarget="%%NONE%%"/>)"),
        "a %%NONE%% this id means no link");
    add("id of two", compact("abb"),
        "Emitters that are read back changed: 2:\nb shares its id with others, of which one is kept");
    add("text that no document holds", compact("a\x01"), "Emitters that are read back changed: 1:");
    add("record that names nobody",
        compact("ab").replace(QByteArray("\0a\0\0\0\2", 6), QByteArray("\0z\0\0\0\2", 6)),
        "Links that name no preceding emitter: 1:\nb a");
    add("compact scenario that broke off", compact("ab").chopped(1), "Emitters 1",
        "broken off: record 2 of 2, class: the stream ends");
    add("document that broke off", document(R"(<Emitter ID="a"/>)").chopped(3), "Emitters 1", "line 1");
}

void TestConvert::reportsLosses()
{
    QFETCH(QByteArray, input);
    QFETCH(QString, message);
    QFETCH(QString, logged);

    const QString sOut = path(QStringLiteral("out"));
    const ToolResult result = runTool({s_sConvert, write(QStringLiteral("in"), input), sOut});
    const int iFindings = message.isEmpty() ? 0 : 1;
    QCOMPARE(result.code, iFindings);
    QVERIFY2(result.err.contains(message) && result.err.count(u'\n') == iFindings, qPrintable(result.err));
    for (const QString& line : logged.split(u'\n')) {
        QVERIFY2(simplifiedLines(result.out).contains(line), qPrintable(result.out));
    }
    QCOMPARE(runTool({s_sInspect, sOut}).code, 0);
}

void TestConvert::inspectsCompact_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("lastLine"); ///< of the output; empty when the file is not a compact scenario

    const QByteArray two = compact("ab");
    const QString sFull = QStringLiteral("Verdict whole");
    QTest::newRow("whole") << two << 0 << sFull;
    QTest::newRow("no emitter") << QByteArray(4, '\0') << 0 << sFull;
    QTest::newRow("breaks off") << two.chopped(1) << 1
                                << QStringLiteral(
                                       "Verdict broken off: record 2 of 2, class: the stream ends");
    QTest::newRow("bytes left") << two + "x" << 1
                                << QStringLiteral("Verdict 1 byte more than the count declares");
    QTest::newRow("breaks off in the first record")
        << two.first(20) << 1
        << QStringLiteral("Verdict broken off: record 1 of 2, active flag: the stream ends");
    QTest::newRow("another first record") << QByteArray("\0\0\0\2\0\0\0\3abcdefgh", 16) << 2 << QString();
    QTest::newRow("no emitter, bytes left") << QByteArray(5, '\0') << 2 << QString();
    QTest::newRow("count of 2^31 - 1") << QByteArray("\x7F\xFF\xFF\xFF") + two.mid(4) << 2 << QString();
    QTest::newRow("blanks before a document") << "\n \t" + document("") << 0 << QString();
    QTest::newRow("empty file") << QByteArray() << 2 << QString();
}

void TestConvert::inspectsCompact()
{
    QFETCH(QByteArray, content);
    QFETCH(int, code);
    QFETCH(QString, lastLine);

    const QString sFile = write(QStringLiteral("in"), content);
    const ToolResult result = runTool({s_sInspect, sFile});
    QCOMPARE(result.code, code);
    // A file that is not a compact scenario is read as a document. If this fails, one line
    // reports the error.
    QCOMPARE(result.err.count(u'\n'), code == 2 ? 1 : 0);
    QCOMPARE(result.out.contains(QStringLiteral("Compact")), !lastLine.isEmpty());
    if (lastLine.isEmpty()) {
        return;
    }
    const QStringList lines = simplifiedLines(result.out);
    QCOMPARE(lines.value(0), QStringLiteral("Compact scenario"));
    QCOMPARE(lines.constLast(), lastLine);
    QCOMPARE(lines.contains(QStringLiteral("a 0 yes yes - - -")), content.size() > 20);
    QCOMPARE(lines.contains(QStringLiteral("b 1 yes no a - -")), content.size() >= compact("ab").size());
}

void TestConvert::refuses_data()
{
    QTest::addColumn<QString>("files"); ///< separated by bars
    QTest::addColumn<QString>("message");

    const auto add = [](const char* a_szRow, const char* a_szFiles, const char* a_szMessage) {
        QTest::newRow(a_szRow) << QString::fromLatin1(a_szFiles) << QString::fromLatin1(a_szMessage);
    };
    add("no OUT", "in", "an OUT are needed, 1 given");
    add("empty OUT", "in|", "an OUT are needed, 1 given");
    add("the scenario itself", "in|./in", "./in is the scenario itself");
    add("no scenario", "nothing|out", "nothing: ");
    add("no such form", "out|new", "out: ");
    add("folder", "in|.", "is a folder");
    add("device", "in|/dev/null", "is not a regular file");
    add("no folder", "in|no/out", "no/out: ");
}

void TestConvert::refuses()
{
    QFETCH(QString, files);
    QFETCH(QString, message);

    QVERIFY(!write(QStringLiteral("in"), compact("ab")).isEmpty());
    QVERIFY(!write(QStringLiteral("out"), "old").isEmpty());
    QStringList arguments{s_sConvert};
    for (const QString& file : files.split(u'|')) {
        arguments.append(file.isEmpty() || file.startsWith(u'/') ? file : path(file));
    }
    const ToolResult result = runTool(arguments);
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(message) && result.err.count(u'\n') == 1, qPrintable(result.err));
    QCOMPARE(result.out, QString());
    QCOMPARE(read(QStringLiteral("in")), compact("ab"));
    QCOMPARE(read(QStringLiteral("out")), QByteArray("old"));
    QVERIFY(!QFile::exists(path(QStringLiteral("new"))));
}

void TestConvert::deathKeepsOut()
{
    const QString sOut = write(QStringLiteral("out"), "old");
    QProcess process;
    process.setChildProcessModifier([] { dieBeyondFileSize(100); });
    process.start(QStringLiteral(SIMULATIONTOOL_PATH), {s_sConvert, s_sDefault, sOut});
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(read(QStringLiteral("out")), QByteArray("old"));
}

QTEST_GUILESS_MAIN(TestConvert)
#include "tst_convert.moc"
