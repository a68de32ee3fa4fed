#include "ledwidget.h"

#include "ui_ledwidget.h"

LedWidget::LedWidget(QWidget* a_pParent)
    : QWidget(a_pParent)
    , m_form(std::make_unique<Ui::LedWidget>())
{
    m_form->setupUi(this);
}

LedWidget::~LedWidget() = default;

bool LedWidget::isLedActive() const
{
    return m_form->activeLed->isEnabled();
}

QString LedWidget::text() const
{
    return m_form->textLabel->text();
}

void LedWidget::setText(const QString& a_sText)
{
    m_form->textLabel->setText(a_sText);
    adjustSize();
}

void LedWidget::setLedActive(bool a_bActive)
{
    m_form->activeLed->setEnabled(a_bActive);
}

void LedWidget::activeateLed()
{
    setLedActive(true);
}

void LedWidget::deactivateLed()
{
    setLedActive(false);
}
