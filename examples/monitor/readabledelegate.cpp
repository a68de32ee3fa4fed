#include "readabledelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace Monitor {

namespace {

constexpr double s_dContrast = 4.5; ///< minimum for text of normal size (WCAG 2.1, 1.4.3)
constexpr int s_iSteps = 20;        ///< steps from the colour to white or black

/// Converts a component of sRGB in [0, 1] to linear light (WCAG 2.1, "relative
/// luminance").
double linear(double a_dComponent)
{
    return a_dComponent <= 0.04045 ? a_dComponent / 12.92 : std::pow((a_dComponent + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& a_color)
{
    return 0.2126 * linear(a_color.redF()) + 0.7152 * linear(a_color.greenF()) +
           0.0722 * linear(a_color.blueF());
}

/// The contrast ratio of two colours (WCAG 2.1, "contrast ratio"): from 1 (the same)
/// to 21 (black on white).
double contrast(const QColor& a_first, const QColor& a_second)
{
    const auto [dDark, dLight] = std::minmax({luminance(a_first), luminance(a_second)});
    return (dLight + 0.05) / (dDark + 0.05);
}

} // namespace

QColor readable(const QColor& a_color, const QPalette& a_palette)
{
    // Of the palette's backgrounds, the window colour gives texts the least contrast. A
    // text colour that is readable on the window colour is also readable in tables. So a
    // state has one colour in the whole window.
    const QColor ground = a_palette.color(QPalette::Window);
    if (contrast(a_color, ground) >= s_dContrast) {
        return a_color;
    }
    if (a_color.hslSaturation() == 0) {
        return a_palette.color(QPalette::WindowText);
    }
    const double dFrom = a_color.lightnessF();
    const double dTo = contrast(Qt::white, ground) > contrast(Qt::black, ground) ? 1.0 : 0.0;
    QColor color = a_color;
    for (int i = 1; i <= s_iSteps && contrast(color, ground) < s_dContrast; ++i) {
        const double dLightness = dFrom + (dTo - dFrom) * i / s_iSteps;
        color = QColor::fromHslF(a_color.hslHueF(), a_color.hslSaturationF(), static_cast<float>(dLightness));
    }
    return color;
}

void ReadableDelegate::initStyleOption(QStyleOptionViewItem* a_pOption, const QModelIndex& a_index) const
{
    const QPalette palette = a_pOption->palette;
    QStyledItemDelegate::initStyleOption(a_pOption, a_index);
    // Set for every colour group, because an inactive window must be readable as
    // well.
    a_pOption->palette.setColor(QPalette::Text, readable(a_pOption->palette.color(QPalette::Text), palette));
}

bool ReadableDelegate::helpEvent(QHelpEvent* a_pEvent, QAbstractItemView* a_pView,
                                 const QStyleOptionViewItem& a_option, const QModelIndex& a_index)
{
    if (a_pEvent->type() == QEvent::ToolTip && sizeHint(a_option, a_index).width() > a_option.rect.width()) {
        // A text from the network is shown literally, wrapped into lines.
        QToolTip::showText(
            a_pEvent->globalPos(),
            QStringLiteral("<p>%1</p>").arg(displayText(a_index.data(), a_option.locale).toHtmlEscaped()),
            a_pView, a_option.rect);
        return true;
    }
    return QStyledItemDelegate::helpEvent(a_pEvent, a_pView, a_option, a_index);
}

} // namespace Monitor
