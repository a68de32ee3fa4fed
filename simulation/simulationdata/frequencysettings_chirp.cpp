#include "frequencysettings_chirp.h"

#include "ifrequencysettings_p.h"
#include "simulationdata/io/numbers_p.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/frequencysettings_chirp";

/// The length (ms) of a piece in which the frequency moves by about the resolution
/// (Hz): ceil(resolution / slope) with slope = span / duration (Hz per ms). 0 when
/// there are no such pieces: without sweep or resolution, or when one of the numbers
/// is negative or NaN.
std::uint32_t pieceLength(double a_dSpan, std::uint32_t a_uiDuration, double a_dResolution)
{
    if (a_uiDuration == 0) {
        return 0;
    }
    const double dSlope = a_dSpan / a_uiDuration; // Hz per ms
    if (!(dSlope > 0.0)) {
        return 0;
    }
    const double dPiece = std::ceil(a_dResolution / dSlope);
    if (!(dPiece >= 1.0)) {
        return 0;
    }
    // A piece of 2^32 - 1 ms already covers every window.
    return toUInt32(std::min(dPiece, static_cast<double>(UINT32_MAX)));
}

} // namespace

FrequencySettings_Chirp::FrequencySettings_Chirp()
    : m_fTimeslotOffset(randomTimeslotOffset())
{}

FrequencySettingsType FrequencySettings_Chirp::getType()
{
    return FrequencySettingsType::Chirp;
}

double FrequencySettings_Chirp::getCenterFrequency() const
{
    return (m_dStartFrequency + m_dStopFrequency) * 0.5;
}

void FrequencySettings_Chirp::setCenterFrequency(double a_dFrequency)
{
    // Both ends move by the same amount.
    const double dShift = getCenterFrequency() - a_dFrequency;
    m_dStartFrequency -= dShift;
    m_dStopFrequency -= dShift;
}

double FrequencySettings_Chirp::getMinimumFrequency() const
{
    return std::min(m_dStartFrequency, m_dStopFrequency);
}

double FrequencySettings_Chirp::getMaximumFrequency() const
{
    return std::max(m_dStartFrequency, m_dStopFrequency);
}

double FrequencySettings_Chirp::getFrequencyAt(unsigned int a_uiTime) const
{
    if (m_uiDuration == 0) {
        return m_dStartFrequency;
    }
    // The sweep is a sawtooth over the time t (ms): phase = ((t - duration * offset)
    // mod duration) / duration, frequency = start + phase * (stop - start). Shift and
    // phase are in single precision, and times before the shift wrap round modulo
    // 2^32: replays of a stored scenario depend on both.
    const float fShift = static_cast<float>(m_uiDuration) * m_fTimeslotOffset;
    const std::uint32_t uiShifted = toUInt32(static_cast<float>(a_uiTime) - fShift);
    const float fPhase = static_cast<float>(uiShifted % m_uiDuration) / static_cast<float>(m_uiDuration);
    return fPhase * (m_dStopFrequency - m_dStartFrequency) + m_dStartFrequency;
}

bool FrequencySettings_Chirp::isTimeDependend() const
{
    return true;
}

bool FrequencySettings_Chirp::isActiveAt(unsigned int /*a_uiTime*/) const
{
    return true;
}

QList<HRActivity> FrequencySettings_Chirp::calculateHRActivities(unsigned int a_uiStart,
                                                                 unsigned int a_uiLength,
                                                                 double a_dResolution) const
{
    const double dSpan = std::fabs(m_dStartFrequency - m_dStopFrequency);
    const std::uint32_t uiPiece = pieceLength(dSpan, m_uiDuration, a_dResolution);
    if (uiPiece == 0) {
        return {{a_uiStart, a_uiLength, getFrequencyAt(a_uiStart)}};
    }
    // The first piece begins at the window's start. A piece that extends over the end of
    // a sweep keeps the frequency of the piece's beginning.
    ActivityAnswer answer(s_szSource);
    const std::uint64_t uiEnd = windowEnd(a_uiStart, a_uiLength);
    for (std::uint64_t uiTime = a_uiStart; uiTime < uiEnd; uiTime += uiPiece) {
        if (!answer.append({uiTime, uiPiece, getFrequencyAt(static_cast<std::uint32_t>(uiTime))})) {
            break;
        }
    }
    return answer.take();
}

unsigned int FrequencySettings_Chirp::activeUntil() const
{
    return UINT32_MAX;
}

bool FrequencySettings_Chirp::equal(const IFrequencySettings* a_pOther) const
{
    const auto* pOther = dynamic_cast<const FrequencySettings_Chirp*>(a_pOther);
    return pOther != nullptr &&
           compareFrequency(static_cast<float>(m_dStartFrequency),
                            static_cast<float>(pOther->m_dStartFrequency)) &&
           compareFrequency(static_cast<float>(m_dStopFrequency),
                            static_cast<float>(pOther->m_dStopFrequency)) &&
           m_uiDuration == pOther->m_uiDuration;
}

IFrequencySettings* FrequencySettings_Chirp::clone() const
{
    auto pClone = std::make_unique<FrequencySettings_Chirp>();
    *pClone = *this;
    return pClone.release();
}

} // namespace Simulation
