#ifndef SIMULATIONDATA_WAVEFILEWRITER_H
#define SIMULATIONDATA_WAVEFILEWRITER_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>

#include <cstdint>
#include <span>

namespace Simulation {

/// Makes the bytes of a wave file of one channel with 16-bit PCM samples: one header,
/// then the samples. The caller writes them, so a file of any length needs the memory of
/// one block of samples. AudioFile reads such a file when its rate is 32,000 frames per
/// second. Static operations only; any thread may call.
class SIMULATIONDATA_EXPORT WaveFileWriter
{
public:
    /// The largest number of samples: the sizes in the header have 32 bits.
    static constexpr std::uint32_t s_uiMaxSamples = 2'147'483'629;

    WaveFileWriter() = delete;

    /// The header of a file of `a_uiSamples` samples, at most s_uiMaxSamples, at
    /// `a_uiRate` frames per second, below 2^31.
    [[nodiscard]] static QByteArray header(std::uint32_t a_uiSamples, std::uint32_t a_uiRate);

    /// The next samples of the file.
    [[nodiscard]] static QByteArray samples(std::span<const std::int16_t> a_samples);
};

} // namespace Simulation

#endif
