#include "kpzip/archive.h"

#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <set>

#include <sys/stat.h>
#include <zlib.h>

namespace {

constexpr qsizetype s_iShapeHeader = 35;
constexpr qsizetype s_iWaveHeader = 44;
constexpr qsizetype s_iRecords = 100;

QByteArray contentOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

template<typename Number>
Number numberAt(const QByteArray& a_bytes, qsizetype a_iOffset)
{
    return a_iOffset + static_cast<qsizetype>(sizeof(Number)) <= a_bytes.size()
               ? qFromLittleEndian<Number>(a_bytes.constData() + a_iOffset)
               : Number{};
}

} // namespace

class TestDefaultData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sameBytesEverywhere();
    void archives();
    void descriptor_data();
    void descriptor();
    void spectra_data() { descriptor_data(); }
    void spectra();
    void audio_data() { descriptor_data(); }
    void audio();

private:
    [[nodiscard]] QByteArray packageFile(const QString& a_sPackage, const char* a_szFile) const
    {
        return contentOf(
            QStringLiteral("%1/TuK-Default/%2/%3").arg(m_folder.path(), a_sPackage, QLatin1String(a_szFile)));
    }

    QTemporaryDir m_folder;
};

void TestDefaultData::initTestCase()
{
    const QString sZip = m_folder.filePath(QStringLiteral("a.zip"));
    QVERIFY(QFile::copy(QStringLiteral(":/DefaultData/TuK-Default.zip"), sZip));
    KPZip::Archive archive(sZip);
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QVERIFY(archive.extractToFolder(QString(), m_folder.path()));
}

/// The generator writes the archives of the library byte for byte. The time zone, the
/// file mask and the time of the run have no effect.
void TestDefaultData::sameBytesEverywhere()
{
    for (const auto& [szZone, uiMask] : {std::pair{"America/St_Johns", 022U}, {"Pacific/Apia", 077U}}) {
        QProcess generator;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TZ"), QLatin1String(szZone));
        generator.setProcessEnvironment(environment);
        generator.setChildProcessModifier([uiMask = uiMask] { umask(uiMask); });
        const QString sFolder = m_folder.filePath(QString::number(uiMask));
        generator.start(QStringLiteral(MAKEDEFAULTDATA_PATH), {sFolder});
        QVERIFY(generator.waitForFinished());
        QCOMPARE(generator.exitCode(), 0);
        for (const char* szZip : {"/TuK-Default.zip", "/Default.zip"}) {
            const QByteArray carried = contentOf(QStringLiteral(":/DefaultData") + QLatin1String(szZip));
            QVERIFY(!carried.isEmpty());
            QVERIFY(contentOf(sFolder + QLatin1String(szZip)) == carried);
        }
    }
}

void TestDefaultData::archives()
{
    const QString sZip = m_folder.filePath(QStringLiteral("d.zip"));
    QVERIFY(QFile::copy(QStringLiteral(":/DefaultData/Default.zip"), sZip));
    KPZip::Archive archive(sZip);
    QVERIFY(archive.open(KPZip::Archive::ModeRead));
    QCOMPARE(archive.files().size(), 3);
    for (const char* szFile : {"Signal.ssf", "Signal.wav", "Signal.xml"}) {
        const QString sFile = m_folder.filePath(QLatin1String(szFile));
        QVERIFY(archive.extractToFile(QLatin1String(szFile), sFile));
        QVERIFY(contentOf(sFile) == packageFile(QStringLiteral("Default"), szFile));
    }
    for (const char* szMarker : {"TuK-Default/.library", "TuK-Default/.lock"}) {
        const QFileInfo marker(m_folder.filePath(QLatin1String(szMarker)));
        QVERIFY(marker.isFile() && marker.size() == 0);
    }
}

void TestDefaultData::descriptor_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("points");
    QTest::newRow("Default") << "Default"
                             << "c0d40372-37c8-4ad4-9fb1-97bfc477769c" << 512;
    QTest::newRow("Gauss") << "Gauss 10kHz"
                           << "9a567123-d88f-4177-9b57-b02c1ec104f7" << 512;
    QTest::newRow("Rect") << "Rect 10kHz"
                          << "b696e61d-dcae-42b4-b794-4a4adb8476c0" << 256;
}

void TestDefaultData::descriptor()
{
    QFETCH(QString, package);
    QFETCH(QString, id);
    QDomDocument document;
    QVERIFY(document.setContent(packageFile(package, "Signal.xml")));
    QVERIFY(contentOf(QStringLiteral(":/DefaultData/Descriptors/%1.xml").arg(id)) ==
            packageFile(package, "Signal.xml"));
    const QDomElement root = document.documentElement();
    const auto text = [&](const char* a_szPath) {
        QDomElement element = root;
        for (const QString& sName : QString::fromLatin1(a_szPath).split(QLatin1Char('/'))) {
            element = element.firstChildElement(sName);
        }
        return element.isNull() ? QStringLiteral("missing") : element.text();
    };
    const auto checksum = [&](const char* a_szFile) {
        const QByteArray bytes = packageFile(package, a_szFile);
        return QString::number(
            crc32(0, reinterpret_cast<const Bytef*>(bytes.constData()), static_cast<uInt>(bytes.size())));
    };
    QCOMPARE(root.tagName(), QStringLiteral("SignalPackage"));
    QCOMPARE(root.attribute(QStringLiteral("UID")), id);
    QCOMPARE(root.attribute(QStringLiteral("Version")), QStringLiteral("0"));
    QCOMPARE(root.attribute(QStringLiteral("FileFormatVersion")), QStringLiteral("0"));
    QCOMPARE(text("MetaData/Name"), package);
    for (const char* szText : {"MetaData/Author", "MetaData/Library", "MetaData/Created",
                               "MetaData/UserEditable", "SignalShape/Name", "SignalShape/SourceName",
                               "SignalShape/Format", "Audio/Name", "Audio/SourceName", "Audio/Format"}) {
        QVERIFY2(!text(szText).isEmpty() && text(szText) != QStringLiteral("missing"), szText);
    }
    QCOMPARE(text("Bandwidth"), QStringLiteral("10000"));
    QCOMPARE(text("Duration"), QStringLiteral("3000"));
    QCOMPARE(text("AnalogModulation"), QStringLiteral("None"));
    QCOMPARE(text("DigitalModulation"), QString());
    QCOMPARE(text("SignalShape/Checksum"), checksum("Signal.ssf"));
    QCOMPARE(text("SignalShape/Duration"), QStringLiteral("10000"));
    QCOMPARE(text("Audio/Checksum"), checksum("Signal.wav"));
    QCOMPARE(text("Audio/Duration"), QStringLiteral("2999"));
}

void TestDefaultData::spectra()
{
    QFETCH(QString, package);
    QFETCH(int, points);
    const QByteArray bytes = packageFile(package, "Signal.ssf");
    const qsizetype iRecord = 16 + 4 * qsizetype{points};
    QCOMPARE(bytes.size(), s_iShapeHeader + s_iRecords * iRecord);
    // version 2, bandwidth 10000 Hz, base power 1.418e-12, 100 records, 10 records/s
    const QByteArray header("T&K-SSF\2\0\0\0\x10\x27\0\0\xD6\x90\xC7\x2B\x64\0\0\0\0\0\0\0\x0A\0\0\0",
                            s_iShapeHeader - 4);
    QCOMPARE(bytes.left(s_iShapeHeader - 4).toHex(), header.toHex());
    QCOMPARE(numberAt<qint32>(bytes, s_iShapeHeader - 4), points);

    float fBefore = numberAt<float>(bytes, bytes.size() - iRecord + 8);
    for (qsizetype iAt = s_iShapeHeader; iAt < bytes.size(); iAt += iRecord) {
        const float fSignal = numberAt<float>(bytes, iAt + 8);
        const float fFloor = numberAt<float>(bytes, iAt + 12);
        std::set<float> values;
        for (int i = 0; i < points; ++i) {
            values.insert(numberAt<float>(bytes, iAt + 16 + 4 * qsizetype{i}));
        }
        QCOMPARE(fSignal, *values.rbegin());
        QCOMPARE(fFloor, *values.begin());
        QVERIFY(fFloor >= 1.0F && fSignal > 3.0F * fFloor);
        // The level changes by less than 10 % from record to record. This includes the
        // step from the last record to the first.
        QVERIFY(fSignal != fBefore && std::abs(fSignal / fBefore - 1.0F) < 0.1F);
        fBefore = fSignal;
    }
}

void TestDefaultData::audio()
{
    QFETCH(QString, package);
    const QByteArray bytes = packageFile(package, "Signal.wav");
    QCOMPARE(bytes.size(), qsizetype{192'024});
    // PCM, 1 channel, 32000 frames/s, 64000 bytes/s, 2 bytes/frame, 16 bits/sample
    const QByteArray header("RIFF\x10\xEE\x02\x00WAVEfmt \x10\0\0\0\1\0\1\0\x00\x7D\0\0\x00\xFA\0\0\2\0\x10\0"
                            "data\xEC\xED\x02\x00",
                            s_iWaveHeader);
    QCOMPARE(bytes.left(s_iWaveHeader).toHex(), header.toHex());

    int iPeak = 0;
    double dPower = 0.0;
    for (qsizetype iAt = s_iWaveHeader; iAt < bytes.size(); iAt += 2) {
        const int iSample = numberAt<qint16>(bytes, iAt);
        iPeak = std::max(iPeak, std::abs(iSample));
        dPower += iSample * iSample;
    }
    const double dMean = std::sqrt(dPower / 95'990.0);
    QVERIFY2(iPeak < 32'000 && dMean > 1'000.0, qPrintable(QStringLiteral("%1, %2").arg(iPeak).arg(dMean)));
    // The last and the first sample are close, so the signal repeats without a click.
    QVERIFY(std::abs(numberAt<qint16>(bytes, bytes.size() - 2) - numberAt<qint16>(bytes, s_iWaveHeader)) <
            50);
}

QTEST_GUILESS_MAIN(TestDefaultData)

#include "tst_defaultdata.moc"
