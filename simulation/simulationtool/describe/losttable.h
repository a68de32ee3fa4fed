#ifndef SIMULATIONTOOL_LOSTTABLE_H
#define SIMULATIONTOOL_LOSTTABLE_H

#include "console/reportvalue.h"
#include "console/texttable.h"

#include <QList>
#include <QString>

namespace SimulationTool {

class Report;

/// A table of what is lost or wrong, which may be nothing or very much: only the
/// first rows are shown, the title counts all.
class LostTable
{
public:
    /// Programs get the rows under the key, and their number under the key with
    /// "_count" behind it.
    LostTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns);

    void add(const ReportRow& a_row);
    /// People see nothing without rows.
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
