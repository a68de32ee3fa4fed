#include "wavechunks_p.h"

#include "datafile_p.h"
#include "simulationdata/simulationlimits.h"

#include <QByteArray>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <map>
#include <vector>

namespace Simulation {

namespace {

/// A four-character id as a little-endian number, as numberAt() reads it.
constexpr std::uint32_t chunkId(const char (&a_szId)[5])
{
    std::uint32_t uiId = 0;
    for (unsigned int i = 0; i < 4; ++i) {
        uiId |= static_cast<std::uint32_t>(a_szId[i]) << (8 * i);
    }
    return uiId;
}

constexpr std::uint32_t s_uiRiff = chunkId("RIFF");
constexpr std::uint32_t s_uiWave = chunkId("WAVE");
constexpr std::uint32_t s_uiFormat = chunkId("fmt ");
constexpr std::uint32_t s_uiData = chunkId("data");
constexpr std::uint32_t s_uiCue = chunkId("cue ");
constexpr std::uint32_t s_uiList = chunkId("LIST");
constexpr std::uint32_t s_uiAssociatedData = chunkId("adtl");
constexpr std::uint32_t s_uiLabel = chunkId("labl");

// Header of a chunk: id at 0, size of the body at 4 (32 bits each).
constexpr qint64 s_iChunkHeaderBytes = 8;
constexpr std::size_t s_uiChunkSizeAt = 4;
constexpr qint64 s_iTypeBytes = 4; // form type of a RIFF chunk, list type of a LIST chunk

// The body of the format chunk: tag, channels (16 bits each), frames per second,
// bytes per second (32 bits each), bytes per frame, bits per sample (16 bits each).
// In an extensible format the sub-format id of 16 bytes follows at 24.
constexpr qint64 s_iFormatBytes = 16;
constexpr qint64 s_iExtensibleFormatBytes = 40;
constexpr std::size_t s_uiFormatTagAt = 0;
constexpr std::size_t s_uiChannelsAt = 2;
constexpr std::size_t s_uiSampleRateAt = 4;
constexpr std::size_t s_uiBlockAlignAt = 12;
constexpr std::size_t s_uiBitsPerSampleAt = 14;
constexpr std::size_t s_uiSubFormatAt = 24;
constexpr std::size_t s_uiSubFormatTailAt = 26;
constexpr std::uint16_t s_uiPcmTag = 1;
constexpr std::uint16_t s_uiFloatTag = 3;
constexpr std::uint16_t s_uiExtensibleTag = 65534;
constexpr unsigned int s_uiBitsPerByte = 8;
constexpr unsigned int s_uiBitsFloat = 32;

/// The last 14 bytes of a sub-format id that represents a format tag. Such an id is the
/// GUID 0000XXXX-0000-0010-8000-00AA00389B71, where XXXX is the tag. In the file, the tag
/// is the first two bytes of the id.
constexpr std::array<unsigned char, 14> s_subFormatTail{0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                        0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

// The cue chunk: a count (32 bits), then entries of 24 bytes with the id at 0 and
// the sample offset at 20.
constexpr qint64 s_iCueCountBytes = 4;
constexpr qint64 s_iCueBytes = 24;
constexpr std::size_t s_uiCueSampleOffsetAt = 20;

constexpr qint64 s_iLabelIdBytes = 4;

struct Chunk
{
    std::uint32_t id = 0;
    qint64 start = 0; ///< offset of the chunk's body in the file
    qint64 size = 0;  ///< bytes of the body, as claimed

    [[nodiscard]] qint64 end() const { return start + size; }

    /// Chunks are padded to an even size.
    [[nodiscard]] qint64 next() const { return end() + size % 2; }
};

/// The text of a label. Labels do not declare their encoding. Bytes that are valid UTF-8
/// are read as UTF-8, all others as Latin-1, because older programs wrote the encoding of
/// their system.
QString labelText(const QByteArray& a_bytes)
{
    const QByteArrayView text(
        a_bytes.constData(),
        static_cast<qsizetype>(qstrnlen(a_bytes.constData(), static_cast<size_t>(a_bytes.size()))));
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString sText = decoder.decode(text);
    return decoder.hasError() ? QString::fromLatin1(text) : sText;
}

/// Reads the chunks of one file. Sizes have 32 bits in the file and 64 bits here,
/// so that no sum of them overflows.
class ChunkReader
{
public:
    ChunkReader(QFile& a_file, QString* a_pReason)
        : m_file(a_file)
        , m_iFileSize(a_file.size())
        , m_pReason(a_pReason)
    {}

    [[nodiscard]] std::optional<WaveContents> read();

private:
    bool refuse(const QString& a_sReason)
    {
        *m_pReason = a_sReason;
        return false;
    }

    /// Bytes of the chunk that the file really holds.
    [[nodiscard]] qint64 held(const Chunk& a_chunk) const
    {
        return std::clamp<qint64>(m_iFileSize - a_chunk.start, 0, a_chunk.size);
    }

    [[nodiscard]] bool readBytes(qint64 a_iOffset, void* a_pTarget, qint64 a_iBytes)
    {
        return readAt(m_file, a_iOffset, a_pTarget, a_iBytes) == a_iBytes;
    }

    [[nodiscard]] bool readHeader(qint64 a_iOffset, Chunk* a_pChunk);
    [[nodiscard]] std::uint32_t typeOf(const Chunk& a_chunk);
    [[nodiscard]] bool countChunk();
    [[nodiscard]] bool readRiffHeader();
    [[nodiscard]] bool readChunks();
    [[nodiscard]] bool readChunk(const Chunk& a_chunk);
    [[nodiscard]] bool readFormat(const Chunk& a_chunk);
    [[nodiscard]] bool readSubFormat(const char* a_pFormat);
    [[nodiscard]] bool checkFormat();
    [[nodiscard]] bool readCues(const Chunk& a_chunk);
    [[nodiscard]] bool readLabels(const Chunk& a_list);
    [[nodiscard]] bool readLabel(const Chunk& a_label, qint64 a_iListEnd);
    void joinCuePoints();

    QFile& m_file;
    qint64 m_iFileSize;
    QString* m_pReason;
    WaveContents m_contents;
    bool m_bFormat = false;
    bool m_bData = false;
    std::uint64_t m_uiChunks = 0;
    std::uint64_t m_uiCues = 0;
    std::uint64_t m_uiLabelBytes = 0;
    std::map<std::uint32_t, std::uint32_t> m_cuePositions;
    std::map<std::uint32_t, QString> m_labels; // a label may precede its cue point
};

std::optional<WaveContents> ChunkReader::read()
{
    if (!readRiffHeader() || !readChunks()) {
        return std::nullopt;
    }
    if (!m_bFormat || !m_bData) {
        *m_pReason = QStringLiteral("no %1 chunk among %2 chunks in %3 bytes")
                         .arg(m_bFormat ? QStringLiteral("data") : QStringLiteral("format"))
                         .arg(m_uiChunks)
                         .arg(m_iFileSize);
        return std::nullopt;
    }
    joinCuePoints();
    return std::move(m_contents);
}

/// False when the rest of the file is shorter than a header.
bool ChunkReader::readHeader(qint64 a_iOffset, Chunk* a_pChunk)
{
    std::array<char, s_iChunkHeaderBytes> header{};
    if (!readBytes(a_iOffset, header.data(), s_iChunkHeaderBytes)) {
        return false;
    }
    a_pChunk->id = numberAt<std::uint32_t>(header.data(), 0);
    a_pChunk->size = numberAt<std::uint32_t>(header.data(), s_uiChunkSizeAt);
    a_pChunk->start = a_iOffset + s_iChunkHeaderBytes;
    return true;
}

/// The type with which the body of a RIFF or LIST chunk begins; 0 when the body is
/// too short.
std::uint32_t ChunkReader::typeOf(const Chunk& a_chunk)
{
    std::array<char, s_iTypeBytes> type{};
    if (held(a_chunk) < s_iTypeBytes || !readBytes(a_chunk.start, type.data(), s_iTypeBytes)) {
        return 0;
    }
    return numberAt<std::uint32_t>(type.data(), 0);
}

bool ChunkReader::countChunk()
{
    ++m_uiChunks;
    return m_uiChunks <= Limits::value(Limits::WaveChunks) || refuse(Limits::exceeded(Limits::WaveChunks));
}

bool ChunkReader::readRiffHeader()
{
    Chunk riff;
    if (!readHeader(0, &riff)) {
        return refuse(QStringLiteral("%1 bytes are too few for a RIFF header").arg(m_iFileSize));
    }
    if (riff.id != s_uiRiff) {
        return refuse(QStringLiteral("it begins with 0x%1, which is not \"RIFF\"")
                          .arg(riff.id, 8, 16, QLatin1Char('0')));
    }
    // A recorder that was killed leaves the size of the RIFF chunk 0.
    riff.size = std::max(riff.size, s_iTypeBytes);
    const std::uint32_t uiType = typeOf(riff);
    return uiType == s_uiWave || refuse(QStringLiteral("its form type is 0x%1, which is not \"WAVE\"")
                                            .arg(uiType, 8, 16, QLatin1Char('0')));
}

/// The size in the RIFF header is ignored: the chunks are read up to the end of the
/// file.
bool ChunkReader::readChunks()
{
    Chunk chunk;
    qint64 iOffset = s_iChunkHeaderBytes + s_iTypeBytes;
    while (readHeader(iOffset, &chunk)) {
        if (!countChunk() || !readChunk(chunk)) {
            return false;
        }
        iOffset = chunk.next();
    }
    return true;
}

bool ChunkReader::readChunk(const Chunk& a_chunk)
{
    switch (a_chunk.id) {
    case s_uiFormat:
        return readFormat(a_chunk);
    case s_uiData:
        m_bData = true;
        m_contents.dataOffset = a_chunk.start;
        m_contents.dataSize = held(a_chunk);
        m_contents.missingBytes = a_chunk.size - m_contents.dataSize;
        return true;
    case s_uiCue:
        return readCues(a_chunk);
    case s_uiList:
        return typeOf(a_chunk) != s_uiAssociatedData || readLabels(a_chunk);
    default:
        return true;
    }
}

bool ChunkReader::readFormat(const Chunk& a_chunk)
{
    std::array<char, s_iExtensibleFormatBytes> bytes{};
    const qint64 iBytes = std::min(a_chunk.size, s_iExtensibleFormatBytes);
    if (iBytes < s_iFormatBytes || !readBytes(a_chunk.start, bytes.data(), iBytes)) {
        return refuse(QStringLiteral("format chunk of %1 bytes, %2 of them in the file, at least %3 expected")
                          .arg(a_chunk.size)
                          .arg(held(a_chunk))
                          .arg(s_iFormatBytes));
    }
    const auto uiTag = numberAt<std::uint16_t>(bytes.data(), s_uiFormatTagAt);
    if (uiTag != s_uiPcmTag && uiTag != s_uiExtensibleTag) {
        return refuse(QStringLiteral("format tag %1 is not %2 or %3")
                          .arg(uiTag)
                          .arg(s_uiPcmTag)
                          .arg(s_uiExtensibleTag));
    }
    m_bFormat = true;
    m_contents.format.channels = numberAt<std::uint16_t>(bytes.data(), s_uiChannelsAt);
    m_contents.format.sampleRate = numberAt<std::uint32_t>(bytes.data(), s_uiSampleRateAt);
    m_contents.format.blockAlign = numberAt<std::uint16_t>(bytes.data(), s_uiBlockAlignAt);
    m_contents.format.bitsPerSample = numberAt<std::uint16_t>(bytes.data(), s_uiBitsPerSampleAt);
    // An extensible format without a sub-format means PCM.
    m_contents.floatSamples = false;
    const bool bSubFormat = uiTag == s_uiExtensibleTag && iBytes == s_iExtensibleFormatBytes;
    return (!bSubFormat || readSubFormat(bytes.data())) && checkFormat();
}

bool ChunkReader::readSubFormat(const char* a_pFormat)
{
    const auto uiTag = numberAt<std::uint16_t>(a_pFormat, s_uiSubFormatAt);
    const bool bTag =
        std::memcmp(a_pFormat + s_uiSubFormatTailAt, s_subFormatTail.data(), s_subFormatTail.size()) == 0;
    m_contents.floatSamples = uiTag == s_uiFloatTag;
    return (bTag && (uiTag == s_uiPcmTag || uiTag == s_uiFloatTag)) ||
           refuse(QStringLiteral("sub-format %1%2 is not %3 or %4")
                      .arg(uiTag)
                      .arg(bTag ? QString() : QStringLiteral(" of a private kind"))
                      .arg(s_uiPcmTag)
                      .arg(s_uiFloatTag));
}

/// Checks that a frame consists of one sample per channel and nothing else:
/// blockAlign = channels * ceil(bits / 8). All later sizes and offsets depend on this
/// equation.
bool ChunkReader::checkFormat()
{
    const WaveFileReader::Format& format = m_contents.format;
    const unsigned int uiSampleBytes = (format.bitsPerSample + s_uiBitsPerByte - 1) / s_uiBitsPerByte;
    const std::uint64_t uiFrameBytes = std::uint64_t{format.channels} * uiSampleBytes;
    // Floating-point samples of fewer than 32 bits are refused, because they could be
    // mistaken for PCM.
    const bool bFloat = m_contents.floatSamples && format.bitsPerSample < s_uiBitsFloat;
    return (uiFrameBytes != 0 && uiFrameBytes == format.blockAlign && !bFloat) ||
           refuse(QStringLiteral("%1 channels of %2 bits%3 do not make frames of %4 bytes")
                      .arg(format.channels)
                      .arg(format.bitsPerSample)
                      .arg(m_contents.floatSamples ? QStringLiteral(" floating point") : QString())
                      .arg(format.blockAlign));
}

bool ChunkReader::readCues(const Chunk& a_chunk)
{
    std::array<char, s_iCueCountBytes> count{};
    const qint64 iHeld = held(a_chunk);
    if (iHeld < s_iCueCountBytes || !readBytes(a_chunk.start, count.data(), s_iCueCountBytes)) {
        return refuse(QStringLiteral("cue chunk of %1 bytes has no count").arg(iHeld));
    }
    const auto uiCount = numberAt<std::uint32_t>(count.data(), 0);
    m_uiCues += uiCount;
    const qint64 iBytes = s_iCueBytes * qint64{uiCount};
    if (iBytes > iHeld - s_iCueCountBytes) {
        return refuse(
            QStringLiteral("%1 cue points do not fit a cue chunk of %2 bytes, %3 of them in the file")
                .arg(uiCount)
                .arg(a_chunk.size)
                .arg(iHeld));
    }
    if (m_uiCues > Limits::value(Limits::CuePoints)) {
        return refuse(Limits::exceeded(Limits::CuePoints));
    }
    std::vector<char> cues(static_cast<std::size_t>(iBytes));
    if (!readBytes(a_chunk.start + s_iCueCountBytes, cues.data(), iBytes)) {
        return refuse(QStringLiteral("%1 cue points cannot be read").arg(uiCount));
    }
    for (std::size_t uiAt = 0; uiAt < cues.size(); uiAt += s_iCueBytes) {
        m_cuePositions[numberAt<std::uint32_t>(cues.data(), uiAt)] =
            numberAt<std::uint32_t>(cues.data(), uiAt + s_uiCueSampleOffsetAt);
    }
    return true;
}

/// The entries of a list are chunks themselves and count towards
/// Limits::WaveChunks.
bool ChunkReader::readLabels(const Chunk& a_list)
{
    if (held(a_list) < a_list.size) {
        return refuse(QStringLiteral("list of labels of %1 bytes, %2 of them in the file")
                          .arg(a_list.size)
                          .arg(held(a_list)));
    }
    Chunk entry;
    qint64 iOffset = a_list.start + s_iTypeBytes;
    while (a_list.end() - iOffset >= s_iChunkHeaderBytes) {
        if (!readHeader(iOffset, &entry)) {
            return refuse(QStringLiteral("list of labels cannot be read at %1").arg(iOffset));
        }
        if (!countChunk() || (entry.id == s_uiLabel && !readLabel(entry, a_list.end()))) {
            return false;
        }
        iOffset = entry.next();
    }
    return true;
}

bool ChunkReader::readLabel(const Chunk& a_label, qint64 a_iListEnd)
{
    if (a_label.size < s_iLabelIdBytes || a_label.end() > a_iListEnd) {
        return refuse(QStringLiteral("label of %1 bytes with %2 left in its list")
                          .arg(a_label.size)
                          .arg(a_iListEnd - a_label.start));
    }
    m_uiLabelBytes += static_cast<std::uint64_t>(a_label.size);
    if (m_uiLabelBytes > Limits::value(Limits::CueLabelBytes)) {
        return refuse(Limits::exceeded(Limits::CueLabelBytes));
    }
    QByteArray bytes(static_cast<qsizetype>(a_label.size), Qt::Uninitialized);
    if (!readBytes(a_label.start, bytes.data(), a_label.size)) {
        return refuse(QStringLiteral("label of %1 bytes cannot be read").arg(a_label.size));
    }
    m_labels[numberAt<std::uint32_t>(bytes.constData(), 0)] = labelText(bytes.mid(s_iLabelIdBytes));
    return true;
}

void ChunkReader::joinCuePoints()
{
    m_contents.cuePoints.reserve(static_cast<qsizetype>(m_cuePositions.size()));
    for (const auto& [uiId, uiPosition] : m_cuePositions) {
        const auto label = m_labels.find(uiId);
        m_contents.cuePoints.append({uiId, uiPosition, label != m_labels.end() ? label->second : QString()});
    }
}

} // namespace

std::optional<WaveContents> readWaveContents(QFile& a_file, QString* a_pReason)
{
    return ChunkReader(a_file, a_pReason).read();
}

} // namespace Simulation
