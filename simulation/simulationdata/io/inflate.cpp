#include "inflate_p.h"

#include "simulationdata/simulationlimits.h"

#include <QtEndian>

#include <algorithm>
#include <limits>
#include <utility>
#include <zlib.h>

namespace Simulation {

namespace {

constexpr qsizetype s_iLengthBytes = 4;
constexpr qsizetype s_iZlibHeaderBytes = 2;
constexpr qsizetype s_iFirstBytes = 65'536; ///< the largest first buffer, whatever length is claimed

/// Whether the two bytes that open a zlib stream are valid (RFC 1950, 2.2): the low 4
/// bits of the first are the method, and the big-endian pair is a multiple of 31.
bool isZlibHeader(QByteArrayView a_bytes)
{
    constexpr unsigned int uiMethodMask = 0x0F;
    constexpr unsigned int uiByteShift = 8;
    constexpr unsigned int uiCheckDivisor = 31;
    const unsigned int uiMethod = static_cast<unsigned char>(a_bytes[0]);
    const unsigned int uiFlags = static_cast<unsigned char>(a_bytes[1]);
    return (uiMethod & uiMethodMask) == Z_DEFLATED &&
           ((uiMethod << uiByteShift) | uiFlags) % uiCheckDivisor == 0;
}

/// A number of bytes, at most 2^32 - 1, because zlib counts in 32 bits.
unsigned int clampedCount(qsizetype a_iBytes)
{
    return static_cast<unsigned int>(std::min<qsizetype>(a_iBytes, std::numeric_limits<unsigned int>::max()));
}

/// The next size of a full output buffer: double the size, but never more than
/// `a_iMost`. While the content is shorter than claimed, also not more than the claimed
/// length.
qsizetype nextSize(qsizetype a_iSize, qsizetype a_iClaimed, qsizetype a_iMost)
{
    const qsizetype iDoubled = std::max(2 * a_iSize, s_iFirstBytes);
    return std::min(a_iClaimed > a_iSize ? std::min(iDoubled, a_iClaimed) : iDoubled, a_iMost);
}

std::optional<QByteArray> refused(const QString& a_sReason, QString* a_pReason)
{
    *a_pReason = a_sReason;
    return std::nullopt;
}

/// Inflates one stream into a buffer that grows with the content.
class Inflater
{
public:
    Inflater(QByteArrayView a_stream, qsizetype a_iClaimed);
    ~Inflater() { inflateEnd(&m_stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    [[nodiscard]] std::optional<QByteArray> run(QString* a_pReason);

private:
    int inflateMore();
    [[nodiscard]] QString reasonFor(int a_iResult) const;

    z_stream m_stream{};
    const char* m_pEnd;
    qsizetype m_iClaimed;
    qsizetype m_iLimit;
    qsizetype m_iDone = 0;
    QByteArray m_content;
};

Inflater::Inflater(QByteArrayView a_stream, qsizetype a_iClaimed)
    : m_pEnd(a_stream.data() + a_stream.size())
    , m_iClaimed(a_iClaimed)
{
    // With this bound, doubling the buffer cannot overflow.
    constexpr std::uint64_t uiMost = std::numeric_limits<qsizetype>::max() / 4;
    m_iLimit = static_cast<qsizetype>(std::min(Limits::value(Limits::InflatedBytes), uiMost));
    // zlib only reads its input, although next_in is not const.
    m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(a_stream.data()));
}

std::optional<QByteArray> Inflater::run(QString* a_pReason)
{
    int iResult = inflateInit(&m_stream);
    while (iResult == Z_OK && m_iDone <= m_iLimit) {
        iResult = inflateMore();
    }
    if (m_iDone > m_iLimit) {
        return refused(Limits::exceeded(Limits::InflatedBytes), a_pReason);
    }
    if (iResult != Z_STREAM_END) {
        return refused(reasonFor(iResult), a_pReason);
    }
    m_content.truncate(m_iDone);
    m_content.squeeze();
    return std::move(m_content);
}

int Inflater::inflateMore()
{
    if (m_iDone == m_content.size()) {
        // One byte beyond the limit distinguishes content that just fits from larger
        // content.
        m_content.resize(nextSize(m_iDone, m_iClaimed, m_iLimit + 1));
    }
    m_stream.avail_in = clampedCount(m_pEnd - reinterpret_cast<const char*>(m_stream.next_in));
    m_stream.next_out = reinterpret_cast<Bytef*>(m_content.data() + m_iDone);
    m_stream.avail_out = clampedCount(m_content.size() - m_iDone);
    const int iResult = inflate(&m_stream, Z_NO_FLUSH);
    m_iDone = reinterpret_cast<const char*>(m_stream.next_out) - m_content.constData();
    return iResult;
}

QString Inflater::reasonFor(int a_iResult) const
{
    // There is always room for output, so Z_BUF_ERROR means that input is missing.
    const QString sWhat = a_iResult == Z_BUF_ERROR   ? QStringLiteral("ends early")
                          : a_iResult == Z_MEM_ERROR ? QStringLiteral("needs more memory than is available")
                                                     : QStringLiteral("is damaged");
    return QStringLiteral("the zlib stream %1, after %2 bytes of content")
        .arg(sWhat, QString::number(m_iDone));
}

} // namespace

std::optional<QByteArray> inflateBounded(QByteArrayView a_data, QString* a_pReason)
{
    a_pReason->clear();
    if (a_data.size() < s_iLengthBytes) {
        return refused(QStringLiteral("%1 bytes are too short for compressed content").arg(a_data.size()),
                       a_pReason);
    }
    const auto uiClaimed = qFromBigEndian<quint32>(a_data.data());
    const QByteArrayView stream = a_data.sliced(s_iLengthBytes);
    if (stream.isEmpty() && uiClaimed == 0) {
        return QByteArray(""); // qCompress() writes empty content without a stream
    }
    if (stream.size() < s_iZlibHeaderBytes || !isZlibHeader(stream)) {
        return refused(QStringLiteral("the content is not a zlib stream"), a_pReason);
    }
    return Inflater(stream, static_cast<qsizetype>(uiClaimed)).run(a_pReason);
}

} // namespace Simulation
