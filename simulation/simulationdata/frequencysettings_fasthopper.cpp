#include "frequencysettings_fasthopper.h"

#include "crt/crt.h"
#include "ifrequencysettings_p.h"
#include "simulationdata/io/numbers_p.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/frequencysettings_fasthopper";

constexpr float s_fMillisecondsPerSecond = 1000.0F;
constexpr std::uint64_t s_uiShuffleRounds = 8;

/// The number of channels in all channel lists of the process.
std::atomic<std::uint64_t> s_uiAllChannels{0};

/// Creates a channel list. s_uiAllChannels counts its channels until the list is
/// destroyed.
std::shared_ptr<std::vector<double>> countedList(std::size_t a_uiChannels)
{
    auto list = std::make_unique<std::vector<double>>(a_uiChannels);
    s_uiAllChannels += a_uiChannels;
    return {list.release(), [a_uiChannels](std::vector<double>* a_pList) {
                s_uiAllChannels -= a_uiChannels;
                const std::unique_ptr<std::vector<double>> owner(a_pList);
            }};
}

} // namespace

FrequencySettings_FastHopper::FrequencySettings_FastHopper()
    : m_fTimeslotOffset(randomTimeslotOffset())
{}

void FrequencySettings_FastHopper::setMinimumFrequency(double a_dFrequency)
{
    m_dMinimumFrequency = a_dFrequency;
    clearFrequencyList();
}

void FrequencySettings_FastHopper::setMaximumFrequency(double a_dFrequency)
{
    m_dMaximumFrequency = a_dFrequency;
    clearFrequencyList();
}

void FrequencySettings_FastHopper::setHoppCount(unsigned int a_uiCount)
{
    m_uiHoppCount = a_uiCount;
    clearFrequencyList();
}

void FrequencySettings_FastHopper::setHoppRate(unsigned int a_uiRate)
{
    m_uiHoppRate = a_uiRate;
    clearFrequencyList();
}

void FrequencySettings_FastHopper::setHoppSet(unsigned int a_uiSeed)
{
    m_uiHoppSet = a_uiSeed;
    clearFrequencyList();
}

FrequencySettingsType FrequencySettings_FastHopper::getType()
{
    return FrequencySettingsType::FastHopper;
}

double FrequencySettings_FastHopper::getCenterFrequency() const
{
    return (m_dMinimumFrequency + m_dMaximumFrequency) * 0.5;
}

void FrequencySettings_FastHopper::setCenterFrequency(double a_dFrequency)
{
    const double dShift = getCenterFrequency() - a_dFrequency;
    m_dMinimumFrequency -= dShift;
    m_dMaximumFrequency -= dShift;
    clearFrequencyList();
}

double FrequencySettings_FastHopper::getMinimumFrequency() const
{
    return m_dMinimumFrequency;
}

double FrequencySettings_FastHopper::getMaximumFrequency() const
{
    return m_dMaximumFrequency;
}

double FrequencySettings_FastHopper::getFrequencyAt(unsigned int a_uiTime) const
{
    if (!hasChannels()) {
        return m_dMinimumFrequency;
    }
    setupFrequencyList();
    if (m_uiHoppRate == 0) {
        return m_pFrequencyList->front();
    }
    // One hop takes 1000 / rate ms. The hop at the time t (ms) has the index floor((t
    // - hop * offset) / hop), and the channel list repeats after its end. Hop and
    // shift are in single precision, and times before the shift wrap round modulo
    // 2^32: replays of a stored scenario depend on both.
    const float fHop = s_fMillisecondsPerSecond / static_cast<float>(m_uiHoppRate);
    const float fShift = fHop * m_fTimeslotOffset;
    const std::uint32_t uiShifted = toUInt32(static_cast<float>(a_uiTime) - fShift);
    const std::uint32_t uiHop = toUInt32(static_cast<float>(uiShifted) / fHop);
    return (*m_pFrequencyList)[uiHop % m_uiHoppCount];
}

bool FrequencySettings_FastHopper::isTimeDependend() const
{
    return false;
}

bool FrequencySettings_FastHopper::isActiveAt(unsigned int /*a_uiTime*/) const
{
    return true;
}

QList<HRActivity> FrequencySettings_FastHopper::calculateHRActivities(unsigned int a_uiStart,
                                                                      unsigned int a_uiLength,
                                                                      double /*a_dResolution*/) const
{
    if (!hasChannels() || m_uiHoppRate == 0) {
        return {{a_uiStart, a_uiLength, getFrequencyAt(a_uiStart)}};
    }
    // Hops take whole ms here but not in getFrequencyAt(), so an activity has the
    // frequency at its middle.
    const auto frequencyInMiddle = [this](std::uint64_t a_uiFrom, std::uint64_t a_uiDuration) {
        return getFrequencyAt(
            toUInt32(static_cast<double>(a_uiFrom) + static_cast<double>(a_uiDuration) * 0.5));
    };
    // A hop takes ceil(1000 / rate) whole ms, [1, 1000]. The offset is a fraction of the
    // hop. It is calculated in single precision and truncated to whole ms. All later
    // arithmetic is in integers.
    const float fHop = std::ceil(s_fMillisecondsPerSecond / static_cast<float>(m_uiHoppRate));
    const std::uint64_t uiHop = toUInt32(fHop);
    const std::uint64_t uiOffset = toUInt32(m_fTimeslotOffset * fHop);
    const std::uint64_t uiStart = a_uiStart;
    const std::uint64_t uiEnd = windowEnd(a_uiStart, a_uiLength);

    ActivityAnswer answer(s_szSource);
    bool bRoom = answer.append({uiStart, uiOffset, frequencyInMiddle(uiStart, uiOffset)});
    // The first hop begins at floor((start + offset) / hop) * hop + offset. If it begins
    // after the end of the lead-in, a gap remains. If it begins before that end, hop and
    // lead-in overlap. In a window that ends before the first hop, the lead-in is the
    // only activity.
    std::uint64_t uiHopStart = (uiStart + uiOffset) / uiHop * uiHop + uiOffset;
    while (bRoom && uiHopStart < uiEnd) {
        const std::uint64_t uiFrom = std::max(uiHopStart, uiStart);
        const std::uint64_t uiTo = std::min(uiHopStart + uiHop, uiEnd);
        if (uiTo > uiFrom) {
            bRoom = answer.append({uiFrom, uiTo - uiFrom, frequencyInMiddle(uiFrom, uiTo - uiFrom)});
        }
        uiHopStart += uiHop;
    }
    return answer.take();
}

unsigned int FrequencySettings_FastHopper::activeUntil() const
{
    return UINT32_MAX;
}

bool FrequencySettings_FastHopper::equal(const IFrequencySettings* a_pOther) const
{
    const auto* pOther = dynamic_cast<const FrequencySettings_FastHopper*>(a_pOther);
    return pOther != nullptr &&
           compareFrequency(static_cast<float>(m_dMinimumFrequency),
                            static_cast<float>(pOther->m_dMinimumFrequency)) &&
           compareFrequency(static_cast<float>(m_dMaximumFrequency),
                            static_cast<float>(pOther->m_dMaximumFrequency)) &&
           m_uiHoppCount == pOther->m_uiHoppCount && m_uiHoppRate == pOther->m_uiHoppRate &&
           m_uiHoppSet == pOther->m_uiHoppSet;
}

IFrequencySettings* FrequencySettings_FastHopper::clone() const
{
    auto pClone = std::make_unique<FrequencySettings_FastHopper>();
    pClone->m_dMinimumFrequency = m_dMinimumFrequency;
    pClone->m_dMaximumFrequency = m_dMaximumFrequency;
    pClone->m_uiHoppCount = m_uiHoppCount;
    pClone->m_uiHoppRate = m_uiHoppRate;
    pClone->m_uiHoppSet = m_uiHoppSet;
    pClone->m_fTimeslotOffset = m_fTimeslotOffset;
    return pClone.release();
}

/// Whether the channel list is built, or may be built within the limits of one hopper
/// and of all hoppers together. Without limits a document could request gigabytes, in
/// one hopper or in thousands of them.
bool FrequencySettings_FastHopper::hasChannels() const
{
    if (isListBuilt() || m_uiHoppCount == 0) {
        return m_uiHoppCount != 0;
    }
    if (m_uiHoppCount > Limits::value(Limits::HopChannels)) {
        traceOnce(Limits::HopChannels);
        return false;
    }
    if (s_uiAllChannels.load() + m_uiHoppCount > Limits::value(Limits::AllHopChannels)) {
        traceOnce(Limits::AllHopChannels);
        return false;
    }
    return true;
}

void FrequencySettings_FastHopper::traceOnce(Limits::Limit a_eLimit) const
{
    if (!m_bLimitTraced) {
        traceError(s_szSource, [this, a_eLimit] {
            // The flag is set here, because this function is called only when the trace is
            // written.
            m_bLimitTraced = true;
            return QStringLiteral("Hop count %1 gives no channels: %2")
                .arg(QString::number(m_uiHoppCount), Limits::exceeded(a_eLimit));
        });
    }
}

bool FrequencySettings_FastHopper::isListBuilt() const
{
    return m_pFrequencyList && m_pFrequencyList->size() == m_uiHoppCount;
}

/// Builds the channel list unless it already has as many entries as the hop count.
/// Channel k of n is minimum + k * (maximum - minimum) / n. The random generator is
/// seeded with the hop set. Then 8 * n swaps shuffle the channels: swap i exchanges the
/// entries i mod n and (rand() + i) mod n. Stored scenarios depend on the resulting order
/// of the channels.
void FrequencySettings_FastHopper::setupFrequencyList() const
{
    if (isListBuilt()) {
        return;
    }
    const std::size_t uiCount = m_uiHoppCount;
    const std::shared_ptr<std::vector<double>> pList = countedList(uiCount);
    std::vector<double>& list = *pList;
    const double dStep = (m_dMaximumFrequency - m_dMinimumFrequency) / m_uiHoppCount;
    for (std::size_t uiChannel = 0; uiChannel < uiCount; ++uiChannel) {
        list[uiChannel] = static_cast<double>(uiChannel) * dStep + m_dMinimumFrequency;
    }
    Crt::srand(m_uiHoppSet);
    for (std::uint64_t uiSwap = 0; uiSwap < s_uiShuffleRounds * uiCount; ++uiSwap) {
        const auto uiRandom = static_cast<std::uint64_t>(Crt::rand());
        std::swap(list[uiSwap % uiCount], list[(uiRandom + uiSwap) % uiCount]);
    }
    m_pFrequencyList = pList;
}

void FrequencySettings_FastHopper::clearFrequencyList()
{
    m_pFrequencyList.reset();
    m_bLimitTraced = false;
}

} // namespace Simulation
