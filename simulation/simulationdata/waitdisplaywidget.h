#ifndef SIMULATIONDATA_WAITDISPLAYWIDGET_H
#define SIMULATIONDATA_WAITDISPLAYWIDGET_H

#include "simulationdata/simulationdata_export.h"

#include <QDialog>
#include <QString>

#include <cstdint>
#include <memory>

namespace Simulation {

namespace Ui {
class WaitDisplayWidget;
}

/// A small modal dialog for waiting: a message, a bar that runs for ever, if
/// wanted a button to cancel, and a time-out. It runs on a timer of its own while
/// it is open.
///
/// Nothing is connected to the button: the application connects the clicked() of
/// the child "cancelButton" to reject() if a click shall cancel.
///
/// The receivers of canceled(), timeout() and QDialog's finished(int) may delete
/// the dialog; QDialog is not done yet when it tells accepted() and rejected(). A
/// new dialog is hidden and counts nothing.
class SIMULATIONDATA_EXPORT WaitDisplayWidget : public QDialog
{
    Q_OBJECT

public:
    explicit WaitDisplayWidget(QWidget* a_pParent = nullptr);
    ~WaitDisplayWidget() override;

    /// Opens window-modally. The time-out is in seconds, 0 = none; one of more
    /// than 4,294,967 s, which milliseconds of 32 bits do not hold, never comes.
    /// A dialog that is open already changes its texts and whether it can be
    /// cancelled; its waiting goes on, with the time-out that it had.
    void open(const QString& a_sTitle, const QString& a_sMessage, bool a_bCancelable,
              unsigned int a_uiTimeout);

    /// Ends the waiting well: the dialog is accepted.
    void close();

    /// Hides the dialog; the time that has passed is kept for doContinue().
    void pause();
    void doContinue();

Q_SIGNALS:
    /// The dialog was rejected.
    void canceled();

    /// The time-out has run out. The dialog is hidden, neither accepted nor
    /// rejected.
    void timeout();

    /// For applications; the library does not emit it.
    void finished();

public Q_SLOTS:
    /// Ignored while the dialog shows no cancel box.
    void reject() override;

    /// However the dialog is ended, it stops counting: a waiting that was
    /// cancelled must not run out later.
    void done(int a_iResult) override;

protected:
    void timerEvent(QTimerEvent* a_pEvent) override;

private:
    /// QDialog's, which knows no message. Not for callers of this class.
    void open() override;

    void startCounting();
    void stopCounting();

    std::unique_ptr<Ui::WaitDisplayWidget> m_form;
    std::int32_t m_iTimer = -1;    ///< -1 = none runs
    std::uint32_t m_uiElapsed = 0; ///< ms
    std::uint32_t m_uiTimeout = 0; ///< ms; 0 = none
};

} // namespace Simulation

#endif
