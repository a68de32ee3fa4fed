#include "losttable.h"

#include "console/report.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iShownRows = 20;

} // namespace

LostTable::LostTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns)
    : m_szKey(a_szKey)
    , m_sTitle(a_sTitle)
    , m_columns(a_columns)
{}

void LostTable::add(const ReportRow& a_row)
{
    ++m_iCount;
    if (m_rows.size() < s_iShownRows) {
        m_rows.append(a_row);
    }
}

void LostTable::write(Report& a_report) const
{
    const QString sShown =
        m_iCount > m_rows.size() ? QStringLiteral(", the first %1").arg(m_rows.size()) : QString();
    const QByteArray countKey = QByteArray(m_szKey) + "_count";
    a_report.value(countKey.constData(), m_iCount);
    a_report.titledTable(m_szKey, m_sTitle + QStringLiteral(": %1").arg(m_iCount) + sShown, m_columns,
                         m_rows);
}

} // namespace SimulationTool
