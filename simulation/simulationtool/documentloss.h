#ifndef SIMULATIONTOOL_DOCUMENTLOSS_H
#define SIMULATIONTOOL_DOCUMENTLOSS_H

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// What a scenario document holds that the document written in its place would
/// lack: elements, attributes with a value and comments that its reader passed
/// over. One line that names the first of them and counts all; empty when
/// nothing would be lost. Both must be whole documents. The timing of older
/// formats is no loss: it is written as emissions.
[[nodiscard]] QString documentLoss(const QByteArray& a_source, const QByteArray& a_written);

} // namespace SimulationTool

#endif
