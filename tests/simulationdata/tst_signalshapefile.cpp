#include "datafilebytes.h"
#include "simulationdata/signalshapefile.h"
#include "simulationdata/simulationlimits.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace Simulation;

class TestSignalShapeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnTraces(); }
    void header();
    void recordDurations();
    void spectra_data();
    void spectra();
    void nothingToRead_data();
    void nothingToRead();
    void refused_data();
    void refused();
    void noRegularFile();
    void truncated();
    void hugeClaims();
    void limitOfData();
    void changesAndOpensAgain();

private:
    QTemporaryDir m_folder;
    QString m_sPath = m_folder.filePath(QStringLiteral("Signal.ssf"));
};

namespace {

constexpr quint32 s_uiMax = 0xFFFFFFFF;

struct Header
{
    QByteArray magic = "T&K-SSF";
    quint32 uiVersion = 2;
    quint64 uiRecords = 100;
    quint32 uiRecordsPerSecond = 10;
    quint32 uiPoints = 2;

    [[nodiscard]] QByteArray bytes() const
    {
        return magic +
               littleEndian(uiVersion, quint32{10'000}, 1.418e-12F, uiRecords, uiRecordsPerSecond, uiPoints);
    }
};

/// The record with the given number, counted from 1. The first value of the spectrum
/// and one level equal the number. The other level equals the negative number. In records
/// with an even number, the first level is positive.
QByteArray record(quint64 a_uiNumber, quint32 a_uiPoints)
{
    const auto fNumber = static_cast<float>(a_uiNumber);
    QByteArray bytes = QByteArray(8, '\x7F') + (a_uiNumber % 2 == 0 ? littleEndian(fNumber, -fNumber)
                                                                    : littleEndian(-fNumber, fNumber));
    for (quint32 i = 0; i < a_uiPoints; ++i) {
        bytes += littleEndian(fNumber + static_cast<float>(i) / 1024.0F);
    }
    return bytes;
}

QByteArray fileOf(const Header& a_header)
{
    QByteArray bytes = a_header.bytes();
    for (quint64 i = 1; i <= a_header.uiRecords; ++i) {
        bytes += record(i, a_header.uiPoints);
    }
    return bytes;
}

} // namespace

void TestSignalShapeFile::header()
{
    const QByteArray bytes = fileOf({.uiPoints = 512});
    QCOMPARE(bytes.size(), 206435);
    writeFile(m_sPath, bytes + "+");
    SignalShapeFile file(m_sPath);
    QVERIFY(file.open());
    QCOMPARE(file.version(), 2U);
    QCOMPARE(file.bandwidth(), 10'000U);
    QCOMPARE(file.basePower(), 1.418e-12F);
    QCOMPARE(file.recordCount(), 100U);
    QCOMPARE(file.recordsPerSecond(), 10U);
    QCOMPARE(file.missingBytes(), -1);
    QCOMPARE(file.spectrum(), std::vector<float>(512, 0.0F));
}

void TestSignalShapeFile::recordDurations()
{
    const std::vector<quint32> rates{3, 10, 25, 50, 100, 200, 1001, 0};
    std::vector<quint32> durations;
    for (const quint32 uiRate : rates) {
        writeFile(m_sPath, Header{.uiRecords = 1, .uiRecordsPerSecond = uiRate, .uiPoints = 0}.bytes());
        SignalShapeFile file(m_sPath);
        expectTrace(QStringLiteral("no usable record: 1 records of 0 points, %1 per second").arg(uiRate));
        QVERIFY(file.open());
        durations.push_back(file.duration());
    }
    QCOMPARE(durations, (std::vector<quint32>{333, 100, 40, 20, 10, 5, 0, 0}));
}

void TestSignalShapeFile::spectra_data()
{
    QTest::addColumn<quint32>("packageDuration");
    QTest::addColumn<quint32>("time");
    QTest::addColumn<float>("record");

    QTest::newRow("first") << 3000U << 0U << 1.0F;
    QTest::newRow("last time of the first") << 3000U << 99U << 1.0F;
    QTest::newRow("second") << 3000U << 100U << 2.0F;
    QTest::newRow("folded into the package") << 3000U << 3050U << 1.0F;
    QTest::newRow("last") << 20'000U << 9999U << 100.0F;
    QTest::newRow("sequence repeats") << 20'000U << 10'150U << 2.0F;
    QTest::newRow("latest time") << s_uiMax << s_uiMax - 1 << 73.0F;
}

void TestSignalShapeFile::spectra()
{
    QFETCH(const quint32, packageDuration);
    QFETCH(const quint32, time);
    QFETCH(const float, record);
    writeFile(m_sPath, fileOf({}));
    SignalShapeFile file(m_sPath);
    QVERIFY(file.open());
    file.setPackageDuration(packageDuration);
    file.readSpectrum(5000); // so that each row has to seek
    file.readSpectrum(time);
    QCOMPARE(file.spectrum(), (std::vector<float>{record, record + 1.0F / 1024.0F}));
    QCOMPARE(file.signalLevelInSpectrum(), record);
    QCOMPARE(file.maxLevelInSpectrum(), -record);
}

void TestSignalShapeFile::nothingToRead_data()
{
    QTest::addColumn<Header>("fields");
    QTest::addColumn<quint32>("packageDuration");

    QTest::newRow("no records") << Header{.uiRecords = 0} << 1000U;
    QTest::newRow("no records per second") << Header{.uiRecordsPerSecond = 0} << 1000U;
    QTest::newRow("records below a millisecond") << Header{.uiRecordsPerSecond = s_uiMax} << 1000U;
    QTest::newRow("no points") << Header{.uiPoints = 0} << 1000U;
    QTest::newRow("no package duration") << Header{} << 0U;
}

void TestSignalShapeFile::nothingToRead()
{
    QFETCH(const Header, fields);
    QFETCH(const quint32, packageDuration);
    writeFile(m_sPath, fields.bytes() + record(1, 2));
    SignalShapeFile file(m_sPath);
    if (packageDuration != 0) {
        expectTrace(QStringLiteral("has no usable record"));
    }
    QVERIFY(file.open());
    file.setPackageDuration(packageDuration);
    file.readSpectrum(0);
    QCOMPARE(file.spectrum(), std::vector<float>(fields.uiPoints, 0.0F));
    QCOMPARE(file.signalLevelInSpectrum(), 0.0F);
}

void TestSignalShapeFile::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    QTest::newRow("another magic") << Header{.magic = "T&K-SDF"}.bytes()
                                   << QStringLiteral("not begin with \"T&K-SSF\"");
    QTest::newRow("version 1") << Header{.uiVersion = 1}.bytes() << QStringLiteral("version 1, only 2");
    for (const quint32 uiPoints : {s_uiMax, 262'145U}) {
        QTest::addRow("%u points", uiPoints)
            << Header{.uiPoints = uiPoints}.bytes()
            << QStringLiteral("%1 points in a file of 35 bytes").arg(uiPoints);
    }
    for (int i = 0; i < 35; ++i) {
        QTest::addRow("%d bytes", i) << Header().bytes().first(i)
                                     << QStringLiteral("the header has only %1 of 35 bytes").arg(i);
    }
}

void TestSignalShapeFile::refused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, reason);
    refuse<SignalShapeFile>(m_sPath, fileOf({}) + '+', bytes, reason);
}

void TestSignalShapeFile::noRegularFile()
{
    for (const QString& sPath : {m_sPath + QLatin1Char('x'), m_folder.path(), QStringLiteral("/dev/zero"),
                                 QString(), m_sPath + QChar(QChar::Null)}) {
        SignalShapeFile file(sPath);
        expectTrace(QStringLiteral("Cannot open the signal shape file"));
        QVERIFY(!file.open());
        QVERIFY(!file.errorString().isEmpty());
    }
}

void TestSignalShapeFile::truncated()
{
    const QByteArray bytes = fileOf({.uiRecords = 2});
    for (qsizetype i = 35; i < bytes.size(); ++i) {
        writeFile(m_sPath, bytes.first(i));
        SignalShapeFile file(m_sPath);
        QVERIFY(file.open());
        QCOMPARE(file.missingBytes(), bytes.size() - i);
        file.setPackageDuration(200);
        expectTrace(QStringLiteral("of %1 bytes ends before its record of 24 bytes at").arg(i));
        file.readSpectrum(0);
        file.readSpectrum(100);
        QCOMPARE(file.spectrum().size(), 2U);
        // The levels are those of the second record. If they are cut off, the levels of
        // the first record remain.
        const float fRecord = i >= 35 + 24 + 16 ? 2.0F : i >= 35 + 16 ? 1.0F : 0.0F;
        QCOMPARE(file.signalLevelInSpectrum(), fRecord);
    }
}

void TestSignalShapeFile::hugeClaims()
{
    writeFile(m_sPath,
              Header{.uiRecords = ~quint64{0}, .uiRecordsPerSecond = 1000, .uiPoints = 262'144}.bytes());
    SignalShapeFile file(m_sPath);
    QVERIFY(file.open());
    QCOMPARE(file.missingBytes(), std::numeric_limits<std::int64_t>::max());
    file.setPackageDuration(s_uiMax);
    // Offset: (2^32 - 2) records * (16 + 2^20) bytes + 35 bytes of the header.
    expectTrace(QStringLiteral("ends before its record of 1048592 bytes at 4503668344750083"));
    file.readSpectrum(s_uiMax - 1);
}

void TestSignalShapeFile::limitOfData()
{
    writeFile(m_sPath, fileOf({}));
    SignalShapeFile file(m_sPath);
    Limits::setValue(Limits::DataBytes, 7);
    expectTrace(QStringLiteral("2 points: .*limit of 7 exceeded"));
    QVERIFY(!file.open());
    Limits::setValue(Limits::DataBytes, 0);
    QVERIFY(file.open());
    QVERIFY(file.errorString().isEmpty());
}

void TestSignalShapeFile::changesAndOpensAgain()
{
    const Header fields{.uiRecords = 3, .uiPoints = 8192}; // a record is larger than the buffer of a QFile
    writeFile(m_sPath, fileOf(fields));
    SignalShapeFile file(m_sPath);
    QVERIFY(file.open());
    file.setPackageDuration(1000);
    const float* pValues = file.spectrum().data();
    file.readSpectrum(0);
    writeFile(m_sPath, fields.bytes() + record(7, 8192) + record(8, 8192));
    file.readSpectrum(99); // this record is loaded already
    QCOMPARE(file.spectrum().front(), 1.0F);
    file.readSpectrum(100);
    QCOMPARE(file.spectrum().front(), 8.0F);

    QVERIFY(QFile::resize(m_sPath, 51));
    expectTrace(QStringLiteral("of 51 bytes ends before its record of 32784 bytes at 65603"));
    file.readSpectrum(200);
    file.readSpectrum(0); // the same error is not traced again
    QCOMPARE(file.spectrum().front(), 8.0F);
    QCOMPARE(file.spectrum().data(), pValues);

    file.close();
    writeFile(m_sPath, fileOf(fields));
    file.readSpectrum(200);
    QCOMPARE(file.recordCount(), 3U);
    QCOMPARE(file.spectrum().front(), 8.0F);
    QVERIFY(file.open());
    QCOMPARE(file.signalLevelInSpectrum(), 0.0F);
    // The record must be read again, although it was the last record before close().
    file.readSpectrum(0);
    QCOMPARE(file.signalLevelInSpectrum(), 1.0F);
}

QTEST_GUILESS_MAIN(TestSignalShapeFile)
#include "tst_signalshapefile.moc"
