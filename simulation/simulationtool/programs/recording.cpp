#include "recording.h"

#include "console/valuetexts.h"

#include "simulationdata/wavefilereader.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <cmath>

namespace SimulationTool {

namespace {

constexpr std::uint64_t s_uiBlockFrames = 65'536;

/// Values beyond this multiple of full scale are no samples. Recordings of floating-point
/// numbers without a scale reach 2^23.
constexpr float s_fLargestValue = 1e7F;

/// WAVE files outside these rates (frames per second) have a damaged header.
constexpr std::uint32_t s_uiMinWaveRate = 1'000;
constexpr std::uint32_t s_uiMaxWaveRate = 384'000;

/// A WAVE file, whose channels are averaged to one.
class WaveRecording : public Recording
{
public:
    explicit WaveRecording(const QString& a_sFile)
        : m_reader(a_sFile)
    {}

    [[nodiscard]] bool open() override;
    [[nodiscard]] std::uint64_t frames() const override { return m_reader.length(); }
    [[nodiscard]] std::uint32_t rate() const override { return m_reader.format().sampleRate; }
    [[nodiscard]] bool isReal() const override { return true; }

protected:
    [[nodiscard]] bool readFrames(std::uint64_t a_uiFirst, std::vector<Sample>& a_block) override;
    [[nodiscard]] std::uint64_t blockFrames() const override;

private:
    Simulation::WaveFileReader m_reader;
    std::vector<float> m_values; ///< of one block, all channels
};

bool WaveRecording::open()
{
    if (!m_reader.open()) {
        return fail(QStringLiteral("is not a WAVE file that can be read: ") + m_reader.errorString());
    }
    if (m_reader.missingBytes() != 0) {
        return fail(QStringLiteral("is truncated: its samples lack %1 that its header announces; copy or "
                                   "record it again")
                        .arg(counted(static_cast<quint64>(m_reader.missingBytes()), "byte")));
    }
    if (frames() == 0) {
        return fail(QStringLiteral("has no samples: give a recording that has some"));
    }
    if (rate() < s_uiMinWaveRate || rate() > s_uiMaxWaveRate) {
        return fail(QStringLiteral("has %1 frames per second in its header, and %2 to %3 are possible: the "
                                   "header is damaged; convert or record it again")
                        .arg(rate())
                        .arg(s_uiMinWaveRate)
                        .arg(s_uiMaxWaveRate));
    }
    if (!m_reader.readSamples(0, 1, m_values)) {
        return fail(QStringLiteral("has samples of %1 bits, and only 8 and 16 bits PCM and 32 bits floating "
                                   "point can be read: convert it to 16 bits first")
                        .arg(m_reader.format().bitsPerSample));
    }
    return true;
}

std::uint64_t WaveRecording::blockFrames() const
{
    return std::max<std::uint64_t>(s_uiBlockFrames / m_reader.format().channels, 1);
}

bool WaveRecording::readFrames(std::uint64_t a_uiFirst, std::vector<Sample>& a_block)
{
    if (!m_reader.readSamples(a_uiFirst, a_block.size(), m_values)) {
        return fail(QStringLiteral("cannot be read from frame %1 on: it was changed meanwhile, or the disk "
                                   "is damaged; try again")
                        .arg(a_uiFirst));
    }
    const std::size_t uiChannels = m_reader.format().channels;
    for (std::size_t i = 0; i < a_block.size(); ++i) {
        float fSum = 0.0F;
        for (std::size_t uiChannel = 0; uiChannel < uiChannels; ++uiChannel) {
            fSum += m_values[i * uiChannels + uiChannel];
        }
        a_block[i] = {fSum / static_cast<float>(uiChannels), 0.0F};
    }
    return true;
}

struct IqLayout
{
    std::uint32_t valueBytes;
    const char* name; ///< in messages
    float (*value)(const char* a_pBytes);
};

IqLayout layoutOf(IqFormat a_eFormat)
{
    constexpr float fScale16 = 32768.0F;
    constexpr float fMiddle8 = 127.5F;
    switch (a_eFormat) {
    case IqFormat::Signed16:
        return {2, "s16", [](const char* a_pBytes) {
                    return static_cast<float>(qFromLittleEndian<std::int16_t>(a_pBytes)) / fScale16;
                }};
    case IqFormat::Unsigned8:
        return {1, "u8", [](const char* a_pBytes) {
                    return (static_cast<float>(static_cast<std::uint8_t>(*a_pBytes)) - fMiddle8) / fMiddle8;
                }};
    case IqFormat::Float32:
        break;
    }
    return {4, "f32", [](const char* a_pBytes) { return qFromLittleEndian<float>(a_pBytes); }};
}

class IqRecording : public Recording
{
public:
    IqRecording(const QString& a_sFile, IqFormat a_eFormat, std::uint32_t a_uiRate)
        : m_file(a_sFile)
        , m_layout(layoutOf(a_eFormat))
        , m_uiRate(a_uiRate)
    {}

    [[nodiscard]] bool open() override;
    [[nodiscard]] std::uint64_t frames() const override { return m_uiFrames; }
    [[nodiscard]] std::uint32_t rate() const override { return m_uiRate; }
    [[nodiscard]] bool isReal() const override { return false; }

protected:
    [[nodiscard]] bool readFrames(std::uint64_t a_uiFirst, std::vector<Sample>& a_block) override;

private:
    QFile m_file;
    IqLayout m_layout;
    std::uint32_t m_uiRate;
    std::uint64_t m_uiFrames = 0;
    QByteArray m_bytes; ///< of one block
};

bool IqRecording::open()
{
    // Opening a pipe or a device could block without limit.
    const QFileInfo info(m_file.fileName());
    if (!info.exists()) {
        return fail(QStringLiteral("No such file or directory"));
    }
    if (!info.isFile()) {
        return fail(QStringLiteral("is not a regular file: save the recording to one first"));
    }
    if (!m_file.open(QIODevice::ReadOnly)) {
        return fail(m_file.errorString());
    }
    const auto uiBytes = static_cast<std::uint64_t>(m_file.size());
    const std::uint64_t uiFrameBytes = 2 * std::uint64_t{m_layout.valueBytes};
    if (uiBytes == 0) {
        return fail(QStringLiteral("is empty: give a recording that has samples"));
    }
    if (uiBytes % uiFrameBytes != 0) {
        return fail(
            QStringLiteral("has %1, which is not a multiple of the %2 bytes of an I/Q pair in the "
                           "format %3: it is truncated, or --format must be another one")
                .arg(counted(uiBytes, "byte"), QString::number(uiFrameBytes), QLatin1String(m_layout.name)));
    }
    m_uiFrames = uiBytes / uiFrameBytes;
    return true;
}

bool IqRecording::readFrames(std::uint64_t a_uiFirst, std::vector<Sample>& a_block)
{
    const qint64 iFrameBytes = 2 * qint64{m_layout.valueBytes};
    m_bytes.resize(static_cast<qsizetype>(a_block.size()) * iFrameBytes);
    if (m_file.read(m_bytes.data(), m_bytes.size()) != m_bytes.size()) {
        return fail(QStringLiteral("cannot be read from byte %1 on: it was changed meanwhile, or the disk is "
                                   "damaged; try again")
                        .arg(a_uiFirst * static_cast<std::uint64_t>(iFrameBytes)));
    }
    const char* pBytes = m_bytes.constData();
    for (Sample& sample : a_block) {
        sample = {m_layout.value(pBytes), m_layout.value(pBytes + m_layout.valueBytes)};
        pBytes += iFrameBytes;
    }
    return true;
}

} // namespace

std::uint64_t Recording::blockFrames() const
{
    return s_uiBlockFrames;
}

bool Recording::fail(const QString& a_sReason)
{
    m_sError = a_sReason;
    return false;
}

bool Recording::readBlock(std::vector<Sample>& a_block)
{
    a_block.resize(static_cast<std::size_t>(std::min(frames() - m_uiNext, blockFrames())));
    if (!a_block.empty() && (!readFrames(m_uiNext, a_block) || !checkValues(a_block))) {
        return false;
    }
    m_uiNext += a_block.size();
    return true;
}

bool Recording::checkValues(const std::vector<Sample>& a_block)
{
    const auto isSample = [](float a_fValue) { return std::abs(a_fValue) <= s_fLargestValue; }; // not NaN
    const auto bad = std::find_if(a_block.begin(), a_block.end(), [&](const Sample& a_sample) {
        return !isSample(a_sample.real()) || !isSample(a_sample.imag());
    });
    if (bad == a_block.end()) {
        return true;
    }
    const float fBad = isSample(bad->real()) ? bad->imag() : bad->real();
    return fail(
        QStringLiteral("has the value %1 in frame %2, and full scale is 1: the file is damaged, or its "
                       "samples have another format; convert or record it again")
            .arg(shortNumber(fBad))
            .arg(m_uiNext + static_cast<std::uint64_t>(bad - a_block.begin())));
}

std::unique_ptr<Recording> waveRecording(const QString& a_sFile)
{
    return std::make_unique<WaveRecording>(a_sFile);
}

std::unique_ptr<Recording> iqRecording(const QString& a_sFile, IqFormat a_eFormat, std::uint32_t a_uiRate)
{
    return std::make_unique<IqRecording>(a_sFile, a_eFormat, a_uiRate);
}

} // namespace SimulationTool
