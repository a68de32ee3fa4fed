#ifndef KPBASE_REPLACEDFILE_H
#define KPBASE_REPLACEDFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

class QFileDevice;
class QIODevice;

// These classes and functions write files. Every failure is reported with an error text,
// for example the system's "No space left on device". A disk that becomes full first
// accepts a part of a write without an error. The disk reports the error
// only when it accepts no byte. Therefore, after a partial write, the rest is always
// passed to the disk again.

/// Writes all bytes. Returns false when the device does not accept them; the error
/// text is in the device's errorString().
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeAll(QIODevice& a_device, const char* a_pBytes, qint64 a_iBytes);

/// Works like writeAll() and then flushes the buffer of a file. For few bytes, only
/// the flush detects a full disk.
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeThrough(QIODevice& a_device, const QByteArray& a_data);

/// Closes a file that was written unbuffered. Returns false, with the system's error
/// text, when closing fails: some network disks report only then that they are full.
/// Does not wait until the bytes are on the disk, so use it for files that can be
/// made again.
[[nodiscard]] bool closeWritten(QFileDevice& a_file, QString* a_pReason);

/// A file that commit() replaces as a whole. The former file stays unchanged when
/// any operation fails or commit() is not called. The new file is made in the same
/// folder, which must be writable. An object belongs to one thread.
class SIMULATIONDATA_EXPORT ReplacedFile
{
public:
    explicit ReplacedFile(const QString& a_sFile);

    /// Makes the new file. Returns false when the folder is not writable, or when
    /// the name belongs to something other than a regular file. Replacing a device
    /// or a pipe would remove it for every program.
    [[nodiscard]] bool open();
    /// Writes bytes through a buffer. Returns false after any write has failed.
    [[nodiscard]] bool write(const char* a_pBytes, qint64 a_iBytes);
    [[nodiscard]] bool write(const QByteArray& a_data) { return write(a_data.constData(), a_data.size()); }
    /// Writes the rest of the buffer, waits until the bytes are on the disk, and
    /// replaces the file. Returns false after any failure.
    [[nodiscard]] bool commit();
    /// The error text of the first failed operation; empty when none has failed.
    [[nodiscard]] QString errorString() const { return m_sReason; }

private:
    bool fail(const QString& a_sReason);
    bool writeBuffer();

    QSaveFile m_file;
    QByteArray m_buffer; ///< bytes not written yet
    QString m_sReason;
};

#endif
