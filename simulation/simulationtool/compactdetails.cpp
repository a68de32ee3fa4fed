#include "compactdetails.h"

#include "losttable.h"
#include "report.h"
#include "scenariofile.h"
#include "valuetexts.h"

#include "simulationdata/scenariodatabinary.h"
#include "simulationdata/szenarioemitter.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iMaxIdWidth = 24;
constexpr qsizetype s_iMaxNameWidth = 28;

} // namespace

std::optional<Verdict> describeCompact(Report& a_report, const QString& a_sFile)
{
    Simulation::ScenarioDataBinary scenario(nullptr);
    std::optional<Verdict> verdict = loadCompact(scenario, a_sFile);
    if (!verdict) {
        return verdict;
    }
    const auto emitters = emittersOf(scenario);
    QList<QStringList> rows;
    for (const std::shared_ptr<Simulation::SzenarioEmitter>& emitter : emitters) {
        const auto target = emitter->linkTargetEmitter();
        rows.append({orDash(emitter->id()), orDash(emitter->name()), yesNo(emitter->isActive()),
                     yesNo(emitter == scenario.defaultEmitter()), orDash(target ? target->id() : QString()),
                     orDash(emitter->getClass()), orDash(emitter->description())});
    }
    a_report.heading(QStringLiteral("Compact scenario"));
    a_report.field(QStringLiteral("Emitters"), QString::number(emitters.size()));
    a_report.table({{QStringLiteral("ID"), false, s_iMaxIdWidth},
                    {QStringLiteral("Name"), false, s_iMaxNameWidth},
                    {QStringLiteral("Active")},
                    {QStringLiteral("Default")},
                    {QStringLiteral("Linked to"), false, s_iMaxIdWidth},
                    {QStringLiteral("Class"), false, s_iMaxNameWidth},
                    {QStringLiteral("Description")}},
                   rows);
    describeUnresolvedLinks(a_report, scenario);
    return verdict;
}

void describeUnresolvedLinks(Report& a_report, const Simulation::ScenarioDataBinary& a_scenario)
{
    LostTable links(QStringLiteral("Links that lead to no emitter before theirs"),
                    {{QStringLiteral("Emitter")}, {QStringLiteral("Names")}});
    const auto unresolved = a_scenario.unresolvedLinks();
    for (const Simulation::ScenarioDataBinary::UnresolvedLink& link : unresolved) {
        links.add({orDash(link.emitterId), link.targetId});
    }
    links.write(a_report);
}

} // namespace SimulationTool
