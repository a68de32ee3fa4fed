#ifndef SIMULATIONDATA_LEDWIDGET_H
#define SIMULATIONDATA_LEDWIDGET_H

#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui {
class LedWidget;
}

/// A status lamp with a text beside it. The lamp is a picture that the style
/// greys while it is off. A new one is lit and says "Text".
class SIMULATIONDATA_EXPORT LedWidget : public QWidget
{
    Q_OBJECT

public:
    explicit LedWidget(QWidget* a_pParent = nullptr);
    ~LedWidget() override;

    /// False also when the whole widget is disabled.
    [[nodiscard]] bool isLedActive() const;
    [[nodiscard]] QString text() const;

public Q_SLOTS:
    /// Also gives the widget the size that the text needs.
    void setText(const QString& a_sText);
    void setLedActive(bool a_bActive);

    /// The spelling is part of the interface.
    void activeateLed();
    void deactivateLed();

private:
    std::unique_ptr<Ui::LedWidget> m_form;
};

#endif
