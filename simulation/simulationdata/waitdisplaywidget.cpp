#include "waitdisplaywidget.h"

#include "ui_waitdisplaywidget.h"

#include <QTimerEvent>

#include <algorithm>
#include <limits>

namespace Simulation {

namespace {

constexpr std::int32_t s_iNoTimer = -1;
constexpr std::int32_t s_iTick = 100;      ///< ms
constexpr std::uint32_t s_uiSecond = 1000; ///< ms
/// A time-out (ms) that never expires. The elapsed time stops growing at this value.
constexpr std::uint32_t s_uiForEver = std::numeric_limits<std::uint32_t>::max();

std::uint32_t milliseconds(unsigned int a_uiSeconds)
{
    return a_uiSeconds <= s_uiForEver / s_uiSecond ? a_uiSeconds * s_uiSecond : s_uiForEver;
}

} // namespace

WaitDisplayWidget::WaitDisplayWidget(QWidget* a_pParent)
    : QDialog(a_pParent)
    , m_form(std::make_unique<Ui::WaitDisplayWidget>())
{
    m_form->setupUi(this);
    // The property "modal" of the form makes the dialog application-modal. Without this
    // call the dialog would be application-modal again when it is shown after a pause.
    setWindowModality(Qt::WindowModal);
    Qt::WindowFlags flags = windowFlags();
    flags &= ~(Qt::WindowCloseButtonHint | Qt::WindowContextHelpButtonHint);
    flags |= Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint;
    setWindowFlags(flags);
    // canceled() is emitted on finished(), not on rejected(), so that its receivers may
    // delete the dialog. QDialog still uses the object after rejected(). It emits
    // finished() later in the same call and does not use the object after that.
    connect(this, &QDialog::finished, this, [this](int a_iResult) {
        if (a_iResult == Rejected) {
            Q_EMIT canceled();
        }
    });
}

WaitDisplayWidget::~WaitDisplayWidget() = default;

void WaitDisplayWidget::open(const QString& a_sTitle, const QString& a_sMessage, bool a_bCancelable,
                             unsigned int a_uiTimeout)
{
    setWindowTitle(a_sTitle);
    m_form->messageLabel->setText(a_sMessage);
    m_form->cancelBox->setVisible(a_bCancelable);
    adjustSize();
    if (m_iTimer == s_iNoTimer) {
        startCounting();
        m_uiElapsed = 0;
        m_uiTimeout = milliseconds(a_uiTimeout);
    }
    QDialog::open();
}

void WaitDisplayWidget::open()
{
    QDialog::open();
}

void WaitDisplayWidget::close()
{
    accept();
}

void WaitDisplayWidget::pause()
{
    stopCounting();
    hide();
}

void WaitDisplayWidget::doContinue()
{
    startCounting();
    show();
}

void WaitDisplayWidget::reject()
{
    if (m_form->cancelBox->isVisible()) {
        QDialog::reject();
    }
}

void WaitDisplayWidget::done(int a_iResult)
{
    stopCounting();
    QDialog::done(a_iResult);
}

void WaitDisplayWidget::timerEvent(QTimerEvent* a_pEvent)
{
    if (m_iTimer == s_iNoTimer || a_pEvent->timerId() != m_iTimer) {
        QDialog::timerEvent(a_pEvent);
        return;
    }
    QProgressBar* const pBar = m_form->progressBar;
    pBar->setValue((pBar->value() + 1) % (pBar->maximum() + 1));
    m_uiElapsed = std::min(m_uiElapsed, s_uiForEver - s_iTick) + s_iTick;
    if (m_uiTimeout != 0 && m_uiElapsed > m_uiTimeout) {
        stopCounting();
        hide();
        Q_EMIT timeout(); // last statement: a receiver may delete the dialog
    }
}

void WaitDisplayWidget::startCounting()
{
    if (m_iTimer == s_iNoTimer) {
        m_iTimer = startTimer(s_iTick);
    }
}

void WaitDisplayWidget::stopCounting()
{
    if (m_iTimer != s_iNoTimer) {
        killTimer(m_iTimer);
        m_iTimer = s_iNoTimer;
    }
}

} // namespace Simulation
