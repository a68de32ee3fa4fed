#ifndef MONITOR_READABLEDELEGATE_H
#define MONITOR_READABLEDELEGATE_H

#include <QColor>
#include <QPalette>
#include <QStyledItemDelegate>

namespace Monitor {

/// Returns the colour unchanged if texts in that colour have enough contrast in windows
/// of this palette. Otherwise makes the colour lighter or darker until the contrast
/// suffices, and replaces black and greys by the palette's text colour.
[[nodiscard]] QColor readable(const QColor& a_color, const QPalette& a_palette);

/// Paints a table's texts in the colours of its model, adjusted by readable(). The
/// model's colours do not depend on the palette: black and dark red would be
/// unreadable on a dark table. An elided text has a tool tip.
class ReadableDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* a_pEvent, QAbstractItemView* a_pView, const QStyleOptionViewItem& a_option,
                   const QModelIndex& a_index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* a_pOption, const QModelIndex& a_index) const override;
};

} // namespace Monitor

#endif
