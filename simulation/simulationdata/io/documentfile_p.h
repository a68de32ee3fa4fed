#ifndef SIMULATIONDATA_DOCUMENTFILE_P_H
#define SIMULATIONDATA_DOCUMENTFILE_P_H

#include <QByteArray>
#include <QString>

#include <optional>

class QIODevice;

namespace Simulation {

/// Replaces the content of the file, whole or not at all: the old file stays when
/// the disk is full or the process dies. The new file is made beside the old one,
/// so the folder must be writable. Devices and folders are refused, and so is a
/// document that is too large to be read back. On failure returns false after one
/// trace and sets the reason, unless `a_pReason` is null.
[[nodiscard]] bool saveDocument(const QString& a_sFile, const QByteArray& a_data,
                                QString* a_pReason = nullptr);

/// Whether a document of that size may be read. False with a reason when it exceeds
/// Limits::DocumentBytes.
[[nodiscard]] bool checkDocumentBytes(qint64 a_iBytes, QString* a_pReason);

/// All remaining bytes of the open device. No value, with a reason, when the bytes
/// exceed Limits::DocumentBytes or the device cannot be read.
[[nodiscard]] std::optional<QByteArray> readDocument(QIODevice* a_pDevice, QString* a_pReason);

/// Like readDocument(), for a file. The file must be a regular file or a pipe, not a
/// folder.
[[nodiscard]] std::optional<QByteArray> loadDocument(const QString& a_sFile, QString* a_pReason);

} // namespace Simulation

#endif
