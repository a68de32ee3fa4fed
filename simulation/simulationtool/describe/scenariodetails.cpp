#include "scenariodetails.h"

#include "console/inputfile.h"
#include "console/jsonreport.h"
#include "console/report.h"
#include "objectdetails.h"
#include "scenariofile.h"

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
    a_report.value("kind", QStringLiteral("scenario"));
    a_report.field("name", QStringLiteral("Name"), a_scenario.getName());
    a_report.field("author", QStringLiteral("Author"), a_scenario.getAuthor());
    a_report.field("description", QStringLiteral("Description"), a_scenario.getDescription());
    a_report.field("uid", QStringLiteral("Uid"), a_scenario.getPersistantId());
    const std::uint32_t uiDuration = a_scenario.getDuration();
    a_report.field("duration_ms", QStringLiteral("Duration"),
                   uiDuration != 0 ? ReportValue(QStringLiteral("%1 ms (%2)")
                                                     .arg(QString::number(uiDuration),
                                                          Units::Duration::toString(uiDuration)),
                                                 jsonCount(uiDuration))
                                   : ReportValue(QStringLiteral("not given"), QJsonValue()));
    a_report.value("older_file_version", a_scenario.isOlderFileVersion());
    if (a_scenario.isOlderFileVersion()) {
        a_report.field(nullptr, QStringLiteral("File version"),
                       QStringLiteral("older than %1, the current one")
                           .arg(Simulation::ScenarioDataXml::s_uiFileFormatVersion));
    }
}

void describeNoise(Report& a_report, const Simulation::ScenarioNoiseSettings& a_noise)
{
    const QList<TextColumn> columns{
        {QStringLiteral("Density"), true, 0, "density"},
        {QStringLiteral("Deviation"), true, 0, "deviation"},
        {QStringLiteral("By frequency: density"), true, 0, "frequency_dependent_density"},
        {QStringLiteral("granularity"), true, 0, "frequency_dependent_granularity"},
        {QStringLiteral("variability"), true, 0, "frequency_dependent_variability"}};
    const ReportRow row{numberValue(a_noise.noiseDensity()), numberValue(a_noise.noiseDeviation()),
                        numberValue(a_noise.frequencyDependentNoiseDensity()),
                        numberValue(a_noise.frequencyDependentNoiseGranularity()),
                        numberValue(a_noise.frequencyDependentNoiseVariability())};
    a_report.heading(QStringLiteral("Noise"));
    a_report.value("noise", rowObject(columns, row));
    a_report.table(nullptr, columns, {row});
}

void listEmitters(Report& a_report, const Emitters& a_emitters)
{
    a_report.heading(QStringLiteral("Emitters: %1").arg(a_emitters.size()));
    a_report.list("emitters"); // filled by describeEmitter()
    QList<ReportRow> rows;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : a_emitters) {
        const auto network = emitter->network();
        rows.append({emitter->id(), emitter->name(), flagValue(emitter->isActive()),
                     network ? network->id() : QString(),
                     frequencySummary(emitter->getFrequencySettings()).text.section(u',', 0, 0),
                     positionSummary(*emitter)});
    }
    a_report.table(nullptr,
                   {{QStringLiteral("ID"), false, s_iMaxIdWidth},
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
    a_report.list("networks");
    QList<ReportRow> rows;
    for (const std::shared_ptr<Simulation::ScenarioNetwork>& network : a_networks) {
        const auto head = network->headEmitter();
        rows.append({network->id(), network->name(), flagValue(network->isActive()),
                     Simulation::stringForNetworkType(network->networkType()),
                     wholeValue(network->emitterList().size()),
                     wholeValue(network->emissionSettings()->emissions().size()),
                     head ? head->id() : QString()});
    }
    a_report.table(nullptr,
                   {{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth},
                    {QStringLiteral("Active")},
                    {QStringLiteral("Type")},
                    {QStringLiteral("Members"), true},
                    {QStringLiteral("Emissions"), true},
                    {QStringLiteral("Head")}},
                   rows);
}

} // namespace

std::optional<Verdict> describeScenario(Report& a_report, const InputFile& a_file)
{
    Simulation::UnresolvedSignalPackageProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    std::optional<Verdict> verdict = loadScenario(scenario, a_file);
    if (!verdict) {
        return verdict;
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
    return verdict;
}

} // namespace SimulationTool
