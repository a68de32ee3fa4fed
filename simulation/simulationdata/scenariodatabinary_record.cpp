#include "scenariodatabinary_p.h"

#include "simulationdata/io/documentfile_p.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

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
/// is one byte. This is the encoding of QDataStream in Qt 4, which other programs use,
/// too.
constexpr std::array<Field, 7> s_fields{{
    {"id", &CompactRecord::id, nullptr},
    {"name", &CompactRecord::name, nullptr},
    {"description", &CompactRecord::description, nullptr},
    {"active flag", nullptr, &CompactRecord::active},
    {"default mark", nullptr, &CompactRecord::isDefault},
    {"link target", &CompactRecord::linkTarget, nullptr},
    {"class", &CompactRecord::emitterClass, nullptr},
}};

template<typename Number>
char* writeNumber(char* a_pBytes, Number a_number)
{
    qToBigEndian(a_number, a_pBytes);
    return a_pBytes + sizeof(Number);
}

char* writeText(char* a_pBytes, const QString& a_sText)
{
    const qsizetype iBytes = a_sText.size() * s_iUnitBytes;
    a_pBytes = writeNumber(a_pBytes, a_sText.isNull() ? s_uiNullText : static_cast<quint32>(iBytes));
    qToBigEndian<char16_t>(a_sText.constData(), a_sText.size(), a_pBytes);
    return a_pBytes + iBytes;
}

} // namespace

QString CompactReader::readCount(std::int32_t& a_iCount)
{
    QString sError = readNumber(a_iCount);
    return a_iCount < 0 ? QStringLiteral("%1 is negative").arg(a_iCount) : sError;
}

char* writeCompactCount(char* a_pBytes, std::int32_t a_iCount)
{
    return writeNumber(a_pBytes, a_iCount);
}

QString CompactReader::readRecord(CompactRecord& a_record)
{
    for (const Field& field : s_fields) {
        const QString sError =
            field.text != nullptr ? read(a_record.*field.text) : read(a_record.*field.flag);
        if (!sError.isEmpty()) {
            return QLatin1String(field.name) + QStringLiteral(": ") + sError;
        }
    }
    return {};
}

char* writeCompactRecord(char* a_pBytes, const CompactRecord& a_record)
{
    for (const Field& field : s_fields) {
        a_pBytes = field.text != nullptr ? writeText(a_pBytes, a_record.*field.text)
                                         : writeNumber(a_pBytes, quint8{a_record.*field.flag});
    }
    return a_pBytes;
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

QString CompactReader::read(QString& a_sText)
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
    return readUnits(a_sText, uiLength / s_iUnitBytes);
}

/// Reads in pieces, so that memory grows with the bytes read, not with the claimed
/// length.
QString CompactReader::readUnits(QString& a_sText, qsizetype a_iUnits)
{
    a_sText = QString(std::min(a_iUnits, s_iPieceUnits), Qt::Uninitialized);
    for (qsizetype iHeld = 0;;) {
        if (!fill(a_sText.data() + iHeld, (a_sText.size() - iHeld) * s_iUnitBytes)) {
            return s_sStreamEnds;
        }
        iHeld = a_sText.size();
        if (iHeld == a_iUnits) {
            break;
        }
        a_sText.resize(std::min(a_iUnits, iHeld + s_iPieceUnits));
    }
    qFromBigEndian<char16_t>(a_sText.constData(), a_sText.size(), a_sText.data());
    return {};
}

QString CompactReader::read(bool& a_bFlag)
{
    quint8 uiByte = 0;
    if (QString sError = readNumber(uiByte); !sError.isEmpty()) {
        return sError;
    }
    a_bFlag = uiByte != 0;
    return uiByte <= 1 ? QString() : QStringLiteral("%1 is neither 0 nor 1").arg(uiByte);
}

template<typename Number>
QString CompactReader::readNumber(Number& a_number)
{
    Number bigEndian = 0;
    if (!fill(&bigEndian, sizeof(Number))) {
        return s_sStreamEnds;
    }
    a_number = qFromBigEndian(bigEndian);
    return claim(sizeof(Number));
}

/// Reads `a_iBytes` bytes; false when the stream ends before.
bool CompactReader::fill(void* a_pBytes, qsizetype a_iBytes)
{
    if (m_pDevice != nullptr) {
        return fillFromDevice(static_cast<char*>(a_pBytes), a_iBytes);
    }
    if (a_iBytes > m_unread.size()) {
        return false;
    }
    std::memcpy(a_pBytes, m_unread.data(), static_cast<std::size_t>(a_iBytes));
    m_unread = m_unread.sliced(a_iBytes);
    return true;
}

/// Reads in a loop, because a device may return fewer bytes than requested although
/// more follow.
bool CompactReader::fillFromDevice(char* a_pBytes, qsizetype a_iBytes)
{
    while (a_iBytes > 0) {
        const qint64 iRead = m_pDevice->read(a_pBytes, a_iBytes);
        if (iRead <= 0) {
            return false;
        }
        a_pBytes += iRead;
        a_iBytes -= iRead;
    }
    return true;
}

QString CompactReader::claim(std::int64_t a_iBytes)
{
    m_iBytes += a_iBytes;
    QString sReason;
    static_cast<void>(checkDocumentBytes(m_iBytes, &sReason));
    return sReason;
}

} // namespace Simulation
