#ifndef SIMULATIONTOOL_CHECKRULES_H
#define SIMULATIONTOOL_CHECKRULES_H

#include "simulationdata/checkrule.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// The rules of all findings: those of the readers, then those of the loaded objects. No
/// id occurs twice.
[[nodiscard]] const QList<Simulation::CheckRule>& checkRules();

/// The place of a rule in checkRules(); -1 when there is no rule of that id.
[[nodiscard]] qsizetype ruleIndex(const QString& a_sId);

/// The error text for ids that are no rules, with a suggestion; empty when all are rules.
[[nodiscard]] QString unknownRulesText(const QStringList& a_ids);

/// "error", "warning" or "note"; stable, for programs.
[[nodiscard]] QString severityName(Simulation::Severity a_eSeverity);

/// All rules for people: ids, severities and wrapped sentences.
[[nodiscard]] QString rulesText();
/// The page docs/rules.md, with a heading for each rule.
[[nodiscard]] QString rulesPage();

/// The rules that a check reports. The default reports all rules.
struct RuleSelection
{
    [[nodiscard]] bool accepts(const QString& a_sId) const
    {
        return (only.isEmpty() || only.contains(a_sId)) && !without.contains(a_sId);
    }

    QSet<QString> only; ///< empty = all
    QSet<QString> without;
};

} // namespace SimulationTool

#endif
