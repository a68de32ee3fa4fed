#ifndef SIMULATIONTOOL_CHECKFINDING_H
#define SIMULATIONTOOL_CHECKFINDING_H

#include "describe/objectplaces.h"

#include "simulationdata/checkrule.h"

#include <QLatin1String>
#include <QList>
#include <QMap>
#include <QString>

namespace Simulation {
class ReadingReport;
struct ScenarioFinding;
} // namespace Simulation

namespace SimulationTool {

/// One finding of a check, whichever source it has.
struct CheckFinding
{
    QString ruleId; ///< one of checkRules()
    Simulation::Severity severity = Simulation::Severity::Warning;
    TextPlace place;  ///< where in the document; unknown for a whole file
    QString path;     ///< the elements that lead to the place; may be empty
    QString objectId; ///< of the object it concerns, with its name; empty = the document itself
    QString objectName;
    QString found;      ///< the text of the document that it concerns, shortened; may be empty
    QString text;       ///< one English sentence
    QString suggestion; ///< the name or value that was probably meant; may be empty
    bool repaired = false;
};

/// The findings of one document.
struct DocumentFindings
{
    QList<CheckFinding> listed;
    QMap<QString, quint64> unlisted; ///< the number of findings beyond the listed ones, by rule
};

/// A finding without a place, with the severity of its rule.
[[nodiscard]] CheckFinding ruleFinding(QLatin1String a_sRule, const QString& a_sText,
                                       const QString& a_sObjectId = {});

/// What a reader reported, in the order of the document.
[[nodiscard]] DocumentFindings findingsOf(const Simulation::ReadingReport& a_report);

/// Adds what a checker found in the objects of a document, at the places of the objects.
/// What the present findings say already is not added; they get the object instead.
void addObjectFindings(DocumentFindings& a_findings, const QList<Simulation::ScenarioFinding>& a_found,
                       const ObjectPlaces& a_places);

/// Sorts the listed findings by their places, those without a place last.
void sortByPlace(DocumentFindings& a_findings);

/// Moves the listed findings beyond a number to the unlisted ones.
void limitListed(DocumentFindings& a_findings, qsizetype a_iMost);

} // namespace SimulationTool

#endif
