#include "tracecollector.h"
#include "velaappstartup/cfgcenter.h"
#include "velaappstartup/icfg.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

namespace {

constexpr unsigned s_uiDefault = 57401;

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

ICfg* create()
{
    return CfgCenter::CreateCfg(u8("Simulation"), 4, QString());
}

} // namespace

class TestConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void texts_data();
    void texts();
    void numbers();
    void groups();
    void hostileLines();
    void unreadable_data();
    void unreadable();
    void changedFile();
    void places();

private:
    void save(const QByteArray& a_text) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::optional<TraceCollector> m_traces;
};

void TestConfiguration::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    CfgCenter::SetFolder(m_folder->path());
    m_traces.emplace();
}

void TestConfiguration::cleanup()
{
    m_traces.reset();
    CfgCenter::SetFolder({});
}

void TestConfiguration::save(const QByteArray& a_text) const
{
    QFile file(m_folder->filePath(u8("Simulation.ini")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(a_text), a_text.size());
}

void TestConfiguration::texts_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("expected");

    QTest::newRow("missing") << QByteArray("Other=1") << u8("default");
    QTest::newRow("empty") << QByteArray("Key=") << u8("");
    QTest::newRow("with commas") << QByteArray("Key=/srv/a,b,  c") << u8("/srv/a,b,  c");
    QTest::newRow("two quoted texts") << QByteArray("Key=\"a\", \"b\"") << u8("\"a\", \"b\"");
    QTest::newRow("escaped quote") << QByteArray("Key=\"a \\\"b\\\" c\"") << u8("a \"b\" c");
    QTest::newRow("comment behind") << QByteArray("Key=a ; b") << u8("a");
    QTest::newRow("quoted semicolon") << QByteArray("Key=\"a;b\" ; c") << u8("a;b");
    QTest::newRow("umlauts") << QByteArray("Key=/gr\xC3\xB6\xC3\x9F") << u8("/gr\xC3\xB6\xC3\x9F");
    QTest::newRow("typed path") << QByteArray("Key=C:\\new\\x41") << u8("C:\\new\\x41");
    QTest::newRow("typed path, last backslash") << QByteArray("Key=C:\\Data\\") << u8("C:\\Data\\");
    QTest::newRow("quoted typed path") << QByteArray("Key=\"C:\\a b, c\\\"") << u8("C:\\a b, c\\");
    QTest::newRow("typed server path") << QByteArray("Key=\\\\server\\new") << u8("\\\\server\\new");
    QTest::newRow("doubled backslashes") << QByteArray("Key=C:\\\\new\\\\x") << u8("C:\\new\\x");
    QTest::newRow("doubled server path") << QByteArray("Key=\\\\\\\\server\\\\new") << u8("\\\\server\\new");
    QTest::newRow("last backslash") << QByteArray("Key=a\\") << u8("a\\");
    QTest::newRow("two at signs, as QSettings writes one") << QByteArray("Key=@@home") << u8("@home");
    // QSettings would need 64 GiB of memory to decode this value.
    const char* const szList = "@Variant(\\0\\0\\0\\t\\xff\\xff\\xff\\xfe)";
    const QString sList = u8("@Variant(") + QString(3, QChar(0)) + u8("\t\xC3\xBF\xC3\xBF\xC3\xBF\xC3\xBE)");
    QTest::newRow("huge object") << QByteArray("Key=") + szList << sList;
    QTest::newRow("huge object, disguised") << QByteArray("Key=\\x40") + (szList + 1) << sList;
}

void TestConfiguration::texts()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, expected);
    // The file has a byte-order mark before the line and another setting after it.
    save("\xEF\xBB\xBF" + line + "\nNext=2\n");
    const ICfg* pCfg = create();
    QCOMPARE(pCfg->readString(u8("Key"), u8("default")), expected);
    QCOMPARE(pCfg->readString(u8("Next"), u8("")), u8("2"));
    QVERIFY(TraceCollector::lines().isEmpty());
}

void TestConfiguration::numbers()
{
    save("Small=\"12\"\nLarge=4294967295\n");
    QCOMPARE(create()->readUnsigned(u8("Small"), s_uiDefault), 12U);
    QCOMPARE(create()->readUnsigned(u8("Large"), s_uiDefault), 4294967295U);
    QVERIFY(TraceCollector::lines().isEmpty());
    for (const char* const szValue : {"4294967296", "-1", "auto", "", "1.5", "0x10"}) {
        save(QByteArray("Key=") + szValue);
        TraceCollector::lines().clear();
        QCOMPARE(create()->readUnsigned(u8("Key"), s_uiDefault), s_uiDefault);
        QVERIFY2(TraceCollector::lines().size() == 1, szValue);
    }
}

void TestConfiguration::groups()
{
    save(
        "Top=0\n[Ports]\nServer=1\n; note\n[Repository]\nFileSystem\\Path=a\n[Other/Sub]\nPath=b\n[Empty]\n");
    ICfg* pCfg = create();
    QCOMPARE(pCfg->openGroup(u8("Ports"))->readUnsigned(u8("Server"), 0), 1U);
    QCOMPARE(pCfg->openGroup(u8("Ports"))->readString(u8("Top"), u8("none")), u8("none"));
    QCOMPARE(pCfg->openGroup(u8("Ports")), pCfg->openGroup(u8("Ports")));
    ICfg* pOther = pCfg->openGroup(u8("Other"));
    QCOMPARE(pOther->openGroup(u8("Sub"))->readString(u8("Path"), u8("")), u8("b"));
    ICfg* pRepository = pCfg->openGroup(u8("Repository"));
    QVERIFY(pRepository->hasGroup(u8("FileSystem")));
    QCOMPARE(pRepository->openGroup(u8("FileSystem"))->readString(u8("Path"), u8("")), u8("a"));
    for (const char* const szGroup : {"", "Empty", "Port", "Top", "FileSystem"}) {
        QVERIFY2(!pCfg->hasGroup(u8(szGroup)), szGroup);
    }
    QCOMPARE(pCfg->openGroup(u8("Missing"))->openGroup(u8("Sub"))->readUnsigned(u8("Server"), 7), 7U);
}

void TestConfiguration::hostileLines()
{
    // Malformed lines neither change nor remove the settings around them.
    save("A=1\n[\"x\n\"=\n\"q\"=3\nno setting\n[Ports\\\nB=2\n[\nC=3\n[Ports]\n\"\nServer=4\n");
    const ICfg* pPorts = create()->openGroup(u8("Ports"));
    QCOMPARE(create()->readUnsigned(u8("A"), 0), 1U);
    QCOMPARE(pPorts->readUnsigned(u8("Server"), 0), 4U);
}

void TestConfiguration::unreadable_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("traces");

    const QByteArray start("Key=1\n");
    constexpr int iLimit = 1 << 20;
    QTest::newRow("as large as allowed") << start + QByteArray(iLimit - start.size(), '\n') << u8("1") << 0;
    QTest::newRow("too large") << start + QByteArray(iLimit - start.size() + 1, '\n') << u8("default") << 1;
    QTest::newRow("deep groups") << start + QByteArray("a/").repeated(iLimit / 4) + "=1" << u8("1") << 0;
    QTest::newRow("many settings") << start + QByteArray("[a]\nb=\n").repeated(iLimit / 8) << u8("1") << 0;
    QTest::newRow("not text") << start + QByteArray("\0\xFF\xFE=\0\n", 6).repeated(9) << u8("1") << 0;
    QTest::newRow("folder") << QByteArray() << u8("default") << 1;
}

void TestConfiguration::unreadable()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    QFETCH(int, traces);
    if (text.isEmpty()) {
        QVERIFY(QDir(m_folder->path()).mkdir(u8("Simulation.ini")));
    } else {
        save(text);
    }
    QCOMPARE(create()->readString(u8("Key"), u8("default")), expected);
    QCOMPARE(TraceCollector::lines().size(), traces);
}

void TestConfiguration::changedFile()
{
    ICfg* pMissing = create();
    save("[Ports]\nServer=1\n");
    ICfg* pFirst = create();
    ICfg* pFirstPorts = pFirst->openGroup(u8("Ports"));
    // The file changes immediately after it was read, and keeps its size. Neither its time
    // nor its size shows the change.
    save("[Ports]\nServer=2\n");
    ICfg* pSecond = create();
    QCOMPARE(pSecond->openGroup(u8("Ports"))->readUnsigned(u8("Server"), 0), 2U);
    QCOMPARE(pFirstPorts->readUnsigned(u8("Server"), 0), 1U);
    QVERIFY(!pMissing->hasGroup(u8("Ports")));
    QCOMPARE(create(), pSecond);
}

void TestConfiguration::places()
{
    save("Key=set\n");
    const QByteArray oldFolder = qgetenv("SIMULATION_CONFIG_DIR");
    QTemporaryDir other;
    qputenv("SIMULATION_CONFIG_DIR", QFile::encodeName(other.path()));
    QCOMPARE(create()->readString(u8("Key"), u8("default")), u8("set"));
    CfgCenter::SetFolder({});
    QCOMPARE(create()->readString(u8("Key"), u8("default")), u8("default"));
    qputenv("SIMULATION_CONFIG_DIR", QFile::encodeName(m_folder->path()));
    QCOMPARE(create()->readString(u8("Key"), u8("default")), u8("set"));

    qunsetenv("SIMULATION_CONFIG_DIR");
    const QByteArray oldHome = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(other.path()));
    QVERIFY(QDir(other.path()).mkdir(u8("simulation")));
    QVERIFY(QFile::copy(m_folder->filePath(u8("Simulation.ini")),
                        other.filePath(u8("simulation/Simulation.ini"))));
    QCOMPARE(create()->readString(u8("Key"), u8("default")), u8("set"));
    qputenv("XDG_CONFIG_HOME", oldHome);
    qputenv("SIMULATION_CONFIG_DIR", oldFolder);
}

QTEST_GUILESS_MAIN(TestConfiguration)
#include "tst_configuration.moc"
