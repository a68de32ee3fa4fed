#ifndef MONITOR_READABLEDELEGATE_H
#define MONITOR_READABLEDELEGATE_H

#include <QColor>
#include <QPalette>
#include <QStyledItemDelegate>

namespace Monitor {

/// The colour for a text in a window of that palette: as it is where it can be
/// read; or else lighter or darker, the hue kept, until it can. Black and greys
/// become the palette's own colour of texts then.
[[nodiscard]] QColor readable(const QColor& a_color, const QPalette& a_palette);

/// Paints the texts of a table in the colours of its model, but readable: the
/// model's colours are the same for every palette, and on a dark table black and
/// dark red cannot be seen. A text that does not fit has a tool tip.
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
