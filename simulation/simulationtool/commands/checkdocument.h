#ifndef SIMULATIONTOOL_CHECKDOCUMENT_H
#define SIMULATIONTOOL_CHECKDOCUMENT_H

#include "checkfinding.h"
#include "describe/documentkind.h"

#include <QByteArray>
#include <QString>

namespace Simulation {
class ScenarioChecker;
} // namespace Simulation

namespace SimulationTool {

class InputFile;

/// What the check of one document gave.
struct CheckedDocument
{
    DocumentKind kind = DocumentKind::Scenario;
    DocumentFindings findings;
    QString error;       ///< why the document cannot be read; empty when it was read
    QByteArray repaired; ///< the repaired scenario; empty when it exceeds a limit, or for other kinds
    QString loss;        ///< what the repaired scenario lacks of the document; empty = nothing
};

/// What the check of a file looks at.
struct DocumentScope
{
    bool dataFiles = false; ///< the data files beside a descriptor, too
    bool repair = false;    ///< the repaired form of a scenario is wanted
};

/// Reads and checks a document. The findings are sorted by place and not limited. When the
/// document cannot be read, the findings show the place of the error, if it has one.
[[nodiscard]] CheckedDocument checkDocument(const InputFile& a_file, const DocumentScope& a_scope,
                                            Simulation::ScenarioChecker& a_checker);

} // namespace SimulationTool

#endif
