#include "scenariodatabinary_p.h"

#include "simulationdata/io/documentfile_p.h"

#include <QDataStream>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace Simulation {

namespace {

const QString s_sStreamEnds = QStringLiteral("the stream ends");

constexpr std::int64_t s_iLengthBytes = 4;
constexpr std::int64_t s_iFlagBytes = 1;
constexpr std::int64_t s_iUnitBytes = sizeof(QChar);
constexpr std::uint32_t s_uiNullText = 0xFFFFFFFF;      ///< length of a null text
constexpr std::int64_t s_iLargestText = 0xFFFFFFFE;     ///< bytes
constexpr qsizetype s_iPieceUnits = qsizetype{1} << 16; ///< UTF-16 units per read of a text

/// A text or a flag of a record.
struct Field
{
    const char* name; ///< for error texts
    QString CompactRecord::*text;
    bool CompactRecord::*flag;
};

/// The fields of a record in the order of the stream, for reading and writing. A
/// text is its length in bytes (32 bits) and its UTF-16 units, big-endian; a flag
/// is one byte.
constexpr std::array<Field, 7> s_fields{{
    {"id", &CompactRecord::id, nullptr},
    {"name", &CompactRecord::name, nullptr},
    {"description", &CompactRecord::description, nullptr},
    {"active flag", nullptr, &CompactRecord::active},
    {"default mark", nullptr, &CompactRecord::isDefault},
    {"link target", &CompactRecord::linkTarget, nullptr},
    {"class", &CompactRecord::emitterClass, nullptr},
}};

/// Reads fields from a stream. The result is the error text, empty on success.
class FieldReader
{
public:
    /// `a_iBytes` counts the bytes read, against Limits::DocumentBytes.
    FieldReader(QDataStream& a_stream, std::int64_t& a_iBytes)
        : m_stream(a_stream)
        , m_iBytes(a_iBytes)
    {}

    [[nodiscard]] QString read(QString& a_sText)
    {
        quint32 uiLength = 0;
        if (QString sError = readNumber(uiLength); !sError.isEmpty() || uiLength == s_uiNullText) {
            return sError;
        }
        if (uiLength % s_iUnitBytes != 0) {
            return QStringLiteral("a text cannot have %1 bytes").arg(uiLength);
        }
        if (QString sError = claim(uiLength); !sError.isEmpty()) {
            return sError;
        }
        a_sText = QStringLiteral("");
        return readUnits(a_sText, uiLength / s_iUnitBytes);
    }

    [[nodiscard]] QString read(bool& a_bFlag)
    {
        quint8 uiByte = 0;
        if (QString sError = readNumber(uiByte); !sError.isEmpty()) {
            return sError;
        }
        a_bFlag = uiByte != 0;
        return uiByte <= 1 ? QString() : QStringLiteral("%1 is neither 0 nor 1").arg(uiByte);
    }

    template<typename Number>
    [[nodiscard]] QString readNumber(Number& a_number)
    {
        std::array<char, sizeof(Number)> bytes{};
        if (!fill(bytes.data(), sizeof(Number))) {
            return s_sStreamEnds;
        }
        a_number = qFromBigEndian<Number>(bytes.data());
        return claim(sizeof(Number));
    }

private:
    /// Reads `a_iBytes` bytes; false when the stream ends before. Reads in a loop,
    /// because a device may return fewer bytes than requested although more follow.
    bool fill(char* a_pBytes, qsizetype a_iBytes)
    {
        while (a_iBytes > 0) {
            const int iRead = m_stream.readRawData(a_pBytes, static_cast<int>(a_iBytes));
            if (iRead <= 0) {
                return false;
            }
            a_pBytes += iRead;
            a_iBytes -= iRead;
        }
        return true;
    }

    QString claim(std::int64_t a_iBytes)
    {
        m_iBytes += a_iBytes;
        QString sReason;
        static_cast<void>(checkDocumentBytes(m_iBytes, &sReason));
        return sReason;
    }

    /// Reads in pieces, so that memory grows with the bytes read, not with the
    /// claimed length.
    QString readUnits(QString& a_sText, qsizetype a_iUnits)
    {
        while (a_sText.size() < a_iUnits) {
            const qsizetype iHeld = a_sText.size();
            const qsizetype iUnits = std::min(a_iUnits - iHeld, s_iPieceUnits);
            a_sText.resize(iHeld + iUnits);
            if (!fill(reinterpret_cast<char*>(a_sText.data() + iHeld), iUnits * s_iUnitBytes)) {
                return s_sStreamEnds;
            }
        }
        qFromBigEndian<char16_t>(a_sText.constData(), a_sText.size(), a_sText.data());
        return {};
    }

    QDataStream& m_stream;
    std::int64_t& m_iBytes;
};

} // namespace

void prepareCompactStream(QDataStream& a_stream)
{
    a_stream.setVersion(QDataStream::Qt_4_8);
    a_stream.setByteOrder(QDataStream::BigEndian);
}

QString readCompactCount(QDataStream& a_stream, std::int32_t& a_iCount, std::int64_t& a_iBytes)
{
    QString sError = FieldReader(a_stream, a_iBytes).readNumber(a_iCount);
    return a_iCount < 0 ? QStringLiteral("%1 is negative").arg(a_iCount) : sError;
}

QString readCompactRecord(QDataStream& a_stream, CompactRecord& a_record, std::int64_t& a_iBytes)
{
    FieldReader reader(a_stream, a_iBytes);
    for (const Field& field : s_fields) {
        const QString sError =
            field.text != nullptr ? reader.read(a_record.*field.text) : reader.read(a_record.*field.flag);
        if (!sError.isEmpty()) {
            return QLatin1String(field.name) + QStringLiteral(": ") + sError;
        }
    }
    return {};
}

void writeCompactRecord(QDataStream& a_stream, const CompactRecord& a_record)
{
    for (const Field& field : s_fields) {
        if (field.text != nullptr) {
            a_stream << a_record.*field.text;
        } else {
            a_stream << a_record.*field.flag;
        }
    }
}

std::optional<std::int64_t> compactBytes(const CompactRecord& a_record)
{
    std::int64_t iBytes = 0;
    for (const Field& field : s_fields) {
        const std::int64_t iText = field.text != nullptr ? (a_record.*field.text).size() * s_iUnitBytes : 0;
        if (iText > s_iLargestText) {
            return std::nullopt;
        }
        iBytes += field.text != nullptr ? s_iLengthBytes + iText : s_iFlagBytes;
    }
    return iBytes;
}

} // namespace Simulation
