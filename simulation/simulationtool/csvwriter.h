#ifndef SIMULATIONTOOL_CSVWRITER_H
#define SIMULATIONTOOL_CSVWRITER_H

#include <QSaveFile>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// Writes a file of comma-separated values (RFC 4180, UTF-8, no byte order
/// mark) row by row. The file is replaced whole by commit() or, when anything
/// fails or commit() is not reached, left as it was.
class CsvWriter
{
public:
    explicit CsvWriter(const QString& a_sFile);

    /// False, with errorString(), when the place cannot be written. What is
    /// there already must be a regular file: a device is not to be replaced.
    [[nodiscard]] bool open();
    /// False when the row, or an earlier one, could not be written.
    [[nodiscard]] bool writeRow(const QStringList& a_fields);
    [[nodiscard]] bool commit();
    [[nodiscard]] QString errorString() const;

    /// A field as it stands in the file: in quotation marks when it holds a
    /// comma, a quotation mark or a line break.
    [[nodiscard]] static QString field(const QString& a_sText);
    /// The shortest text that reads back as the same number, in every locale.
    [[nodiscard]] static QString number(double a_dValue);

private:
    QSaveFile m_file;
    QString m_sRefusal;
};

} // namespace SimulationTool

#endif
