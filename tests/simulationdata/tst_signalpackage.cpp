#include "simulationdata/signalpackage.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

#include <cmath>
#include <limits>
#include <utility>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Simulation;

class TestSignalPackage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fullName();
    void cleanIds();
    void digitalModulation_data();
    void digitalModulation();
    void writesDescriptor();
    void readsForeignDescriptor();
    void lenientValues();
    void truncated();
    void bandwidths();
    void unreadableFiles();
    void savesFile();
    void unresolvedProvider();
};

namespace {

const QByteArray
    s_descriptor("<SignalPackage FileFormatVersion=\"0\" Timestamp=\"1203501234\" UID=\"{id-1}\">\n"
                 "    <UpdateID UID=\"{old-2}\"/>\n"
                 "    <UpdateID UID=\"{old-1}\"/>\n"
                 "    <MetaData>\n"
                 "        <Name>Morse &amp; \xC3\x9C</Name>\n"
                 "        <Author/>\n"
                 "    </MetaData>\n"
                 "    <Bandwidth>1.23457e+06</Bandwidth>\n"
                 "    <AnalogModulation>Digital</AnalogModulation>\n"
                 "    <Duration>4294967295</Duration>\n"
                 "    <DigitalModulation>PSK 31</DigitalModulation>\n"
                 "</SignalPackage>\n");

QString u8(const char* a_szText)
{
    return QString::fromUtf8(a_szText);
}

SignalPackage samplePackage()
{
    SignalPackage package;
    package.setId(u8("{id-1}"));
    package.setUpdateIds({u8("{old-2}"), u8("{old-1}"), u8("{old-2}")});
    package.setPath(u8("/store/one"));
    package.setName(u8("Morse & \xC3\x9C"));
    package.setTimestamp(1203501234);
    package.setSignalBandwidth(1234567.0F);
    package.setAnalogModulation(AnalogModulations::Digital);
    package.setDigitalModulation(u8("PSK 31"));
    package.setDuration(std::numeric_limits<std::uint32_t>::max());
    package.setHasAudioContent(true);
    return package;
}

bool isDefault(const SignalPackage& a_package)
{
    return a_package.id().isEmpty() && a_package.updateIds().isEmpty() && a_package.path().isEmpty() &&
           a_package.name().isEmpty() && a_package.author().isEmpty() && a_package.timestamp() == 0 &&
           a_package.signalBandwidth() == 0.0F && a_package.analogModulation() == AnalogModulations::CW &&
           a_package.digitalModulation().isEmpty() && a_package.duration() == 0 &&
           !a_package.hasAudioContent() && !a_package.hasSymbolDataContent() &&
           !a_package.hasResultDataContent();
}

QStringList s_traces;

/// Collects all messages that are logged during its lifetime.
class TraceCollector
{
public:
    TraceCollector()
        : m_previous(qInstallMessageHandler(
              [](QtMsgType, const QMessageLogContext&, const QString& a_sText) { s_traces.append(a_sText); }))
    {
        s_traces.clear();
    }
    ~TraceCollector() { qInstallMessageHandler(m_previous); }
    TraceCollector(const TraceCollector&) = delete;
    TraceCollector& operator=(const TraceCollector&) = delete;

private:
    QtMessageHandler m_previous;
};

} // namespace

void TestSignalPackage::fullName()
{
    SignalPackage percent;
    percent.setPath(u8("%2"));
    percent.setName(u8("100%1"));
    QCOMPARE(percent.fullName(), u8("%2/100%1"));
}

void TestSignalPackage::cleanIds()
{
    QCOMPARE(SignalPackage::cleanId(u8("\\/:*?\"<>|.")), u8("__________"));
    QCOMPARE(SignalPackage::cleanId(u8("{3F25-04} \xC3\xA4+[]^$")), u8("{3F25-04} \xC3\xA4+[]^$"));
}

void TestSignalPackage::digitalModulation_data()
{
    QTest::addColumn<int>("analog");
    QTest::addColumn<QString>("digital");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("digital") << 5 << u8("PSK") << true << QByteArray("Digital");
    QTest::newRow("digital without name") << 5 << QString() << false << QByteArray("Digital");
    QTest::newRow("analog with a name") << 2 << u8("PSK") << false << QByteArray("FM");
    QTest::newRow("unknown") << 6 << u8("PSK") << false << QByteArray("None");
}

void TestSignalPackage::digitalModulation()
{
    QFETCH(int, analog);
    QFETCH(QString, digital);
    QFETCH(bool, expected);
    QFETCH(QByteArray, text);

    SignalPackage package;
    package.setAnalogModulation(static_cast<AnalogModulations>(analog));
    package.setDigitalModulation(digital);
    QCOMPARE(package.hasDigitalModulation(), expected);
    const QByteArray descriptor = SignalPackageFile::writeSignalPackageDescriptor(package);
    QCOMPARE(descriptor.contains("DigitalModulation"), expected);
    QVERIFY(descriptor.contains("<AnalogModulation>" + text + "</AnalogModulation>"));
}

void TestSignalPackage::writesDescriptor()
{
    QCOMPARE(SignalPackageFile::writeSignalPackageDescriptor(samplePackage()), s_descriptor);

    const SignalPackage read = SignalPackageFile::readSignalPackageDescriptor(s_descriptor);
    QCOMPARE(read.path(), QString());
    QCOMPARE(read.signalBandwidth(), 1234570.0F);
    QVERIFY(!read.hasAudioContent());
    QCOMPARE(SignalPackageFile::writeSignalPackageDescriptor(read), s_descriptor);
}

/// Descriptors of other programs have additional blocks. The elements in these blocks may
/// have the same names as known elements.
void TestSignalPackage::readsForeignDescriptor()
{
    const SignalPackage package = SignalPackageFile::signalPackage(
        QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<!DOCTYPE SignalPackage>\n"
                   "<SignalPackage Version=\"0\" UID=\"{abc}\" Timestamp=\"7\">\n"
                   "  <SignalShape><Name>Shape</Name><Format>1</Format><Duration>1</Duration></SignalShape>\n"
                   "  <MetaData><Library>L</Library><Name>M\xFCller</Name><Author>A</Author><UpdateID "
                   "UID=\"no\"/></MetaData>\n"
                   "  <Audio><Name>Audio</Name><Duration>2</Duration></Audio>\n"
                   "  <AnalogModulation>None</AnalogModulation><DigitalModulation/>\n"
                   "  <Duration>3000</Duration><Bandwidth>10000</Bandwidth><UpdateID UID=\"{x}\"/>\n"
                   "</SignalPackage>\n"));
    QCOMPARE(package.id(), u8("{abc}"));
    QCOMPARE(package.timestamp(), 7U);
    QCOMPARE(package.updateIds(), QStringList(u8("{x}")));
    QCOMPARE(package.name(), u8("M\xC3\xBCller"));
    QCOMPARE(package.author(), u8("A"));
    QCOMPARE(package.signalBandwidth(), 10000.0F);
    QCOMPARE(package.analogModulation(), AnalogModulations::CW);
    QCOMPARE(package.duration(), 3000U);
    QVERIFY(package.digitalModulation().isEmpty());
}

void TestSignalPackage::lenientValues()
{
    for (const QByteArray& text :
         {QByteArray("<Other UID='x'/>"),
          QByteArray("<SignalPackage UID='x' Timestamp='soon'><Duration>1.5</Duration>"
                     "<Bandwidth>wide</Bandwidth></SignalPackage>"),
          QByteArray("<SignalPackage UID='x' Timestamp='4294967296'><Duration>-1</Duration>"
                     "<Bandwidth>1e39</Bandwidth></SignalPackage>"),
          QByteArray("<SignalPackage UID='x'><Bandwidth>nan</Bandwidth></SignalPackage>")}) {
        SignalPackage package = SignalPackageFile::signalPackage(text);
        QCOMPARE(package.id(), u8("x"));
        package.setId(QString());
        QVERIFY2(isDefault(package), text.constData());
    }
}

void TestSignalPackage::truncated()
{
    const TraceCollector traces;
    for (qsizetype i = 0; i < s_descriptor.size() - 1; ++i) {
        QVERIFY2(isDefault(SignalPackageFile::signalPackage(s_descriptor.first(i))), QByteArray::number(i));
        QCOMPARE(s_traces.size(), i + 1);
    }
}

void TestSignalPackage::bandwidths()
{
    constexpr float fInfinity = std::numeric_limits<float>::infinity();
    const QList<std::pair<float, QByteArray>> rows{{0.1F, "0.1"},
                                                   {10000.0F, "10000"},
                                                   {std::numeric_limits<float>::max(), "3.40282e+38"},
                                                   {fInfinity, "0"},
                                                   {std::nanf(""), "0"}};
    for (const auto& [fBandwidth, text] : rows) {
        SignalPackage package;
        package.setSignalBandwidth(fBandwidth);
        const QByteArray descriptor = SignalPackageFile::writeSignalPackageDescriptor(package);
        QVERIFY2(descriptor.contains("<Bandwidth>" + text + "</"), descriptor.constData());
    }
}

void TestSignalPackage::unreadableFiles()
{
    QTemporaryDir folder;
    const QString sBad = folder.filePath(u8("bad.xml"));
    QFile bad(sBad);
    QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("<A>") == 3);
    bad.close();
    for (const QString& sFile :
         {folder.path(), folder.filePath(u8("missing.xml")), u8("/dev/zero"), QString(), sBad}) {
        const TraceCollector traces;
        QVERIFY(isDefault(SignalPackageFile::signalPackage(sFile)));
        QCOMPARE(s_traces.size(), 1);
        QVERIFY2(s_traces.first().contains(u'"' + sFile + u'"'), qPrintable(s_traces.first()));
    }
}

void TestSignalPackage::savesFile()
{
    QTemporaryDir folder;
    const QString sFile = folder.filePath(u8("Signal.xml"));
    QVERIFY(SignalPackageFile::signalPackageFile(SignalPackage(), sFile));
    QVERIFY(SignalPackageFile::signalPackageFile(samplePackage(), sFile));
    QFile file(sFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), s_descriptor);
    QCOMPARE(SignalPackageFile::signalPackage(sFile).name(), samplePackage().name());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList(u8("Signal.xml")));

    const TraceCollector traces;
    QVERIFY(
        !SignalPackageFile::signalPackageFile(samplePackage(), folder.filePath(u8("missing/Signal.xml"))));
    QCOMPARE(s_traces.size(), 1);
}

void TestSignalPackage::unresolvedProvider()
{
    UnresolvedSignalPackageProvider provider;
    ISignalPackageProvider& interface = provider;
    const std::shared_ptr<SignalPackage> pPackage = interface.signalPackage(u8("{a}"));
    QVERIFY(pPackage);
    QCOMPARE(pPackage->id(), u8("{a}"));
    QCOMPARE(interface.signalPackage(u8("{a}")), pPackage);
    QVERIFY(interface.signalPackage(u8("{b}")) != pPackage);
    QCOMPARE(interface.signalPackage(QString()), nullptr);
    QVERIFY(!interface.validSignalPackageId(u8("{a}")));
}

QTEST_GUILESS_MAIN(TestSignalPackage)
#include "tst_signalpackage.moc"
