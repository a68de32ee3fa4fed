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

/// What a check found in a document.
struct CheckFinding
{
    QString objectId;   ///< empty: the document itself
    QString objectName; ///< empty: none
    QString rule;       ///< never changes
    QString text;       ///< one sentence: what was found, and what was done or is to be done
    bool repaired = false;
};

using CheckFindings = QList<CheckFinding>;

/// That a document broke off, by the error that its reader names; nothing
/// without one.
[[nodiscard]] CheckFindings brokenOffFindings(const QString& a_sError);

/// What a whole document holds that its reader passed over, in one finding.
/// `a_written` is the same document as it is written again; empty: not known.
[[nodiscard]] CheckFindings unreadFindings(const QByteArray& a_document, const QByteArray& a_written);

/// The emitters of a scenario that are at no place on the earth.
[[nodiscard]] CheckFindings placeFindings(const Simulation::ScenarioDataXml& a_scenario);

/// The packages that the emissions of a scenario use and that are damaged in the
/// repository, one finding for each object and package. To be asked once the
/// scenario was checked: emissions without a package have the default one then.
[[nodiscard]] CheckFindings packageFindings(const Simulation::ScenarioDataXml& a_scenario,
                                            RepositoryPackages& a_packages);

/// What is wrong with a deployment that was just read.
[[nodiscard]] CheckFindings deploymentFindings(const Simulation::DeploymentDataXml& a_deployment);

} // namespace SimulationTool

#endif
