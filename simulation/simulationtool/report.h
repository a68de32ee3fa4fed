#ifndef SIMULATIONTOOL_REPORT_H
#define SIMULATIONTOOL_REPORT_H

#include "texttable.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace SimulationTool {

class Output;

/// Writes a report of headings, labelled values and tables to the output,
/// which it does not own.
class Report
{
public:
    explicit Report(Output& a_output);

    /// A heading in the first column, after an empty line unless it is the
    /// first.
    void heading(const QString& a_sText);
    /// A label and its value, wrapped at spaces and broken at line ends.
    void field(const QString& a_sLabel, const QString& a_sValue);
    /// A field about the whole report: apart, unless there are but fields before
    /// it.
    void conclusion(const QString& a_sLabel, const QString& a_sValue);
    /// A table from the first column on. Nothing without rows.
    void plainTable(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows);
    /// The same, indented.
    void table(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows);
    /// The same with a title line of its own.
    void titledTable(const QString& a_sTitle, const QList<TextColumn>& a_columns,
                     const QList<QStringList>& a_rows);

    /// False once the output failed: the rest need not be put together.
    [[nodiscard]] bool isOk() const;

private:
    void writeTable(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows,
                    qsizetype a_iIndent);

    Output& m_output;
    bool m_bFirst = true;
    bool m_bOnlyFields = true; ///< behind the first heading
};

} // namespace SimulationTool

#endif
