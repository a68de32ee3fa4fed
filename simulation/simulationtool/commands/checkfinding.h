#ifndef SIMULATIONTOOL_CHECKFINDING_H
#define SIMULATIONTOOL_CHECKFINDING_H

#include "simulationdata/scenariochecker.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace Simulation {
class DeploymentDataXml;
} // namespace Simulation

namespace SimulationTool {

/// The findings of a check. Findings without an object id concern the document itself.
using CheckFindings = QList<Simulation::ScenarioFinding>;

/// Converts the error text of a reader to the finding that the document broke off.
/// Empty for an empty text.
[[nodiscard]] CheckFindings brokenOffFindings(const QString& a_sError);

/// The finding for a deployment of a version that is newer than the known ones. Empty
/// for a known version.
[[nodiscard]] CheckFindings versionFindings(const Simulation::DeploymentDataXml& a_deployment);

/// Lists the parts of a document that its reader ignored, as one finding. `a_written`
/// is the document as written after reading. When `a_written` is empty, the ignored
/// parts are not known, and the result is empty.
[[nodiscard]] CheckFindings unreadFindings(const QByteArray& a_document, const QByteArray& a_written);

/// Whether the findings of a rule concern the document itself, not one of its objects.
[[nodiscard]] bool isOfDocument(const QString& a_sRule);

/// "error", "warning" or "note"; stable, for programs.
[[nodiscard]] QString severityName(Simulation::Severity a_eSeverity);

} // namespace SimulationTool

#endif
