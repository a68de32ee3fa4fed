#include "report.h"

#include "output.h"
#include "terminaltext.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iIndent = 2;
constexpr qsizetype s_iLabelWidth = 14;
constexpr qsizetype s_iValueWidth = 84; ///< so that a line stays within 100 columns

QString indent(qsizetype a_iWidth)
{
    return QString(a_iWidth, u' ');
}

/// The lines of a text: its own, and those that wrapping at spaces adds. A word
/// that is wider than a line stays whole.
QStringList wrapped(const QString& a_sText)
{
    QStringList lines;
    const QStringList paragraphs = a_sText.split(u'\n');
    for (const QString& paragraph : paragraphs) {
        QString sLine;
        qsizetype iWidth = 0;
        const QStringList words = terminalText(paragraph).split(u' ');
        for (const QString& word : words) {
            const qsizetype iWordWidth = terminalWidth(word);
            if (iWidth > 0 && iWidth + 1 + iWordWidth > s_iValueWidth) {
                lines.append(sLine);
                sLine = word;
                iWidth = iWordWidth;
            } else {
                sLine += (iWidth > 0 ? QStringLiteral(" ") : QString()) + word;
                iWidth += (iWidth > 0 ? 1 : 0) + iWordWidth;
            }
        }
        lines.append(sLine);
    }
    return lines;
}

} // namespace

Report::Report(Output& a_output)
    : m_output(a_output)
{}

void Report::heading(const QString& a_sText)
{
    m_output.write((m_bFirst ? QString() : QStringLiteral("\n")) + terminalText(a_sText) + u'\n');
    m_bOnlyFields = m_bFirst;
    m_bFirst = false;
}

void Report::field(const QString& a_sLabel, const QString& a_sValue)
{
    if (a_sValue.isEmpty()) {
        m_output.write(indent(s_iIndent) + a_sLabel.leftJustified(s_iLabelWidth) + QStringLiteral("-\n"));
        return;
    }
    QString sLabel = a_sLabel;
    const QStringList lines = wrapped(a_sValue);
    for (const QString& line : lines) {
        m_output.write(indent(s_iIndent) + sLabel.leftJustified(s_iLabelWidth) + line + u'\n');
        sLabel.clear();
    }
}

void Report::conclusion(const QString& a_sLabel, const QString& a_sValue)
{
    if (!m_bOnlyFields) {
        m_output.write(QStringLiteral("\n"));
    }
    field(a_sLabel, a_sValue);
}

void Report::plainTable(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows)
{
    writeTable(a_columns, a_rows, 0);
}

void Report::table(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows)
{
    writeTable(a_columns, a_rows, s_iIndent);
    m_bOnlyFields = false;
}

void Report::titledTable(const QString& a_sTitle, const QList<TextColumn>& a_columns,
                         const QList<QStringList>& a_rows)
{
    if (!a_rows.isEmpty()) {
        m_output.write(indent(s_iIndent) + a_sTitle + QStringLiteral(":\n"));
        writeTable(a_columns, a_rows, s_iIndent + s_iIndent);
    }
}

void Report::writeTable(const QList<TextColumn>& a_columns, const QList<QStringList>& a_rows,
                        qsizetype a_iIndent)
{
    if (a_rows.isEmpty()) {
        return;
    }
    TextTable table(a_columns);
    for (const QStringList& cells : a_rows) {
        table.fit(cells);
    }
    const QString sIndent = indent(a_iIndent);
    m_output.write(sIndent + table.titles() + u'\n' + sIndent + table.rule() + u'\n');
    for (const QStringList& cells : a_rows) {
        m_output.write(sIndent + table.row(cells) + u'\n');
    }
}

bool Report::isOk() const
{
    return m_output.isOk();
}

} // namespace SimulationTool
