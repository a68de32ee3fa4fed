#include "spectrumlayout.h"

#include "console/valuetexts.h"
#include "recording.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <kiss_fft.h>

namespace SimulationTool {

namespace {

constexpr double s_dMsPerSecond = 1000.0;
constexpr int s_iTimeDecimals = 4;
constexpr double s_dUsualPoints = 512.0; ///< as the built-in packages have
constexpr double s_dMinPoints = 8.0;
constexpr double s_dMaxPoints = 65'536.0;
constexpr double s_dMaxWindow = 262'144.0; ///< frames; bounds the memory to about 50 MiB

/// The transform is longer than the window, filled up with zeros. Between two of its
/// points a tone of the Hann window then loses at most 0.09 dB; without zeros it would
/// lose up to 1.42 dB (Harris, "On the Use of Windows for Harmonic Analysis with the
/// Discrete Fourier Transform", Proc. IEEE 66, 1978, Table 1).
constexpr std::uint32_t s_uiZeroFactor = 4;

QString hertz(double a_dFrequency)
{
    return frequencyText(a_dFrequency);
}

bool checkBand(const SpectrumLayout& a_layout, QString& a_sReason)
{
    const double dHalfRate = 0.5 * a_layout.rate;
    if (std::abs(a_layout.centre) + 0.5 * a_layout.bandwidth <= dHalfRate) {
        return true;
    }
    a_sReason =
        QStringLiteral("holds the frequencies from %1 to %2, and the spectra would reach from %3 to "
                       "%4: give a smaller --bandwidth%5")
            .arg(hertz(-dHalfRate), hertz(dHalfRate), hertz(a_layout.centre - 0.5 * a_layout.bandwidth),
                 hertz(a_layout.centre + 0.5 * a_layout.bandwidth),
                 a_layout.real ? QString() : QStringLiteral(", or another --center"));
    return false;
}

bool setDuration(SpectrumLayout& a_layout, QString& a_sReason)
{
    const double dDuration =
        std::floor(static_cast<double>(a_layout.frames) * s_dMsPerSecond / a_layout.rate);
    if (dDuration < 1.0 || dDuration > std::numeric_limits<std::uint32_t>::max()) {
        a_sReason =
            QStringLiteral("lasts %1 s, and packages last from 1 ms to 49.7 days: give a %2 recording")
                .arg(fixedNumber(static_cast<double>(a_layout.frames) / a_layout.rate, s_iTimeDecimals),
                     dDuration < 1.0 ? QStringLiteral("longer") : QStringLiteral("shorter"));
        return false;
    }
    a_layout.duration = static_cast<std::uint32_t>(dDuration);
    a_layout.records = (std::uint64_t{a_layout.duration} + a_layout.step - 1) / a_layout.step;
    return true;
}

/// The distances of two points (Hz) that are possible.
struct ResolutionRange
{
    double finest;
    double coarsest;
};

ResolutionRange resolutionRange(const SpectrumLayout& a_layout)
{
    const double dRate = a_layout.rate;
    return {std::max({a_layout.bandwidth / s_dMaxPoints, dRate / s_dMaxWindow,
                      dRate / static_cast<double>(a_layout.frames)}),
            a_layout.bandwidth / s_dMinPoints};
}

/// Chooses points and window. The window lasts 1 / resolution, and the main lobe of the
/// Hann window is two points wide at -6 dB (Harris 1978, Table 1), so tones two points
/// apart are separate.
bool setResolution(SpectrumLayout& a_layout, double a_dResolution, QString& a_sReason)
{
    const double dBandwidth = a_layout.bandwidth;
    const auto [dFinest, dCoarsest] = resolutionRange(a_layout);
    if (dFinest > dCoarsest) {
        a_sReason =
            QStringLiteral("is too short or too fast for spectra of %1: give a larger --bandwidth, or "
                           "a longer recording")
                .arg(hertz(dBandwidth));
        return false;
    }
    if (a_dResolution > 0.0 && (a_dResolution < dFinest || a_dResolution > dCoarsest)) {
        a_sReason = QStringLiteral("allows a --resolution from %1 to %2, not %3")
                        .arg(hertz(dFinest), hertz(dCoarsest), hertz(a_dResolution));
        return false;
    }
    const double dResolution =
        a_dResolution > 0.0 ? a_dResolution : std::clamp(dBandwidth / s_dUsualPoints, dFinest, dCoarsest);
    const double dPoints = std::ceil(dBandwidth / dResolution);
    a_layout.points = static_cast<std::uint32_t>(std::clamp(dPoints, s_dMinPoints, s_dMaxPoints));
    const double dWindow = std::round(a_layout.points * (a_layout.rate / dBandwidth));
    const double dFrames = static_cast<double>(a_layout.frames);
    a_layout.window = static_cast<std::uint32_t>(std::min({dWindow, dFrames, s_dMaxWindow}));
    a_layout.transform = static_cast<std::uint32_t>(
        kiss_fft_next_fast_size(static_cast<int>(s_uiZeroFactor * a_layout.window)));
    return true;
}

} // namespace

std::optional<SpectrumLayout> spectrumLayout(const Recording& a_recording, const SpectrumSettings& a_settings,
                                             QString& a_sReason)
{
    SpectrumLayout layout;
    layout.frames = a_recording.frames();
    layout.rate = a_recording.rate();
    layout.real = a_recording.isReal();
    layout.bandwidth = a_settings.bandwidth != 0 ? a_settings.bandwidth : layout.rate;
    layout.centre = a_settings.centre;
    layout.step = a_settings.step;
    if (!checkBand(layout, a_sReason) || !setDuration(layout, a_sReason) ||
        !setResolution(layout, a_settings.resolution, a_sReason)) {
        return std::nullopt;
    }
    // Segments overlap by half or more, so that no frame is lost at the edges of the
    // window.
    const double dStepFrames = layout.step * (layout.rate / s_dMsPerSecond);
    layout.segments =
        static_cast<std::uint64_t>(std::max(std::ceil(dStepFrames / (0.5 * layout.window)), 1.0));
    return layout;
}

} // namespace SimulationTool
