#include "datafilebytes.h"
#include "simulationdata/resultdatafile.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/symboldatafile.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace Simulation;

/// Tests the files that contain a stream of items of equal size at a constant rate.
class TestStreamDataFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { failOnTraces(); }
    void symbols_data();
    void symbols();
    void results();
    void lengths_data();
    void lengths();
    void lengthAboveTwoTo24();
    void boundOfAnswer();
    void refused_data();
    void refused();
    void truncated();
    void hugeClaims();
    void shrinks();
    void opensAgain();

private:
    QTemporaryDir m_folder;
    QString m_sPath = m_folder.filePath(QStringLiteral("data"));
};

namespace {

constexpr quint32 s_uiMax = 0xFFFFFFFF;

QByteArray symbolHeader(float a_fRate, quint64 a_uiCount, quint8 a_uiLayout = 0, quint32 a_uiVersion = 0)
{
    return "T&K-SDF" + littleEndian(a_uiVersion) + QByteArray(16, '\x7F') +
           littleEndian(quint8{4}, a_uiLayout, a_fRate, a_uiCount);
}

QByteArray resultHeader(float a_fRate, quint64 a_uiCount, quint8 a_uiType = 0, quint32 a_uiVersion = 0)
{
    return "T&K-RDF" + littleEndian(a_uiVersion, a_uiType, a_fRate, a_uiCount, quint32{77});
}

/// Returns symbols from an index on. The stream has a_uiStream symbols and repeats. The
/// value of a symbol is its index modulo 251.
std::vector<std::uint8_t> symbolsFrom(quint32 a_uiFirst, quint32 a_uiCount, quint32 a_uiStream)
{
    std::vector<std::uint8_t> answer;
    for (quint32 i = a_uiFirst; i < a_uiFirst + a_uiCount; ++i) {
        answer.push_back(static_cast<std::uint8_t>(i % a_uiStream % 251));
    }
    return answer;
}

QByteArray symbolFile(float a_fRate, quint32 a_uiCount)
{
    const std::vector<std::uint8_t> all = symbolsFrom(0, a_uiCount, a_uiCount);
    return symbolHeader(a_fRate, a_uiCount) +
           QByteArray(reinterpret_cast<const char*>(all.data()), a_uiCount);
}

/// Returns results from an index on. The stream has a_uiStream results and repeats. The
/// value of a result is its index.
QByteArray resultsFrom(quint32 a_uiFirst, quint32 a_uiCount, quint32 a_uiStream)
{
    QByteArray answer;
    for (quint32 i = a_uiFirst; i < a_uiFirst + a_uiCount; ++i) {
        answer += littleEndian(static_cast<quint16>(i % a_uiStream));
    }
    return answer;
}

QByteArray resultFile(float a_fRate, quint32 a_uiCount)
{
    return resultHeader(a_fRate, a_uiCount) + resultsFrom(0, a_uiCount, a_uiCount);
}

} // namespace

void TestStreamDataFiles::symbols_data()
{
    QTest::addColumn<float>("rate");
    QTest::addColumn<std::vector<quint32>>("span"); // items, start, duration (ms); first index, count

    const auto add = [](const char* a_szRow, float a_fRate, const std::vector<quint32>& a_span) {
        QTest::newRow(a_szRow) << a_fRate << a_span;
    };
    add("past the end", 1000.0F, {5000, 4990, 20, 4990, 20});
    add("up to the end", 1000.0F, {5000, 4990, 10, 4990, 10});
    add("start folded", 1000.0F, {5000, 7000, 10, 2000, 10});
    add("latest start", 1000.0F, {5000, s_uiMax, 1, 2295, 1});
    add("whole stream from within", 1000.0F, {5000, 1234, 5000, 1234, 5000});
    add("stream several times", 1000.0F, {5, 3, 17, 3, 17});
    add("one symbol for a long time", 1000.0F, {1, 5, 100'000, 0, 100'000});
    add("parts of symbols", 2.5F, {10, 1000, 1100, 2, 2});
    add("less than a symbol", 2.5F, {10, 1000, 399, 2, 0});
}

void TestStreamDataFiles::symbols()
{
    QFETCH(const float, rate);
    QFETCH(const std::vector<quint32>, span);
    writeFile(m_sPath, symbolFile(rate, span[0]));
    SymbolDataFile file(m_sPath);
    QVERIFY(file.open());
    QCOMPARE(file.readSymbols(span[1], span[2]), symbolsFrom(span[3], span[4], span[0]));
    QCOMPARE(file.missingBytes(), 0);
}

void TestStreamDataFiles::results()
{
    writeFile(m_sPath, resultFile(100.0F, 1000));
    ResultDataFile file(m_sPath);
    QVERIFY(file.open());
    QCOMPARE(file.length(), 10'000U);
    QCOMPARE(file.readResultData(9950, 100), resultsFrom(995, 10, 1000));
    QCOMPARE(file.readResultData(10, 25'000), resultsFrom(1, 2500, 1000));
}

void TestStreamDataFiles::lengths_data()
{
    QTest::addColumn<float>("rate");
    QTest::addColumn<quint32>("length");

    QTest::newRow("rounded down") << 3.0F << 3333U;
    QTest::newRow("longer than 32 bits") << 1e-40F << s_uiMax;
    QTest::newRow("less than a millisecond") << 10'001.0F << 0U;
    QTest::newRow("largest rate") << std::numeric_limits<float>::max() << 0U;
    QTest::newRow("no rate") << 0.0F << 0U;
    QTest::newRow("negative rate") << -1000.0F << 0U;
    QTest::newRow("rate is no number") << std::numeric_limits<float>::quiet_NaN() << 0U;
    QTest::newRow("infinite rate") << std::numeric_limits<float>::infinity() << 0U;
}

void TestStreamDataFiles::lengths()
{
    QFETCH(const float, rate);
    QFETCH(const quint32, length);
    writeFile(m_sPath, symbolFile(rate, 10));
    SymbolDataFile file(m_sPath);
    if (length == 0) {
        expectTrace(QStringLiteral("holds 10 of 10 items, at .* items per second"));
    }
    QVERIFY(file.open());
    file.setSymbolRate(7);
    QCOMPARE(file.length(), length);
    QVERIFY(file.readSymbols(s_uiMax, 100).empty());
}

void TestStreamDataFiles::lengthAboveTwoTo24()
{
    // The length is rounded to single precision, here up by 1 ms.
    constexpr quint32 uiCount = (1U << 24U) + 3U;
    writeFile(m_sPath, symbolHeader(1000.0F, uiCount) + "ab");
    QVERIFY(QFile::resize(m_sPath, 41 + uiCount));
    SymbolDataFile file(m_sPath);
    QVERIFY(file.open());
    QCOMPARE(file.length(), uiCount + 1);
    QCOMPARE(file.readSymbols(uiCount, 2), (std::vector<std::uint8_t>{'b', 0}));
}

void TestStreamDataFiles::boundOfAnswer()
{
    writeFile(m_sPath, resultFile(1e5F, 500));
    ResultDataFile file(m_sPath);
    QVERIFY(file.open());
    expectTrace(QStringLiteral("4294967295 ms of .*100000 items a second: .*268435456 exceeded"));
    QVERIFY(file.readResultData(0, s_uiMax).isEmpty());
    Limits::setValue(Limits::DataBytes, 2000);
    QCOMPARE(file.readResultData(0, 10).size(), 2000);
    expectTrace(QStringLiteral("limit of 2000 exceeded"));
    QVERIFY(file.readResultData(0, 11).isEmpty());
    Limits::setValue(Limits::DataBytes, 0);
}

void TestStreamDataFiles::refused_data()
{
    QTest::addColumn<bool>("results");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");

    const QByteArray symbols = symbolHeader(1.0F, 0);
    const QByteArray results = resultHeader(1.0F, 0);
    QTest::newRow("symbols for results")
        << true << symbols << QStringLiteral("does not begin with \"T&K-RDF\"");
    QTest::newRow("symbols, version")
        << false << symbolHeader(1.0F, 0, 0, 1) << QStringLiteral("version 1, only 0");
    QTest::newRow("results, version")
        << true << resultHeader(1.0F, 0, 0, 2) << QStringLiteral("version 2, only 0");
    QTest::newRow("data layout") << false << symbolHeader(1.0F, 0, 1)
                                 << QStringLiteral("data layout 1, only 0");
    QTest::newRow("data type") << true << resultHeader(1.0F, 0, 2) << QStringLiteral("data type 2, only 0");
    for (const QByteArray& header : {symbols, results}) {
        for (int i = 0; i < header.size(); ++i) {
            QTest::addRow("%d of %d bytes", i, static_cast<int>(header.size()))
                << (header == results) << header.first(i) << QStringLiteral("has only %1 of ").arg(i);
        }
    }
}

void TestStreamDataFiles::refused()
{
    QFETCH(const bool, results);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, reason);
    if (results) {
        refuse<ResultDataFile>(m_sPath, resultFile(1.0F, 1) + '+', bytes, reason);
    } else {
        refuse<SymbolDataFile>(m_sPath, symbolFile(1.0F, 1) + '+', bytes, reason);
    }
}

void TestStreamDataFiles::truncated()
{
    const QByteArray bytes = resultFile(1000.0F, 5);
    for (qsizetype i = bytes.size() - 10; i < bytes.size(); ++i) {
        const auto uiHeld = static_cast<quint32>(10 - (bytes.size() - i)) / 2;
        writeFile(m_sPath, bytes.first(i));
        ResultDataFile file(m_sPath);
        expectTrace(QStringLiteral("holds %1 of 5 items").arg(uiHeld));
        QVERIFY(file.open());
        QCOMPARE(file.itemCount(), uiHeld);
        QCOMPARE(file.missingBytes(), bytes.size() - i);
        QCOMPARE(file.readResultData(0, 12), resultsFrom(0, uiHeld != 0 ? 12 : 0, uiHeld));
    }
}

void TestStreamDataFiles::hugeClaims()
{
    writeFile(m_sPath, resultHeader(1000.0F, ~quint64{0}) + resultsFrom(0, 4, 4));
    ResultDataFile file(m_sPath);
    expectTrace(QStringLiteral("holds 4 of 18446744073709551615 items"));
    QVERIFY(file.open());
    QCOMPARE(file.missingBytes(), std::numeric_limits<std::int64_t>::max());
    QCOMPARE(file.readResultData(3, 2), resultsFrom(3, 2, 4));
}

void TestStreamDataFiles::shrinks()
{
    constexpr quint32 uiCount = 60'000; // more than the buffer of a QFile
    writeFile(m_sPath, symbolFile(1000.0F, uiCount));
    SymbolDataFile symbols(m_sPath);
    QVERIFY(symbols.open());
    QVERIFY(QFile::resize(m_sPath, 41 + 41'001));
    expectTrace(QStringLiteral("has shrunk: only 1001 of 60000 bytes could be read from item 40000 on"));
    QCOMPARE(symbols.readSymbols(40'000, 70'000), symbolsFrom(40'000, 1001, uiCount));

    writeFile(m_sPath, resultFile(1000.0F, uiCount));
    ResultDataFile results(m_sPath);
    QVERIFY(results.open());
    QVERIFY(QFile::resize(m_sPath, 28 + 41'001));
    expectTrace(QStringLiteral("has shrunk: only 1001 of 120000 bytes could be read from item 20000 on"));
    QCOMPARE(results.readResultData(20'000, 70'000), resultsFrom(20'000, 500, uiCount));
}

void TestStreamDataFiles::opensAgain()
{
    SymbolDataFile file(m_sPath);
    writeFile(m_sPath, symbolFile(1000.0F, 10));
    QVERIFY(file.readSymbols(0, 10).empty());
    QVERIFY(file.open());
    QCOMPARE(file.symbolValency(), 4);
    file.close();
    QVERIFY(!file.isOpen());
    QVERIFY(file.readSymbols(0, 10).empty());
    QCOMPARE(file.length(), 10U);

    writeFile(m_sPath, symbolFile(500.0F, 20) + "+");
    QVERIFY(file.open());
    QVERIFY(file.open()); // the file is still open
    QCOMPARE(file.symbolRate(), 500.0F);
    QCOMPARE(file.missingBytes(), -1);
    QCOMPARE(file.readSymbols(38, 4), symbolsFrom(19, 2, 20));
}

QTEST_GUILESS_MAIN(TestStreamDataFiles)
#include "tst_streamdatafiles.moc"
