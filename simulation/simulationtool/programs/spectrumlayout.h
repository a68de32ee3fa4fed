#ifndef SIMULATIONTOOL_SPECTRUMLAYOUT_H
#define SIMULATIONTOOL_SPECTRUMLAYOUT_H

#include <QString>

#include <cstdint>
#include <optional>

namespace SimulationTool {

class Recording;

/// What a user may choose about the spectra of a recording.
struct SpectrumSettings
{
    std::uint32_t bandwidth = 0; ///< Hz, of a whole spectrum; 0: the rate of the recording
    double centre = 0.0;         ///< Hz: the frequency of the recording in the middle of a spectrum
    double resolution = 0.0;     ///< Hz from point to point; 0: chosen for about 512 points
    std::uint32_t step = 100;    ///< ms from spectrum to spectrum, a divisor of 1000
};

/// How the spectra of one recording are calculated.
struct SpectrumLayout
{
    std::uint64_t frames = 0;    ///< of the recording
    std::uint32_t rate = 0;      ///< frames per second
    bool real = false;           ///< whether the frames are real numbers
    std::uint32_t bandwidth = 0; ///< Hz
    double centre = 0.0;         ///< Hz
    std::uint32_t points = 0;    ///< of a spectrum, each the middle of bandwidth / points
    std::uint32_t step = 0;      ///< ms
    std::uint64_t records = 0;   ///< number of spectra; the last one may be shorter than the step
    std::uint32_t duration = 0;  ///< of the recording (ms, rounded down)
    std::uint32_t window = 0;    ///< frames of one segment
    std::uint32_t transform = 0; ///< points of the transform, at least four times the window
    std::uint64_t segments = 0;  ///< averaged in one spectrum
};

/// The layout for an open recording. Returns no value, with the reason and what to do,
/// when the recording is too short or too long or the settings do not suit it.
[[nodiscard]] std::optional<SpectrumLayout>
spectrumLayout(const Recording& a_recording, const SpectrumSettings& a_settings, QString& a_sReason);

} // namespace SimulationTool

#endif
