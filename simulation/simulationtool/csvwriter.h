#ifndef SIMULATIONTOOL_CSVWRITER_H
#define SIMULATIONTOOL_CSVWRITER_H

#include "kpbase/replacedfile.h"

#include <QString>
#include <QStringList>

namespace SimulationTool {

/// Writes a file of comma-separated values (RFC 4180, UTF-8, no byte order
/// mark) row by row. The file is replaced whole or not at all.
class CsvWriter
{
public:
    explicit CsvWriter(const QString& a_sFile);

    [[nodiscard]] bool open() { return m_file.open(); }
    /// False when the row, or an earlier one, could not be written.
    [[nodiscard]] bool writeRow(const QStringList& a_fields);
    [[nodiscard]] bool commit() { return m_file.commit(); }
    [[nodiscard]] QString errorString() const { return m_file.errorString(); }

    /// A field as it stands in the file: in quotation marks when it holds a
    /// comma, a quotation mark or a line break.
    [[nodiscard]] static QString field(const QString& a_sText);
    /// The shortest text that reads back as the same number, in every locale.
    [[nodiscard]] static QString number(double a_dValue);

private:
    ReplacedFile m_file;
};

} // namespace SimulationTool

#endif
