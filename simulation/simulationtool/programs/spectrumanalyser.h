#ifndef SIMULATIONTOOL_SPECTRUMANALYSER_H
#define SIMULATIONTOOL_SPECTRUMANALYSER_H

#include "recording.h"
#include "spectrumlayout.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include <kiss_fft.h>

namespace SimulationTool {

/// Calculates power spectra of a recording that arrives in blocks, by averaged
/// periodograms of overlapping segments (Welch, "The Use of Fast Fourier Transform for
/// the Estimation of Power Spectra", IEEE Trans. Audio Electroacoust. 15, 1967) with the
/// Hann window.
///
/// The values are linear powers. A sine of full scale has the value 1 at its frequency: a
/// complex one once, a real one at the positive and at the negative frequency. Between two
/// points of the transform the value is up to 0.09 dB too small. A point of a spectrum is
/// the strongest point of the transform in its part of the bandwidth (a positive peak
/// detector), so no narrow line is lost. A constant in a real recording has twice the
/// amplitude of a sine, as positive and negative frequency coincide there.
///
/// Holds one segment, one block and one transform in memory. Belongs to one thread.
class SpectrumAnalyser
{
public:
    /// Takes one spectrum, from the lowest to the highest frequency. False stops.
    using Sink = std::function<bool(std::span<const float>)>;

    SpectrumAnalyser(const SpectrumLayout& a_layout, Sink a_sink);

    /// Takes the next frames and calls the sink for every spectrum that they complete. All
    /// spectra are complete after the last frame. Returns false when the sink does, and after
    /// an interruption.
    [[nodiscard]] bool add(std::span<const Sample> a_frames);

private:
    struct Freer
    {
        void operator()(kiss_fft_state* a_pState) const { kiss_fft_free(a_pState); }
    };

    [[nodiscard]] double span() const;
    [[nodiscard]] std::uint64_t segments() const;
    [[nodiscard]] std::uint64_t nextStart() const;
    void addSegment(const Sample* a_pFrames);
    [[nodiscard]] bool emitSpectrum();

    SpectrumLayout m_layout;
    Sink m_sink;
    std::unique_ptr<kiss_fft_state, Freer> m_transform;
    std::vector<float> m_window;
    std::vector<kiss_fft_cpx> m_input; ///< zeros after the window
    std::vector<kiss_fft_cpx> m_output;
    std::vector<double> m_powers; ///< sum over the segments of this spectrum
    std::vector<float> m_spectrum;
    std::vector<Sample> m_pending; ///< frames from m_uiFirst on
    std::uint64_t m_uiFirst = 0;
    std::uint64_t m_uiRecord = 0;  ///< of the next segment
    std::uint64_t m_uiSegment = 0; ///< the next one of this record
};

} // namespace SimulationTool

#endif
