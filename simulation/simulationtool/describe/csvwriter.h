#ifndef SIMULATIONTOOL_CSVWRITER_H
#define SIMULATIONTOOL_CSVWRITER_H

#include "kpbase/replacedfile.h"

#include <QString>
#include <QStringList>

namespace SimulationTool {

class Output;

/// Writes comma-separated values (RFC 4180, UTF-8, no byte-order mark) row by row.
/// The file is replaced whole or not at all.
class CsvWriter
{
public:
    /// "-" is standard output, to which rows are written as they arrive.
    CsvWriter(const QString& a_sFile, Output& a_output);

    [[nodiscard]] bool isStandardOutput() const { return m_bStandardOutput; }
    [[nodiscard]] bool open() { return m_bStandardOutput || m_file.open(); }
    /// False when this row or an earlier one could not be written.
    [[nodiscard]] bool writeRow(const QStringList& a_fields);
    [[nodiscard]] bool commit() { return m_file.commit(); }
    [[nodiscard]] QString errorString() const { return m_file.errorString(); }

    /// A field as written: in quotation marks when it contains a comma, a quotation
    /// mark or a line break.
    [[nodiscard]] static QString field(const QString& a_sText);
    /// The shortest text that reads back as the same number, in every locale.
    [[nodiscard]] static QString number(double a_dValue);

private:
    Output& m_output;
    bool m_bStandardOutput;
    bool m_bTerminal; ///< standard output is written and is a terminal
    ReplacedFile m_file;
};

} // namespace SimulationTool

#endif
