#include "signalshapewriter.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>

namespace DefaultData {

namespace {

constexpr char s_szMagic[] = "T&K-SSF";
constexpr std::uint32_t s_uiVersion = 2;

} // namespace

QByteArray writeSignalShape(const SignalShape& a_shape)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    stream.writeRawData(s_szMagic, sizeof(s_szMagic) - 1);
    stream << quint32{s_uiVersion} << quint32{a_shape.bandwidth} << a_shape.basePower
           << quint64{a_shape.records.size()} << quint32{a_shape.recordsPerSecond} << quint32{a_shape.points};
    for (const std::vector<float>& spectrum : a_shape.records) {
        const auto [lowest, highest] = std::minmax_element(spectrum.begin(), spectrum.end());
        stream << quint64{0} << *highest << *lowest;
        for (const float fValue : spectrum) {
            stream << fValue;
        }
    }
    return bytes;
}

} // namespace DefaultData
