#ifndef DEFAULTDATA_SIGNALSHAPEWRITER_H
#define DEFAULTDATA_SIGNALSHAPEWRITER_H

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace DefaultData {

/// The spectra of a signal over time.
struct SignalShape
{
    std::uint32_t bandwidth = 0;        ///< Hz, all points together
    float basePower = 0.0F;             ///< what a value of 1 in a spectrum stands for
    std::uint32_t recordsPerSecond = 0; ///< spectra
    std::uint32_t points = 0;           ///< of one spectrum
    std::vector<std::vector<float>> records;
};

/// The bytes of "Signal.ssf". The values of a spectrum are multiples of the
/// base power, from the lowest to the highest frequency. Level A of a record is
/// its highest value, the signal, and level B its lowest, the floor: a reader
/// that asks for signal over floor need not look at the points.
[[nodiscard]] QByteArray writeSignalShape(const SignalShape& a_shape);

} // namespace DefaultData

#endif
