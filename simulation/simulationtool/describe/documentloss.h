#ifndef SIMULATIONTOOL_DOCUMENTLOSS_H
#define SIMULATIONTOOL_DOCUMENTLOSS_H

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// Comments and processing instructions of a document, which all readers ignore.
enum class Notes {
    Ignore,
    Count,
};

/// Lists the parts of a source document that the written document lacks: elements,
/// attributes with a value and, with Notes::Count, notes. Returns one line that names
/// the first three kinds, each with its count, and the total when there are more;
/// empty when nothing is lost. Both documents must be well-formed. The timing of
/// older formats is not a loss: it is written as emissions.
[[nodiscard]] QString documentLoss(const QByteArray& a_source, const QByteArray& a_written, Notes a_eNotes);

} // namespace SimulationTool

#endif
