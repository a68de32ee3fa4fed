#include "audiofile.h"

#include "simulationdata/io/datafile_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"

#include <QMutexLocker>

#include <algorithm>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/audiofile";

constexpr std::uint16_t s_uiChannels = 1;
constexpr std::uint32_t s_uiSampleRate = 32'000; // frames per second
constexpr unsigned int s_uiFramesToMsShift = 5;  // 32 frames per millisecond
constexpr std::uint16_t s_uiBits8 = 8;
constexpr std::uint16_t s_uiBits16 = 16;

std::int16_t widened(std::uint8_t a_uiSample)
{
    constexpr int iSilence = 128;
    constexpr int iSteps = 256; // 16-bit steps per 8-bit step
    return static_cast<std::int16_t>((a_uiSample - iSilence) * iSteps);
}

qint64 bytesOf(std::size_t a_uiSamples)
{
    return static_cast<qint64>(a_uiSamples) * qint64{sizeof(std::int16_t)};
}

} // namespace

AudioFile::AudioFile(const QString& a_sPath)
    : m_sPath(a_sPath)
    , m_reader(a_sPath)
{}

bool AudioFile::open()
{
    const QMutexLocker lock(&m_mutex);
    m_sError.clear();
    if (!m_reader.open()) {
        m_sError = m_reader.errorString();
        return false;
    }
    const WaveFileReader::Format& format = m_reader.format();
    const bool bBits = format.bitsPerSample == s_uiBits16 || format.bitsPerSample == s_uiBits8;
    if (format.channels == s_uiChannels && format.sampleRate == s_uiSampleRate && bBits) {
        return true;
    }
    m_sError = QStringLiteral("%1 channels at %2 frames per second of %3 bits are not the simulation's audio")
                   .arg(format.channels)
                   .arg(format.sampleRate)
                   .arg(format.bitsPerSample);
    m_reader.close();
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot open the audio file \"%1\": %2").arg(m_sPath, m_sError);
    });
    return false;
}

bool AudioFile::isOpen() const
{
    const QMutexLocker lock(&m_mutex);
    return m_reader.isOpen();
}

QString AudioFile::errorString() const
{
    const QMutexLocker lock(&m_mutex);
    return m_sError;
}

std::uint32_t AudioFile::length() const
{
    const QMutexLocker lock(&m_mutex);
    return m_reader.length() >> s_uiFramesToMsShift;
}

std::uint32_t AudioFile::packageDuration() const
{
    const QMutexLocker lock(&m_mutex);
    return m_uiPackageDuration;
}

void AudioFile::setPackageDuration(unsigned int a_uiDuration)
{
    const QMutexLocker lock(&m_mutex);
    m_uiPackageDuration = a_uiDuration;
}

std::vector<std::int16_t> AudioFile::readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount)
{
    const QMutexLocker lock(&m_mutex);
    if (a_uiCount == 0) {
        return {};
    }
    const QString sError = errorText(a_uiCount);
    if (!sError.isEmpty()) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Cannot read %1 samples of \"%2\": %3")
                .arg(QString::number(a_uiCount), m_sPath, sError);
        });
        return {};
    }
    const std::uint64_t uiFrames = m_reader.length();
    const std::uint64_t uiStart = a_uiStart % uiFrames;
    const std::uint64_t uiFirst = std::min(a_uiCount, uiFrames - uiStart);
    const std::uint64_t uiRest = std::min(a_uiCount - uiFirst, uiStart);
    std::vector<std::int16_t> samples;
    samples.reserve(static_cast<std::size_t>(a_uiCount));
    if (!readOnce(uiStart, uiFirst, samples)) {
        return {};
    }
    if (uiRest != 0) {
        std::vector<std::int16_t> rest;
        if (!readOnce(0, uiRest, rest)) {
            return {};
        }
        samples.insert(samples.end(), rest.begin(), rest.end());
    }
    // `samples` now has the first `a_uiCount` samples, but at most one whole recording.
    // Repetitions of these samples fill the rest.
    const std::size_t uiPeriod = samples.size();
    samples.resize(static_cast<std::size_t>(a_uiCount));
    repeat(samples.data(), bytesOf(uiPeriod), bytesOf(samples.size()));
    return samples;
}

/// The reason why `a_uiCount` samples cannot be read; empty when they can be read. Does
/// not check whether the file is open.
QString AudioFile::errorText(std::uint64_t a_uiCount) const
{
    if (a_uiCount > Limits::value(Limits::DataBytes) / sizeof(std::int16_t)) {
        return Limits::exceeded(Limits::DataBytes);
    }
    return m_reader.length() == 0 ? QStringLiteral("there are none") : QString();
}

/// Reads a range that lies within the recording and widens 8-bit samples: (sample -
/// 128) * 256.
bool AudioFile::readOnce(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                         std::vector<std::int16_t>& a_samples)
{
    if (m_reader.format().bitsPerSample == s_uiBits16) {
        return m_reader.readSamples(a_uiStart, a_uiCount, a_samples);
    }
    std::vector<std::uint8_t> bytes;
    if (!m_reader.readSamples(a_uiStart, a_uiCount, bytes)) {
        return false;
    }
    a_samples.resize(bytes.size());
    std::transform(bytes.begin(), bytes.end(), a_samples.begin(), widened);
    return true;
}

} // namespace Simulation
