#ifndef KPBASE_REPLACEDFILE_H
#define KPBASE_REPLACEDFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

class QFileDevice;
class QIODevice;

// How files are written. Every failure leaves the system's error text, such as "No
// space left on device", in errorString(). A disk that becomes full accepts part of a
// write without an error and reports the error only when it accepts no byte. So the
// rest of a partial write is always written again.

/// Writes all of the bytes. False, with the error text in the device's errorString(),
/// when the device does not accept them.
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeAll(QIODevice& a_device, const char* a_pBytes, qint64 a_iBytes);

/// Like writeAll(), and flushes the buffer of a file: a full disk may report an error
/// for few bytes only then.
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeThrough(QIODevice& a_device, const QByteArray& a_data);

/// Closes a file that was written unbuffered. False, with the system's error text,
/// when that fails: some network disks report that they are full only then. Does not
/// wait until the disk holds the bytes: use it for files that can be made again.
[[nodiscard]] bool closeWritten(QFileDevice& a_file, QString* a_pReason);

/// A file that commit() replaces as a whole. When any operation fails, or commit() is
/// not called, the former file stays as it was. The new file is made in the same
/// folder, which must be writable. An object belongs to one thread.
class SIMULATIONDATA_EXPORT ReplacedFile
{
public:
    explicit ReplacedFile(const QString& a_sFile);

    /// Makes the new file. False when the folder is not writable, or when the name
    /// belongs to anything but a regular file: replacing a device or a pipe would
    /// remove it for every program.
    [[nodiscard]] bool open();
    /// Collects small pieces before it writes. False once any write has failed.
    [[nodiscard]] bool write(const char* a_pBytes, qint64 a_iBytes);
    [[nodiscard]] bool write(const QByteArray& a_data) { return write(a_data.constData(), a_data.size()); }
    /// Writes the rest, waits until the disk holds the bytes, and replaces the file.
    /// False after any failure.
    [[nodiscard]] bool commit();
    /// The error text of the first operation that failed; empty when none has failed.
    [[nodiscard]] QString errorString() const { return m_sReason; }

private:
    bool fail(const QString& a_sReason);
    bool writeBuffer();

    QSaveFile m_file;
    QByteArray m_buffer; ///< not written yet
    QString m_sReason;
};

#endif
