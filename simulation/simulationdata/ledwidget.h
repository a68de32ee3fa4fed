#ifndef SIMULATIONDATA_LEDWIDGET_H
#define SIMULATIONDATA_LEDWIDGET_H

#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui {
class LedWidget;
}

/// A status lamp with a text beside it. The lamp is a picture. The widget style greys
/// out the picture while the lamp is off. A new lamp is on and has the text "Text".
/// Used on the GUI thread.
class SIMULATIONDATA_EXPORT LedWidget : public QWidget
{
    Q_OBJECT

public:
    explicit LedWidget(QWidget* a_pParent = nullptr);
    ~LedWidget() override;

    /// Whether the lamp is on; false when the whole widget is disabled.
    [[nodiscard]] bool isLedActive() const;
    [[nodiscard]] QString text() const;

public Q_SLOTS:
    /// Sets the text and resizes the widget to fit it.
    void setText(const QString& a_sText);
    void setLedActive(bool a_bActive);

    /// The spelling is part of the interface.
    void activeateLed();
    void deactivateLed();

private:
    std::unique_ptr<Ui::LedWidget> m_form;
};

#endif
