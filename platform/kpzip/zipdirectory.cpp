#include "zipdirectory_p.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace KPZip {

namespace {

// Records of the zip format (APPNOTE.TXT, 4.3.12 and 4.3.14 to 4.3.16): their
// signatures ("PK" and two bytes), their fixed sizes, and the offsets of the fields
// that are read. Numbers are little-endian.
constexpr char s_szEntry[] = "PK\x01\x02";
constexpr qint64 s_iEntrySize = 46;
constexpr qsizetype s_iNameLength = 28;
constexpr qsizetype s_iExtraLength = 30;
constexpr qsizetype s_iCommentLength = 32;

constexpr char s_szEnd[] = "PK\x05\x06";
constexpr qint64 s_iEndSize = 22;
constexpr qsizetype s_iEndFields = 10; ///< entries (16 bits), bytes and offset (32 bits each)

constexpr char s_szLocator64[] = "PK\x06\x07";
constexpr qint64 s_iLocator64Size = 20;
constexpr qsizetype s_iLocator64Offset = 8;

constexpr char s_szEnd64[] = "PK\x06\x06";
constexpr qint64 s_iEnd64Size = 56;
constexpr qsizetype s_iEnd64Fields = 32; ///< entries, bytes and offset (64 bits each)

constexpr qint64 s_iSignatureSize = 4;
constexpr qint64 s_iLongestComment = 0xFFFF;

/// The directory may take this number of bytes per allowed entry. A directory up to the
/// minimum below is never too large. An entry usually takes some 100 bytes; the format
/// allows 196,000.
constexpr std::uint64_t s_uiEntryBytes = 1024;
constexpr std::uint64_t s_uiLeastDirectoryBytes = std::uint64_t{1} << 20U;

/// The directory as an end record describes it.
struct EndRecord
{
    std::uint64_t entries = 0;
    std::uint64_t bytes = 0;
    std::uint64_t offset = 0; ///< bytes from the start of the file
};

/// Returns a field of a record; 0 beyond the end of the record.
template<typename Number>
Number numberAt(const QByteArray& a_record, qsizetype a_iOffset)
{
    return a_iOffset + static_cast<qsizetype>(sizeof(Number)) <= a_record.size()
               ? qFromLittleEndian<Number>(a_record.constData() + a_iOffset)
               : Number{0};
}

/// Returns the bytes at an offset of the file: fewer than `a_iSize`, or none, where the
/// file ends.
QByteArray recordAt(QFile& a_file, std::uint64_t a_uiOffset, qint64 a_iSize)
{
    const auto uiFile = static_cast<std::uint64_t>(std::max<qint64>(a_file.size(), 0));
    return a_uiOffset < uiFile && a_file.seek(static_cast<qint64>(a_uiOffset)) ? a_file.read(a_iSize)
                                                                               : QByteArray();
}

bool isRecord(const QByteArray& a_record, const char* a_szSignature, qint64 a_iSize)
{
    return a_record.size() == a_iSize && a_record.startsWith(a_szSignature);
}

/// Reads the adjacent fields of an end record. Returns no value when the bytes are not
/// such a record.
template<typename Entries, typename Size>
std::optional<EndRecord> endRecordOf(const QByteArray& a_record, const char* a_szSignature, qint64 a_iSize,
                                     qsizetype a_iFields)
{
    if (!isRecord(a_record, a_szSignature, a_iSize)) {
        return std::nullopt;
    }
    const qsizetype iBytes = a_iFields + qsizetype{sizeof(Entries)};
    return EndRecord{numberAt<Entries>(a_record, a_iFields), numberAt<Size>(a_record, iBytes),
                     numberAt<Size>(a_record, iBytes + qsizetype{sizeof(Size)})};
}

/// Reads the end record at an offset of the file's tail. When a locator precedes the
/// record, reads the record's 64-bit form.
std::optional<EndRecord> endRecordAt(QFile& a_file, const QByteArray& a_tail, qsizetype a_iOffset)
{
    const QByteArray locator = a_iOffset >= s_iLocator64Size
                                   ? a_tail.mid(a_iOffset - s_iLocator64Size, s_iLocator64Size)
                                   : QByteArray();
    if (isRecord(locator, s_szLocator64, s_iLocator64Size)) {
        const QByteArray end =
            recordAt(a_file, numberAt<std::uint64_t>(locator, s_iLocator64Offset), s_iEnd64Size);
        return endRecordOf<std::uint64_t, std::uint64_t>(end, s_szEnd64, s_iEnd64Size, s_iEnd64Fields);
    }
    return endRecordOf<std::uint16_t, std::uint32_t>(a_tail.mid(a_iOffset, s_iEndSize), s_szEnd, s_iEndSize,
                                                     s_iEndFields);
}

/// Whether a directory begins where the record points. Comments and nested archives
/// may contain bytes that resemble an end record.
bool pointsAtDirectory(QFile& a_file, const EndRecord& a_end, std::uint64_t a_uiEndOffset)
{
    if (a_end.offset > a_uiEndOffset || a_end.bytes > a_uiEndOffset - a_end.offset) {
        return false;
    }
    return a_end.bytes == 0
               ? a_end.entries == 0
               : isRecord(recordAt(a_file, a_end.offset, s_iSignatureSize), s_szEntry, s_iSignatureSize);
}

/// Finds the end record. The zip library loads the directories of all end records
/// before it chooses one, so a file with two directories is refused.
std::optional<EndRecord> findEndRecord(QFile& a_file, QString* a_pReason)
{
    const qint64 iTail = std::min(a_file.size(), s_iLongestComment + s_iEndSize + s_iLocator64Size);
    const auto uiTailOffset = static_cast<std::uint64_t>(a_file.size() - iTail);
    const QByteArray tail = a_file.seek(a_file.size() - iTail) ? a_file.read(iTail) : QByteArray();
    std::optional<EndRecord> found;
    for (qsizetype iAt = tail.indexOf(s_szEnd); iAt >= 0; iAt = tail.indexOf(s_szEnd, iAt + 1)) {
        const std::optional<EndRecord> end = endRecordAt(a_file, tail, iAt);
        if (!end || !pointsAtDirectory(a_file, *end, uiTailOffset + static_cast<std::uint64_t>(iAt))) {
            continue;
        }
        if (found) {
            *a_pReason = QStringLiteral("has two directories");
            return std::nullopt;
        }
        found = end;
    }
    if (!found) {
        *a_pReason = QStringLiteral("has no zip directory in its last %1 bytes").arg(iTail);
    }
    return found;
}

bool staysInBounds(const EndRecord& a_end, std::uint64_t a_uiMaxEntries, QString* a_pReason)
{
    if (a_end.entries > a_uiMaxEntries) {
        *a_pReason =
            QStringLiteral("declares %1 entries, the limit is %2").arg(a_end.entries).arg(a_uiMaxEntries);
        return false;
    }
    // The first comparison prevents an overflow of the product.
    if (a_uiMaxEntries < a_end.bytes / s_uiEntryBytes &&
        std::max(a_uiMaxEntries * s_uiEntryBytes, s_uiLeastDirectoryBytes) < a_end.bytes) {
        *a_pReason = QStringLiteral("has a directory of %1 bytes").arg(a_end.bytes);
        return false;
    }
    return true;
}

/// The name of an entry and the number of bytes that the entry takes in the directory.
struct DirectoryEntry
{
    QByteArray name;
    std::uint64_t bytes = 0;
};

/// Reads the entry at the file's position. Returns no value when it is damaged or
/// larger than the remaining bytes.
std::optional<DirectoryEntry> readEntry(QFile& a_file, std::uint64_t a_uiBytesLeft)
{
    const QByteArray record = a_file.read(s_iEntrySize);
    if (!isRecord(record, s_szEntry, s_iEntrySize)) {
        return std::nullopt;
    }
    const qint64 iName = numberAt<std::uint16_t>(record, s_iNameLength);
    const qint64 iRest = qint64{numberAt<std::uint16_t>(record, s_iExtraLength)} +
                         numberAt<std::uint16_t>(record, s_iCommentLength);
    DirectoryEntry entry{a_file.read(iName), static_cast<std::uint64_t>(s_iEntrySize + iName + iRest)};
    if (entry.name.size() != iName || a_file.skip(iRest) != iRest || entry.bytes > a_uiBytesLeft) {
        return std::nullopt;
    }
    return entry;
}

} // namespace

std::optional<ZipDirectory> readZipDirectory(const QString& a_sFile, std::uint64_t a_uiMaxEntries,
                                             QString* a_pReason)
{
    QFile file(a_sFile);
    if (!file.open(QIODevice::ReadOnly)) {
        *a_pReason = file.errorString();
        return std::nullopt;
    }
    const std::optional<EndRecord> end = findEndRecord(file, a_pReason);
    if (!end || !staysInBounds(*end, a_uiMaxEntries, a_pReason)) {
        return std::nullopt;
    }
    ZipDirectory directory;
    file.seek(static_cast<qint64>(end->offset));
    for (std::uint64_t uiLeft = end->bytes; uiLeft > 0; ++directory.entryCount) {
        const std::optional<DirectoryEntry> entry = readEntry(file, uiLeft);
        if (!entry) {
            *a_pReason = QStringLiteral("has a damaged directory, at entry %1").arg(directory.entryCount);
            return std::nullopt;
        }
        if (directory.entryCount == a_uiMaxEntries) {
            *a_pReason = QStringLiteral("has more than %1 entries").arg(a_uiMaxEntries);
            return std::nullopt;
        }
        if (entry->name.contains('\0')) {
            directory.namesWithNul.push_back(directory.entryCount);
        }
        uiLeft -= entry->bytes;
    }
    return directory;
}

} // namespace KPZip
