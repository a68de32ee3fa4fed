#include "spectrumanalyser.h"

#include "console/interruption.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace SimulationTool {

namespace {

constexpr double s_dMsPerSecond = 1000.0;

/// The periodic Hann window, w(n) = (1 - cos(2 pi n / N)) / 2 (Harris 1978). Its sum is
/// N / 2.
std::vector<float> hannWindow(std::uint32_t a_uiFrames)
{
    std::vector<float> window(a_uiFrames);
    for (std::uint32_t i = 0; i < a_uiFrames; ++i) {
        const double dPhase = 2.0 * std::numbers::pi * i / a_uiFrames;
        window[i] = static_cast<float>(0.5 - 0.5 * std::cos(dPhase));
    }
    return window;
}

} // namespace

SpectrumAnalyser::SpectrumAnalyser(const SpectrumLayout& a_layout, Sink a_sink)
    : m_layout(a_layout)
    , m_sink(std::move(a_sink))
    , m_transform(kiss_fft_alloc(static_cast<int>(a_layout.transform), 0, nullptr, nullptr))
    , m_window(hannWindow(a_layout.window))
    , m_input(a_layout.transform, kiss_fft_cpx{0.0F, 0.0F})
    , m_output(a_layout.transform)
    , m_powers(a_layout.transform, 0.0)
    , m_spectrum(a_layout.points)
{}

/// The length of the current record (ms). The last one ends with the recording.
double SpectrumAnalyser::span() const
{
    const double dRest = m_layout.duration - static_cast<double>(m_uiRecord) * m_layout.step;
    return std::clamp(dRest, 1.0, static_cast<double>(m_layout.step));
}

/// The segments of the current record; a shorter record has fewer.
std::uint64_t SpectrumAnalyser::segments() const
{
    const double dShare = span() / m_layout.step;
    return static_cast<std::uint64_t>(
        std::max(std::ceil(static_cast<double>(m_layout.segments) * dShare), 1.0));
}

/// The first frame of the next segment. The middles of the segments divide a record
/// evenly. Segments at both ends of the recording are moved into it.
std::uint64_t SpectrumAnalyser::nextStart() const
{
    const double dPart = (static_cast<double>(m_uiSegment) + 0.5) / static_cast<double>(segments());
    const double dMs = static_cast<double>(m_uiRecord) * m_layout.step + dPart * span();
    const double dStart = std::floor(dMs * m_layout.rate / s_dMsPerSecond - 0.5 * m_layout.window);
    const double dLast = static_cast<double>(m_layout.frames - m_layout.window);
    return static_cast<std::uint64_t>(std::clamp(dStart, 0.0, dLast));
}

bool SpectrumAnalyser::add(std::span<const Sample> a_frames)
{
    m_pending.insert(m_pending.end(), a_frames.begin(), a_frames.end());
    const std::uint64_t uiEnd = m_uiFirst + m_pending.size();
    while (m_uiRecord < m_layout.records && nextStart() + m_layout.window <= uiEnd) {
        addSegment(m_pending.data() + (nextStart() - m_uiFirst));
        if (isInterrupted()) {
            return false;
        }
        if (++m_uiSegment == segments()) {
            if (!emitSpectrum()) {
                return false;
            }
            m_uiSegment = 0;
            ++m_uiRecord;
        }
    }
    const std::uint64_t uiKept = m_uiRecord < m_layout.records ? std::min(nextStart(), uiEnd) : uiEnd;
    m_pending.erase(m_pending.begin(), m_pending.begin() + static_cast<std::ptrdiff_t>(uiKept - m_uiFirst));
    m_uiFirst = uiKept;
    return true;
}

void SpectrumAnalyser::addSegment(const Sample* a_pFrames)
{
    for (std::size_t i = 0; i < m_window.size(); ++i) {
        m_input[i] = {a_pFrames[i].real() * m_window[i], a_pFrames[i].imag() * m_window[i]};
    }
    kiss_fft(m_transform.get(), m_input.data(), m_output.data());
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        const double dReal = m_output[i].r;
        const double dImaginary = m_output[i].i;
        m_powers[i] += dReal * dReal + dImaginary * dImaginary;
    }
}

/// A tone of amplitude 1 at a point of the transform has the magnitude sum(w) there, and
/// half of it at each of its two frequencies when it is real. The powers are divided by
/// the square of that, and by the number of segments.
bool SpectrumAnalyser::emitSpectrum()
{
    const double dWindowSum = 0.5 * m_layout.window;
    const double dTone = m_layout.real ? 0.5 * dWindowSum : dWindowSum;
    const double dScale = 1.0 / (dTone * dTone * static_cast<double>(segments()));
    const auto iSize = static_cast<std::int64_t>(m_layout.transform);
    const double dPerHertz = static_cast<double>(iSize) / m_layout.rate; // points of the transform
    // The first point of the transform at or above the lower edge of a point.
    const auto edge = [&](std::uint32_t a_uiPoint) {
        const double dOffset = (static_cast<double>(a_uiPoint) / m_layout.points - 0.5) * m_layout.bandwidth;
        return static_cast<std::int64_t>(std::ceil((m_layout.centre + dOffset) * dPerHertz));
    };
    for (std::uint32_t uiPoint = 0; uiPoint < m_layout.points; ++uiPoint) {
        double dStrongest = 0.0;
        for (std::int64_t iAt = edge(uiPoint); iAt < edge(uiPoint + 1); ++iAt) {
            // Negative frequencies are in the upper half of the transform.
            dStrongest = std::max(dStrongest, m_powers[static_cast<std::size_t>((iAt + iSize) % iSize)]);
        }
        m_spectrum[uiPoint] = static_cast<float>(dStrongest * dScale);
    }
    std::fill(m_powers.begin(), m_powers.end(), 0.0);
    return m_sink(m_spectrum);
}

} // namespace SimulationTool
