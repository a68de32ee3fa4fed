#ifndef SIMULATIONTOOL_LOSTTABLE_H
#define SIMULATIONTOOL_LOSTTABLE_H

#include "console/reportvalue.h"
#include "console/texttable.h"

#include <QList>
#include <QString>

namespace SimulationTool {

class Report;

/// A table of losses or findings. Any number of rows may be added: only the first 20
/// are kept and shown, and the title contains the total number.
class LostTable
{
public:
    /// In JSON the rows are under the key, and their number under the key followed by
    /// "_count".
    LostTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns);

    void add(const ReportRow& a_row);
    /// A table without rows is not shown to people.
    void write(Report& a_report) const;

private:
    const char* m_szKey;
    QString m_sTitle;
    QList<TextColumn> m_columns;
    QList<ReportRow> m_rows;
    qsizetype m_iCount = 0;
};

} // namespace SimulationTool

#endif
