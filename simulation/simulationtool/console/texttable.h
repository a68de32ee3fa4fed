#ifndef SIMULATIONTOOL_TEXTTABLE_H
#define SIMULATIONTOOL_TEXTTABLE_H

#include <QList>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// One column of a table.
struct TextColumn
{
    QString title;
    bool alignRight = false;
    /// Maximum width of the cells (characters); longer cells are cut. 0 = no limit, for
    /// short values and for the last column.
    qsizetype maxWidth = 0;
    /// The JSON key; null: the column is for people only.
    const char* key = nullptr;
};

/// Formats rows as aligned columns for a terminal. Cells are passed through
/// terminalText() first, so widths are those of the shown text. The rows are not
/// kept: memory does not grow with their number.
class TextTable
{
public:
    /// Makes every column as wide as its title.
    explicit TextTable(const QList<TextColumn>& a_columns);

    /// Widens the columns for a row. A row that was not fitted is still written
    /// whole, but a wide cell shifts the cells to its right.
    void fit(const QStringList& a_cells);

    /// The line of titles, and the line of dashes below it; both without a line end.
    [[nodiscard]] QString titles() const;
    [[nodiscard]] QString rule() const;
    /// One row as a line, without a line end. Missing cells are empty.
    [[nodiscard]] QString row(const QStringList& a_cells) const;

private:
    [[nodiscard]] QString cellText(qsizetype a_iColumn, const QString& a_sCell) const;

    QList<TextColumn> m_columns;
    QList<qsizetype> m_widths;
};

} // namespace SimulationTool

#endif
