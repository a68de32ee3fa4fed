#ifndef SIMULATIONTOOL_DOCUMENTLOSS_H
#define SIMULATIONTOOL_DOCUMENTLOSS_H

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// Lists the parts of a source document that the written document lacks: elements,
/// attributes with a value, comments and processing instructions. Lost parts of the same name at
/// the same place are counted together. Returns one line with the first three such
/// groups, each with its count. When there are more groups, the line begins with the
/// number of all lost parts. Empty when nothing is lost. Both documents must be
/// well-formed. The timing of older formats is not a loss: it is written as emissions.
[[nodiscard]] QString documentLoss(const QByteArray& a_source, const QByteArray& a_written);

} // namespace SimulationTool

#endif
