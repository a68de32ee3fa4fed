#ifndef SIMULATIONDATA_CONSTANTRATESTREAM_P_H
#define SIMULATIONDATA_CONSTANTRATESTREAM_P_H

#include <QFile>

#include <cstdint>
#include <span>

namespace Simulation {

/// Items of equal size in a file, produced at a constant rate, which repeat over
/// their own length. The file is not owned. Does not lock.
class ConstantRateStream
{
public:
    /// Items from a place of the stream on.
    struct Span
    {
        std::uint64_t uiFirst = 0; ///< below the number of items
        std::uint64_t uiCount = 0; ///< may be more than there are items
    };

    /// `a_iFirstByte` is the place of the first item in the file.
    ConstantRateStream(QFile& a_file, qint64 a_iFirstByte, std::uint32_t a_uiItemBytes);

    /// Reads the stream's header, which ends before the first item and begins
    /// with the rate, a 32-bit float, and the number of items, 64 bits. The items
    /// are at most those that the file holds. Traces once when the stream
    /// cannot be read whole, or not at all. False with a reason when the header is cut short.
    [[nodiscard]] bool readHeader(std::span<char> a_header, QString* a_pReason);

    /// Items per second, as the header claims.
    [[nodiscard]] float rate() const { return m_fRate; }
    [[nodiscard]] std::uint64_t count() const { return m_uiCount; }
    [[nodiscard]] std::int64_t missingBytes() const { return m_iMissingBytes; }

    /// (whole ms), in single precision; saturates. 0 when there is nothing to
    /// read: no item, no usable rate, or less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// The items of [start, start + duration) (ms). Empty when length() is 0,
    /// and, after one trace, when they would take more than Limits::DataBytes.
    [[nodiscard]] Span span(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) const;

    /// Bytes that a span takes.
    [[nodiscard]] qint64 bytesOf(const Span& a_span) const;

    /// Reads a span. The number of bytes read: fewer, after one trace, when the
    /// file has shrunk. What repeats is read once.
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
