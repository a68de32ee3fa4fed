#include "wavefilewriter.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

namespace Simulation {

namespace {

constexpr quint32 s_uiFormatBytes = 16;
constexpr quint16 s_uiPcm = 1;
constexpr quint16 s_uiChannels = 1;
constexpr quint16 s_uiBytesPerSample = 2;
constexpr quint16 s_uiBitsPerSample = 16;

/// Bytes between the size field of the RIFF chunk and the samples: form type (4),
/// format chunk (8 + 16), header of the data chunk (8).
constexpr quint32 s_uiHeaderBytes = 36;

static_assert((UINT32_MAX - s_uiHeaderBytes) / s_uiBytesPerSample == WaveFileWriter::s_uiMaxSamples);

void writeId(QDataStream& a_stream, const char (&a_szId)[5])
{
    a_stream.writeRawData(a_szId, 4);
}

} // namespace

QByteArray WaveFileWriter::header(std::uint32_t a_uiSamples, std::uint32_t a_uiRate)
{
    const quint32 uiDataBytes = a_uiSamples * s_uiBytesPerSample;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    writeId(stream, "RIFF");
    stream << s_uiHeaderBytes + uiDataBytes;
    writeId(stream, "WAVE");
    writeId(stream, "fmt ");
    stream << s_uiFormatBytes << s_uiPcm << s_uiChannels << quint32{a_uiRate}
           << quint32{a_uiRate * s_uiBytesPerSample} << s_uiBytesPerSample << s_uiBitsPerSample;
    writeId(stream, "data");
    stream << uiDataBytes;
    return bytes;
}

QByteArray WaveFileWriter::samples(std::span<const std::int16_t> a_samples)
{
    if (a_samples.empty()) {
        return {}; // the conversion must not get a null pointer
    }
    QByteArray bytes(static_cast<qsizetype>(a_samples.size_bytes()), Qt::Uninitialized);
    qToLittleEndian<std::int16_t>(a_samples.data(), static_cast<qsizetype>(a_samples.size()), bytes.data());
    return bytes;
}

} // namespace Simulation
