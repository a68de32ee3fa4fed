#include "simulationservicecommunication_p.h"

#include "simulationdata/io/inflate_p.h"

#include <utility>

namespace Simulation {

QByteArray compressPayload(const QByteArray& a_data, bool a_bCompress)
{
    return a_bCompress ? qCompress(a_data).toBase64() : QString::fromLatin1(a_data).toUtf8();
}

QByteArray uncompressPayload(QByteArray&& a_text, bool a_bCompressed, QString* a_pError)
{
    a_pError->clear();
    if (!a_bCompressed) {
        const QByteArray text = std::exchange(a_text, {});
        return QString::fromUtf8(text).toLatin1();
    }
    // fromBase64() decodes an rvalue in place.
    const QByteArray compressed = QByteArray::fromBase64(std::exchange(a_text, {}));
    return inflateBounded(compressed, a_pError).value_or(QByteArray());
}

} // namespace Simulation
