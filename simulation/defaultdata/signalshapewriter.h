#ifndef DEFAULTDATA_SIGNALSHAPEWRITER_H
#define DEFAULTDATA_SIGNALSHAPEWRITER_H

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace DefaultData {

/// The spectra of a signal over time.
struct SignalShape
{
    std::uint32_t bandwidth = 0;        ///< Hz, of the whole spectrum
    float basePower = 0.0F;             ///< power of the value 1 in a spectrum
    std::uint32_t recordsPerSecond = 0; ///< spectra per second
    std::uint32_t points = 0;           ///< per spectrum
    std::vector<std::vector<float>> records;
};

/// The content of "Signal.ssf", in the layout that SignalShapeFile reads. The values of
/// a spectrum are multiples of the base power, from the lowest to the highest
/// frequency. Level A of a record is its highest value (the signal), level B its lowest
/// (the noise floor). A reader therefore gets the signal-to-noise ratio without reading
/// the points.
[[nodiscard]] QByteArray writeSignalShape(const SignalShape& a_shape);

} // namespace DefaultData

#endif
