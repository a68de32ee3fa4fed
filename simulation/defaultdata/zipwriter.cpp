#include "zipwriter.h"

#include <QFile>

#include <memory>

#include <zip.h>

namespace DefaultData {

namespace {

// The time of all entries in the encoding of zip files: midnight on 1 January 1980, the
// earliest possible. The real time would make the bytes of each build different.
constexpr zip_uint16_t s_uiTime = 0;
constexpr zip_uint16_t s_uiDate = 0x0021; // month 1, day 1

constexpr zip_uint32_t s_uiModeShift = 16;
constexpr zip_uint32_t s_uiFileMode = 0100644;
constexpr zip_uint32_t s_uiFolderMode = 0040755;

constexpr zip_uint32_t s_uiStrongest = 9;

struct ZipDiscarder
{
    void operator()(zip_t* a_pZip) const { zip_discard(a_pZip); }
};
using Zip = std::unique_ptr<zip_t, ZipDiscarder>;

/// Adds an entry and returns its index; negative on failure. The bytes must stay valid
/// until the archive is closed.
zip_int64_t add(zip_t* a_pZip, const ZipEntry& a_entry, bool a_bFolder)
{
    const QByteArray name = a_entry.name.toUtf8();
    if (a_bFolder) {
        return zip_dir_add(a_pZip, name.constData(), ZIP_FL_ENC_UTF_8);
    }
    zip_source_t* pSource = zip_source_buffer(a_pZip, a_entry.bytes.constData(),
                                              static_cast<zip_uint64_t>(a_entry.bytes.size()), 0);
    if (pSource == nullptr) {
        return -1;
    }
    const zip_int64_t iIndex = zip_file_add(a_pZip, name.constData(), pSource, ZIP_FL_ENC_UTF_8);
    if (iIndex < 0) {
        zip_source_free(pSource);
    }
    return iIndex;
}

bool addEntry(zip_t* a_pZip, const ZipEntry& a_entry)
{
    const bool bFolder = a_entry.name.endsWith(QLatin1Char('/'));
    const zip_int64_t iIndex = add(a_pZip, a_entry, bFolder);
    if (iIndex < 0) {
        return false;
    }
    const auto uiIndex = static_cast<zip_uint64_t>(iIndex);
    const zip_int32_t iMethod = a_entry.bytes.isEmpty() ? ZIP_CM_STORE : ZIP_CM_DEFLATE;
    const zip_uint32_t uiMode = (bFolder ? s_uiFolderMode : s_uiFileMode) << s_uiModeShift;
    return zip_file_set_dostime(a_pZip, uiIndex, s_uiTime, s_uiDate, 0) == 0 &&
           zip_file_set_external_attributes(a_pZip, uiIndex, 0, ZIP_OPSYS_UNIX, uiMode) == 0 &&
           (bFolder || zip_set_file_compression(a_pZip, uiIndex, iMethod, s_uiStrongest) == 0);
}

} // namespace

bool writeZip(const QString& a_sFile, const QList<ZipEntry>& a_entries, QString* a_pReason)
{
    int iCode = 0;
    Zip zip(zip_open(QFile::encodeName(a_sFile).constData(), ZIP_CREATE | ZIP_TRUNCATE, &iCode));
    if (!zip) {
        *a_pReason = QStringLiteral("cannot be opened, zip error %1").arg(iCode);
        return false;
    }
    bool bAdded = true;
    for (const ZipEntry& entry : a_entries) {
        bAdded = bAdded && addEntry(zip.get(), entry);
    }
    if (!bAdded || zip_close(zip.get()) != 0) {
        *a_pReason = QString::fromUtf8(zip_strerror(zip.get()));
        return false;
    }
    // zip_close() has freed the archive.
    static_cast<void>(zip.release());
    return true;
}

} // namespace DefaultData
