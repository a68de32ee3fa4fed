#include "texttable.h"

#include "terminaltext.h"

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iGap = 2; ///< columns between two cells

QString padding(qsizetype a_iWidth)
{
    return QString(std::max<qsizetype>(a_iWidth, 0), u' ');
}

} // namespace

TextTable::TextTable(const QList<TextColumn>& a_columns)
    : m_columns(a_columns)
{
    for (const TextColumn& column : a_columns) {
        m_widths.append(terminalWidth(column.title));
    }
}

QString TextTable::cellText(qsizetype a_iColumn, const QString& a_sCell) const
{
    const QString sText = terminalText(a_sCell);
    const qsizetype iMaxWidth = m_columns.at(a_iColumn).maxWidth;
    // A title is never cut, so its column is at least as wide as the title.
    return iMaxWidth > 0 ? shortened(sText, std::max(iMaxWidth, m_widths.at(a_iColumn))) : sText;
}

void TextTable::fit(const QStringList& a_cells)
{
    for (qsizetype i = 0; i < std::min(m_columns.size(), a_cells.size()); ++i) {
        m_widths[i] = std::max(m_widths.at(i), terminalWidth(cellText(i, a_cells.at(i))));
    }
}

QString TextTable::titles() const
{
    QStringList titles;
    for (const TextColumn& column : m_columns) {
        titles.append(column.title);
    }
    return row(titles);
}

QString TextTable::rule() const
{
    QStringList rules;
    for (const qsizetype iWidth : m_widths) {
        rules.append(QString(iWidth, u'-'));
    }
    return row(rules);
}

QString TextTable::row(const QStringList& a_cells) const
{
    QString sLine;
    qsizetype iOwed = 0; // pending spaces, written only before the next cell that is not empty
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        const QString sText = cellText(i, a_cells.value(i));
        const qsizetype iFree = m_widths.at(i) - terminalWidth(sText);
        if (m_columns.at(i).alignRight) {
            iOwed += std::max<qsizetype>(iFree, 0);
        }
        if (!sText.isEmpty()) {
            sLine += padding(iOwed) + sText;
            iOwed = 0;
        }
        if (!m_columns.at(i).alignRight) {
            iOwed += std::max<qsizetype>(iFree, 0);
        }
        iOwed += s_iGap;
    }
    return sLine;
}

} // namespace SimulationTool
