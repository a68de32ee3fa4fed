#include "filesizelimit.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationtool/toolrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <algorithm>

#include <csignal>

#include <sys/file.h>

namespace {

const QString s_sRectId = QStringLiteral("b696e61d-dcae-42b4-b794-4a4adb8476c0");

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template<typename Number>
QByteArray bytesOf(Number a_value)
{
    QByteArray bytes(sizeof(Number), '\0');
    qToLittleEndian(a_value, bytes.data());
    return bytes;
}

/// Returns the bytes, overwritten with the patch from an offset on.
QByteArray patched(QByteArray a_bytes, qsizetype a_iOffset, const QByteArray& a_patch)
{
    return a_bytes.replace(a_iOffset, a_patch.size(), a_patch);
}

QByteArray symbolFile()
{
    return "T&K-SDF" + bytesOf<quint32>(0) + QByteArray(16, '\0') + '\4' + '\0' + bytesOf(1000.0F) +
           bytesOf<quint64>(50) + QByteArray(50, '\1');
}

QByteArray resultFile(float a_fRate)
{
    return "T&K-RDF" + bytesOf<quint32>(0) + '\0' + bytesOf(a_fRate) + bytesOf<quint64>(10) +
           bytesOf<quint32>(0) + QByteArray(20, '\1');
}

/// A block of pulse words whose header declares a_uiClaimed words. The block contains
/// a_iHeld words.
QByteArray pulseBlock(quint32 a_uiNumber, quint32 a_uiClaimed, qsizetype a_iHeld)
{
    QByteArray block;
    for (const quint32 uiWord :
         {0xFB746572U, 8 + 8 * a_uiClaimed, a_uiNumber, 512U, 2U, 0U, a_uiClaimed, 8U}) {
        block += bytesOf(uiWord);
    }
    return block + QByteArray(32 * a_iHeld, '\1');
}

} // namespace

class TestRepositoryCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void initWithoutRoom();
    void initKeepsWhatIsTheUsers();
    void initRefuses_data();
    void initRefuses();
    void listDefault();
    void listProblems_data();
    void listProblems();
    void inspectFile_data();
    void inspectFile();
    void inspectPackage();
    void inspectArchive_data();
    void inspectArchive();
    void playShowsLevels();
    void playReportsMissingFiles_data();
    void playReportsMissingFiles();
    void cacheThatCannotBeFilled_data();
    void cacheThatCannotBeFilled();
    void lostRepository();
    void playKeepsCache();
    void playRefusesCache_data();
    void playRefusesCache();
    void playCleansUp_data();
    void playCleansUp();

private:
    [[nodiscard]] QString path(const QString& a_sName) const { return m_dir->filePath(a_sName); }
    [[nodiscard]] QString package(const QString& a_sFile) const
    {
        return path(QStringLiteral("r/SignalPackages/TuK-Default/Rect 10kHz/") + a_sFile);
    }
    [[nodiscard]] bool write(const QString& a_sFile, const QByteArray& a_data) const
    {
        QFile file(a_sFile);
        return QDir().mkpath(QFileInfo(a_sFile).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(a_data) == a_data.size();
    }

    QByteArray m_shape; ///< file of the package "Rect 10kHz", like m_audio and m_descriptor
    QByteArray m_audio;
    QByteArray m_descriptor;
    std::unique_ptr<QTemporaryDir> m_dir; ///< the test's folder; contains a repository "r"
};

void TestRepositoryCommands::initTestCase()
{
    init();
    m_shape = contentOf(package(QStringLiteral("Signal.ssf")));
    m_audio = contentOf(package(QStringLiteral("Signal.wav")));
    m_descriptor = contentOf(package(QStringLiteral("Signal.xml")));
    QVERIFY(!m_shape.isEmpty() && !m_audio.isEmpty() && m_descriptor.contains(s_sRectId.toLatin1()));
}

void TestRepositoryCommands::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    const ToolResult result =
        runTool({QStringLiteral("repository"), QStringLiteral("init"), path(QStringLiteral("r"))});
    QCOMPARE(result.err, QString());
    QCOMPARE(result.code, 0);
    QVERIFY(result.out.startsWith(QStringLiteral("Repository made\n")));
    QVERIFY(result.out.contains(QStringLiteral("Packages      3 in ")));
}

void TestRepositoryCommands::initWithoutRoom()
{
    const FileSizeLimit limit(1'000);
    const QString sFolder = path(QStringLiteral("full"));
    const ToolResult result = runTool({QStringLiteral("repository"), QStringLiteral("init"), sFolder});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.startsWith(QStringLiteral("simulationtool: %1: the default data could not be "
                                                  "written: ")
                                       .arg(sFolder)) &&
                 result.err.endsWith(QStringLiteral(": File too large\n")),
             qPrintable(result.err));
}

void TestRepositoryCommands::initKeepsWhatIsTheUsers()
{
    const QString sScenario = path(QStringLiteral("r/Files/Tessaro/Default.scexml"));
    QVERIFY(contentOf(sScenario).contains("<Scenario"));
    QVERIFY(write(sScenario, "mine"));
    QVERIFY(write(package(QStringLiteral("Signal.ssf")), "damaged"));
    QVERIFY(write(path(QStringLiteral("r/Sessions/1/scratch")), "x"));
    const ToolResult result =
        runTool({QStringLiteral("repository"), QStringLiteral("init"), path(QStringLiteral("r"))});
    QCOMPARE(result.code, 0);
    QVERIFY(result.out.startsWith(QStringLiteral("Repository prepared\n")));
    QCOMPARE(contentOf(sScenario), QByteArray("mine"));
    QCOMPARE(contentOf(package(QStringLiteral("Signal.ssf"))), m_shape);
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("r/Sessions/1"))));
}

void TestRepositoryCommands::initRefuses_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("reason");

    QTest::newRow("file") << "r/Files/Tessaro/Default.scexml"
                          << "is not a folder";
    QTest::newRow("below a file") << "r/Files/Tessaro/Default.scexml/r"
                                  << "cannot be made: Not a directory";
    QTest::newRow("package") << "r/SignalPackages/TuK-Default/Default"
                             << "is a signal package";
    QTest::newRow("somebody's sessions")
        << "other"
        << "is not a repository, and its folder Sessions would be emptied: choose another folder";
}

void TestRepositoryCommands::initRefuses()
{
    QFETCH(QString, folder);
    QFETCH(QString, reason);
    QVERIFY(write(path(QStringLiteral("other/Sessions/diary")), "dear"));
    const ToolResult result = runTool({QStringLiteral("repository"), QStringLiteral("init"), path(folder)});
    QCOMPARE(result.err, QStringLiteral("simulationtool: %1: %2\n").arg(path(folder), reason));
    QCOMPARE(result.code, 2);
    QCOMPARE(contentOf(path(QStringLiteral("other/Sessions/diary"))), QByteArray("dear"));
}

void TestRepositoryCommands::listDefault()
{
    // Both the repository and the folder of its packages can be listed.
    for (const QString& sFolder : {QStringLiteral("r"), QStringLiteral("r/SignalPackages")}) {
        const ToolResult result =
            runTool({QStringLiteral("repository"), QStringLiteral("list"), path(sFolder)});
        QCOMPARE(result.code, 0);
        QCOMPARE(
            simplifiedLines(result.out).mid(2),
            QStringList(
                {QStringLiteral("c0d40372-37c8-4ad4-9fb1-97bfc477769c Default CW 10000 3000 ssf wav -"),
                 QStringLiteral("9a567123-d88f-4177-9b57-b02c1ec104f7 Gauss 10kHz CW 10000 3000 ssf wav -"),
                 s_sRectId + QStringLiteral(" Rect 10kHz CW 10000 3000 ssf wav -"),
                 QStringLiteral("3 packages, 0 with problems")}));
    }
}

void TestRepositoryCommands::listProblems_data()
{
    QTest::addColumn<QString>("file"); // file of the package
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("rest"); // end of the package's row

    const auto descriptorWith = [this](const char* a_szFrom, const char* a_szTo) {
        return QByteArray(m_descriptor).replace(a_szFrom, a_szTo);
    };
    const QString sDescriptor = QStringLiteral("Signal.xml");
    QTest::newRow("no id") << sDescriptor << QByteArray("<SignalPackage/>")
                           << "0 0 ssf wav Signal.xml refused: names no id";
    QTest::newRow("id of another") << sDescriptor
                                   << descriptorWith(s_sRectId.toLatin1(),
                                                     "c0d40372-37c8-4ad4-9fb1-97bfc477769c")
                                   << "10000 3000 ssf wav same id as TuK-Default/Default";
    QTest::newRow("hostile id") << sDescriptor
                                << descriptorWith(s_sRectId.toLatin1(), "a\xc2\x9b[31m\xe2\x80\xae")
                                << "Rect 10kHz CW 10000 3000 ssf wav -";
    QTest::newRow("no duration") << sDescriptor << descriptorWith("<Duration>3000", "<Duration>0")
                                 << "10000 0 ssf wav no duration";
    QTest::newRow("digital") << sDescriptor
                             << descriptorWith("<AnalogModulation>None", "<AnalogModulation>Digital")
                                    .replace("<DigitalModulation/>",
                                             "<DigitalModulation>PSK8</DigitalModulation>")
                             << "Rect 10kHz PSK8 10000 3000 ssf wav -";
    QTest::newRow("shape without a header")
        << "Signal.ssf" << m_shape.left(34)
        << "ssf wav Signal.ssf refused: the header has only 34 of 35 bytes";
    QTest::newRow("audio cut short") << "Signal.wav" << m_audio.chopped(12)
                                     << "ssf wav Signal.wav truncated by 12 bytes";
    QTest::newRow("symbols, too many") << "Signal.sdf" << symbolFile() + 'x'
                                       << "ssf wav sdf Signal.sdf 1 byte more than the header declares";
    QTest::newRow("results") << "Signal.rdf" << resultFile(10.0F) << "3000 ssf wav rdf -";
}

void TestRepositoryCommands::listProblems()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, rest);
    QVERIFY(write(package(file), content));
    const ToolResult result =
        runTool({QStringLiteral("repository"), QStringLiteral("list"), path(QStringLiteral("r"))});
    const QString sRow = simplifiedLines(result.out).value(4);
    QVERIFY2(sRow.endsWith(rest), qPrintable(sRow));
    const bool bError = !rest.endsWith(u'-');
    QCOMPARE(result.code, bError ? 1 : 0);
    QVERIFY(result.out.endsWith(QStringLiteral("3 packages, %1 with problems\n").arg(bError ? 1 : 0)));
    QVERIFY(!result.out.contains(QChar(0x9B)) && !result.out.contains(QChar(0x202E)));
}

void TestRepositoryCommands::inspectFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("field"); // line of the output
    QTest::addColumn<QString>("verdict");

    const auto add = [](const char* a_szName, const QByteArray& a_content, int a_iCode, const char* a_szField,
                        const char* a_szVerdict) {
        QTest::addRow("%s: %s", a_szName, a_szVerdict)
            << QString::fromLatin1(a_szName) << a_content << a_iCode << QString::fromLatin1(a_szField)
            << QString::fromLatin1(a_szVerdict);
    };
    const QByteArray maximum(8, '\xFF');
    add("shape", m_shape, 0, "Spectrum 256 points", "whole");
    // 49 of 100 records are complete, and every fifth one is shown.
    add("x.ssf", m_shape.chopped(51 * 1040 - 1), 1, "45 4500", "truncated by 53039 bytes");
    add("x.ssf", patched(m_shape, 19, maximum), 1, "Bandwidth 10 kHz",
        "truncated: the header declares more than a file can contain");
    add("x.ssf", patched(m_shape, 27, maximum.left(4)), 1, "Levels -",
        "whole, but by its rate and count nothing can be read");
    add("x.ssf", patched(m_shape, 31, maximum.left(4)), 2, "Signal shape file",
        "refused: spectra of 4294967295 points in a file of 104035 bytes");
    add("x.ssf", "", 2, "Size 0 bytes", "refused: the header has only 0 of 35 bytes");
    add("symbols", symbolFile(), 0, "Valency 4", "whole");
    add("x.SDF", symbolFile().left(30), 2, "Symbol data file",
        "refused: the file has only 30 of 41 bytes before the first item");
    add("results", resultFile(10.0F), 0, "Duration 1000 ms", "whole");
    add("results", resultFile(0.0F), 1, "Items 10", "whole, but by its rate and count nothing can be read");
    add("audio", m_audio, 0, "For packages yes", "whole");
    add("audio", patched(m_audio, 24, bytesOf<quint32>(44'100)), 0, "For packages no: ", "whole");
    add("x.wav", "RIFF", 2, "Wave file", "refused: 4 bytes are too few for a RIFF header");
    add("descriptor", m_descriptor, 0, "Bandwidth 10000", "whole");
    add("descriptor", "<SignalPackage><Name>", 2, "Signal package descriptor",
        "refused: line 1, column 22: element \"Name\" does not end");
    add("deployment", contentOf(QStringLiteral(TEST_DATA_DIR "/deployments/Full.xml")), 0,
        "mobile On board ship pc-1 Receiver 7 0 moves over 2 points, then stays at the end", "whole");
    add("deployment", "<SimulationDeployment><Device ID='a'><Station>s</Station>", 1,
        "s - 1 longitude 0, latitude 0", "broke off: line 1, column 57: Premature end of document.");
    add("deployment", "<!DOCTYPE d [<!ENTITY e 'e'>]><SimulationDeployment/>", 2, "Deployment",
        "refused: line 1, column 1: entity declarations limit of 0 exceeded");
    add("pulses", pulseBlock(0, 1000, 1000) + pulseBlock(1, 1, 1), 0, "Records 1001", "whole");
    add("pulses", pulseBlock(0, 2, 2) + pulseBlock(1, 5, 3), 1, "Records 5", "truncated by 64 bytes");
    add("pulses", pulseBlock(0, 0, 0).chopped(1), 1, "Blocks 0", "truncated by 1 byte");
    add("pulses", pulseBlock(0, 1, 1) + pulseBlock(2, 1, 1), 1,
        "Inconsistent Block 1: number is 2 instead of 1", "inconsistent");
    add("pulses", pulseBlock(0, 1, 3), 1, "Inconsistent Block 1: no header, 64 bytes before the end",
        "broken after 1 block");
    add("pulses", pulseBlock(0, 0xFFFF'FFFFU, 0), 1, "Records 0",
        "inconsistent, truncated by 137438953440 bytes");
    add("x.pdw", QByteArray(70, '\1'), 1, "Records 2", "truncated by 26 bytes");
    add("x.zip", "PK", 2, "Zip archive", "refused: has no zip directory in its last 2 bytes");
}

void TestRepositoryCommands::inspectFile()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, field);
    QFETCH(QString, verdict);
    QVERIFY(write(path(name), content));
    const ToolResult result = runTool({QStringLiteral("inspect"), path(name)});
    const QStringList lines = simplifiedLines(result.out);
    QCOMPARE(lines.constLast(), QStringLiteral("Verdict ") + verdict);
    const bool bField = std::any_of(lines.cbegin(), lines.cend(),
                                    [&](const QString& a_sLine) { return a_sLine.startsWith(field); });
    QVERIFY2(bField, qPrintable(result.out));
    QTEST(result.code, "code");
    QCOMPARE(result.err, QString());
}

void TestRepositoryCommands::inspectPackage()
{
    QVERIFY(write(package(QStringLiteral("Signal.ssf")), m_shape.chopped(1)));
    const ToolResult result = runTool({QStringLiteral("inspect"), package({})});
    const QStringList lines = simplifiedLines(result.out);
    QVERIFY(lines.contains(QStringLiteral("ID ") + s_sRectId));
    QVERIFY(lines.contains(QStringLiteral("Signal.ssf 104034 truncated by 1 byte 100 records of 256 points, "
                                          "10 per second, 10 kHz wide")));
    QVERIFY(lines.contains(QStringLiteral("Signal.wav 192024 whole 16 bits mono, 95990 frames, 2999 ms")));
    QCOMPARE(lines.constLast(), QStringLiteral("Verdict Signal.ssf truncated by 1 byte"));
    QCOMPARE(result.code, 1);
    // A folder without a package is refused.
    const ToolResult other = runTool({QStringLiteral("inspect"), path(QStringLiteral("r"))});
    QCOMPARE(other.code, 2);
    QVERIFY(other.err.contains(QStringLiteral("is a folder without a signal package")));
}

void TestRepositoryCommands::inspectArchive_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("code");
    QTest::addColumn<qsizetype>("packages");
    QTest::addColumn<QString>("verdict");

    const QByteArray zip = contentOf(QStringLiteral(":/DefaultData/TuK-Default.zip"));
    QTest::newRow("whole") << zip << 0 << qsizetype{3} << "whole";
    QTest::newRow("cut short") << zip.chopped(40) << 2 << qsizetype{0} << "refused: ";
    QTest::newRow("name that leads out")
        << QByteArray(zip).replace("TuK-Default/.lock", "../-Default/.lock") << 2 << qsizetype{3}
        << "refused: 0 files not unpacked, 1 unsafe (--trace names them)";
    // The patch changes three bytes in the middle of the first shape file.
    QTest::newRow("changed byte") << patched(zip, zip.indexOf("Default/Signal.ssf") + 2000, "\x5A\xA5\x5A")
                                  << 2 << qsizetype{3}
                                  << "refused: 1 file not unpacked, 0 unsafe (--trace names them)";
}

void TestRepositoryCommands::inspectArchive()
{
    QFETCH(QByteArray, content);
    QFETCH(qsizetype, packages);
    QFETCH(QString, verdict);
    QVERIFY(write(path(QStringLiteral("tmp/packages")), content));
    qputenv("TMPDIR", path(QStringLiteral("tmp")).toLocal8Bit());
    const ToolResult result = runTool({QStringLiteral("inspect"), path(QStringLiteral("tmp/packages"))});
    qunsetenv("TMPDIR");
    QTEST(result.code, "code");
    QCOMPARE(result.out.count(QStringLiteral("Signal package\n")), packages);
    QVERIFY2(simplifiedLines(result.out).constLast().startsWith(QStringLiteral("Verdict ") + verdict),
             qPrintable(result.out));
    QCOMPARE(QDir(path(QStringLiteral("tmp"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("packages")});
}

void TestRepositoryCommands::playShowsLevels()
{
    const QString sScenario = path(QStringLiteral("s.xml"));
    QVERIFY(write(sScenario, R"(<Scenario FileFormatVersion="4">
<Emitter ID="e" Active="true"><EmissionSettings Broadcast="false" Duration="0">
<Emission ID="1" StartTime="50" Duration="9000" SignalPackage=")" +
                                 s_sRectId.toLatin1() + R"("/></EmissionSettings></Emitter></Scenario>)"));
    const QString sCsv = path(QStringLiteral("levels.csv"));
    const QStringList arguments{QStringLiteral("play"),         sScenario,
                                QStringLiteral("--repository"), path(QStringLiteral("r")),
                                QStringLiteral("--from"),       QStringLiteral("50"),
                                QStringLiteral("--to"),         QStringLiteral("6000"),
                                QStringLiteral("--step"),       QStringLiteral("1300")};
    const ToolResult result = runTool(arguments + QStringList{QStringLiteral("--csv"), sCsv});
    QCOMPARE(withoutCounts(result.err), QString());
    QCOMPARE(result.code, 0);
    Simulation::SignalShapeFile shape(package(QStringLiteral("Signal.ssf")));
    QVERIFY(shape.open());
    shape.setPackageDuration(3000);
    const QStringList rows = QString::fromUtf8(contentOf(sCsv)).split(QStringLiteral("\r\n"));
    QVERIFY(rows.constFirst().endsWith(QStringLiteral(",package,level")));
    QVERIFY(rows.value(1).endsWith(QStringLiteral(",,"))); // an emission is not yet active at its start
    const QStringList table = simplifiedLines(runTool(arguments).out);
    for (int i = 1; i < 5; ++i) {
        shape.readSpectrum(static_cast<unsigned>(1300 * i)); // ms since the start of the emission
        const QStringList fields = rows.value(1 + i).split(u',');
        QCOMPARE(fields.value(8), s_sRectId);
        QCOMPARE(fields.value(9).toFloat(), shape.signalLevelInSpectrum());
        QVERIFY(table.value(2 + i).endsWith(QString::number(fields.value(9).toDouble(), 'f', 3)));
    }
    QVERIFY(rows.value(2).section(u',', 9) != rows.value(3).section(u',', 9));
}

void TestRepositoryCommands::playReportsMissingFiles_data()
{
    QTest::addColumn<QString>("file"); // in the package; empty: the package is missing
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");

    QTest::newRow("package") << QString() << QByteArray()
                             << "is not in the repository: the default package is used";
    QTest::newRow("half a shape") << "Signal.ssf" << m_shape.left(50'000)
                                  << "its signal shape file is truncated by 54035 bytes";
    QTest::newRow("no shape") << "Signal.ssf" << QByteArray("T&K")
                              << "its signal shape file is refused: the header has only 3 of 35 bytes";
}

void TestRepositoryCommands::playReportsMissingFiles()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    if (file.isEmpty()) {
        QVERIFY(QDir(package({})).removeRecursively());
    } else {
        QVERIFY(write(package(file), content));
    }
    // Several emissions use the package, but it is reported once.
    const ToolResult result =
        runTool({QStringLiteral("play"), QStringLiteral("--repository"), path(QStringLiteral("r"))});
    QCOMPARE(result.code, 1);
    QCOMPARE(simplifiedLines(result.err).size(), 1);
    QVERIFY2(result.err.startsWith(QStringLiteral("simulationtool: package %1").arg(s_sRectId)) &&
                 result.err.contains(message),
             qPrintable(result.err));
    QVERIFY(!result.out.isEmpty());
}

void TestRepositoryCommands::cacheThatCannotBeFilled_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("room"); // bytes
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message"); // a regular expression

    const QString sFailed = QStringLiteral(
        "1 package of the repository could not be copied to the cache folder .*, the first reason is: Cannot "
        "copy .*/Signal.sdf\" to .*: File too large. Remove the cause or choose another folder .*\n");
    QTest::newRow("play") << "play" << 290'000 << 1 << sFailed;
    QTest::newRow("check") << "check" << 290'000 << 2 << sFailed;
    QTest::newRow("play without any package")
        << "play" << 1'000 << 2 << "/.*: cannot be used as cache folder: Cannot copy .*: File too large\n";
}

/// The error text names the cause. The check writes no repaired file, because that file
/// would lose the missing package.
void TestRepositoryCommands::cacheThatCannotBeFilled()
{
    QFETCH(QString, command);
    QFETCH(int, room);
    QFETCH(QString, message);
    QVERIFY(write(package(QStringLiteral("Signal.sdf")), QByteArray(300'000, 'x')));
    QStringList arguments{command, QStringLiteral(":/DefaultData/Default.sce.exp"),
                          QStringLiteral("--repository"), path(QStringLiteral("r"))};
    if (command == u"check") {
        arguments << QStringLiteral("--repair") << path(QStringLiteral("mended"));
    }
    const FileSizeLimit limit(static_cast<rlim_t>(room));
    const ToolResult result = runTool(arguments);
    QVERIFY2(
        QRegularExpression(QRegularExpression::anchoredPattern(QStringLiteral("simulationtool: ") + message))
            .match(result.err)
            .hasMatch(),
        qPrintable(result.err));
    QTEST(result.code, "code");
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("mended"))));
}

/// The repository is removed while the tool waits for another user of the cache. The error
/// text then contains no number of packages, because the tool cannot count them.
void TestRepositoryCommands::lostRepository()
{
    const QString sLock = path(QStringLiteral("cache/simulationdata.lock"));
    QVERIFY(write(sLock, {}));
    QFile lock(sLock);
    QVERIFY(lock.open(QIODevice::ReadWrite));
    QCOMPARE(::flock(lock.handle(), LOCK_EX), 0);
    QProcess process;
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  {QStringLiteral("play"), QStringLiteral("--to"), QStringLiteral("100"),
                   QStringLiteral("--repository"), path(QStringLiteral("r")), QStringLiteral("--cache"),
                   path(QStringLiteral("cache"))});
    const auto isWaiting = [&] {
        const QFileInfoList open = QDir(QStringLiteral("/proc/%1/fd").arg(process.processId()))
                                       .entryInfoList(QDir::NoDotAndDotDot | QDir::AllEntries);
        return std::any_of(open.cbegin(), open.cend(),
                           [&](const QFileInfo& a_file) { return a_file.symLinkTarget() == sLock; });
    };
    QTRY_VERIFY_WITH_TIMEOUT(isWaiting(), s_iToolTimeout);
    QVERIFY(QDir().rename(path(QStringLiteral("r")), path(QStringLiteral("away"))));
    lock.close();
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    const QString sError = QString::fromUtf8(process.readAllStandardError());
    QVERIFY2(sError.startsWith(QStringLiteral(
                 "simulationtool: the packages of the repository could not be copied to the cache folder ")),
             qPrintable(sError));
    QCOMPARE(process.exitCode(), 1);
}

void TestRepositoryCommands::playKeepsCache()
{
    const QStringList arguments{
        QStringLiteral("play"),           QStringLiteral("--to"),    QStringLiteral("300"),
        QStringLiteral("--repository"),   path(QStringLiteral("r")), QStringLiteral("--cache"),
        path(QStringLiteral("new/cache"))};
    // Simulates the cache of a play that was killed early.
    QVERIFY(write(path(QStringLiteral("new/cache/simulationdata.lock")), {}) &&
            write(path(QStringLiteral("new/cache/Signal.xml")), m_descriptor));
    const ToolResult first = runTool(arguments);
    QCOMPARE(first.code, 0);
    QCOMPARE(contentOf(path(QStringLiteral("new/cache/") + s_sRectId + QStringLiteral(".ssf"))), m_shape);
    // A cached package is played even when the repository has lost it.
    QVERIFY(QDir(package({})).removeRecursively());
    const ToolResult second = runTool(arguments);
    QCOMPARE(second.err, QString());
    QCOMPARE(second.code, 0);
    QCOMPARE(second.out, first.out);
}

void TestRepositoryCommands::playRefusesCache_data()
{
    QTest::addColumn<QString>("cache");
    QTest::addColumn<QString>("reason");

    QTest::newRow("in the repository") << "r/SignalPackages/x/y"
                                       << "lies in the repository: choose another --cache";
    QTest::newRow("through a link") << "link/x"
                                    << "lies in the repository: choose another --cache";
    QTest::newRow("package elsewhere") << "mine"
                                       << "is a signal package, not a cache: choose another --cache";
    QTest::newRow("file") << "mine/Signal.xml"
                          << "is not a folder";
}

void TestRepositoryCommands::playRefusesCache()
{
    QFETCH(QString, cache);
    QFETCH(QString, reason);
    const QByteArray mine = QByteArray(m_descriptor).replace("Simulation System", "me");
    QVERIFY(write(path(QStringLiteral("mine/Signal.xml")), mine));
    QVERIFY(QFile::link(path(QStringLiteral("r")), path(QStringLiteral("link"))));
    const ToolResult result = runTool({QStringLiteral("play"), QStringLiteral("--repository"),
                                       path(QStringLiteral("r")), QStringLiteral("--cache"), path(cache)});
    QCOMPARE(result.err, QStringLiteral("simulationtool: %1: %2\n").arg(path(cache), reason));
    QCOMPARE(result.code, 2);
    QCOMPARE(contentOf(path(QStringLiteral("mine/Signal.xml"))), mine);
}

void TestRepositoryCommands::playCleansUp_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("interrupted") << SIGINT;
    QTest::newRow("terminated") << SIGTERM;
    QTest::newRow("reader goes away") << SIGPIPE;
}

/// A play that takes days removes its cache when it is interrupted and when its
/// output is no longer read.
void TestRepositoryCommands::playCleansUp()
{
    QFETCH(int, signal);
    QDir(path({})).mkdir(QStringLiteral("tmp"));
    qputenv("TMPDIR", path(QStringLiteral("tmp")).toLocal8Bit());
    QProcess process;
    QProcess reader; // ends without reading
    if (signal == SIGPIPE) {
        process.setStandardOutputProcess(&reader);
        reader.start(QStringLiteral(SIMULATIONTOOL_PATH), {QStringLiteral("--version")});
    }
    process.start(QStringLiteral(SIMULATIONTOOL_PATH),
                  {QStringLiteral("play"), QStringLiteral("--repository"), path(QStringLiteral("r")),
                   QStringLiteral("--to"), QStringLiteral("4294967295")});
    qunsetenv("TMPDIR");
    if (signal == SIGPIPE) {
        QVERIFY(reader.waitForFinished(s_iToolTimeout));
    } else {
        QVERIFY(process.waitForReadyRead(s_iToolTimeout));
        QCOMPARE(QDir(path(QStringLiteral("tmp"))).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    }
    QVERIFY(process.waitForFinished(s_iToolTimeout));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), signal);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(QDir(path(QStringLiteral("tmp"))).isEmpty());
}

QTEST_GUILESS_MAIN(TestRepositoryCommands)

#include "tst_repositorycommands.moc"
