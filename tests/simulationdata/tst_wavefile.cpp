#include "simulationdata/audiofile.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/wavefilereader.h"
#include "tracecollector.h"

#include <limits>
#include <numeric>
#include <optional>
#include <vector>

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <sys/stat.h>

using namespace Simulation;

class TestWaveFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_traces.reset(); }
    void readsChunks();
    void forms_data();
    void forms();
    void ranges_data();
    void ranges();
    void refused_data();
    void refused();
    void noFiles();
    void limits();
    void cutAtEveryByte();
    void changedAtEveryByte();
    void shrinks();
    void audioFormats();
    void audioWraps_data();
    void audioWraps();

private:
    [[nodiscard]] QString save(const QByteArray& a_bytes) const;

    QTemporaryDir m_folder;
    std::optional<TraceCollector> m_traces;
};

namespace {

template<typename Number>
QByteArray little(std::initializer_list<Number> a_numbers)
{
    QByteArray bytes;
    for (const Number number : a_numbers) {
        const Number stored = qToLittleEndian(number);
        bytes.append(reinterpret_cast<const char*>(&stored), sizeof(stored));
    }
    return bytes;
}

QByteArray chunk(const char* a_szId, const QByteArray& a_body)
{
    QByteArray bytes = a_szId + little({static_cast<std::uint32_t>(a_body.size())}) + a_body;
    return bytes.size() % 2 == 0 ? bytes : bytes + '\0';
}

QByteArray wave(const QByteArray& a_chunks)
{
    return chunk("RIFF", "WAVE" + a_chunks);
}

QByteArray format(std::uint16_t a_uiChannels, std::uint32_t a_uiRate, std::uint16_t a_uiAlign,
                  std::uint16_t a_uiBits, std::uint16_t a_uiTag = 1)
{
    return little({a_uiTag, a_uiChannels}) + little({a_uiRate, a_uiRate * a_uiAlign}) +
           little({a_uiAlign, a_uiBits});
}

QByteArray extensible(const QByteArray& a_format, std::uint16_t a_uiSubTag)
{
    return a_format + little<std::uint16_t>({22, 16}) + little<std::uint32_t>({4}) + little({a_uiSubTag}) +
           QByteArray::fromHex("000000001000800000aa00389b71");
}

const QByteArray s_mono16 = chunk("fmt ", format(1, 32000, 2, 16));
const QByteArray s_mono8 = chunk("fmt ", format(1, 32000, 1, 8));

/// Samples that count up from 0.
QByteArray ramp(int a_iSamples)
{
    QByteArray bytes;
    for (int i = 0; i < a_iSamples; ++i) {
        bytes += little({static_cast<std::int16_t>(i)});
    }
    return bytes;
}

/// The entry of a cue chunk; its play position differs from its sample offset.
QByteArray cue(std::uint32_t a_uiId, std::uint32_t a_uiOffset)
{
    return little<std::uint32_t>({a_uiId, 99}) + "data" + little<std::uint32_t>({0, 0, a_uiOffset});
}

QByteArray label(std::uint32_t a_uiId, const QByteArray& a_text)
{
    return chunk("labl", little({a_uiId}) + a_text);
}

/// A file with every kind of chunk, also unknown chunks and odd sizes.
QByteArray allChunks()
{
    return wave(chunk("junk", "odd") + s_mono16 +
                chunk("LIST", "adtl" + label(7, QByteArray("K\xC3\xBChl\0", 6)) + chunk("note", "x") +
                                  label(3, "\xDC") + label(8, "of no cue point")) +
                chunk("LIST", "INFOshort") + chunk("data", ramp(10)) +
                chunk("cue ", little<std::uint32_t>({3}) + cue(7, 5) + cue(3, 8) + cue(9, 0xFFFFFFFF)) +
                chunk("tail", "abcd"));
}

} // namespace

void TestWaveFile::init()
{
    m_traces.emplace();
    Limits::setValue(Limits::DataBytes, 0);
}

QString TestWaveFile::save(const QByteArray& a_bytes) const
{
    QFile file(m_folder.filePath(QStringLiteral("Signal.wav")));
    return file.open(QIODevice::WriteOnly) && file.write(a_bytes) == a_bytes.size() ? file.fileName()
                                                                                    : QString();
}

void TestWaveFile::readsChunks()
{
    WaveFileReader reader(save(allChunks()));
    QVERIFY(reader.open());
    QCOMPARE(reader.format().channels, std::uint16_t{1});
    QCOMPARE(reader.format().sampleRate, std::uint32_t{32000});
    QCOMPARE(reader.format().blockAlign, std::uint16_t{2});
    QCOMPARE(reader.format().bitsPerSample, std::uint16_t{16});
    QCOMPARE(reader.length(), std::uint32_t{10});
    QCOMPARE(reader.missingBytes(), std::int64_t{0});
    QStringList cues;
    for (const WaveFileReader::CuePoint& point : reader.cuePoints()) {
        cues += QStringLiteral("%1@%2=%3").arg(point.id).arg(point.position).arg(point.label);
    }
    QCOMPARE(cues.join(QLatin1Char(' ')), QString::fromUtf8("3@8=\xC3\x9C 7@5=K\xC3\xBChl 9@4294967295="));
    QVERIFY(TraceCollector::lines().isEmpty());
}

void TestWaveFile::forms_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QList<int>>("as16");
    QTest::addColumn<QList<int>>("as8");
    QTest::addColumn<QList<float>>("asFloat");
    const QByteArray words = little<std::int16_t>({-32768, 32767, 0, -1});
    const QByteArray bytes("\0\x80\xFF\x7F", 4);
    const QByteArray floats = little<float>({1.5F, -2.0F});
    const QList<int> none;
    const QList<int> asWords{-32768, 32767, 0, -1};
    const QList<float> scaledWords{-1.0F, 32767.0F / 32768.0F, 0.0F, -1.0F / 32768.0F};
    const QList<float> scaledBytes{-1.0F, 0.0F, 127.0F / 128.0F, -1.0F / 128.0F};
    const QByteArray extensible16 = format(1, 8000, 2, 16, 65534);
    const QByteArray extensible32 = format(1, 8000, 4, 32, 65534);
    QTest::newRow("16 bits stereo") << format(2, 44100, 4, 16) << words << asWords << none << scaledWords;
    QTest::newRow("8 bits") << format(1, 8000, 1, 8) << bytes << none << QList<int>{0, 128, 255, 127}
                            << scaledBytes;
    QTest::newRow("floating point") << extensible(extensible32, 3) << floats << none << none
                                    << QList<float>{1.5F, -2.0F};
    QTest::newRow("extensible") << extensible(extensible16, 1) << words << asWords << none << scaledWords;
    QTest::newRow("no sub-format") << extensible16 << words << asWords << none << scaledWords;
    QTest::newRow("32 bits of PCM") << extensible(extensible32, 1) << floats << none << none
                                    << QList<float>{};
}

/// Reads samples into a vector that is not empty. If they cannot be read as this type,
/// the vector becomes empty.
template<typename Value, typename Expected>
static void compareForm(WaveFileReader& a_reader, const QList<Expected>& a_expected)
{
    std::vector<Value> samples(3, Value{42});
    QCOMPARE(a_reader.readSamples(0, a_reader.length(), samples), !a_expected.isEmpty());
    QCOMPARE(QList<Expected>(samples.begin(), samples.end()), a_expected);
}

void TestWaveFile::forms()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, data);
    QFETCH(QList<int>, as16);
    QFETCH(QList<int>, as8);
    QFETCH(QList<float>, asFloat);
    WaveFileReader reader(save(wave(chunk("fmt ", format) + chunk("data", data))));
    QVERIFY2(reader.open(), qPrintable(reader.errorString()));
    compareForm<std::int16_t>(reader, as16);
    compareForm<std::uint8_t>(reader, as8);
    compareForm<float>(reader, asFloat);
    const int iRefused = (as16.isEmpty() ? 1 : 0) + (as8.isEmpty() ? 1 : 0) + (asFloat.isEmpty() ? 1 : 0);
    QCOMPARE(TraceCollector::lines().size(), iRefused);
}

void TestWaveFile::ranges_data()
{
    constexpr quint64 uiHuge = std::numeric_limits<quint64>::max();
    QTest::addColumn<quint64>("start");
    QTest::addColumn<quint64>("count");
    QTest::addColumn<int>("first"); // expected first sample; -1 = refused
    QTest::newRow("all") << quint64{0} << quint64{10} << 0;
    QTest::newRow("start folded") << quint64{25} << quint64{5} << 5;
    QTest::newRow("start at the end") << quint64{10} << quint64{10} << 0;
    QTest::newRow("start far after the end") << uiHuge << quint64{1} << 5;
    QTest::newRow("none") << quint64{0} << quint64{0} << -1;
    QTest::newRow("into the next chunk") << quint64{8} << quint64{3} << -1;
    QTest::newRow("folded, into the next chunk") << quint64{25} << quint64{6} << -1;
    QTest::newRow("sum beyond 64 bits") << quint64{9} << uiHuge << -1;
}

void TestWaveFile::ranges()
{
    QFETCH(quint64, start);
    QFETCH(quint64, count);
    QFETCH(int, first);
    WaveFileReader reader(save(allChunks()));
    QVERIFY(reader.open());
    std::vector<std::int16_t> expected(first >= 0 ? count : 0);
    std::iota(expected.begin(), expected.end(), static_cast<std::int16_t>(first));
    std::vector<std::int16_t> samples(3);
    QCOMPARE(reader.readSamples(start, count, samples), first >= 0);
    QCOMPARE(samples, expected);
    QCOMPARE(TraceCollector::lines().size(), first >= 0 ? 0 : 1);
}

void TestWaveFile::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    const QByteArray data = chunk("data", ramp(4));
    const auto row = [](const char* a_szName, const QByteArray& a_bytes, const char* a_szReason) {
        QTest::newRow(a_szName) << a_bytes << QString::fromLatin1(a_szReason);
    };
    const auto formatRow = [&](const char* a_szName, const QByteArray& a_format, const char* a_szReason) {
        row(a_szName, wave(chunk("fmt ", a_format) + data), a_szReason);
    };
    row("big-endian file", "RIFX" + wave(s_mono16 + data).mid(4), "0x58464952");
    row("other form", chunk("RIFF", "AVI " + s_mono16 + data), "0x20495641");
    row("no format", wave(data), "no format chunk among 1 chunks in 28 bytes");
    row("no data", wave(s_mono16), "no data chunk among 1 chunks in 36 bytes");
    formatRow("short format", format(1, 8000, 2, 16).chopped(1), "15 bytes");
    formatRow("other tag", format(1, 8000, 2, 16, 6), "format tag 6");
    formatRow("other sub-format", extensible(format(1, 8000, 1, 8, 65534), 6), "sub-format 6 ");
    formatRow("no bits", format(1, 8000, 0, 0), "frames of 0 bytes");
    formatRow("other frame size", format(2, 8000, 2, 16),
              "2 channels of 16 bits do not make frames of 2 bytes");
    formatRow("frame size wrapped at 16 bits", format(32769, 8000, 2, 16), "32769 channels");
    formatRow("half floats", extensible(format(1, 8000, 2, 16, 65534), 3), "16 bits floating point");
    row("more cues than bytes", wave(s_mono16 + data + chunk("cue ", little({0xFFFFFFFFU}) + cue(1, 1))),
        "4294967295 cue points do not fit a cue chunk of 28 bytes");
    row("label beyond its list",
        wave(s_mono16 + data + chunk("LIST", "adtllabl" + little({9U}) + "12345678")),
        "label of 9 bytes with 8 left");
    row("cut in labels", wave(s_mono16 + data + chunk("LIST", "adtl" + label(1, "1234"))).chopped(1),
        "list of labels of 20 bytes, 19 of them");
}

void TestWaveFile::refused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    WaveFileReader reader(save(bytes));
    QVERIFY(!reader.open());
    QVERIFY2(reader.errorString().contains(reason), qPrintable(reader.errorString()));
    QVERIFY(!reader.isOpen());
    QCOMPARE(TraceCollector::lines().size(), 1);
}

void TestWaveFile::noFiles()
{
    const QString sPipe = m_folder.filePath(QStringLiteral("pipe.wav"));
    QCOMPARE(mkfifo(qPrintable(sPipe), 0600), 0);
    const QStringList paths{m_folder.path(), sPipe, sPipe + QStringLiteral("/missing"), QString()};
    for (const QString& sPath : paths) {
        AudioFile audio(sPath);
        QVERIFY(!audio.open() && !audio.isOpen() && !audio.errorString().isEmpty());
    }
    QCOMPARE(TraceCollector::lines().size(), paths.size());
}

/// The file reaches each limit exactly. A limit that is one less refuses the file.
/// Entries of lists count as chunks.
void TestWaveFile::limits()
{
    WaveFileReader reader(save(allChunks()));
    const std::initializer_list<std::pair<Limits::Limit, std::uint64_t>> needed{
        {Limits::WaveChunks, 11}, {Limits::CuePoints, 3}, {Limits::CueLabelBytes, 10 + 5 + 19}};
    for (const auto& [eLimit, uiNeeded] : needed) {
        Limits::setValue(eLimit, uiNeeded);
        QVERIFY2(reader.open(), qPrintable(reader.errorString()));
        Limits::setValue(eLimit, uiNeeded - 1);
        QVERIFY(!reader.open());
        QCOMPARE(reader.errorString(), Limits::exceeded(eLimit));
        Limits::setValue(eLimit, 0);
    }
    Limits::setValue(Limits::DataBytes, 39);
    QVERIFY(reader.open());
    std::vector<float> samples;
    QVERIFY(reader.readSamples(0, 9, samples) && !reader.readSamples(0, 10, samples));
}

/// If a truncated file can be opened, it gives all frames of its length() and no more.
void TestWaveFile::cutAtEveryByte()
{
    const QByteArray whole = wave(s_mono16 + chunk("data", ramp(10)));
    constexpr qsizetype iHeader = 44;
    const QString sPath = save(whole);
    for (qsizetype iSize = whole.size(); iSize >= 0; --iSize) {
        QVERIFY(QFile::resize(sPath, iSize));
        WaveFileReader reader(sPath);
        QCOMPARE(reader.open(), iSize >= iHeader);
        QCOMPARE(reader.missingBytes(), reader.isOpen() ? std::int64_t{whole.size() - iSize} : 0);
        const std::uint32_t uiFrames = reader.isOpen() ? static_cast<std::uint32_t>(iSize - iHeader) / 2 : 0;
        QCOMPARE(reader.length(), uiFrames);
        std::vector<std::int16_t> samples;
        QVERIFY(!reader.readSamples(0, uiFrames + 1, samples));
        QCOMPARE(reader.readSamples(0, uiFrames, samples), uiFrames != 0);
        QCOMPARE(samples.size(), std::size_t{uiFrames});
    }
}

void TestWaveFile::changedAtEveryByte()
{
    const QByteArray whole = allChunks();
    QFile file(save(whole));
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    for (qsizetype i = 0; i < whole.size(); ++i) {
        for (const char cByte : {'\0', '\1', '\x7F', '\xFF', whole[i]}) {
            QVERIFY(file.seek(i) && file.write(&cByte, 1) == 1);
            WaveFileReader reader(file.fileName());
            std::vector<float> samples;
            if (reader.open() && reader.readSamples(0, reader.length(), samples)) {
                QVERIFY(samples.size() <= static_cast<std::size_t>(whole.size()));
            }
        }
    }
}

void TestWaveFile::shrinks()
{
    const QString sPath = save(wave(s_mono16 + chunk("data", ramp(40000))));
    WaveFileReader reader(sPath);
    AudioFile audio(sPath);
    QVERIFY(reader.open() && audio.open());
    QVERIFY(QFile::resize(sPath, 1000));
    std::vector<std::int16_t> samples(3);
    QVERIFY(!reader.readSamples(0, 40000, samples));
    QVERIFY(samples.empty());
    QVERIFY(TraceCollector::lines().first().contains(QStringLiteral("956 of 80000 bytes")));
    QVERIFY(audio.readSamples(20000, 30000).empty());
    QCOMPARE(TraceCollector::lines().size(), 2);
    QVERIFY(reader.open());
    QCOMPARE(reader.length(), std::uint32_t{478});
    reader.close();
    QVERIFY(!reader.isOpen() && reader.length() == 0 && reader.missingBytes() == 0);
}

void TestWaveFile::audioFormats()
{
    AudioFile audio(save(wave(s_mono16 + chunk("data", QByteArray(191980, '\0')))));
    QVERIFY(audio.open());
    QCOMPARE(audio.length(), std::uint32_t{2999});
    audio.setPackageDuration(3000);
    QCOMPARE(audio.packageDuration(), std::uint32_t{3000});
    const QByteArrayList others{format(2, 32000, 4, 16), format(1, 44100, 2, 16), format(1, 32000, 3, 24)};
    for (const QByteArray& other : others) {
        const QString sPath = save(wave(chunk("fmt ", other) + chunk("data", ramp(12))));
        QVERIFY(WaveFileReader(sPath).open());
        QVERIFY(!audio.open() && !audio.isOpen() && !audio.errorString().isEmpty());
        QCOMPARE(audio.length(), std::uint32_t{0});
    }
    QCOMPARE(TraceCollector::lines().size(), others.size());
}

void TestWaveFile::audioWraps_data()
{
    QTest::addColumn<QByteArray>("chunks");
    QTest::addColumn<quint64>("start");
    QTest::addColumn<quint64>("count");
    QTest::addColumn<QList<int>>("samples"); // empty = refused with one trace
    const QByteArray five = s_mono16 + chunk("data", ramp(5)) + chunk("tail", "abcd");
    const auto row = [](const char* a_szName, const QByteArray& a_chunks, quint64 a_uiStart,
                        quint64 a_uiCount, const QList<int>& a_samples) {
        QTest::newRow(a_szName) << wave(a_chunks) << a_uiStart << a_uiCount << a_samples;
    };
    row("within", five, 1, 3, {1, 2, 3});
    row("past the end", five, 3, 4, {3, 4, 0, 1});
    row("round twice", five, 3, 12, {3, 4, 0, 1, 2, 3, 4, 0, 1, 2, 3, 4});
    row("start folded", five, 5'000'000'000'002, 2, {2, 3});
    row("sum beyond 64 bits", five, std::numeric_limits<quint64>::max(), 6, {0, 1, 2, 3, 4, 0});
    row("one frame", s_mono16 + chunk("data", little<std::int16_t>({-7})), 3, 3, {-7, -7, -7});
    row("8 bits", s_mono8 + chunk("data", QByteArray("\0\x80\xFF", 3)), 2, 4, {32512, -32768, 0, 32512});
    row("at the limit", five, 0, 16, {0, 1, 2, 3, 4, 0, 1, 2, 3, 4, 0, 1, 2, 3, 4, 0});
    row("far beyond the limit", five, 0, std::numeric_limits<quint64>::max(), {});
    row("no frames", s_mono16 + chunk("data", "x"), 0, 1, {});
}

void TestWaveFile::audioWraps()
{
    QFETCH(QByteArray, chunks);
    QFETCH(quint64, start);
    QFETCH(quint64, count);
    QFETCH(QList<int>, samples);
    AudioFile audio(save(chunks));
    QVERIFY(audio.open());
    Limits::setValue(Limits::DataBytes, 32);
    const std::vector<std::int16_t> got = audio.readSamples(start, count);
    QCOMPARE(QList<int>(got.begin(), got.end()), samples);
    QCOMPARE(TraceCollector::lines().size(), samples.isEmpty() ? 1 : 0);
    QVERIFY(audio.readSamples(start, 0).empty());
}

QTEST_GUILESS_MAIN(TestWaveFile)
#include "tst_wavefile.moc"
