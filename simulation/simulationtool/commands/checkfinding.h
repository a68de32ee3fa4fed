#ifndef SIMULATIONTOOL_CHECKFINDING_H
#define SIMULATIONTOOL_CHECKFINDING_H

#include <QList>
#include <QString>

namespace Simulation {
class DeploymentDataXml;
class ScenarioDataXml;
} // namespace Simulation

namespace SimulationTool {

class RepositoryPackages;

/// One finding of a check.
struct CheckFinding
{
    QString objectId;   ///< empty: the finding concerns the document itself
    QString objectName; ///< empty: the object has no name
    QString rule;       ///< id of the rule, stable for scripts
    QString text;       ///< one sentence: what was found, and what was repaired or has to be done
    bool repaired = false;
};

using CheckFindings = QList<CheckFinding>;

/// Converts the error text of a reader to the finding that the document broke off.
/// Empty for an empty text.
[[nodiscard]] CheckFindings brokenOffFindings(const QString& a_sError);

/// Lists the parts of a document that its reader ignored, as one finding. `a_written`
/// is the document as written after reading. When `a_written` is empty, the ignored
/// parts are not known, and the result is empty.
[[nodiscard]] CheckFindings unreadFindings(const QByteArray& a_document, const QByteArray& a_written);

/// The emitters of a scenario with a position out of range.
[[nodiscard]] CheckFindings placeFindings(const Simulation::ScenarioDataXml& a_scenario);

/// The damaged packages of the repository that emissions of a scenario use, one
/// finding for each object and package. Call after the ScenarioChecker, which assigns
/// the default package to emissions without one.
[[nodiscard]] CheckFindings packageFindings(const Simulation::ScenarioDataXml& a_scenario,
                                            RepositoryPackages& a_packages);

/// The findings of a deployment that was just read.
[[nodiscard]] CheckFindings deploymentFindings(const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif
