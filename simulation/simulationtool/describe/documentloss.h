#ifndef SIMULATIONTOOL_DOCUMENTLOSS_H
#define SIMULATIONTOOL_DOCUMENTLOSS_H

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// Comments and processing instructions of a document, which no reader looks at.
enum class Notes {
    Ignore,
    Count,
};

/// What a document holds that the document written in its place would lack:
/// elements, attributes with a value and, where they count, notes that its reader
/// passed over. One line that names the first of them, each with its number, and
/// counts all where it does not name all; empty when nothing would be lost. Both
/// must be whole documents. The timing of older formats is no loss: it is written
/// as emissions.
[[nodiscard]] QString documentLoss(const QByteArray& a_source, const QByteArray& a_written, Notes a_eNotes);

} // namespace SimulationTool

#endif
