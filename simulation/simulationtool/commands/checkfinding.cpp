#include "checkfinding.h"

#include "checkrules.h"

#include "simulationdata/readingreport.h"
#include "simulationdata/scenariochecker.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

using Simulation::ReadingReport;
using Simulation::ScenarioChecker;

/// Two rules for the same mistake: the checker sees the object, the reader its text.
struct SameMistake
{
    QLatin1String checked;
    QLatin1String read;
    std::array<QLatin1String, 2> endings; ///< of the path that the reader reports
};

constexpr std::array s_sameMistakes{
    SameMistake{ScenarioChecker::s_sPositionOutOfRange,
                ReadingReport::s_sOutOfRange,
                {QLatin1String("/Lon"), QLatin1String("/Lat")}},
    SameMistake{ScenarioChecker::s_sMissingSettings,
                ReadingReport::s_sMissingElement,
                {QLatin1String("/Frequency"), QLatin1String("/Position")}},
    SameMistake{ScenarioChecker::s_sMovementWithoutSpeed,
                ReadingReport::s_sOutOfRange,
                {QLatin1String("/@Speed"), QLatin1String("/@Speed")}},
    SameMistake{ScenarioChecker::s_sUnknownStation,
                ReadingReport::s_sInventedObject,
                {QLatin1String("/Station"), QLatin1String("/Station")}},
    SameMistake{ScenarioChecker::s_sForeignEmission,
                ReadingReport::s_sInventedObject,
                {QLatin1String("/@Emitter"), QLatin1String("/@Emitter")}},
};

bool isSameMistake(const SameMistake& a_same, const CheckFinding& a_read)
{
    return a_read.ruleId == a_same.read &&
           std::any_of(a_same.endings.begin(), a_same.endings.end(),
                       [&](QLatin1String a_sEnding) { return a_read.path.endsWith(a_sEnding); });
}

/// Finds what the reader said already about objects, among findings in the order of the
/// document.
class Repetitions
{
public:
    explicit Repetitions(QList<CheckFinding>& a_read)
        : m_read(a_read)
    {
        for (qsizetype i = 0; i < a_read.size(); ++i) {
            for (const SameMistake& same : s_sameMistakes) {
                if (isSameMistake(same, a_read.at(i))) {
                    m_indices[same.checked].append(i);
                }
            }
        }
    }

    /// The reader's finding of the same mistake within the object's element; null when
    /// there is none.
    [[nodiscard]] CheckFinding* find(const QString& a_sRule, const ObjectRange& a_range)
    {
        const auto indices = m_indices.constFind(a_sRule);
        if (indices == m_indices.constEnd()) {
            return nullptr;
        }
        const auto first = std::lower_bound(indices->cbegin(), indices->cend(), a_range.begin,
                                            [&](qsizetype a_iIndex, const TextPlace& a_begin) {
                                                return m_read.at(a_iIndex).place < a_begin;
                                            });
        return first != indices->cend() && m_read.at(*first).place < a_range.end ? &m_read[*first] : nullptr;
    }

private:
    QList<CheckFinding>& m_read;
    QHash<QString, QList<qsizetype>> m_indices; ///< by the checker's rule, ascending
};

/// Whether the object of a finding may belong to another document.
bool isElsewhere(const Simulation::ScenarioFinding& a_finding)
{
    return a_finding.ruleId == ScenarioChecker::s_sUnreachedStation;
}

CheckFinding objectFinding(const Simulation::ScenarioFinding& a_found, const TextPlace& a_place)
{
    CheckFinding finding;
    finding.ruleId = a_found.ruleId;
    finding.severity = a_found.severity;
    finding.place = a_place;
    finding.objectId = a_found.objectId;
    finding.objectName = a_found.objectName;
    finding.text = a_found.text;
    finding.repaired = a_found.repaired;
    return finding;
}

} // namespace

CheckFinding ruleFinding(QLatin1String a_sRule, const QString& a_sText, const QString& a_sObjectId)
{
    CheckFinding finding;
    finding.ruleId = a_sRule;
    finding.severity = checkRules().at(ruleIndex(finding.ruleId)).severity;
    finding.text = a_sText;
    finding.objectId = a_sObjectId;
    return finding;
}

DocumentFindings findingsOf(const ReadingReport& a_report)
{
    DocumentFindings findings;
    for (const Simulation::CheckRule& rule : ReadingReport::rules()) {
        if (const qint64 iCount = a_report.count(rule.id); iCount > 0) {
            findings.unlisted[rule.id] = static_cast<quint64>(iCount);
        }
    }
    for (const Simulation::ReadingEntry& entry : a_report.entries()) {
        CheckFinding finding = ruleFinding(entry.rule, entry.message);
        finding.place = {entry.line, entry.column};
        finding.path = entry.path;
        finding.found = entry.found;
        finding.suggestion = entry.suggestion;
        findings.listed.append(finding);
        if (--findings.unlisted[entry.rule] == 0) {
            findings.unlisted.remove(entry.rule);
        }
    }
    return findings;
}

void addObjectFindings(DocumentFindings& a_findings, const QList<Simulation::ScenarioFinding>& a_found,
                       const ObjectPlaces& a_places)
{
    // Readers report every shared id, so these findings need no comparison of objects.
    const QString sShared = ScenarioChecker::s_sDuplicateId;
    const bool bSharedIds = a_findings.unlisted.contains(sShared) ||
                            std::any_of(a_findings.listed.cbegin(), a_findings.listed.cend(),
                                        [&](const auto& a_finding) { return a_finding.ruleId == sShared; });
    QList<CheckFinding> added;
    Repetitions repetitions(a_findings.listed);
    for (const Simulation::ScenarioFinding& found : a_found) {
        const ObjectRange range = isElsewhere(found) ? ObjectRange() : a_places.value(found.objectId);
        if (CheckFinding* const pRead = repetitions.find(found.ruleId, range)) {
            pRead->objectId = found.objectId;
            pRead->objectName = found.objectName;
            pRead->repaired = pRead->repaired || found.repaired;
        } else if (!bSharedIds || found.ruleId != sShared) {
            added.append(objectFinding(found, range.begin));
        }
    }
    a_findings.listed += added;
}

void sortByPlace(DocumentFindings& a_findings)
{
    std::stable_sort(a_findings.listed.begin(), a_findings.listed.end(),
                     [](const CheckFinding& a_first, const CheckFinding& a_second) {
                         return a_first.place.isKnown() && a_second.place.isKnown()
                                    ? a_first.place < a_second.place
                                    : a_first.place.isKnown() > a_second.place.isKnown();
                     });
}

void limitListed(DocumentFindings& a_findings, qsizetype a_iMost)
{
    while (a_findings.listed.size() > a_iMost) {
        ++a_findings.unlisted[a_findings.listed.takeLast().ruleId];
    }
}

} // namespace SimulationTool
