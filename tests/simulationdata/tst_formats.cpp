#include "simulationdata/audiofile.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/pdwfile.h"
#include "simulationdata/readingreport.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/simulationservicecommunication.h"
#include "simulationdata/simulationsystemconfiguration.h"
#include "simulationdata/symboldatafile.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "velaappstartup/cfgcenter.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <array>
#include <memory>
#include <vector>

using namespace Simulation;

namespace {

const QString s_sExamples = QStringLiteral(FORMATS_DIR "/examples");

/// The commands of the protocol and the signals by which they are received.
const QMap<QString, QByteArray> s_signals{
    {QStringLiteral("AcceptSimulationDevice"), "acceptSimulationDevice"},
    {QStringLiteral("AcquireServer"), "commandAcquireServer"},
    {QStringLiteral("AddJxDevice"), "addJxDevice"},
    {QStringLiteral("LoadDeployment"), "loadDeployment"},
    {QStringLiteral("LoadScenario"), "loadScenario"},
    {QStringLiteral("PauseScenario"), "pauseScenario"},
    {QStringLiteral("RegisterSimulation"), "registerSimulationDevice"},
    {QStringLiteral("ReleaseServer"), "commandReleaseServer"},
    {QStringLiteral("RemoveJxDevice"), "removeJxDevice"},
    {QStringLiteral("RequestSimulationDevices"), "commandRequestSimulationDevices"},
    {QStringLiteral("ResponseSimulationDevices"), "responseSimulationDevices"},
    {QStringLiteral("SimulationDeveiceStateUpdate"), "simulationDeviceStateUpdate"},
    {QStringLiteral("StartScenario"), "startScenario"},
    {QStringLiteral("StopScenario"), "stopScenario"},
    {QStringLiteral("TestMode"), "testModeOn"},
    {QStringLiteral("UnloadScenario"), "unloadScenario"},
    {QStringLiteral("UnregisterSimulation"), "unregisterSimulationDevice"},
};

QByteArray contentOf(const QString& a_sPath)
{
    QFile file(a_sPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray example(const QString& a_sName)
{
    return contentOf(s_sExamples + u'/' + a_sName);
}

/// The name of the root element and of its first child; empty without them.
std::array<QString, 2> namesOf(const QByteArray& a_document)
{
    QXmlStreamReader reader(a_document);
    reader.setNamespaceProcessing(false); // a record's root contains two colons
    std::array<QString, 2> names;
    for (QString& sName : names) {
        if (reader.readNextStartElement()) {
            sName = reader.qualifiedName().toString();
        }
    }
    return names;
}

/// One line for every entry; empty for an empty report.
QString textOf(const ReadingReport& a_report)
{
    QStringList lines;
    for (const ReadingEntry& entry : a_report.entries()) {
        lines.append(QStringLiteral("%1: %2 (%3): %4")
                         .arg(QString::number(entry.line), entry.path, QString(entry.rule), entry.message));
    }
    if (lines.isEmpty() && !a_report.isEmpty()) {
        lines.append(QStringLiteral("entries that are not listed"));
    }
    return lines.join(u'\n');
}

/// The remarks of the reader of a document; empty when it was read without any.
template<typename Document>
QString remarksOf(Document& a_document, const QByteArray& a_xml)
{
    if (!a_document.fromXml(a_xml)) {
        return QStringLiteral("refused: ") + a_document.errorString();
    }
    return a_document.errorString() + textOf(a_document.report());
}

/// Receives commands and notes the names of the emitted signals.
class Receiver
{
public:
    Receiver()
    {
        const QMetaObject& meta = SimulationServiceCommunication::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            if (meta.method(i).methodType() == QMetaMethod::Signal) {
                m_names.append(meta.method(i).name());
                m_spies.push_back(std::make_unique<QSignalSpy>(&m_communication, meta.method(i)));
            }
        }
    }

    QList<QByteArray> receive(const QByteArray& a_document)
    {
        QMetaObject::invokeMethod(&m_communication, "slotXmlReceived", Qt::DirectConnection,
                                  Q_ARG(QByteArray, a_document));
        QList<QByteArray> emitted;
        for (std::size_t i = 0; i < m_spies.size(); ++i) {
            emitted += QList<QByteArray>(m_spies[i]->size(), m_names.at(static_cast<qsizetype>(i)));
        }
        return emitted;
    }

    [[nodiscard]] SimulationServiceCommunication& communication() { return m_communication; }

private:
    SimulationServiceCommunication m_communication{nullptr};
    QList<QByteArray> m_names;
    std::vector<std::unique_ptr<QSignalSpy>> m_spies;
};

QString commandRemarks(const QByteArray& a_document)
{
    const QString sName = namesOf(a_document)[1];
    const QList<QByteArray> emitted = Receiver().receive(a_document);
    return emitted == QList<QByteArray>{s_signals.value(sName)}
               ? QString()
               : sName + QStringLiteral(" emitted: ") + QString::fromLatin1(emitted.join(", "));
}

/// Reads the document with the class for its root element. Returns the remarks of that
/// class.
QString remarks(const QByteArray& a_document)
{
    const QString sRoot = namesOf(a_document)[0];
    if (sRoot == u"Scenario") {
        UnresolvedSignalPackageProvider packages;
        ScenarioDataXml scenario(&packages);
        return remarksOf(scenario, a_document);
    }
    if (sRoot == u"SimulationDeployment") {
        DeploymentDataXml deployment;
        return remarksOf(deployment, a_document);
    }
    if (sRoot == u"SignalPackage") {
        const bool bPackage = !SignalPackageFile::signalPackage(a_document).id().isEmpty();
        return (bPackage ? QString() : QStringLiteral("no id")) +
               textOf(SignalPackageFile::report(a_document));
    }
    return sRoot == u"Command" ? commandRemarks(a_document) : QStringLiteral("unknown root ") + sRoot;
}

/// The bytes that xxd has written as text: an offset, up to 16 bytes, and characters.
QByteArray bytesOfDump(const QByteArray& a_dump)
{
    QByteArray bytes;
    for (const QByteArray& line : a_dump.split('\n')) {
        const qsizetype iBegin = line.indexOf(": ") + 2;
        bytes += QByteArray::fromHex(line.mid(iBegin, line.indexOf("  ", iBegin) - iBegin));
    }
    return bytes;
}

/// Whether a reader opens the file, finds all bytes that it claims, and no others.
template<typename Reader>
bool isWhole(Reader& a_reader)
{
    return a_reader.open() && a_reader.missingBytes() == 0;
}

bool hasPulses(const QString& a_sFile)
{
    // The reader returns a block header like a word: here one header and two words.
    constexpr int iWords = 3;
    struct Word
    {
        std::array<char, PDWFile::s_uiRecordBytes> bytes{};
    };
    PDWFile file(a_sFile, false, false);
    Word word;
    int iRead = 0;
    while (iRead < iWords && file.getPDW(reinterpret_cast<CPackedPDW*>(&word)) != 0) {
        ++iRead;
    }
    return iRead == iWords && QFile(a_sFile).size() == qint64{iWords} * PDWFile::s_uiRecordBytes;
}

bool isWholeFile(const QString& a_sName, const QString& a_sFile)
{
    if (a_sName == u"spectra") {
        SignalShapeFile reader(a_sFile);
        return isWhole(reader) && reader.duration() != 0;
    }
    if (a_sName == u"symbols") {
        SymbolDataFile reader(a_sFile);
        return isWhole(reader) && reader.length() != 0;
    }
    if (a_sName == u"results") {
        ResultDataFile reader(a_sFile);
        return isWhole(reader) && reader.length() != 0;
    }
    if (a_sName == u"audio") {
        AudioFile audio(a_sFile);
        WaveFileReader reader(a_sFile);
        return isWhole(reader) && audio.open() && audio.length() != 0;
    }
    return a_sName == u"pulses" && hasPulses(a_sFile);
}

/// The document without comments and blank lines, as a writer leaves it.
QByteArray withoutComments(const QByteArray& a_document)
{
    static const QRegularExpression s_comment(QStringLiteral("<!--.*?-->"),
                                              QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression s_blankLines(QStringLiteral("\n\\s*\n"));
    QString sText = QString::fromUtf8(a_document).remove(s_comment);
    while (sText.contains(s_blankLines)) {
        sText.replace(s_blankLines, QStringLiteral("\n"));
    }
    return sText.toUtf8();
}

} // namespace

/// The examples of docs/formats.
class TestFormats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exampleDocument_data()
    {
        QTest::addColumn<QByteArray>("document");
        const QStringList names = QDir(s_sExamples).entryList({QStringLiteral("*.xml")}, QDir::Files);
        QVERIFY(!names.isEmpty());
        for (const QString& sName : names) {
            QTest::newRow(qUtf8Printable(sName)) << example(sName);
        }
    }

    void exampleDocument()
    {
        QFETCH(QByteArray, document);
        QCOMPARE(remarks(document), QString());
    }

    /// The whole documents inside the pages; parts of documents have other roots.
    void documentInPage_data()
    {
        QTest::addColumn<QByteArray>("document");
        static const QRegularExpression s_block(QStringLiteral("```xml\n(.*?)```"),
                                                QRegularExpression::DotMatchesEverythingOption);
        static const QRegularExpression s_document(
            QStringLiteral("^(<\\?xml[^>]*>\\s*)?<(Scenario|SimulationDeployment|SignalPackage|Command)\\b"));
        const QDir pages(QStringLiteral(FORMATS_DIR));
        for (const QString& sPage : pages.entryList({QStringLiteral("*.md")}, QDir::Files)) {
            const QString sText = QString::fromUtf8(contentOf(pages.filePath(sPage)));
            for (auto blocks = s_block.globalMatch(sText); blocks.hasNext();) {
                const QRegularExpressionMatch block = blocks.next();
                if (s_document.match(block.captured(1)).hasMatch()) {
                    const auto iLine = sText.first(block.capturedStart()).count(u'\n') + 1;
                    QTest::addRow("%s, line %lld", qUtf8Printable(sPage), qlonglong{iLine})
                        << block.captured(1).toUtf8();
                }
            }
        }
    }

    void documentInPage()
    {
        QFETCH(QByteArray, document);
        QCOMPARE(remarks(document), QString());
    }

    void everyCommandHasAnExample()
    {
        const QDir examples(s_sExamples);
        QStringList named;
        for (const QString& sFile : examples.entryList({QStringLiteral("command-*.xml")}, QDir::Files)) {
            const QString sName = namesOf(example(sFile))[1];
            QCOMPARE(sFile, QStringLiteral("command-%1.xml").arg(sName));
            named.append(sName);
        }
        QCOMPARE(named, QStringList(s_signals.keys()));
    }

    void payloadIsTheMinimalDocument_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("document");
        QTest::newRow("scenario") << QStringLiteral("LoadScenario") << QStringLiteral("scenario-minimal.xml");
        QTest::newRow("deployment") << QStringLiteral("LoadDeployment")
                                    << QStringLiteral("deployment-minimal.xml");
    }

    void payloadIsTheMinimalDocument()
    {
        QFETCH(QString, command);
        QFETCH(QString, document);
        Receiver receiver;
        QByteArray payload;
        const auto take = [&](const QByteArray& a_payload) { payload = a_payload; };
        connect(&receiver.communication(), &SimulationServiceCommunication::loadScenario, this, take);
        connect(&receiver.communication(), &SimulationServiceCommunication::loadDeployment, this, take);
        receiver.receive(example(QStringLiteral("command-%1.xml").arg(command)));
        QCOMPARE(payload, example(document));
    }

    void confirmationFitsTheRegistration()
    {
        Receiver receiver;
        QString sExpected;
        QString sReceived;
        connect(&receiver.communication(), &SimulationServiceCommunication::registerSimulationDevice, this,
                [&](const QString& /*a_sId*/, const SimulationDeviceConfiguration& a_device) {
                    sExpected = SimulationServiceCommunication::createConfirmation(a_device);
                });
        connect(&receiver.communication(), &SimulationServiceCommunication::acceptSimulationDevice, this,
                [&](const QString& /*a_sId*/, const QString& a_sText) { sReceived = a_sText; });
        receiver.receive(example(QStringLiteral("command-RegisterSimulation.xml")));
        receiver.receive(example(QStringLiteral("command-AcceptSimulationDevice.xml")));
        QVERIFY(!sReceived.isEmpty());
        QCOMPARE(sReceived, sExpected);
    }

    /// The full example shows every element in the place and form of the writer.
    void fullScenarioIsWhatIsWritten()
    {
        const QByteArray document = example(QStringLiteral("scenario-full.xml"));
        UnresolvedSignalPackageProvider packages;
        ScenarioDataXml scenario(&packages);
        QVERIFY(scenario.fromXml(document));
        QCOMPARE(scenario.toXml(), withoutComments(document));
    }

    void exampleDataFile_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* szName : {"spectra", "symbols", "results", "audio", "pulses"}) {
            QTest::newRow(szName) << QString::fromLatin1(szName);
        }
    }

    void exampleDataFile()
    {
        QFETCH(QString, name);
        const QTemporaryDir folder;
        const QString sFile = folder.filePath(name);
        QFile file(sFile);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytesOfDump(example(name + QStringLiteral(".hex"))));
        file.close();
        QVERIFY(isWholeFile(name, sFile));
    }

    void exampleSettings()
    {
        CfgCenter::SetFolder(s_sExamples);
        SimulationSystemConfiguration settings;
        settings.loadConfiguation();
        CfgCenter::SetFolder(QString());
        QCOMPARE(settings.simulationServerAddress(), QStringLiteral("127.0.0.1"));
        QCOMPARE(settings.simulationCacheDirectory(), QStringLiteral("/var/cache/simulation"));
        QCOMPARE(int{settings.simulationServerPort()}, 57401);
        QCOMPARE(int{settings.simulationServicePort()}, 57400);
        QCOMPARE(int{settings.simulationSupervisorPort()}, 57409);
        QCOMPARE(settings.fileStoreDir(), QStringLiteral("/srv/simulation\\Files"));
    }
};

QTEST_GUILESS_MAIN(TestFormats)
#include "tst_formats.moc"
