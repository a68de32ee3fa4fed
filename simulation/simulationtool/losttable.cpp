#include "losttable.h"

#include "report.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iShownRows = 20;

} // namespace

LostTable::LostTable(const QString& a_sTitle, const QList<TextColumn>& a_columns)
    : m_sTitle(a_sTitle)
    , m_columns(a_columns)
{}

void LostTable::add(const QStringList& a_cells)
{
    ++m_iCount;
    if (m_rows.size() < s_iShownRows) {
        m_rows.append(a_cells);
    }
}

void LostTable::write(Report& a_report) const
{
    const QString sShown =
        m_iCount > m_rows.size() ? QStringLiteral(", the first %1").arg(m_rows.size()) : QString();
    a_report.titledTable(m_sTitle + QStringLiteral(": %1").arg(m_iCount) + sShown, m_columns, m_rows);
}

} // namespace SimulationTool
