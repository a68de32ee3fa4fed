#include "constantratestream_p.h"

#include "datafile_p.h"
#include "simulationdata/simulationlimits.h"
#include "trace_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/constantratestream";

// Offsets of the fields in the stream's header: the rate (32-bit float, items per
// second), then the number of items (64 bits).
constexpr std::size_t s_uiRateAt = 0;
constexpr std::size_t s_uiCountAt = 4;

constexpr float s_fMillisecondsPerSecond = 1000.0F;

bool isUsable(float a_fRate)
{
    return std::isfinite(a_fRate) && a_fRate > 0.0F;
}

/// The number of items in a time (ms): floor(ms * rate / 1000). Saturates at 2^64 - 1.
std::uint64_t itemsIn(std::uint32_t a_uiMilliseconds, float a_fRate)
{
    constexpr double dTwoTo64 = 18446744073709551616.0;
    // The product is in single precision and the quotient in double precision. Writers
    // of recordings calculate the number in the same way, so writers and this reader find
    // the same item.
    const float fProduct = static_cast<float>(a_uiMilliseconds) * a_fRate;
    const double dItems = static_cast<double>(fProduct) / static_cast<double>(s_fMillisecondsPerSecond);
    return dItems < dTwoTo64 ? static_cast<std::uint64_t>(dItems) : std::numeric_limits<std::uint64_t>::max();
}

} // namespace

ConstantRateStream::ConstantRateStream(QFile& a_file, qint64 a_iFirstByte, std::uint32_t a_uiItemBytes)
    : m_file(a_file)
    , m_iFirstByte(a_iFirstByte)
    , m_uiItemBytes(a_uiItemBytes)
{}

bool ConstantRateStream::readHeader(std::span<char> a_header, QString* a_pReason)
{
    const auto iBytes = static_cast<qint64>(a_header.size());
    const qint64 iRead = readAt(m_file, m_iFirstByte - iBytes, a_header.data(), iBytes);
    if (iRead != iBytes) {
        *a_pReason = QStringLiteral("the file has only %1 of %2 bytes before the first item")
                         .arg(QString::number(m_iFirstByte - iBytes + iRead), QString::number(m_iFirstByte));
        return false;
    }
    takeClaims(numberAt<float>(a_header.data(), s_uiRateAt),
               numberAt<std::uint64_t>(a_header.data(), s_uiCountAt));
    return true;
}

void ConstantRateStream::takeClaims(float a_fRate, std::uint64_t a_uiCount)
{
    const qint64 iFileSize = m_file.size();
    const auto uiHeld =
        static_cast<std::uint64_t>(std::max<qint64>(iFileSize - m_iFirstByte, 0)) / m_uiItemBytes;
    m_fRate = a_fRate;
    m_uiCount = std::min(a_uiCount, uiHeld);
    m_iMissingBytes = Simulation::missingBytes(m_iFirstByte, a_uiCount, m_uiItemBytes, iFileSize);
    if (m_uiCount < a_uiCount || length() == 0) {
        traceError(s_szSource, [&] {
            return QStringLiteral("\"%1\" holds %2 of %3 items, at %4 items per second")
                .arg(m_file.fileName(), QString::number(m_uiCount), QString::number(a_uiCount),
                     QString::number(static_cast<double>(a_fRate)));
        });
    }
}

std::uint32_t ConstantRateStream::length() const
{
    constexpr float fTwoTo32 = 4294967296.0F;
    if (!isUsable(m_fRate)) {
        return 0;
    }
    const float fLength = static_cast<float>(m_uiCount) * s_fMillisecondsPerSecond / m_fRate;
    return fLength < fTwoTo32 ? static_cast<std::uint32_t>(fLength)
                              : std::numeric_limits<std::uint32_t>::max();
}

ConstantRateStream::Span ConstantRateStream::span(std::uint32_t a_uiStart, std::uint32_t a_uiDuration) const
{
    const std::uint32_t uiLength = length();
    if (uiLength == 0) {
        return {};
    }
    // In a long stream the single-precision length may be rounded up. A start just below
    // this length may then lie after the last item, so the item's index is taken modulo
    // the count.
    const Span span{itemsIn(a_uiStart % uiLength, m_fRate) % m_uiCount, itemsIn(a_uiDuration, m_fRate)};
    const std::uint64_t uiBound =
        std::min<std::uint64_t>(Limits::value(Limits::DataBytes), std::numeric_limits<qint64>::max());
    if (span.uiCount > uiBound / m_uiItemBytes) {
        traceError(s_szSource, [&] {
            return QStringLiteral("%1 ms of \"%2\", %3 items a second: %4")
                .arg(QString::number(a_uiDuration), m_file.fileName(),
                     QString::number(static_cast<double>(m_fRate)), Limits::exceeded(Limits::DataBytes));
        });
        return {};
    }
    return span;
}

qint64 ConstantRateStream::bytesOf(const Span& a_span) const
{
    return static_cast<qint64>(a_span.uiCount) * m_uiItemBytes;
}

qint64 ConstantRateStream::read(const Span& a_span, char* a_pTarget)
{
    const qint64 iAll = bytesOf(a_span);
    const qint64 iPeriod = std::min(iAll, bytesOf({0, m_uiCount}));
    const qint64 iToEnd = std::min(iPeriod, bytesOf({0, m_uiCount - a_span.uiFirst}));
    qint64 iRead = readAt(m_file, m_iFirstByte + bytesOf({0, a_span.uiFirst}), a_pTarget, iToEnd);
    if (iRead == iToEnd && iToEnd < iPeriod) {
        iRead += readAt(m_file, m_iFirstByte, a_pTarget + iToEnd, iPeriod - iToEnd);
    }
    if (iRead != iPeriod) {
        traceError(s_szSource, [&] {
            return QStringLiteral("\"%1\" has shrunk: only %2 of %3 bytes could be read from item %4 on")
                .arg(m_file.fileName(), QString::number(iRead), QString::number(iPeriod),
                     QString::number(a_span.uiFirst));
        });
        return iRead - iRead % m_uiItemBytes;
    }
    repeat(a_pTarget, iPeriod, iAll);
    return iAll;
}

} // namespace Simulation
