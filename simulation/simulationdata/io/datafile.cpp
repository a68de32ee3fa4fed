#include "datafile_p.h"

#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <limits>

namespace Simulation {

namespace {

constexpr std::size_t s_uiMagicBytes = 7;

} // namespace

bool openDataFile(QFile& a_file, QString* a_pReason, QIODevice::OpenMode a_eMode)
{
    const QFileInfo info(a_file.fileName());
    // A name that contains a NUL names no file. It is refused here because QFile
    // would print a warning of its own.
    if (a_file.fileName().contains(QChar::Null) || !info.exists()) {
        *a_pReason = QStringLiteral("no such file");
        return false;
    }
    if (!info.isFile()) {
        *a_pReason = QStringLiteral("is not a regular file");
        return false;
    }
    if (!a_file.open(a_eMode)) {
        *a_pReason = a_file.errorString();
        return false;
    }
    return true;
}

bool openDataFileOfKind(QFile& a_file, const DataFileKind& a_kind, std::span<char> a_header,
                        QString* a_pReason, QIODevice::OpenMode a_eMode)
{
    if (!openDataFile(a_file, a_pReason, a_eMode)) {
        return false;
    }
    const auto iHeaderBytes = static_cast<qint64>(a_header.size());
    const qint64 iRead = readAt(a_file, 0, a_header.data(), iHeaderBytes);
    if (iRead != iHeaderBytes) {
        *a_pReason = QStringLiteral("the header has only %1 of %2 bytes").arg(iRead).arg(iHeaderBytes);
        return false;
    }
    if (std::memcmp(a_header.data(), a_kind.szMagic, s_uiMagicBytes) != 0) {
        *a_pReason = QStringLiteral("does not begin with \"%1\"").arg(QLatin1String(a_kind.szMagic));
        return false;
    }
    const auto uiVersion = numberAt<std::uint32_t>(a_header.data(), s_uiMagicBytes);
    if (uiVersion != a_kind.uiVersion) {
        *a_pReason = QStringLiteral("version %1, only %2 is known").arg(uiVersion).arg(a_kind.uiVersion);
        return false;
    }
    return true;
}

QString errorText(const DataFileKind& a_kind, const QFile& a_file, const QString& a_sReason)
{
    return QStringLiteral("Cannot open the %1 \"%2\": %3")
        .arg(QLatin1String(a_kind.szName), a_file.fileName(), a_sReason);
}

std::int64_t missingBytes(std::int64_t a_iHeaderBytes, std::uint64_t a_uiItems, std::uint32_t a_uiItemBytes,
                          std::int64_t a_iFileSize)
{
    const auto uiRoom = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - a_iHeaderBytes);
    if (a_uiItemBytes != 0 && a_uiItems > uiRoom / a_uiItemBytes) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return a_iHeaderBytes + static_cast<std::int64_t>(a_uiItems * a_uiItemBytes) - a_iFileSize;
}

std::span<const char> RecordBuffer::record(QFile& a_file, qint64 a_iOffset, qint64 a_iBytes)
{
    const qint64 iEnd = m_iAt + m_iHeld;
    if (a_iOffset < m_iAt || a_iOffset + a_iBytes > iEnd) {
        const qint64 iRecords = m_iHeld > 0 && a_iOffset == iEnd ? s_iMaxRecord / a_iBytes : 1;
        m_iHeld = readAt(a_file, a_iOffset, m_bytes.data(), iRecords * a_iBytes);
        m_iAt = a_iOffset;
    }
    const qint64 iSkipped = a_iOffset - m_iAt;
    return {m_bytes.data() + iSkipped, static_cast<std::size_t>(std::min(a_iBytes, m_iHeld - iSkipped))};
}

void repeat(void* a_pTarget, qint64 a_iPeriod, qint64 a_iBytes)
{
    char* pTarget = static_cast<char*>(a_pTarget);
    for (qint64 iDone = a_iPeriod; iDone < a_iBytes;) {
        const qint64 iPiece = std::min(iDone, a_iBytes - iDone);
        std::memcpy(pTarget + iDone, pTarget, static_cast<std::size_t>(iPiece));
        iDone += iPiece;
    }
}

qint64 readAt(QFile& a_file, qint64 a_iOffset, void* a_pTarget, qint64 a_iBytes)
{
    // The offset is checked first, because a seek past the end may succeed, or fail with
    // a warning from QFile.
    if (a_file.pos() != a_iOffset &&
        (a_iOffset < 0 || a_iOffset > a_file.size() || !a_file.seek(a_iOffset))) {
        return 0;
    }
    return std::max<qint64>(a_file.read(static_cast<char*>(a_pTarget), a_iBytes), 0);
}

} // namespace Simulation
