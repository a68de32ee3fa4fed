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

/// A zip file that is unpacked. Nothing in it is trusted: entries whose names
/// lead out of the target folder, links, encrypted entries and those packed by
/// an unknown method are refused and traced, the rest is unpacked.
///
/// Files come to their final name whole or not at all, and replace what stands
/// there; a link that stands in the way is never followed. Every failure is
/// traced and stays in errorString(). An object belongs to one thread.
class SIMULATIONDATA_EXPORT Archive
{
public:
    /// The value is part of the interface.
    enum Mode : int { ModeRead = 1 };

    /// Nothing is opened yet.
    explicit Archive(const QString& a_sPath);
    ~Archive();
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    /// Bounds for the next open(): the bytes that may be written while the
    /// archive is open, whatever it declares, and the entries that it may have.
    /// By default 1 GiB and 100,000.
    void setBounds(std::uint64_t a_uiBytes, std::uint64_t a_uiEntries);

    /// Opens a regular file; an archive that is open is closed first. False when
    /// it is no archive, damaged, or has too many entries.
    bool open(Mode a_eMode);
    [[nodiscard]] bool isOpen() const { return m_archive != nullptr; }

    /// The files of the archive in its order, as relative paths with slashes.
    /// Folders and refused entries are not among them. Empty when not open.
    [[nodiscard]] QStringList files() const { return m_files; }

    /// How many entries were refused when the archive was opened.
    [[nodiscard]] std::uint64_t refusedCount() const { return m_uiRefused; }

    /// The size in bytes that the archive declares for a file; nothing has
    /// checked it. 0 for a name that is not among files().
    [[nodiscard]] std::uint64_t declaredSize(const QString& a_sEntry) const;

    /// Unpacks one of files() to a path, whose folder must exist. False leaves
    /// what stood there.
    bool extractToFile(const QString& a_sEntry, const QString& a_sFile);

    /// Unpacks everything below a folder of the archive ("/TuK-Default"; "/" or
    /// "" for all) into the target folder, which is made when it is missing.
    /// True when every file was unpacked and there was at least one; a refused
    /// name does not count. After a failure the other files are still unpacked;
    /// when the bound of bytes is met, only empty ones are.
    bool extractToFolder(const QString& a_sFolder, const QString& a_sTarget);

    void close();

    /// Why the last operation failed; empty when none did since open().
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
    QHash<QString, Entry> m_entries; ///< of the files
    std::uint64_t m_uiMaxBytes = std::uint64_t{1} << 30U;
    std::uint64_t m_uiMaxEntries = 100'000;
    std::uint64_t m_uiBytesLeft = 0;
    std::uint64_t m_uiRefused = 0;
};

} // namespace KPZip

#endif
