#include "signalshapewriter.h"

#include "signalshapefile_p.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>

namespace Simulation {

namespace {

void prepare(QDataStream& a_stream)
{
    a_stream.setByteOrder(QDataStream::LittleEndian);
    a_stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
}

} // namespace

QByteArray SignalShapeWriter::header(const Header& a_header)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream);
    stream.writeRawData(s_szSignalShapeMagic, sizeof(s_szSignalShapeMagic) - 1);
    stream << quint32{s_uiSignalShapeVersion} << quint32{a_header.bandwidth} << a_header.basePower
           << quint64{a_header.recordCount} << quint32{a_header.recordsPerSecond}
           << quint32{a_header.pointsPerSpectrum};
    return bytes;
}

QByteArray SignalShapeWriter::record(std::span<const float> a_spectrum)
{
    float fLowest = 0.0F;
    float fHighest = 0.0F;
    if (!a_spectrum.empty()) {
        const auto [lowest, highest] = std::minmax_element(a_spectrum.begin(), a_spectrum.end());
        fLowest = *lowest;
        fHighest = *highest;
    }
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    prepare(stream);
    stream << quint64{0} << fHighest << fLowest;
    for (const float fValue : a_spectrum) {
        stream << fValue;
    }
    return bytes;
}

} // namespace Simulation
