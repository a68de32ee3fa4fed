#include "enumerations.h"

#include <array>
#include <cmath>

#include <QStringView>

namespace Simulation {

namespace {

constexpr double s_dFrequencyTolerance = 0.001;

template<typename Enumeration>
struct EnumText
{
    Enumeration value;
    QStringView text;
};

constexpr std::array<EnumText<PositionSettingsType>, 2> s_positionTypes{{
    {PositionSettingsType::Fixed, u"Fixed Position"},
    {PositionSettingsType::Movement, u"Movement"},
}};

constexpr std::array<EnumText<FrequencySettingsType>, 4> s_frequencyTypes{{
    {FrequencySettingsType::Fixed, u"Fixed Frequency"},
    {FrequencySettingsType::SlowHopper, u"Slow Frequency Hopper"},
    {FrequencySettingsType::Chirp, u"Frequency Chirp"},
    {FrequencySettingsType::FastHopper, u"Fast Frequency Hopper"},
}};

constexpr std::array<EnumText<AnalogModulations>, 6> s_modulations{{
    {AnalogModulations::CW, u"CW"},
    {AnalogModulations::AM, u"AM"},
    {AnalogModulations::FM, u"FM"},
    {AnalogModulations::LSB, u"LSB"},
    {AnalogModulations::USB, u"USB"},
    {AnalogModulations::Digital, u"Digital"},
}};

template<typename Table, typename Enumeration>
QString textOf(const Table& a_table, Enumeration a_eValue, QStringView a_sUnknown)
{
    for (const auto& entry : a_table) {
        if (entry.value == a_eValue) {
            return entry.text.toString();
        }
    }
    return a_sUnknown.toString();
}

} // namespace

bool compareFrequency(float a_fFirst, float a_fSecond)
{
    // The difference is stored in single precision, so it is rounded before it is compared.
    const float fDifference = a_fFirst - a_fSecond;
    const float fMagnitude = std::fabs(fDifference);
    return s_dFrequencyTolerance > static_cast<double>(fMagnitude);
}

QString stringForPositionSettingsType(PositionSettingsType a_eType)
{
    return textOf(s_positionTypes, a_eType, u"");
}

QString stringForFrequencySettingsType(FrequencySettingsType a_eType)
{
    return textOf(s_frequencyTypes, a_eType, u"");
}

QString stringForNetworkType(NetworkType a_eType)
{
    return a_eType == NetworkType::Hierarchical ? QStringLiteral("Hierarchical") : QStringLiteral("Star");
}

QStringList analogModulationTexts()
{
    QStringList texts;
    for (const auto& entry : s_modulations) {
        texts.append(entry.text.toString());
    }
    return texts;
}

QString analogModulationToString(AnalogModulations a_eModulation)
{
    return textOf(s_modulations, a_eModulation, u"None");
}

AnalogModulations analogModulationFromString(const QString& a_sText)
{
    for (const auto& entry : s_modulations) {
        if (entry.text == a_sText) {
            return entry.value;
        }
    }
    return AnalogModulations::CW; // also for "None", which has no value in the enumeration
}

} // namespace Simulation
