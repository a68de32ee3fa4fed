#ifndef MONITOR_DEVICEFEED_H
#define MONITOR_DEVICEFEED_H

#include <simulationdata/simulationdeviceconfiguration.h>
#include <simulationdata/simulationdevicestate.h>
#include <simulationdata/simulationservicecommunication.h>
#include <simulationdata/simulationstablemodel.h>

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVector>

class QTcpSocket;

namespace Monitor {

/// Fills a table model with the devices that are registered with a service.
///
/// A service returns its list of devices to every program that requests the list. The
/// service sends changes of device states only to the program that acquired the service
/// last. Acquiring takes the control from the former owner. Therefore this class acquires
/// the service only to follow the states. The class requests the list again 2 s after
/// each answer. Used on the thread of the model's views.
class DeviceFeed : public QObject
{
    Q_OBJECT

public:
    DeviceFeed();
    ~DeviceFeed() override;

    [[nodiscard]] Simulation::SimulationsTableModel& model() { return m_model; }
    [[nodiscard]] const Simulation::SimulationsTableModel& model() const { return m_model; }

    /// Uses a connected socket, which is not owned; null removes it and empties the
    /// table.
    void setSocket(QTcpSocket* a_pSocket);

    /// True acquires the service, now and after every later connection. False releases
    /// the service and clears the shown states, because they are no longer updated.
    void setFollowingStates(bool a_bOn);
    [[nodiscard]] bool isFollowingStates() const { return m_bFollowing; }

    /// The number of devices in this state.
    [[nodiscard]] qsizetype count(Simulation::ScenarioDataState a_eState) const;

Q_SIGNALS:
    /// The table may have changed. Emitted at least after every list.
    void updated();

    /// The data of the service cannot be read; nothing more is read over this
    /// connection.
    void unreadable(const QString& a_sError);

private:
    void takeList(const QVector<Simulation::SimulationDeviceConfiguration>& a_devices);
    void takeDevice(const Simulation::SimulationDeviceConfiguration& a_device);
    void removeDevice(const QString& a_sId);
    void takeState(const QString& a_sId, const Simulation::SimulationDeviceState& a_state);

    Simulation::SimulationServiceCommunication m_communication;
    Simulation::SimulationsTableModel m_model;
    QMap<QString, QByteArray> m_devices; ///< the records in the table by device id, as XML
    QMap<QString, Simulation::SimulationDeviceState> m_states;
    QTimer m_askAgain;
    bool m_bFollowing = false;
};

} // namespace Monitor

#endif
