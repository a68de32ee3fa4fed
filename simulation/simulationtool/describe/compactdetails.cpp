#include "compactdetails.h"

#include "console/inputfile.h"
#include "console/report.h"
#include "losttable.h"
#include "scenariofile.h"

#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/szenarioemitter.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 24;
constexpr qsizetype s_iMaxNameWidth = 28;

} // namespace

std::optional<Verdict> describeCompact(Report& a_report, const InputFile& a_file)
{
    Simulation::ScenarioDataBinary scenario(nullptr);
    std::optional<Verdict> verdict = loadCompact(scenario, a_file.path());
    if (!verdict) {
        return verdict;
    }
    const auto emitters = emittersOf(scenario);
    QList<ReportRow> rows;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : emitters) {
        const auto target = emitter->linkTargetEmitter();
        rows.append({emitter->id(), emitter->name(), flagValue(emitter->isActive()),
                     flagValue(emitter == scenario.defaultEmitter()), target ? target->id() : QString(),
                     emitter->getClass(), emitter->description()});
    }
    a_report.heading(QStringLiteral("Compact scenario"));
    a_report.value("kind", QStringLiteral("compact scenario"));
    a_report.field("emitter_count", QStringLiteral("Emitters"), wholeValue(emitters.size()));
    a_report.table("emitters",
                   {{QStringLiteral("ID"), false, s_iMaxIdWidth, "id"},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth, "name"},
                    {QStringLiteral("Active"), false, 0, "active"},
                    {QStringLiteral("Default"), false, 0, "default"},
                    {QStringLiteral("Linked to"), false, s_iMaxIdWidth, "linked_to"},
                    {QStringLiteral("Class"), false, s_iMaxNameWidth, "class"},
                    {QStringLiteral("Description"), false, 0, "description"}},
                   rows);
    describeUnresolvedLinks(a_report, scenario);
    return verdict;
}

void describeUnresolvedLinks(Report& a_report, const Simulation::ScenarioDataBinary& a_scenario)
{
    LostTable links(
        "unresolved_links", QStringLiteral("Links that name no preceding emitter"),
        {{QStringLiteral("Emitter"), false, 0, "emitter"}, {QStringLiteral("Names"), false, 0, "names"}});
    const auto unresolved = a_scenario.unresolvedLinks();
    for (const Simulation::ScenarioDataBinary::UnresolvedLink& link : unresolved) {
        links.add({link.emitterId, link.targetId});
    }
    a_report.endPlace();
    links.write(a_report);
}

} // namespace SimulationTool
