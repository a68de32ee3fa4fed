#ifndef SIMULATIONTOOL_LOSTTABLE_H
#define SIMULATIONTOOL_LOSTTABLE_H

#include "texttable.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace SimulationTool {

class Report;

/// A table of what is lost or wrong, which may be nothing or very much: only the
/// first rows are shown, the title counts all.
class LostTable
{
public:
    LostTable(const QString& a_sTitle, const QList<TextColumn>& a_columns);

    void add(const QStringList& a_cells);
    /// Nothing without rows.
    void write(Report& a_report) const;

private:
    QString m_sTitle;
    QList<TextColumn> m_columns;
    QList<QStringList> m_rows;
    qsizetype m_iCount = 0;
};

} // namespace SimulationTool

#endif
