#ifndef SIMULATIONDATA_CONSTANTRATESTREAM_P_H
#define SIMULATIONDATA_CONSTANTRATESTREAM_P_H

#include <QFile>

#include <cstdint>
#include <span>

namespace Simulation {

/// A stream of items of equal size in a file, at a constant rate. The stream repeats
/// over its own length. The file is not owned. The operations do not lock: an object
/// may be used by one thread at a time.
class ConstantRateStream
{
public:
    /// A range of consecutive items.
    struct Span
    {
        std::uint64_t uiFirst = 0; ///< index of the first item, below count()
        std::uint64_t uiCount = 0; ///< may exceed count(): the stream repeats
    };

    /// `a_iFirstByte` is the offset of the first item in the file.
    ConstantRateStream(QFile& a_file, qint64 a_iFirstByte, std::uint32_t a_uiItemBytes);

    /// Reads the stream's header: the `a_header.size()` bytes before the first item.
    /// The header begins with the rate (32-bit float) and the number of items (64
    /// bits), both little-endian. Items that the file does not hold are not counted.
    /// Traces once when the file holds fewer items than the header claims or length()
    /// is 0. False with a reason when the header is cut short.
    [[nodiscard]] bool readHeader(std::span<char> a_header, QString* a_pReason);

    /// Items per second, as the header claims.
    [[nodiscard]] float rate() const { return m_fRate; }
    [[nodiscard]] std::uint64_t count() const { return m_uiCount; }
    [[nodiscard]] std::int64_t missingBytes() const { return m_iMissingBytes; }

    /// Length of the stream (whole ms), calculated in single precision; at most
    /// 0xFFFFFFFF. 0 when there are no items, no usable rate, or less than a
    /// millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// The items of [start, start + duration) (ms). Empty when length() is 0 and,
    /// after one trace, when they exceed Limits::DataBytes.
    [[nodiscard]] Span span(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) const;

    /// The size of a span (bytes).
    [[nodiscard]] qint64 bytesOf(const Span& a_span) const;

    /// Reads a span into `a_pTarget`, which has room for bytesOf() bytes. Repeated
    /// items are read from the file once. Returns the number of bytes read. The number
    /// is smaller, after one trace, when the file has shrunk.
    [[nodiscard]] qint64 read(const Span& a_span, char* a_pTarget);

private:
    void takeClaims(float a_fRate, std::uint64_t a_uiCount);

    QFile& m_file;
    qint64 m_iFirstByte;
    std::uint32_t m_uiItemBytes;
    float m_fRate = 0.0F;
    std::uint64_t m_uiCount = 0;
    std::int64_t m_iMissingBytes = 0;
};

} // namespace Simulation

#endif
