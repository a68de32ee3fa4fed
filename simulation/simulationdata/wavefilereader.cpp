#include "wavefilereader.h"

#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/io/wavechunks_p.h"
#include "simulationdata/simulationlimits.h"

#include <QtEndian>

#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/wavefilereader";

constexpr std::uint16_t s_uiBits8 = 8;
constexpr std::uint16_t s_uiBits16 = 16;
constexpr std::uint16_t s_uiBitsFloat = 32;
constexpr int s_iSilence8 = 128;       // value of silence in 8-bit samples
constexpr float s_fScale8 = 128.0F;    // full scale of 8-bit samples
constexpr float s_fScale16 = 32768.0F; // full scale of 16-bit samples

static_assert(std::numeric_limits<float>::is_iec559 && sizeof(float) == sizeof(std::uint32_t),
              "samples are copied into floats as they are");

float scaled(std::uint8_t a_uiSample)
{
    return static_cast<float>(a_uiSample - s_iSilence8) / s_fScale8;
}

float scaled(std::int16_t a_iSample)
{
    return static_cast<float>(a_iSample) / s_fScale16;
}

/// Converts the samples in the last bytes of the vector to floats, from the first
/// to the last. A float is at least as large as a sample, so each float overwrites
/// only samples that are already converted.
template<typename Sample>
void scaleInPlace(std::vector<float>& a_samples)
{
    const char* pSample =
        reinterpret_cast<const char*>(a_samples.data()) + a_samples.size() * (sizeof(float) - sizeof(Sample));
    for (float& fSample : a_samples) {
        fSample = scaled(qFromLittleEndian<Sample>(pSample));
        pSample += sizeof(Sample);
    }
}

} // namespace

/// A range of complete frames: its place in the file (bytes), and the number of
/// values (frames times channels).
struct WaveFileReader::Range
{
    qint64 offset = 0;
    qint64 bytes = 0;
    std::size_t values = 0;
};

WaveFileReader::WaveFileReader(const QString& a_sPath)
    : m_file(a_sPath)
{}

WaveFileReader::~WaveFileReader() = default;

bool WaveFileReader::open()
{
    close();
    m_sError.clear();
    std::optional<WaveContents> contents;
    if (openDataFile(m_file, &m_sError)) {
        contents = readWaveContents(m_file, &m_sError);
    }
    if (!contents) {
        close();
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot open the wave file \"%1\": %2").arg(m_file.fileName(), m_sError);
        });
        return false;
    }
    take(*contents);
    return true;
}

void WaveFileReader::close()
{
    m_file.close();
    take({});
}

void WaveFileReader::take(const WaveContents& a_contents)
{
    m_format = a_contents.format;
    m_bFloat = a_contents.floatSamples;
    m_iDataOffset = a_contents.dataOffset;
    m_iDataSize = a_contents.dataSize;
    m_iMissingBytes = a_contents.missingBytes;
    m_cuePoints = a_contents.cuePoints;
}

bool WaveFileReader::isOpen() const
{
    return m_file.isOpen();
}

QString WaveFileReader::errorString() const
{
    return m_sError;
}

std::uint32_t WaveFileReader::length() const
{
    return m_format.blockAlign != 0 ? static_cast<std::uint32_t>(m_iDataSize / m_format.blockAlign) : 0;
}

bool WaveFileReader::isPcm(std::uint16_t a_uiBits) const
{
    return !m_bFloat && m_format.bitsPerSample == a_uiBits;
}

bool WaveFileReader::readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                 std::vector<std::int16_t>& a_samples)
{
    if (!readRange(a_uiStart, a_uiCount, isPcm(s_uiBits16), a_samples)) {
        return false;
    }
    qFromLittleEndian<std::int16_t>(a_samples.data(), static_cast<qsizetype>(a_samples.size()),
                                    a_samples.data());
    return true;
}

bool WaveFileReader::readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                 std::vector<std::uint8_t>& a_samples)
{
    return readRange(a_uiStart, a_uiCount, isPcm(s_uiBits8), a_samples);
}

bool WaveFileReader::readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                 std::vector<float>& a_samples)
{
    const bool bFloat = m_bFloat && m_format.bitsPerSample == s_uiBitsFloat;
    if (!readRange(a_uiStart, a_uiCount, bFloat || isPcm(s_uiBits16) || isPcm(s_uiBits8), a_samples)) {
        return false;
    }
    if (bFloat) {
        qFromLittleEndian<std::uint32_t>(a_samples.data(), static_cast<qsizetype>(a_samples.size()),
                                         a_samples.data());
    } else if (m_format.bitsPerSample == s_uiBits16) {
        scaleInPlace<std::int16_t>(a_samples);
    } else {
        scaleInPlace<std::uint8_t>(a_samples);
    }
    return true;
}

/// Reads the samples unconverted into the last bytes of the vector. `a_bFits` is whether
/// samples in the file's format can be returned as `Value`.
template<typename Value>
bool WaveFileReader::readRange(std::uint64_t a_uiStart, std::uint64_t a_uiCount, bool a_bFits,
                               std::vector<Value>& a_samples)
{
    Range range;
    QString sReason;
    if (!isOpen()) {
        sReason = QStringLiteral("it is not open");
    } else if (!a_bFits) {
        sReason = QStringLiteral("%1 bits of %2 are not what was asked for")
                      .arg(m_format.bitsPerSample)
                      .arg(m_bFloat ? QStringLiteral("floating point") : QStringLiteral("PCM"));
    } else if (findRange(a_uiStart, a_uiCount, sizeof(Value), &range, &sReason)) {
        a_samples.resize(range.values);
        char* pEnd = reinterpret_cast<char*>(a_samples.data() + a_samples.size());
        const qint64 iRead = readAt(m_file, range.offset, pEnd - range.bytes, range.bytes);
        if (iRead == range.bytes) {
            return true;
        }
        sReason = QStringLiteral("the file has only %1 of %2 bytes").arg(iRead).arg(range.bytes);
    }
    a_samples.clear();
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot read %1 frames from frame %2 on in \"%3\": %4")
            .arg(QString::number(a_uiCount), QString::number(a_uiStart), m_file.fileName(), sReason);
    });
    return false;
}

/// Finds the bytes of a range in the file. False with a reason when the range cannot be
/// read. `a_uiValueBytes` is the size of one value of the result.
bool WaveFileReader::findRange(std::uint64_t a_uiStart, std::uint64_t a_uiCount, std::uint64_t a_uiValueBytes,
                               Range* a_pRange, QString* a_pReason) const
{
    const std::uint64_t uiFrames = length();
    if (uiFrames != 0 && (a_uiStart > uiFrames || a_uiCount > uiFrames - a_uiStart)) {
        a_uiStart %= uiFrames;
    }
    if (a_uiCount == 0 || a_uiStart > uiFrames || a_uiCount > uiFrames - a_uiStart) {
        *a_pReason = QStringLiteral("it has %1 frames").arg(uiFrames);
        return false;
    }
    // The products fit 64 bits: 32 bits for the frames, 16 for the channels, 3 for the
    // size of a value.
    const std::uint64_t uiValues = a_uiCount * m_format.channels;
    if (uiValues * a_uiValueBytes > Limits::value(Limits::DataBytes)) {
        *a_pReason = Limits::exceeded(Limits::DataBytes);
        return false;
    }
    a_pRange->offset = m_iDataOffset + static_cast<qint64>(a_uiStart) * m_format.blockAlign;
    a_pRange->bytes = static_cast<qint64>(a_uiCount) * m_format.blockAlign;
    a_pRange->values = static_cast<std::size_t>(uiValues);
    return true;
}

} // namespace Simulation
