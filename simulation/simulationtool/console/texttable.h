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
    /// Longer cells are cut; 0 = never, which suits the last column.
    qsizetype maxWidth = 0;
    /// What programs call the column; null: it is for people only.
    const char* key = nullptr;
};

/// Lays rows out in aligned columns for a terminal. Cells are made harmless
/// first, so their widths are those of what is shown. The rows themselves are
/// not kept: a table of any length takes no memory, once its columns are wide
/// enough.
class TextTable
{
public:
    /// Every column is as wide as its title.
    explicit TextTable(const QList<TextColumn>& a_columns);

    /// Widens the columns for a row. A row without this keeps its own line
    /// whole, but pushes what follows a wide cell to the right.
    void fit(const QStringList& a_cells);

    /// The line of titles, and the one below it.
    [[nodiscard]] QString titles() const;
    [[nodiscard]] QString rule() const;
    /// One line, like all of them without its end. Missing cells are empty.
    [[nodiscard]] QString row(const QStringList& a_cells) const;

private:
    [[nodiscard]] QString cellText(qsizetype a_iColumn, const QString& a_sCell) const;

    QList<TextColumn> m_columns;
    QList<qsizetype> m_widths;
};

} // namespace SimulationTool

#endif
