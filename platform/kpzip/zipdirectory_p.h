#ifndef KPZIP_ZIPDIRECTORY_P_H
#define KPZIP_ZIPDIRECTORY_P_H

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace KPZip {

/// What must be known of an archive's directory before the zip library loads
/// it: the library allocates what the file claims, and shows a NUL in a name as
/// a blank.
struct ZipDirectory
{
    std::uint64_t entryCount = 0;
    std::vector<std::uint64_t> namesWithNul; ///< indices, ascending
};

/// Walks through the directory of a regular file without holding it in memory.
/// Nothing, with a reason, when there is none, when it is damaged, when there
/// are two that contradict each other, when it has more entries than are allowed
/// or takes more bytes than entries of that number need.
[[nodiscard]] std::optional<ZipDirectory> readZipDirectory(const QString& a_sFile,
                                                           std::uint64_t a_uiMaxEntries, QString* a_pReason);

} // namespace KPZip

#endif
