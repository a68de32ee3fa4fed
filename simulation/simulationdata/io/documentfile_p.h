#ifndef SIMULATIONDATA_DOCUMENTFILE_P_H
#define SIMULATIONDATA_DOCUMENTFILE_P_H

#include <QByteArray>
#include <QString>

#include <optional>

class QIODevice;

namespace Simulation {

/// Replaces the file by the bytes, whole or not at all: what was there stays
/// when the disk is full or the process dies. The new file is made beside the
/// old one, so the folder must be writable; devices and folders are refused,
/// and so is what is too large to be read back.
/// False after one trace, with the reason unless `a_pReason` is null.
[[nodiscard]] bool saveDocument(const QString& a_sFile, const QByteArray& a_data,
                                QString* a_pReason = nullptr);

/// Whether a document of that size may be read. False with a reason when it is
/// more than Limits::DocumentBytes.
[[nodiscard]] bool checkDocumentBytes(qint64 a_iBytes, QString* a_pReason);

/// Everything that the open device still holds. Nothing, with a reason, when
/// that is more than Limits::DocumentBytes or the device cannot be read.
[[nodiscard]] std::optional<QByteArray> readDocument(QIODevice* a_pDevice, QString* a_pReason);

/// The same for a file, which must be a regular one or a pipe, not a folder.
[[nodiscard]] std::optional<QByteArray> loadDocument(const QString& a_sFile, QString* a_pReason);

} // namespace Simulation

#endif
