#include "scenarioobject.h"

#include "simulationdata/emissionsettings.h"
#include "simulationdata/frequencysettingsfixed.h"

namespace Simulation {

namespace {

std::unique_ptr<IFrequencySettings> cloned(const IFrequencySettings* a_pSettings)
{
    return std::unique_ptr<IFrequencySettings>(a_pSettings != nullptr ? a_pSettings->clone() : nullptr);
}

} // namespace

ScenarioObject::ScenarioObject(const QString& a_sId)
    : m_sId(a_sId)
    , m_pFrequencySettings(std::make_unique<FrequencySettingsFixed>())
    , m_pEmissionSettings(std::make_unique<EmissionSettings>())
{}

ScenarioObject::ScenarioObject(const QString& a_sId, const QString& a_sName,
                               const std::shared_ptr<ScenarioObject>& a_source)
    : ScenarioObject(a_sId)
{
    m_sName = a_sName;
    if (a_source) {
        m_sDescription = a_source->description();
        m_bVisibleOnMap = a_source->m_bVisibleOnMap;
        m_bVisibleOnTimeline = a_source->m_bVisibleOnTimeline;
        *m_pEmissionSettings = *a_source->m_pEmissionSettings;
        m_pFrequencySettings = cloned(a_source->frequencySettings());
    }
}

ScenarioObject::~ScenarioObject() = default;

void ScenarioObject::setFrequencySettings(IFrequencySettings* a_pSettings)
{
    if (a_pSettings != m_pFrequencySettings.get()) {
        m_pFrequencySettings.reset(a_pSettings);
    }
}

void ScenarioObject::copy(std::shared_ptr<ScenarioObject> a_source)
{
    if (a_source && a_source.get() != this) {
        copyFrom(*a_source);
    }
}

void ScenarioObject::copyFrom(const ScenarioObject& a_source)
{
    setId(a_source.id());
    setName(a_source.name());
    setDescription(a_source.description());
    m_bActive = a_source.isActive();
    *m_pEmissionSettings = *a_source.m_pEmissionSettings;
    m_pFrequencySettings = cloned(a_source.frequencySettings());
}

} // namespace Simulation
