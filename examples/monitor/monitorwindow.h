#ifndef MONITOR_MONITORWINDOW_H
#define MONITOR_MONITORWINDOW_H

#include "devicefeed.h"

#include <simulationdata/tcpserverconnector.h>
#include <simulationdata/waitdisplaywidget.h>

#include <QMainWindow>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <memory>

class LedWidget;
class QCheckBox;
class QLabel;
class QPushButton;
class QTableView;

namespace Monitor {

/// A window with the devices of a simulation service and a lamp for the connection. A
/// waiting dialog is shown while the window connects. Cancelling the dialog ends the
/// attempts; the window stays open and shows a button that connects again.
///
/// When the service sends unreadable bytes, the window closes the connection and connects
/// again, as after a lost connection. The status bar shows the error until a service can
/// be read again.
class MonitorWindow : public QMainWindow
{
    Q_OBJECT

public:
    MonitorWindow(const QString& a_sHost, std::uint16_t a_uiPort);
    ~MonitorWindow() override;

    void connectToService();
    void setFollowingStates(bool a_bOn);

    [[nodiscard]] bool isConnected() const { return m_bConnected; }
    [[nodiscard]] QWidget& waitDialog() { return *m_pWait; }

Q_SIGNALS:
    /// The window shows new data from the service, or has begun to wait for the service.
    void updated();

protected:
    void changeEvent(QEvent* a_pEvent) override;

private:
    [[nodiscard]] QWidget* createBar();
    void createTable();
    void createWait();
    void connected();
    void disconnected();
    void abandonConnection(const QString& a_sError);
    void cancel();
    void showState();
    void showCounts();
    void fitColumns();

    QString m_sHost;
    std::uint16_t m_uiPort;
    DeviceFeed m_feed;
    std::unique_ptr<Simulation::TcpServerConnector> m_connector; ///< null = no connection wanted
    QTimer m_refresh;                                            ///< runs while an update has to be shown
    bool m_bConnected = false;
    QString m_sUnreadable;      ///< why the last connection was given up; empty once a service is read again
    bool m_bColumnsFit = false; ///< column widths are set; now only the user changes them

    // Children
    QTableView* m_pTable;
    LedWidget* m_pLamp;
    QCheckBox* m_pFollow;
    QPushButton* m_pConnect;
    QLabel* m_pCounts;
    Simulation::WaitDisplayWidget* m_pWait;
};

} // namespace Monitor

#endif
