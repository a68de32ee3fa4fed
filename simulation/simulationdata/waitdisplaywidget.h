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

/// A small modal dialog for waiting. The dialog shows a message, a progress bar that
/// restarts at its end and, optionally, a cancel button. The dialog has a time-out. Its
/// timer runs while the dialog is open.
///
/// The cancel button is not connected. To let a click cancel the dialog, the
/// application connects clicked() of the child "cancelButton" to reject().
///
/// The receivers of canceled(), timeout() and QDialog's finished(int) may delete the
/// dialog. The receivers of accepted() and rejected() must not, because QDialog uses
/// the object after emitting these signals. Used on the GUI thread. A new dialog is
/// hidden and its timer is stopped.
class SIMULATIONDATA_EXPORT WaitDisplayWidget : public QDialog
{
    Q_OBJECT

public:
    explicit WaitDisplayWidget(QWidget* a_pParent = nullptr);
    ~WaitDisplayWidget() override;

    /// Opens the dialog window-modally. The time-out is in seconds; 0 = none. A
    /// time-out of more than 4,294,967 s exceeds 32 bits in milliseconds and never
    /// expires. When the dialog is already open, its texts and the cancel button are
    /// updated, and its former time-out continues.
    void open(const QString& a_sTitle, const QString& a_sMessage, bool a_bCancelable,
              unsigned int a_uiTimeout);

    /// Ends the waiting successfully: accepts the dialog.
    void close();

    /// pause() hides the dialog and stops the timer. doContinue() shows the dialog
    /// again, and the timer continues from the elapsed time.
    void pause();
    void doContinue();

Q_SIGNALS:
    /// The dialog was rejected.
    void canceled();

    /// The time-out has expired. The dialog is hidden, but neither accepted nor
    /// rejected.
    void timeout();

    /// Reserved for applications; the library does not emit it.
    void finished();

public Q_SLOTS:
    /// Rejects the dialog. Has no effect while the cancel button is not visible.
    void reject() override;

    /// Ends the dialog with any result and stops its timer, so that a cancelled
    /// dialog does not time out later.
    void done(int a_iResult) override;

protected:
    void timerEvent(QTimerEvent* a_pEvent) override;

private:
    /// Opens the dialog without setting its message or starting its timer. Private,
    /// because callers use the other open().
    void open() override;

    void startCounting();
    void stopCounting();

    std::unique_ptr<Ui::WaitDisplayWidget> m_form;
    std::int32_t m_iTimer = -1;    ///< timer id; -1 = not running
    std::uint32_t m_uiElapsed = 0; ///< elapsed time in ms
    std::uint32_t m_uiTimeout = 0; ///< time-out in ms; 0 = none
};

} // namespace Simulation

#endif
