#include "audioresampler.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <utility>

namespace SimulationTool {

namespace {

/// The middle of the filter's edge, as a part of the smaller of both bands.
constexpr double s_dEdge = 0.95;
/// Zeros of the sinc function on each side; determines how steep the edge is.
constexpr double s_dZeros = 60.0;
constexpr float s_fScale16 = 32768.0F;

double sinc(double a_dX)
{
    const double dAngle = std::numbers::pi * a_dX;
    return a_dX == 0.0 ? 1.0 : std::sin(dAngle) / dAngle;
}

/// The Blackman window for a_dX in [-1, 1], with the maximum at 0 (Harris, "On the Use of
/// Windows for Harmonic Analysis with the Discrete Fourier Transform", Proc. IEEE 66, 1978).
double blackman(double a_dX)
{
    const double dAngle = std::numbers::pi * a_dX;
    return 0.42 + 0.5 * std::cos(dAngle) + 0.08 * std::cos(2.0 * dAngle);
}

/// The coefficients of every phase, each with the sum 1, so that a constant stays.
/// `a_dBand` is the edge as a part of the input's band.
std::vector<float> filterPhases(std::uint64_t a_uiPhases, std::uint64_t a_uiHalf, double a_dBand)
{
    const std::uint64_t uiTaps = 2 * a_uiHalf;
    std::vector<float> coefficients(a_uiPhases * uiTaps);
    std::vector<double> phase(uiTaps);
    for (std::uint64_t uiPhase = 0; uiPhase < a_uiPhases; ++uiPhase) {
        const double dFraction = static_cast<double>(uiPhase) / static_cast<double>(a_uiPhases);
        for (std::uint64_t uiTap = 0; uiTap < uiTaps; ++uiTap) {
            const double dAway = static_cast<double>(uiTap) - static_cast<double>(a_uiHalf) + 1.0 - dFraction;
            phase[uiTap] = sinc(a_dBand * dAway) * blackman(dAway / static_cast<double>(a_uiHalf));
        }
        const double dSum = std::accumulate(phase.begin(), phase.end(), 0.0);
        std::transform(phase.begin(), phase.end(),
                       coefficients.begin() + static_cast<std::ptrdiff_t>(uiPhase * uiTaps),
                       [dSum](double a_dValue) { return static_cast<float>(a_dValue / dSum); });
    }
    return coefficients;
}

std::int16_t rounded(float a_fValue)
{
    constexpr float fLowest = std::numeric_limits<std::int16_t>::min();
    constexpr float fHighest = std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(std::lround(std::clamp(a_fValue * s_fScale16, fLowest, fHighest)));
}

} // namespace

AudioResampler::AudioResampler(std::uint64_t a_uiFrames, std::uint32_t a_uiRate, Sink a_sink)
    : m_sink(std::move(a_sink))
    , m_uiIn(a_uiRate / std::gcd(a_uiRate, s_uiRate))
    , m_uiOut(s_uiRate / std::gcd(a_uiRate, s_uiRate))
    , m_uiFrames(outputFrames(a_uiFrames, a_uiRate))
{
    const bool bSame = m_uiIn == m_uiOut;
    const double dBand = s_dEdge * std::min(1.0, static_cast<double>(m_uiOut) / static_cast<double>(m_uiIn));
    m_uiHalf = bSame ? 1 : static_cast<std::uint64_t>(std::ceil(s_dZeros / dBand));
    m_coefficients = bSame ? std::vector<float>{1.0F, 0.0F} : filterPhases(m_uiOut, m_uiHalf, dBand);
    m_pending.assign(m_uiHalf - 1, 0.0F);
}

std::uint64_t AudioResampler::outputFrames(std::uint64_t a_uiFrames, std::uint32_t a_uiRate)
{
    return a_uiFrames * s_uiRate / a_uiRate; // WAVE files have 32 bits of frames
}

bool AudioResampler::add(std::span<const Sample> a_frames)
{
    std::transform(a_frames.begin(), a_frames.end(), std::back_inserter(m_pending),
                   [](const Sample& a_sample) { return a_sample.real(); });
    return convertPending();
}

bool AudioResampler::finish()
{
    m_pending.insert(m_pending.end(), m_uiHalf, 0.0F);
    return convertPending();
}

/// Converts as far as the input reaches and drops the input that is not needed again.
bool AudioResampler::convertPending()
{
    const std::uint64_t uiTaps = 2 * m_uiHalf;
    const std::uint64_t uiEnd = m_uiFirst + m_pending.size();
    std::vector<std::int16_t> output;
    for (; m_uiNext < m_uiFrames && m_uiNext * m_uiIn / m_uiOut + uiTaps <= uiEnd; ++m_uiNext) {
        const float* pInput = m_pending.data() + (m_uiNext * m_uiIn / m_uiOut - m_uiFirst);
        const float* pCoefficients = m_coefficients.data() + (m_uiNext * m_uiIn % m_uiOut) * uiTaps;
        output.push_back(rounded(std::inner_product(pInput, pInput + uiTaps, pCoefficients, 0.0F)));
    }
    const std::uint64_t uiKept = std::min(m_uiNext * m_uiIn / m_uiOut, uiEnd);
    m_pending.erase(m_pending.begin(), m_pending.begin() + static_cast<std::ptrdiff_t>(uiKept - m_uiFirst));
    m_uiFirst = uiKept;
    return m_sink(output);
}

} // namespace SimulationTool
