#include "documentfile_p.h"

#include "simulationdata/simulationlimits.h"
#include "trace_p.h"

#include "kpbase/replacedfile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/documentfile";
constexpr qint64 s_iChunkBytes = qint64{1} << 20;
/// The largest document (bytes), even if Limits::DocumentBytes is set higher.
constexpr std::uint64_t s_uiLargestDocument = std::uint64_t{1} << 40;

bool failToSave(const QString& a_sFile, const QString& a_sReason, QString* a_pReason)
{
    if (a_pReason != nullptr) {
        *a_pReason = a_sReason;
    }
    traceError(s_szSource, [&] { return QStringLiteral("Cannot save \"%1\": %2").arg(a_sFile, a_sReason); });
    return false;
}

qint64 maximumBytes()
{
    return static_cast<qint64>(std::min(Limits::value(Limits::DocumentBytes), s_uiLargestDocument));
}

} // namespace

bool checkDocumentBytes(qint64 a_iBytes, QString* a_pReason)
{
    if (a_iBytes <= maximumBytes()) {
        return true;
    }
    *a_pReason = Limits::exceeded(Limits::DocumentBytes);
    return false;
}

bool saveDocument(const QString& a_sFile, const QByteArray& a_data, QString* a_pReason)
{
    // A document that no reader accepts must not replace a readable one.
    if (QString sReason; !checkDocumentBytes(a_data.size(), &sReason)) {
        return failToSave(a_sFile, sReason, a_pReason);
    }
    ReplacedFile file(a_sFile);
    return (file.open() && file.write(a_data) && file.commit()) ||
           failToSave(a_sFile, file.errorString(), a_pReason);
}

std::optional<QByteArray> readDocument(QIODevice* a_pDevice, QString* a_pReason)
{
    const qint64 iLimit = maximumBytes();
    if (!a_pDevice->isReadable()) {
        *a_pReason = QStringLiteral("is not open for reading");
        return std::nullopt;
    }
    QByteArray data;
    if (!a_pDevice->isSequential()) {
        // The buffer has room for the remaining bytes and one more. Reading that byte
        // shows whether the file grows meanwhile.
        const qint64 iRest = std::max<qint64>(a_pDevice->size() - a_pDevice->pos(), 0);
        data.reserve(static_cast<qsizetype>(std::min(iRest, iLimit)) + 1);
    }
    while (data.size() <= iLimit) {
        const qint64 iHeld = data.size();
        const qint64 iWanted = std::min(s_iChunkBytes, iLimit + 1 - iHeld);
        data.resize(static_cast<qsizetype>(iHeld + iWanted));
        const qint64 iRead = a_pDevice->read(data.data() + iHeld, iWanted);
        data.resize(static_cast<qsizetype>(iHeld + std::max<qint64>(iRead, 0)));
        // A sequential device also returns -1 at its end, for example a closed socket.
        if (iRead < 0 && !a_pDevice->isSequential()) {
            *a_pReason = a_pDevice->errorString();
            return std::nullopt;
        }
        if (iRead <= 0) {
            break;
        }
    }
    return checkDocumentBytes(data.size(), a_pReason) ? std::optional<QByteArray>(data) : std::nullopt;
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
