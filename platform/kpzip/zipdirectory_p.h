#ifndef KPZIP_ZIPDIRECTORY_P_H
#define KPZIP_ZIPDIRECTORY_P_H

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace KPZip {

/// The values that are checked before the zip library loads the directory of an
/// archive. The check is necessary: the zip library allocates as much memory as the file
/// claims, and it reads a NUL in a name as a blank.
struct ZipDirectory
{
    std::uint64_t entryCount = 0;
    std::vector<std::uint64_t> namesWithNul; ///< indices, ascending
};

/// Reads the directory of a regular file without holding the directory in memory.
/// Returns no value, with an error text, when the file has no directory or has two.
/// Also returns no value when the directory is damaged, has more entries than allowed,
/// or takes more bytes than that number of entries needs.
[[nodiscard]] std::optional<ZipDirectory> readZipDirectory(const QString& a_sFile,
                                                           std::uint64_t a_uiMaxEntries, QString* a_pReason);

} // namespace KPZip

#endif
