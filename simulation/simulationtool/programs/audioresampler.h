#ifndef SIMULATIONTOOL_AUDIORESAMPLER_H
#define SIMULATIONTOOL_AUDIORESAMPLER_H

#include "recording.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace SimulationTool {

/// Converts a real recording that arrives in blocks to the audio of a signal package: 32,000
/// frames per second of 16 bits. Other rates are converted with a low-pass filter, a sinc
/// function under a Blackman window, evaluated at the time of every output frame (Crochiere
/// and Rabiner, "Multirate Digital Signal Processing", 1983). Frequencies up to 0.9 of the
/// smaller band stay, and aliases are at least 70 dB lower. A recording of the same rate
/// stays as it is. Values beyond full scale are clipped.
///
/// Holds one block and the coefficients in memory, at most about 50 MiB. Belongs to one
/// thread.
class AudioResampler
{
public:
    static constexpr std::uint32_t s_uiRate = 32'000; ///< frames per second, of the output

    /// Takes the next output frames. False stops.
    using Sink = std::function<bool(std::span<const std::int16_t>)>;

    /// `a_uiFrames` frames will be passed to add(), at `a_uiRate` frames per second.
    AudioResampler(std::uint64_t a_uiFrames, std::uint32_t a_uiRate, Sink a_sink);

    /// How many frames the sink gets altogether, for a recording of `a_uiFrames`.
    [[nodiscard]] static std::uint64_t outputFrames(std::uint64_t a_uiFrames, std::uint32_t a_uiRate);

    /// Takes the next frames, of which only the real part counts. Returns false when the
    /// sink does.
    [[nodiscard]] bool add(std::span<const Sample> a_frames);
    /// Sends the rest after the last frame. Returns false when the sink does.
    [[nodiscard]] bool finish();

private:
    [[nodiscard]] bool convertPending();

    Sink m_sink;
    std::uint64_t m_uiIn; ///< input frames per m_uiOut output frames, in lowest terms
    std::uint64_t m_uiOut;
    std::uint64_t m_uiFrames;          ///< of the output
    std::uint64_t m_uiHalf;            ///< input frames on each side of an output frame
    std::vector<float> m_coefficients; ///< 2 m_uiHalf for each of m_uiOut phases
    std::vector<float> m_pending;      ///< input frames from m_uiFirst on
    std::uint64_t m_uiFirst = 0;       ///< counted from m_uiHalf - 1 zeros before the recording
    std::uint64_t m_uiNext = 0;        ///< output frame
};

} // namespace SimulationTool

#endif
