#ifndef KPZIP_ARCHIVE_H
#define KPZIP_ARCHIVE_H

#include "simulationdata/simulationdata_export.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

struct zip;

namespace KPZip {

struct ZipDirectory;

/// Unpacks a zip file with untrusted content. Refuses and traces links, encrypted
/// entries, entries with an unknown compression method, and entries whose names lead
/// out of the target folder. The rest is unpacked.
///
/// A file gets its final name only when it is complete, and then replaces an existing
/// file of that name. Links at the target are never followed. Every failure is traced, and
/// errorString() keeps its error text. An object belongs to one thread.
class SIMULATIONDATA_EXPORT Archive
{
public:
    /// The value is part of the interface.
    enum Mode : int { ModeRead = 1 };

    /// Does not open the file yet.
    explicit Archive(const QString& a_sPath);
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    /// Sets the limits for the next open(). `a_uiBytes` limits the bytes that may be
    /// written while the archive is open, whatever sizes the archive declares.
    /// `a_uiEntries` limits the number of its entries. By default 1 GiB and 100,000.
    void setBounds(std::uint64_t a_uiBytes, std::uint64_t a_uiEntries);

    /// Opens a regular file. An archive that is open is closed first. Returns false
    /// when the file is not an archive, is damaged, or has too many entries.
    bool open(Mode a_eMode);
    [[nodiscard]] bool isOpen() const { return m_archive != nullptr; }

    /// The files of the archive in its order, as relative paths with slashes.
    /// Folders and refused entries are left out. Empty while no archive is open.
    [[nodiscard]] QStringList files() const { return m_files; }

    /// How many entries were refused when the archive was opened.
    [[nodiscard]] std::uint64_t refusedCount() const { return m_uiRefused; }

    /// The size (bytes) that the archive declares for a file, unchecked. 0 for a
    /// name that is not in files().
    [[nodiscard]] std::uint64_t declaredSize(const QString& a_sEntry) const;

    /// Unpacks one of files() to a path; the folder of the path must exist. On
    /// failure, returns false and leaves an existing file unchanged.
    bool extractToFile(const QString& a_sEntry, const QString& a_sFile);

    /// Unpacks all files below a folder of the archive ("/TuK-Default"; "/" or ""
    /// for all) into the target folder. A missing target folder is made. Returns
    /// true when there was at least one file and every file was unpacked. Entries
    /// that open() refused do not count. After a failure the other files are still
    /// unpacked. After the limit of bytes is exceeded, only empty files are
    /// unpacked.
    bool extractToFolder(const QString& a_sFolder, const QString& a_sTarget);

    void close();

    /// The error text of the last failure since open(); empty when there was none.
    [[nodiscard]] QString errorString() const { return m_sError; }

private:
    struct Closer
    {
        void operator()(zip* a_pArchive) const;
    };

    struct Entry
    {
        std::uint64_t index = 0; ///< in the archive
        std::uint64_t size = 0;  ///< bytes, as declared
    };

    void listEntries(const ZipDirectory& a_directory);
    bool fail(const QString& a_sReason);

    QString m_sPath;
    QString m_sError;
    std::unique_ptr<zip, Closer> m_archive;
    QStringList m_files;
    QHash<QString, Entry> m_entries; ///< by the names of the files
    std::uint64_t m_uiMaxBytes = std::uint64_t{1} << 30U;
    std::uint64_t m_uiMaxEntries = 100'000;
    std::uint64_t m_uiBytesLeft = 0;
    std::uint64_t m_uiRefused = 0;
};

} // namespace KPZip

#endif
