#ifndef KPBASE_REPLACEDFILE_H
#define KPBASE_REPLACEDFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

class QFileDevice;
class QIODevice;

// How files are written: every failure leaves the system's reason, such as "No
// space left on device", in errorString(). A disk that becomes full takes a part
// of a write without a reason; only the write that takes nothing has one, so the
// rest is always written once more.

/// Writes all of the bytes. False, with the reason in the device's errorString(),
/// when the device does not take them.
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeAll(QIODevice& a_device, const char* a_pBytes, qint64 a_iBytes);

/// The same, and has a file write at once what it buffers: when the bytes are few,
/// a full disk is seen only then.
[[nodiscard]] SIMULATIONDATA_EXPORT bool writeThrough(QIODevice& a_device, const QByteArray& a_data);

/// Closes a file that was written unbuffered. False with the system's reason when the
/// disk cannot take it: of some disks in a network a full one is seen only then. Does
/// not wait until the disk holds the bytes: for files that can be made again.
[[nodiscard]] bool closeWritten(QFileDevice& a_file, QString* a_pReason);

/// A file that commit() replaces whole. When anything fails, or commit() is not
/// called, the former file stays as it was. The new one is made beside it, so the
/// folder must be writable. An object belongs to one thread.
class SIMULATIONDATA_EXPORT ReplacedFile
{
public:
    explicit ReplacedFile(const QString& a_sFile);

    /// False when the place cannot be written. What is there already must be a
    /// regular file: to replace a device or a pipe would take it from everybody.
    [[nodiscard]] bool open();
    /// Small pieces are collected first. False once any bytes were not written.
    [[nodiscard]] bool write(const char* a_pBytes, qint64 a_iBytes);
    [[nodiscard]] bool write(const QByteArray& a_data) { return write(a_data.constData(), a_data.size()); }
    /// Waits until the disk holds the bytes. False after any failure.
    [[nodiscard]] bool commit();
    /// Why the first of the operations failed that did; empty when none has.
    [[nodiscard]] QString errorString() const { return m_sReason; }

private:
    bool fail(const QString& a_sReason);
    bool writeBuffer();

    QSaveFile m_file;
    QByteArray m_buffer; ///< not written yet
    QString m_sReason;
};

#endif
