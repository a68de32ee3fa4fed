#include "scenariodetails.h"

#include "objectdetails.h"
#include "report.h"
#include "scenariofile.h"
#include "valuetexts.h"

#include "simulationdata/duration.h"
#include "simulationdata/emissionsettings.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 24;
constexpr qsizetype s_iMaxNameWidth = 28;

using Emitters = QList<std::shared_ptr<Simulation::SzenarioEmitter>>;
using Networks = QList<std::shared_ptr<Simulation::ScenarioNetwork>>;

void describeHeader(Report& a_report, const Simulation::ScenarioDataXml& a_scenario)
{
    a_report.heading(QStringLiteral("Scenario"));
    a_report.field(QStringLiteral("Name"), a_scenario.getName());
    a_report.field(QStringLiteral("Author"), a_scenario.getAuthor());
    a_report.field(QStringLiteral("Description"), a_scenario.getDescription());
    a_report.field(QStringLiteral("Uid"), a_scenario.getPersistantId());
    const std::uint32_t uiDuration = a_scenario.getDuration();
    a_report.field(QStringLiteral("Duration"),
                   uiDuration != 0
                       ? QStringLiteral("%1 ms (%2)")
                             .arg(QString::number(uiDuration), Units::Duration::toString(uiDuration))
                       : QStringLiteral("not given"));
    if (a_scenario.isOlderFileVersion()) {
        a_report.field(QStringLiteral("File version"),
                       QStringLiteral("older than %1, the current one")
                           .arg(Simulation::ScenarioDataXml::s_uiFileFormatVersion));
    }
}

void describeNoise(Report& a_report, const Simulation::ScenarioNoiseSettings& a_noise)
{
    a_report.heading(QStringLiteral("Noise"));
    a_report.table({{QStringLiteral("Density"), true},
                    {QStringLiteral("Deviation"), true},
                    {QStringLiteral("By frequency: density"), true},
                    {QStringLiteral("granularity"), true},
                    {QStringLiteral("variability"), true}},
                   {{plainNumber(a_noise.noiseDensity()), plainNumber(a_noise.noiseDeviation()),
                     plainNumber(a_noise.frequencyDependentNoiseDensity()),
                     plainNumber(a_noise.frequencyDependentNoiseGranularity()),
                     plainNumber(a_noise.frequencyDependentNoiseVariability())}});
}

void listEmitters(Report& a_report, const Emitters& a_emitters)
{
    a_report.heading(QStringLiteral("Emitters: %1").arg(a_emitters.size()));
    QList<QStringList> rows;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
        const auto network = emitter->network();
        rows.append({orDash(emitter->id()), orDash(emitter->name()), yesNo(emitter->isActive()),
                     orDash(network ? network->id() : QString()),
                     frequencySummary(emitter->getFrequencySettings()).section(u',', 0, 0),
                     positionSummary(*emitter)});
    }
    a_report.table({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth},
                    {QStringLiteral("Active")},
                    {QStringLiteral("Network"), false, s_iMaxIdWidth},
                    {QStringLiteral("Frequency")},
                    {QStringLiteral("Position")}},
                   rows);
}

void listNetworks(Report& a_report, const Networks& a_networks)
{
    a_report.heading(QStringLiteral("Networks: %1").arg(a_networks.size()));
    QList<QStringList> rows;
    for (const std::shared_ptr<Simulation::ScenarioNetwork>& network : a_networks) {
        const auto head = network->headEmitter();
        rows.append({orDash(network->id()), orDash(network->name()), yesNo(network->isActive()),
                     Simulation::stringForNetworkType(network->networkType()),
                     QString::number(network->emitterList().size()),
                     QString::number(network->emissionSettings()->emissions().size()),
                     orDash(head ? head->id() : QString())});
    }
    a_report.table({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth},
                    {QStringLiteral("Active")},
                    {QStringLiteral("Type")},
                    {QStringLiteral("Members"), true},
                    {QStringLiteral("Emissions"), true},
                    {QStringLiteral("Head")}},
                   rows);
}

} // namespace

ExitCode describeScenario(Report& a_report, const QString& a_sFile)
{
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    const ExitCode eLoaded = loadScenario(scenario, a_sFile);
    if (eLoaded == ExitCode::Unusable) {
        return eLoaded;
    }
    describeHeader(a_report, scenario);
    describeNoise(a_report, scenario.getNoiseSettings());
    const Emitters emitters = emittersOf(scenario);
    const Networks networks = networksOf(scenario);
    listEmitters(a_report, emitters);
    listNetworks(a_report, networks);
    const auto defaultEmitter = scenario.getDefaultEmitter();
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : emitters) {
        if (a_report.isOk()) {
            describeEmitter(a_report, *emitter, emitter == defaultEmitter);
        }
    }
    for (const std::shared_ptr<Simulation::ScenarioNetwork>& network : networks) {
        if (a_report.isOk()) {
            describeNetwork(a_report, *network);
        }
    }
    return eLoaded;
}

} // namespace SimulationTool
