#include "filesizelimit.h"
#include "simulationdata/audiofile.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "simulationdata/wavefilewriter.h"
#include "simulationtool/toolrun.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>

using namespace Simulation;

namespace {

const QString s_sNew = QStringLiteral("new");
const QString s_sPackage = QStringLiteral("package");
const QString s_sScenario = QStringLiteral("scenario");
const QString s_sDeployment = QStringLiteral("deployment");

constexpr double s_dLevelTolerance = 0.1; ///< dB

using Signal = std::function<std::complex<double>(double a_dTime)>; ///< time in s, full scale is 1

double decibel(float a_fLevel)
{
    return 10.0 * std::log10(static_cast<double>(a_fLevel));
}

Signal tone(double a_dFrequency, double a_dAmplitude)
{
    return [=](double a_dTime) {
        return std::polar(a_dAmplitude, 2.0 * std::numbers::pi * a_dFrequency * a_dTime);
    };
}

/// Raw I/Q samples of a signal in a format of the tool.
QByteArray iqBytes(const Signal& a_signal, int a_iFrames, double a_dRate, const QString& a_sFormat)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    for (int i = 0; i < a_iFrames; ++i) {
        const std::complex<double> value = a_signal(i / a_dRate);
        for (const double dValue : {value.real(), value.imag()}) {
            if (a_sFormat == u"s16") {
                stream << static_cast<qint16>(std::lround(32767.0 * dValue));
            } else if (a_sFormat == u"u8") {
                stream << static_cast<quint8>(std::lround(127.5 + 127.5 * dValue));
            } else {
                stream << static_cast<float>(dValue);
            }
        }
    }
    return bytes;
}

/// A wave file of 16-bit samples of the real part, the same in all channels but the last,
/// which is silent when there are several.
QByteArray waveBytes(const Signal& a_signal, int a_iFrames, quint32 a_uiRate, quint16 a_uiChannels = 1)
{
    std::vector<std::int16_t> samples;
    for (int i = 0; i < a_iFrames; ++i) {
        const auto iValue =
            static_cast<std::int16_t>(std::lround(32767.0 * a_signal(double(i) / a_uiRate).real()));
        samples.insert(samples.end(), std::max(a_uiChannels - 1, 1), iValue);
        samples.insert(samples.end(), a_uiChannels > 1 ? 1 : 0, std::int16_t{0});
    }
    QByteArray bytes = WaveFileWriter::header(static_cast<std::uint32_t>(samples.size()), a_uiRate) +
                       WaveFileWriter::samples(samples);
    bytes[22] = static_cast<char>(a_uiChannels);
    bytes[32] = static_cast<char>(a_uiChannels * 2); // bytes of a frame
    return bytes;
}

/// The elements and attributes of a document in their order, one per line, without comments.
/// Numbers are in one form: a template writes 156800000, the library 1.568e+08. The text of
/// ConfiguredStationID is left out, because readers do not take it.
QStringList elementsOf(const QByteArray& a_document)
{
    const auto plain = [](const QString& a_sText) {
        bool bNumber = false;
        const double dValue = a_sText.toDouble(&bNumber);
        return bNumber ? QString::number(dValue, 'g', 15) : a_sText;
    };
    QStringList lines;
    QXmlStreamReader reader(a_document);
    QString sText;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            lines.append(reader.name().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                lines.append(u'@' + attribute.name().toString() + u'=' + plain(attribute.value().toString()));
            }
            sText.clear();
            break;
        case QXmlStreamReader::Characters:
            sText += reader.text();
            break;
        case QXmlStreamReader::EndElement:
            lines.append(u'/' +
                         (reader.name() == u"ConfiguredStationID" ? QString() : plain(sText.trimmed())));
            sText.clear();
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? QStringList{reader.errorString()} : lines;
}

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The document as the library writes it after reading it.
QByteArray rewritten(const QString& a_sKind, const QByteArray& a_document)
{
    if (a_sKind == s_sDeployment) {
        DeploymentDataXml deployment;
        return deployment.fromXml(a_document) ? deployment.toXml() : QByteArray();
    }
    UnresolvedSignalPackageProvider packages;
    ScenarioDataXml scenario(&packages);
    return scenario.fromXml(a_document) ? scenario.toXml() : QByteArray();
}

} // namespace

class TestNewCommand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void templateIsClean_data();
    void templateIsClean();
    void templateIsComplete_data() { templateIsClean_data(); }
    void templateIsComplete();
    void templateKeepsFiles_data() { templateIsClean_data(); }
    void templateKeepsFiles();
    void scenarioPlays();
    void toneLevel_data();
    void toneLevel();
    void chirpMoves();
    void noiseFloor();
    void audioOfSameRate();
    void audioOfOtherRate();
    void wholePackage();
    void withoutRecording();
    void refusedRecording_data();
    void refusedRecording();
    void wrongUsage_data();
    void wrongUsage();
    void replacesOnlyPackages();
    void keepsRecording_data();
    void keepsRecording();
    void shortLastRecord();
    void fullDisk();

private:
    QString write(const QString& a_sName, const QByteArray& a_bytes);
    [[nodiscard]] QString path(const char* a_szName) const
    {
        return m_dir->filePath(QLatin1String(a_szName));
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestNewCommand::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

QString TestNewCommand::write(const QString& a_sName, const QByteArray& a_bytes)
{
    QFile file(m_dir->filePath(a_sName));
    return file.open(QIODevice::WriteOnly) && file.write(a_bytes) == a_bytes.size() ? file.fileName()
                                                                                    : QString();
}

void TestNewCommand::templateIsClean_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("scenario") << s_sScenario;
    QTest::newRow("deployment") << s_sDeployment;
}

/// The template has no finding, matches the schema, and is what the library would write,
/// calculated times included.
void TestNewCommand::templateIsClean()
{
    QFETCH(QString, kind);
    const QString sFile = path("new.xml");
    const ToolResult made = runTool({s_sNew, kind, sFile});
    QCOMPARE(made.code, 0);
    QCOMPARE(made.out + made.err, QString());

    const ToolResult checked = runTool({QStringLiteral("check"), sFile});
    QVERIFY2(checked.code == 0 && checked.err.isEmpty(), qPrintable(checked.out + checked.err));

    QProcess validator;
    validator.start(QStringLiteral(XMLLINT_PATH),
                    {QStringLiteral("--nonet"), QStringLiteral("--noout"), QStringLiteral("--schema"),
                     QStringLiteral(SCHEMA_DIR "/%1.xsd").arg(kind), sFile});
    QVERIFY(validator.waitForFinished(s_iToolTimeout));
    QVERIFY2(validator.exitCode() == 0, validator.readAllStandardError().constData());

    const QStringList elements = elementsOf(contentOf(sFile));
    const QStringList written = elementsOf(rewritten(kind, contentOf(sFile)));
    for (qsizetype i = 0; i < std::min(elements.size(), written.size()); ++i) {
        QVERIFY2(
            elements.at(i) == written.at(i),
            qPrintable(
                QStringLiteral("%1: %2, not %3").arg(QString::number(i), written.at(i), elements.at(i))));
    }
    QCOMPARE(elements.size(), written.size());
}

/// Every element and attribute of the schema occurs. Objects copied between documents have
/// roots of their own, which a document does not have.
void TestNewCommand::templateIsComplete()
{
    QFETCH(QString, kind);
    const ToolResult made = runTool({s_sNew, kind, QStringLiteral("-")});
    QCOMPARE(made.code, 0);
    const QStringList elements = elementsOf(made.out.toUtf8());
    QSet<QString> used;
    for (const QString& line : elements) {
        used.insert(line.section(u'=', 0, 0).remove(u'@'));
    }
    static const QRegularExpression declared(QStringLiteral("<xs:(?:element|attribute) name=\"([^\"]+)\""));
    auto names =
        declared.globalMatch(QString::fromUtf8(contentOf(QStringLiteral(SCHEMA_DIR "/%1.xsd").arg(kind))));
    QVERIFY(names.hasNext());
    while (names.hasNext()) {
        const QString sName = names.next().captured(1);
        QVERIFY2(used.contains(sName) || sName == u"ScenarioObjects" || sName == u"MovementsXml",
                 qPrintable(sName));
    }
}

void TestNewCommand::templateKeepsFiles()
{
    QFETCH(QString, kind);
    const QString sFile = write(QStringLiteral("mine.xml"), "mine");
    const ToolResult refused = runTool({s_sNew, kind, sFile});
    QCOMPARE(refused.code, 2);
    QCOMPARE(refused.err,
             QStringLiteral("simulationtool: %1: exists already: give another OUT, or --force to "
                            "replace it\n")
                 .arg(sFile));
    QCOMPARE(contentOf(sFile), QByteArray("mine"));

    // Every template has an id of its own.
    QCOMPARE(runTool({s_sNew, kind, sFile, QStringLiteral("--force")}).code, 0);
    const QByteArray first = contentOf(sFile);
    QCOMPARE(runTool({s_sNew, kind, sFile, QStringLiteral("--force")}).code, 0);
    static const QRegularExpression id(QStringLiteral("(Uid|PersistantId)=\"([0-9a-f-]{36})\""));
    const QString sFirst = id.match(QString::fromUtf8(first)).captured(2);
    const QString sSecond = id.match(QString::fromUtf8(contentOf(sFile))).captured(2);
    QVERIFY(!sFirst.isEmpty() && !sSecond.isEmpty());
    QVERIFY(sFirst != sSecond);
}

void TestNewCommand::scenarioPlays()
{
    const QString sRepository = path("repository");
    QCOMPARE(runTool({QStringLiteral("repository"), QStringLiteral("init"), sRepository}).code, 0);
    const QString sScenario = path("new.sce.exp");
    QCOMPARE(runTool({s_sNew, s_sScenario, sScenario}).code, 0);
    const QStringList repository{QStringLiteral("--repository"), sRepository};
    const ToolResult checked = runTool(QStringList{QStringLiteral("check"), sScenario} + repository);
    QVERIFY2(checked.code == 0, qPrintable(checked.out + checked.err));
    const ToolResult played =
        runTool(QStringList{QStringLiteral("play"), sScenario, QStringLiteral("--step"), QStringLiteral("1s"),
                            QStringLiteral("--csv"), QStringLiteral("-")} +
                repository);
    QVERIFY2(played.code == 0 && played.err.isEmpty(), qPrintable(played.err));
    // Every emitter sends at some time.
    for (const char* szEmitter :
         {"beacon", "coast-radar", "data-link", "patrol-boat", "patrol-radar", "port-control", "tug"}) {
        QVERIFY2(played.out.contains(QStringLiteral(",%1,true,").arg(QLatin1String(szEmitter))), szEmitter);
    }
}

void TestNewCommand::toneLevel_data()
{
    QTest::addColumn<QString>("format"); // "wave" or that of I/Q
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("amplitude");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<double>("centre");
    QTest::addColumn<int>("bandwidth");
    QTest::addColumn<int>("points");
    QTest::addColumn<double>("floor"); // dB of full scale

    const QString s16 = QStringLiteral("s16");
    const QString f32 = QStringLiteral("f32");
    const auto options = [](const char* a_szOptions) {
        return QString::fromLatin1(a_szOptions).split(u' ', Qt::SkipEmptyParts);
    };
    // 96 kHz and 512 points: 187.5 Hz from point to point.
    QTest::newRow("on a point") << f32 << 9375.0 << 1.0 << options("") << 0.0 << 96'000 << 512 << -120.0;
    QTest::newRow("between points") << f32 << 9468.75 << 1.0 << options("") << 0.0 << 96'000 << 512 << -120.0;
    QTest::newRow("anywhere") << f32 << 12345.6 << 1.0 << options("") << 0.0 << 96'000 << 512 << -120.0;
    QTest::newRow("negative frequency")
        << s16 << -31234.5 << 1.0 << options("") << 0.0 << 96'000 << 512 << -90.0;
    QTest::newRow("half of full scale")
        << s16 << 20000.0 << 0.5 << options("") << 0.0 << 96'000 << 512 << -90.0;
    QTest::newRow("weak") << f32 << 20000.0 << 0.001 << options("") << 0.0 << 96'000 << 512 << -150.0;
    QTest::newRow("8 bits") << QStringLiteral("u8") << 20000.0 << 1.0 << options("") << 0.0 << 96'000 << 512
                            << -50.0;
    QTest::newRow("part of the recording")
        << f32 << 21000.0 << 1.0 << options("--center 20k --bandwidth 10kHz --resolution 100") << 20'000.0
        << 10'000 << 100 << -110.0;
    QTest::newRow("fine") << f32 << 21000.0 << 1.0 << options("--resolution 25 --step 500ms") << 0.0 << 96'000
                          << 3840 << -120.0;
    QTest::newRow("coarse, short step")
        << f32 << 21000.0 << 1.0 << options("--resolution 6k --step 4") << 0.0 << 96'000 << 16 << -50.0;
    QTest::newRow("step shorter than the window")
        << f32 << 21000.0 << 1.0 << options("--step 1") << 0.0 << 96'000 << 512 << -120.0;
    QTest::newRow("wave") << QStringLiteral("wave") << 12345.6 << 1.0 << options("") << 0.0 << 96'000 << 512
                          << -90.0;
    QTest::newRow("wave, half of full scale, part")
        << QStringLiteral("wave") << 3000.0 << 0.5 << options("--bandwidth 10k") << 0.0 << 10'000 << 512
        << -90.0;
}

/// The strongest point is that of the tone, its level that of the amplitude, and away from
/// it there is only the rounding of the format.
void TestNewCommand::toneLevel()
{
    QFETCH(QString, format);
    QFETCH(double, frequency);
    QFETCH(double, amplitude);
    QFETCH(QStringList, options);
    QFETCH(double, centre);
    QFETCH(int, bandwidth);
    QFETCH(int, points);
    QFETCH(double, floor);
    constexpr int iRate = 96'000;
    constexpr int iFrames = iRate;
    const bool bWave = format == u"wave";
    const QString sRecording = write(QStringLiteral("recording"),
                                     bWave ? waveBytes(tone(frequency, amplitude), iFrames, iRate)
                                           : iqBytes(tone(frequency, amplitude), iFrames, iRate, format));
    QStringList arguments{s_sNew, s_sPackage, path("tone"),
                          bWave ? QStringLiteral("--wave") : QStringLiteral("--iq"), sRecording};
    if (!bWave) {
        arguments += {QStringLiteral("--rate"), QStringLiteral("96k"), QStringLiteral("--format"), format};
    }
    const ToolResult made = runTool(arguments + options);
    QVERIFY2(made.code == 0, qPrintable(made.err));

    SignalShapeFile shape(SignalPackageFolder::signalShapeFilePath(path("tone")));
    QVERIFY(shape.open());
    QCOMPARE(shape.missingBytes(), 0);
    QCOMPARE(shape.basePower(), 1.0F);
    QCOMPARE(static_cast<int>(shape.bandwidth()), bandwidth);
    QCOMPARE(static_cast<int>(shape.pointsPerSpectrum()), points);
    QCOMPARE(shape.duration(), 1000U);
    shape.setPackageDuration(1000);
    const double dExpected = 20.0 * std::log10(amplitude);
    const double dPoint = ((frequency - centre) / bandwidth + 0.5) * points; // the point that holds the tone
    for (const unsigned int uiTime : {0U, 500U, 999U}) {
        shape.readSpectrum(uiTime);
        const std::vector<float>& spectrum = shape.spectrum();
        // A real tone has a second line at the negative frequency.
        const auto from = spectrum.begin() + (bWave ? points / 2 : 0);
        const auto strongest = std::max_element(from, spectrum.end());
        const auto dAt = static_cast<double>(strongest - spectrum.begin());
        QVERIFY2(std::abs(dAt + 0.5 - dPoint) <= 1.0, qPrintable(QString::number(dAt)));
        QVERIFY2(std::abs(decibel(*strongest) - dExpected) <= s_dLevelTolerance,
                 qPrintable(QString::number(decibel(*strongest))));
        QCOMPARE(shape.signalLevelInSpectrum(), *strongest);
        QVERIFY2(decibel(shape.maxLevelInSpectrum()) < floor,
                 qPrintable(QString::number(decibel(shape.maxLevelInSpectrum()))));
    }
}

/// The strongest point of a chirp from -40 kHz to 40 kHz moves from the lowest to the highest
/// frequency, at an even speed.
void TestNewCommand::chirpMoves()
{
    constexpr double dRate = 100'000.0;
    constexpr double dSweep = 80'000.0; // Hz in the one second of the recording
    const Signal chirp = [=](double a_dTime) {
        const double dTurns = -0.5 * dSweep * a_dTime + 0.5 * dSweep * a_dTime * a_dTime;
        return std::polar(0.9, 2.0 * std::numbers::pi * dTurns);
    };
    const QString sRecording =
        write(QStringLiteral("chirp.s16"), iqBytes(chirp, 100'000, dRate, QStringLiteral("s16")));
    const ToolResult made = runTool({s_sNew, s_sPackage, path("chirp"), QStringLiteral("--iq"), sRecording,
                                     QStringLiteral("--rate"), QStringLiteral("100000"),
                                     QStringLiteral("--step"), QStringLiteral("20ms")});
    QVERIFY2(made.code == 0, qPrintable(made.err));
    SignalShapeFile shape(SignalPackageFolder::signalShapeFilePath(path("chirp")));
    QVERIFY(shape.open());
    QCOMPARE(shape.recordCount(), 50U);
    shape.setPackageDuration(1000);
    for (unsigned int uiTime = 0; uiTime < 1000; uiTime += 20) {
        shape.readSpectrum(uiTime);
        const auto strongest = std::max_element(shape.spectrum().begin(), shape.spectrum().end());
        const double dAt = static_cast<double>(strongest - shape.spectrum().begin()) + 0.5;
        const double dFrequency = (dAt / shape.pointsPerSpectrum() - 0.5) * dRate;
        const double dMiddle = -0.5 * dSweep + dSweep * (uiTime + 10.0) / 1000.0;
        // Within a record the chirp covers 1600 Hz.
        QVERIFY2(std::abs(dFrequency - dMiddle) < 1'000.0, qPrintable(QString::number(dFrequency)));
    }
}

/// White noise of the variance v has the power 1.5 v / N in every point of a transform of N
/// samples, because the noise bandwidth of the Hann window is 1.5 (Harris 1978). The strongest
/// of neighbouring points and their scatter add up to 3 dB.
void TestNewCommand::noiseFloor()
{
    quint32 uiNoise = 1;
    const auto uniform = [&uiNoise] {
        uiNoise = uiNoise * 1'664'525U + 1'013'904'223U; // Numerical Recipes, 2nd ed., 7.1
        return static_cast<double>(uiNoise >> 8U) / 8'388'608.0 - 1.0;
    };
    const Signal noise = [&](double /*a_dTime*/) { return std::complex<double>(uniform(), uniform()); };
    const QString sRecording =
        write(QStringLiteral("noise.f32"), iqBytes(noise, 200'000, 200'000.0, QStringLiteral("f32")));
    const ToolResult made =
        runTool({s_sNew, s_sPackage, path("noise"), QStringLiteral("--iq"), sRecording,
                 QStringLiteral("--rate"), QStringLiteral("200k"), QStringLiteral("--format"),
                 QStringLiteral("f32"), QStringLiteral("--step"), QStringLiteral("1s")});
    QVERIFY2(made.code == 0, qPrintable(made.err));
    SignalShapeFile shape(SignalPackageFolder::signalShapeFilePath(path("noise")));
    QVERIFY(shape.open());
    QCOMPARE(shape.recordCount(), 1U);
    shape.setPackageDuration(1000);
    shape.readSpectrum(0);
    constexpr double dVariance = 2.0 / 3.0; // of two uniform values in [-1, 1)
    const double dExpected = 10.0 * std::log10(1.5 * dVariance / 512.0);
    double dSum = 0.0;
    for (const float fValue : shape.spectrum()) {
        dSum += decibel(fValue) - dExpected;
    }
    const double dMean = dSum / 512.0;
    QVERIFY2(dMean > -0.2 && dMean < 1.0, qPrintable(QString::number(dMean)));
    QVERIFY(decibel(shape.signalLevelInSpectrum()) < dExpected + 3.0);
    QVERIFY(decibel(shape.maxLevelInSpectrum()) > dExpected - 3.0);
}

/// Audio that has the rate of packages already stays as it is, sample by sample.
void TestNewCommand::audioOfSameRate()
{
    const QByteArray wave = waveBytes(tone(440.0, 1.0), 64'000, 32'000);
    const ToolResult made = runTool({s_sNew, s_sPackage, path("voice"), QStringLiteral("--wave"),
                                     write(QStringLiteral("voice.wav"), wave)});
    QVERIFY2(made.code == 0, qPrintable(made.err));
    QVERIFY(contentOf(SignalPackageFolder::audioFilePath(path("voice"))) == wave);
}

/// Two channels at another rate become one at 32 kHz. A tone keeps its frequency and level,
/// and one above the new band disappears.
void TestNewCommand::audioOfOtherRate()
{
    for (const int iRate : {8'000, 44'100, 96'000}) {
        const double dFrequency = 0.4 * std::min(iRate, 32'000);
        const Signal low = tone(dFrequency, 0.5);
        const Signal high = tone(0.45 * iRate, 0.4);
        const bool bHigh = 0.45 * iRate > 16'000.0;
        const Signal both = [&](double a_dTime) {
            return low(a_dTime) + (bHigh ? high(a_dTime) : std::complex<double>());
        };
        const QString sRecording =
            write(QStringLiteral("stereo.wav"), waveBytes(both, iRate, static_cast<quint32>(iRate), 2));
        const ToolResult made = runTool({s_sNew, s_sPackage, path("stereo"), QStringLiteral("--wave"),
                                         sRecording, QStringLiteral("--force")});
        QVERIFY2(made.code == 0, qPrintable(made.err));
        AudioFile audio(SignalPackageFolder::audioFilePath(path("stereo")));
        QVERIFY2(audio.open(), qPrintable(audio.errorString()));
        QCOMPARE(audio.length(), 1000U);
        // The middle of the recording as a sum of the tone and a rest. Half of the amplitude is
        // left, because the second channel is silent.
        const std::vector<std::int16_t> samples = audio.readSamples(8'000, 16'000);
        std::complex<double> product;
        double dPower = 0.0;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double dValue = samples[i] / 32768.0;
            product += dValue * std::conj(tone(dFrequency, 1.0)(static_cast<double>(i + 8'000) / 32'000.0));
            dPower += dValue * dValue;
        }
        const double dAmplitude = 2.0 * std::abs(product) / 16'000.0;
        QVERIFY2(std::abs(dAmplitude - 0.25) < 0.001, qPrintable(QString::number(dAmplitude)));
        QVERIFY2(std::abs(std::arg(product)) < 0.001, qPrintable(QString::number(std::arg(product))));
        const double dRest = dPower / 16'000.0 - 0.5 * dAmplitude * dAmplitude;
        QVERIFY2(dRest < 1e-7, qPrintable(QString::number(dRest))); // -70 dB
    }
}

/// The other commands accept the package, and a scenario that names it plays its levels.
void TestNewCommand::wholePackage()
{
    const QString sRepository = path("repository");
    QCOMPARE(runTool({QStringLiteral("repository"), QStringLiteral("init"), sRepository}).code, 0);
    const QString sFolder = sRepository + QStringLiteral("/SignalPackages/Ship bell");
    const QString sRecording =
        write(QStringLiteral("bell.wav"), waveBytes(tone(800.0, 0.5), 48'000 * 5 / 2, 48'000));
    const ToolResult made = runTool(
        {s_sNew, s_sPackage, sFolder, QStringLiteral("--wave"), sRecording, QStringLiteral("--author"),
         QStringLiteral("Möwe"), QStringLiteral("--modulation"), QStringLiteral("FM"),
         QStringLiteral("--bandwidth"), QStringLiteral("12.5k"), QStringLiteral("--json")});
    QVERIFY2(made.code == 0 && made.err.isEmpty(), qPrintable(made.err));
    const QJsonObject report = QJsonDocument::fromJson(made.out.toUtf8()).object();
    QCOMPARE(report.value(QStringLiteral("duration_ms")).toInt(), 2500);
    QCOMPARE(report.value(QStringLiteral("records")).toInt(), 25);

    const SignalPackage package = SignalPackageFolder::signalPackage(sFolder);
    QCOMPARE(package.id(), report.value(QStringLiteral("id")).toString());
    QVERIFY(!package.id().isEmpty());
    QCOMPARE(package.name(), QStringLiteral("Ship bell"));
    QCOMPARE(package.author(), QStringLiteral("Möwe"));
    QCOMPARE(package.analogModulation(), AnalogModulations::FM);
    QCOMPARE(package.signalBandwidth(), 12'500.0F);
    QCOMPARE(package.duration(), 2500U);
    QVERIFY(package.timestamp() > 1'700'000'000U);
    QVERIFY(package.hasAudioContent());

    const ToolResult inspected = runTool({QStringLiteral("inspect"), sFolder});
    QVERIFY2(inspected.code == 0, qPrintable(inspected.out + inspected.err));
    const ToolResult listed = runTool({QStringLiteral("repository"), QStringLiteral("list"), sRepository});
    QVERIFY2(listed.code == 0 && listed.out.contains(package.id()), qPrintable(listed.out));

    const QByteArray text = runTool({s_sNew, s_sScenario, QStringLiteral("-")}).out.toUtf8();
    const QString sScenario =
        write(QStringLiteral("bell.sce.exp"),
              QByteArray(text).replace("b696e61d-dcae-42b4-b794-4a4adb8476c0", package.id().toUtf8()));
    const QStringList repository{QStringLiteral("--repository"), sRepository};
    const ToolResult checked = runTool(QStringList{QStringLiteral("check"), sScenario} + repository);
    QVERIFY2(checked.code == 0, qPrintable(checked.out + checked.err));
    const ToolResult played =
        runTool(QStringList{QStringLiteral("play"), sScenario, QStringLiteral("--from"),
                            QStringLiteral("500"), QStringLiteral("--to"), QStringLiteral("600"),
                            QStringLiteral("--emitter"), QStringLiteral("beacon"), QStringLiteral("--json")} +
                repository);
    QCOMPARE(played.code, 0);
    static const QRegularExpression level(QStringLiteral("\"level\": ?([0-9.e+-]+)"));
    const float fLevel = level.match(played.out).captured(1).toFloat();
    QVERIFY2(std::abs(decibel(fLevel) + 6.02) < s_dLevelTolerance, qPrintable(played.out));
}

void TestNewCommand::withoutRecording()
{
    const ToolResult made =
        runTool({s_sNew, s_sPackage, path("Plain"), QStringLiteral("--name"), QStringLiteral("Plain one"),
                 QStringLiteral("--bandwidth"), QStringLiteral("25k")});
    QVERIFY2(made.code == 0, qPrintable(made.err));
    QCOMPARE(QDir(path("Plain")).entryList(QDir::Files), QStringList{QStringLiteral("Signal.xml")});
    QVERIFY(contentOf(path("Plain/Signal.xml")).contains("<Name>Plain one</Name>"));
    QCOMPARE(runTool({QStringLiteral("inspect"), path("Plain")}).code, 0);
}

void TestNewCommand::refusedRecording_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("options"); // "wave", or those of I/Q
    QTest::addColumn<QString>("message");

    const QString sWave = QStringLiteral("wave");
    const QString sIq = QStringLiteral("--rate 10k --format f32");
    const QByteArray wave = waveBytes(tone(1000.0, 1.0), 32'000, 32'000);
    const auto patched = [&](qsizetype a_iAt, const QByteArray& a_bytes) {
        return QByteArray(wave).replace(a_iAt, a_bytes.size(), a_bytes);
    };
    QTest::newRow("not a wave file") << QByteArray(100, 'x') << sWave << "is not a WAVE file";
    QTest::newRow("empty wave file") << QByteArray("") << sWave << "is not a WAVE file";
    QTest::newRow("truncated wave file") << wave.chopped(1001) << sWave << "lack 1001 bytes";
    QTest::newRow("no samples") << waveBytes(tone(1.0, 1.0), 0, 32'000) << sWave << "has no samples";
    QTest::newRow("rate 0") << patched(24, QByteArray(4, '\0')) << sWave << "has 0 frames per second";
    QTest::newRow("absurd rate") << patched(24, QByteArray(4, '\xff')) << sWave
                                 << "has 4294967295 frames per second in its header";
    QTest::newRow("24 bits") << patched(32, QByteArray("\x03\0\x18\0", 4)) << sWave
                             << "has samples of 24 bits";
    QTest::newRow("empty I/Q") << QByteArray("") << sIq << "is empty";
    QTest::newRow("half a frame") << QByteArray(8'004, '\0') << sIq
                                  << "has 8004 bytes, which is not a multiple of the 8 bytes";
    QByteArray broken = iqBytes(tone(1000.0, 1.0), 10'000, 10'000.0, QStringLiteral("f32"));
    const float fNan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("not a number") << QByteArray(broken).replace(
                                         8 * 7777 + 4, 4, QByteArray(reinterpret_cast<const char*>(&fNan), 4))
                                  << sIq << "has the value nan in frame 7777";
    QTest::newRow("other format") << QByteArray(80'000, '\x7e') << sIq << "has the value 8.4";
    QTest::newRow("shorter than 1 ms") << QByteArray(qsizetype{8} * 9, '\0') << sIq << "lasts 0.0009 s";
    QTest::newRow("shorter than a segment") << broken << sIq + QStringLiteral(" --resolution 0.5")
                                            << "allows a --resolution from 1 Hz to 1.25 kHz";
    QTest::newRow("too coarse") << broken << sIq + QStringLiteral(" --resolution 2k")
                                << "allows a --resolution from 1 Hz to 1.25 kHz, not 2 kHz";
    QTest::newRow("too wide") << broken << sIq + QStringLiteral(" --bandwidth 11k")
                              << "give a smaller --bandwidth";
    QTest::newRow("beside the recording")
        << broken << sIq + QStringLiteral(" --bandwidth 2k --center 4.5k") << "or another --center";
}

/// A message names file, fault and remedy, and nothing is left.
void TestNewCommand::refusedRecording()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, options);
    QFETCH(QString, message);
    const QString sRecording = write(QStringLiteral("recording"), content);
    QStringList arguments{s_sNew, s_sPackage, path("refused")};
    arguments += options == u"wave" ? QStringList{QStringLiteral("--wave"), sRecording}
                                    : QStringList{QStringLiteral("--iq"), sRecording} + options.split(u' ');
    const ToolResult result = runTool(arguments);
    QCOMPARE(result.code, 2);
    QCOMPARE(result.out, QString());
    QVERIFY2(result.err.startsWith(QStringLiteral("simulationtool: %1: ").arg(sRecording)),
             qPrintable(result.err));
    QVERIFY2(result.err.contains(message) && result.err.count(u'\n') == 1, qPrintable(result.err));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("recording")});
}

void TestNewCommand::wrongUsage_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("no kind") << ""
                             << "a kind is needed: scenario, deployment or package (see";
    QTest::newRow("unknown kind") << "network x"
                                  << "there is no kind \"network\"";
    QTest::newRow("no file") << "scenario"
                             << "new scenario: one OUT is needed, 0 given";
    QTest::newRow("no folder") << "package"
                               << "new package: one OUT is needed, 0 given";
    QTest::newRow("archive") << "package a.zip"
                             << "OUT is a folder, no archive";
    QTest::newRow("standard output") << "package -"
                                     << "OUT must be a folder";
    QTest::newRow("two recordings") << "package a --wave b --iq c --rate 1k"
                                    << "exclude each other";
    QTest::newRow("I/Q without a rate") << "package a --iq b"
                                        << "--iq needs --rate";
    QTest::newRow("rate of a wave file") << "package a --wave b --rate 1k"
                                         << "--rate is possible only with --iq";
    QTest::newRow("step of nothing") << "package a --step 5"
                                     << "possible only with --wave or --iq";
    QTest::newRow("absurd rate") << "package a --iq b --rate 0"
                                 << "--rate needs a frequency from 1 kHz to 4 GHz";
    QTest::newRow("rate in words") << "package a --iq b --rate 2Mbit"
                                   << "not \"2Mbit\"";
    QTest::newRow("step") << "package a --wave b --step 30ms"
                          << "--step needs a time of which a second";
    QTest::newRow("modulation") << "package a --modulation fm"
                                << "there is no modulation \"fm\": give one of CW, AM, FM, LSB, USB, Digital";
    QTest::newRow("format") << "package a --iq b --rate 1k --format s8"
                            << "give s16, f32 or u8";
    QTest::newRow("missing recording") << "package a --iq missing --rate 1k"
                                       << "missing: No such file";
    QTest::newRow("no parent") << "package missing/a"
                               << "there is no folder";
}

void TestNewCommand::wrongUsage()
{
    QFETCH(QString, arguments);
    QFETCH(QString, message);
    const ToolResult result = runTool(QStringList{s_sNew} + arguments.split(u' ', Qt::SkipEmptyParts));
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QCOMPARE(result.out, QString());
    QVERIFY(!QFileInfo::exists(QStringLiteral("a")));
}

/// --force replaces a package, and never a folder with anything else.
void TestNewCommand::replacesOnlyPackages()
{
    const QString sFolder = path("Package");
    const QString sForce = QStringLiteral("--force");
    QCOMPARE(runTool({s_sNew, s_sPackage, sFolder}).code, 0);
    const QByteArray first = contentOf(sFolder + QStringLiteral("/Signal.xml"));
    const ToolResult refused = runTool({s_sNew, s_sPackage, sFolder});
    QCOMPARE(refused.code, 2);
    QVERIFY2(refused.err.contains(QStringLiteral("exists already: give another OUT, or --force")),
             qPrintable(refused.err));
    QCOMPARE(contentOf(sFolder + QStringLiteral("/Signal.xml")), first);

    QCOMPARE(runTool({s_sNew, s_sPackage, sFolder, sForce}).code, 0);
    const QByteArray second = contentOf(sFolder + QStringLiteral("/Signal.xml"));
    QVERIFY(second != first && !second.isEmpty());

    QVERIFY(!write(QStringLiteral("Package/notes.txt"), "mine").isEmpty());
    const ToolResult kept = runTool({s_sNew, s_sPackage, sFolder, sForce});
    QCOMPARE(kept.code, 2);
    QVERIFY2(kept.err.contains(QStringLiteral("so --force does not replace it")), qPrintable(kept.err));
    QCOMPARE(contentOf(sFolder + QStringLiteral("/Signal.xml")), second);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

/// A recording inside the folder would be removed with the former package.
void TestNewCommand::keepsRecording_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("file of a package") << QStringLiteral("Package/Signal.wav");
    QTest::newRow("other file") << QStringLiteral("Package/Signal.iq");
}

void TestNewCommand::keepsRecording()
{
    QFETCH(const QString, file);
    QCOMPARE(runTool({s_sNew, s_sPackage, path("Package")}).code, 0);
    const QByteArray wave = waveBytes(tone(440.0, 1.0), 32'000, 32'000);
    const QString sFile = write(file, wave);
    const ToolResult result = runTool(
        {s_sNew, s_sPackage, path("Package"), QStringLiteral("--force"), QStringLiteral("--wave"), sFile});
    QCOMPARE(result.code, 2);
    QCOMPARE(contentOf(sFile), wave);
}

/// Both halves of a short last record count alike.
void TestNewCommand::shortLastRecord()
{
    constexpr double dRate = 1e5;
    std::array<float, 2> strongest{};
    for (std::size_t half = 0; half < strongest.size(); ++half) {
        // 50 ms with a tone in one half; a record lasts 100 ms.
        const Signal signal = [=](double a_dTime) {
            return (a_dTime >= 0.025) == (half == 1) ? tone(1e4, 1.0)(a_dTime) : std::complex<double>();
        };
        const QString sName = QStringLiteral("half%1").arg(half);
        const QString sRecording =
            write(sName + QStringLiteral(".f32"), iqBytes(signal, 5'000, dRate, QStringLiteral("f32")));
        QCOMPARE(runTool({s_sNew, s_sPackage, path(sName.toUtf8().constData()), QStringLiteral("--iq"),
                          sRecording, QStringLiteral("--format"), QStringLiteral("f32"),
                          QStringLiteral("--rate"), QStringLiteral("100k")})
                     .code,
                 0);
        SignalShapeFile shape(SignalPackageFolder::signalShapeFilePath(path(sName.toUtf8().constData())));
        QVERIFY(shape.open());
        shape.setPackageDuration(50);
        shape.readSpectrum(0);
        strongest[half] = *std::max_element(shape.spectrum().begin(), shape.spectrum().end());
    }
    QVERIFY2(std::abs(strongest[0] / strongest[1] - 1.0F) < 0.2F, qPrintable(QString::number(strongest[1])));
}

void TestNewCommand::fullDisk()
{
    const QString sRecording =
        write(QStringLiteral("recording"), iqBytes(tone(1e3, 1.0), 20'000, 2e4, QStringLiteral("u8")));
    QVERIFY(runTool({s_sNew, s_sPackage, path("Package")}).code == 0);
    const QByteArray former = contentOf(path("Package/Signal.xml"));
    ToolResult result;
    {
        const FileSizeLimit limit(10'000); // bytes; the spectra have 20,675
        result = runTool({s_sNew, s_sPackage, path("Package"), QStringLiteral("--force"),
                          QStringLiteral("--iq"), sRecording, QStringLiteral("--format"),
                          QStringLiteral("u8"), QStringLiteral("--rate"), QStringLiteral("20k")});
    }
    QCOMPARE(result.code, 2);
    QCOMPARE(result.err,
             QStringLiteral("simulationtool: %1: Signal.ssf: File too large\n").arg(path("Package")));
    QCOMPARE(contentOf(path("Package/Signal.xml")), former);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             (QStringList{QStringLiteral("Package"), QStringLiteral("recording")}));
}

QTEST_GUILESS_MAIN(TestNewCommand)
#include "tst_newcommand.moc"
