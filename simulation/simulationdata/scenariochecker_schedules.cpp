#include "scenariochecker_rules_p.h"
#include "simulationdata/emissionsettings.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <limits>

namespace Simulation {

namespace {

using Group = EmissionSettings::Group;

/// When an emission ends (ms since the beginning of the period), limited to 64 bits. An
/// emission of negative duration ends at its start.
std::int64_t endOf(const EmissionSettings::Emission& a_emission)
{
    constexpr std::int64_t iMaximum = std::numeric_limits<std::int64_t>::max();
    const std::int64_t iDuration = std::max<std::int64_t>(a_emission.duration, 0);
    const std::int64_t iRoom = iMaximum - std::max<std::int64_t>(a_emission.start, 0);
    return iDuration > iRoom ? iMaximum : a_emission.start + iDuration;
}

/// Emissions that begin while another one is sent. One that begins at the end of another
/// one does not overlap it. Emissions that are never sent do not count.
EmissionTally overlapping(const EmissionSettings& a_schedule)
{
    EmissionTally tally;
    std::int64_t iSentUntil = std::numeric_limits<std::int64_t>::min();
    for (const auto& emission : a_schedule.emissions()) {
        if (emission->start >= a_schedule.duration()) {
            continue;
        }
        if (emission->start < iSentUntil) {
            tally.add(emission->start);
        }
        iSentUntil = std::max(iSentUntil, endOf(*emission));
    }
    return tally;
}

EmissionTally afterPeriod(const EmissionSettings& a_schedule)
{
    EmissionTally tally;
    for (const auto& emission : a_schedule.emissions()) {
        if (emission->start >= a_schedule.duration()) {
            tally.add(emission->start);
        }
    }
    return tally;
}

/// Emissions that begin within the period and end after it. An emission of unlimited
/// duration means the rest of the period: an author who switches an emitter on for good
/// may limit the period later.
EmissionTally beyondPeriod(const EmissionSettings& a_schedule)
{
    EmissionTally tally;
    const std::int64_t iPeriod = a_schedule.duration();
    for (const auto& emission : a_schedule.emissions()) {
        if (emission->start < iPeriod && endOf(*emission) > iPeriod &&
            emission->duration != EmissionSettings::s_iUnlimited) {
            tally.add(emission->start);
        }
    }
    return tally;
}

QString periodText(const EmissionSettings& a_schedule)
{
    return QString::number(a_schedule.duration()) + QStringLiteral(" ms");
}

/// The groups of a schedule, with those inside other groups.
struct GroupTree
{
    explicit GroupTree(const EmissionSettings& a_schedule);

    QList<const Group*> groups;                          ///< each once
    QHash<const Group*, QList<const Group*>> containers; ///< by the group that they contain
};

GroupTree::GroupTree(const EmissionSettings& a_schedule)
{
    QSet<const Group*> known;
    const auto add = [&](const boost::shared_ptr<Group>& a_group) {
        if (a_group && !known.contains(a_group.get())) {
            known.insert(a_group.get());
            groups.append(a_group.get());
        }
    };
    std::for_each(a_schedule.groups().cbegin(), a_schedule.groups().cend(), add);
    for (qsizetype i = 0; i < groups.size(); ++i) { // the list grows
        const Group* const pGroup = groups.at(i);
        for (const boost::shared_ptr<Group>& inner : pGroup->groups) {
            add(inner);
            containers[inner.get()].append(pGroup);
        }
    }
}

/// The groups that name an emission, directly or through other groups. Groups may
/// contain each other in a circle.
QSet<const Group*> namingGroups(const GroupTree& a_tree)
{
    QSet<const Group*> naming;
    QList<const Group*> next;
    const auto add = [&](const Group* a_pGroup) {
        if (!naming.contains(a_pGroup)) {
            naming.insert(a_pGroup);
            next.append(a_pGroup);
        }
    };
    for (const Group* const pGroup : a_tree.groups) {
        if (!pGroup->emissions.isEmpty()) {
            add(pGroup);
        }
    }
    while (!next.isEmpty()) {
        const QList<const Group*> containers = a_tree.containers.value(next.takeLast());
        std::for_each(containers.cbegin(), containers.cend(), add);
    }
    return naming;
}

} // namespace

void checkTimes(const EmissionSettings& a_schedule, Findings& a_findings)
{
    if (a_schedule.isBroadcast()) {
        return;
    }
    if (const EmissionTally tally = overlapping(a_schedule); tally.count != 0) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sOverlappingEmissions,
            tally.subject() + tally.form("begins", "begin") +
                QStringLiteral(" before an earlier one has ended and ") + tally.form("cuts", "cut") +
                QStringLiteral(" it off: shorten the earlier one or move the later one.")));
    }
    if (const EmissionTally tally = afterPeriod(a_schedule); tally.count != 0) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sEmissionAfterPeriod,
            tally.subject() + tally.form("begins", "begin") + QStringLiteral(" after the period of ") +
                periodText(a_schedule) + QStringLiteral(" and ") + tally.form("is", "are") +
                QStringLiteral(" never sent: begin earlier or lengthen the period.")));
    }
    if (const EmissionTally tally = beyondPeriod(a_schedule); tally.count != 0) {
        a_findings.append(
            ruleFinding(ScenarioChecker::s_sEmissionBeyondPeriod,
                        tally.subject() + tally.form("ends", "end") +
                            QStringLiteral(" after the period of ") + periodText(a_schedule) +
                            QStringLiteral(", with which the schedule starts again: shorten the emission or "
                                           "lengthen the period.")));
    }
}

void checkGroups(const EmissionSettings& a_schedule, Findings& a_findings)
{
    if (a_schedule.groups().isEmpty()) {
        return;
    }
    const GroupTree tree(a_schedule);
    const QSet<const Group*> naming = namingGroups(tree);
    const Group* pFirst = nullptr;
    qsizetype iEmpty = 0;
    for (const Group* const pGroup : tree.groups) {
        if (!naming.contains(pGroup)) {
            ++iEmpty;
            pFirst = pFirst == nullptr ? pGroup : pFirst;
        }
    }
    if (pFirst != nullptr) {
        a_findings.append(ruleFinding(
            ScenarioChecker::s_sEmptyGroup,
            QStringLiteral("%1 \"%2\" (%3), %4 no emission: add emissions or remove %5.")
                .arg(iEmpty == 1 ? QStringLiteral("1 group,")
                                 : QString::number(iEmpty) + QStringLiteral(" groups, the first of them"),
                     pFirst->name, QString::number(pFirst->id),
                     iEmpty == 1 ? QStringLiteral("names") : QStringLiteral("name"),
                     iEmpty == 1 ? QStringLiteral("the group") : QStringLiteral("the groups"))));
    }
}

} // namespace Simulation
