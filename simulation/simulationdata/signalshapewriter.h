#ifndef SIMULATIONDATA_SIGNALSHAPEWRITER_H
#define SIMULATIONDATA_SIGNALSHAPEWRITER_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>

#include <cstdint>
#include <span>

namespace Simulation {

/// Makes the bytes of a signal shape file, "Signal.ssf", in the layout that
/// SignalShapeFile reads: one header, then as many records as it counts. The caller
/// writes them, so a file of any length needs the memory of one record. Static
/// operations only; any thread may call.
class SIMULATIONDATA_EXPORT SignalShapeWriter
{
public:
    struct Header
    {
        std::uint32_t bandwidth = 0;   ///< Hz, of a whole spectrum
        float basePower = 0.0F;        ///< power of the value 1 in a spectrum
        std::uint64_t recordCount = 0; ///< records that follow
        /// Spectra per second. A reader counts a record as 1000 / this value ms, rounded
        /// down, so only divisors of 1000 keep the time.
        std::uint32_t recordsPerSecond = 0;
        std::uint32_t pointsPerSpectrum = 0;
    };

    SignalShapeWriter() = delete;

    [[nodiscard]] static QByteArray header(const Header& a_header);

    /// One record. The values are linear powers in multiples of the base power, from the
    /// lowest to the highest frequency, as many as the header states. Level A of the
    /// record is the highest value (the signal), level B the lowest (the noise floor). A
    /// reader therefore gets the signal-to-noise ratio without the points. Without values
    /// both levels are 0.
    [[nodiscard]] static QByteArray record(std::span<const float> a_spectrum);
};

} // namespace Simulation

#endif
