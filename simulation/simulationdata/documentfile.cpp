#include "documentfile_p.h"

#include "simulationdata/limits.h"
#include "trace_p.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/documentfile";
constexpr qint64 s_iChunkBytes = qint64{1} << 20;

} // namespace

namespace {

/// A full device is seen only when the buffers are flushed.
bool writeAll(QFileDevice& a_file, const QByteArray& a_data)
{
    return a_file.open(QIODevice::WriteOnly) && a_file.write(a_data) == a_data.size() && a_file.flush();
}

bool failedToSave(const QFileDevice& a_file, const QByteArray& a_data)
{
    traceError(s_szSource, [&] {
        return QStringLiteral("Cannot save \"%1\" (%2 bytes): %3")
            .arg(a_file.fileName(), QString::number(a_data.size()), a_file.errorString());
    });
    return false;
}

} // namespace

bool saveDocument(const QString& a_sFile, const QByteArray& a_data)
{
    // A device or a pipe holds nothing worth keeping and must not be replaced
    // by a file of its name.
    if (const QFileInfo info(a_sFile); info.exists() && !info.isFile()) {
        QFile device(a_sFile);
        return writeAll(device, a_data) || failedToSave(device, a_data);
    }
    QSaveFile file(a_sFile);
    return (writeAll(file, a_data) && file.commit()) || failedToSave(file, a_data);
}

std::optional<QByteArray> readDocument(QIODevice* a_pDevice, QString* a_pReason)
{
    const auto iLimit = static_cast<qint64>(
        std::min<std::uint64_t>(Limits::value(Limits::DocumentBytes), std::uint64_t{1} << 40));
    if (!a_pDevice->isReadable()) {
        *a_pReason = QStringLiteral("is not open for reading");
        return std::nullopt;
    }
    QByteArray data;
    if (!a_pDevice->isSequential()) {
        // One byte more than the rest tells a file that grows meanwhile.
        const qint64 iRest = std::max<qint64>(a_pDevice->size() - a_pDevice->pos(), 0);
        data.reserve(static_cast<qsizetype>(std::min(iRest, iLimit)) + 1);
    }
    while (data.size() <= iLimit) {
        const qint64 iHeld = data.size();
        const qint64 iWanted = std::min(s_iChunkBytes, iLimit + 1 - iHeld);
        data.resize(static_cast<qsizetype>(iHeld + iWanted));
        const qint64 iRead = a_pDevice->read(data.data() + iHeld, iWanted);
        data.resize(static_cast<qsizetype>(iHeld + std::max<qint64>(iRead, 0)));
        if (iRead < 0 && !a_pDevice->isSequential()) {
            *a_pReason = a_pDevice->errorString();
            return std::nullopt;
        }
        if (iRead <= 0) {
            return data;
        }
    }
    *a_pReason = QStringLiteral("%1 limit of %2 exceeded")
                     .arg(QLatin1String(Limits::name(Limits::DocumentBytes)), QString::number(iLimit));
    return std::nullopt;
}

std::optional<QByteArray> loadDocument(const QString& a_sFile, QString* a_pReason)
{
    if (QFileInfo(a_sFile).isDir()) {
        *a_pReason = QStringLiteral("is a folder");
        return std::nullopt;
    }
    QFile file(a_sFile);
    if (!file.open(QIODevice::ReadOnly)) {
        *a_pReason = file.errorString();
        return std::nullopt;
    }
    return readDocument(&file, a_pReason);
}

} // namespace Simulation
