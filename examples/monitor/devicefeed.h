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

/// Keeps a table of devices as the service knows them.
///
/// A service lists its devices for every program that asks. Every change of their
/// states it sends only to the program that acquired it last, and acquiring takes
/// the control from the program that had it. So this one only asks, again and
/// again, and acquires the service only when it is to follow the states.
class DeviceFeed : public QObject
{
    Q_OBJECT

public:
    DeviceFeed();
    ~DeviceFeed() override;

    [[nodiscard]] Simulation::SimulationsTableModel& model() { return m_model; }
    [[nodiscard]] const Simulation::SimulationsTableModel& model() const { return m_model; }

    /// Begins with a socket that is connected, or ends with null, which empties
    /// the table.
    void setSocket(QTcpSocket* a_pSocket);

    /// Whether to acquire the service for the sake of the states; also holds for
    /// later connections. Off, the states that were shown are taken back, since
    /// they would grow old.
    void setFollowingStates(bool a_bOn);
    [[nodiscard]] bool isFollowingStates() const { return m_bFollowing; }

    /// How many of the devices are in the state.
    [[nodiscard]] qsizetype count(Simulation::ScenarioDataState a_eState) const;

Q_SIGNALS:
    /// The table may be other than before. Comes after every list, at least.
    void updated();

    /// What the service sends cannot be read, and nothing more of it is over this
    /// connection.
    void unreadable(const QString& a_sError);

private:
    void takeList(const QVector<Simulation::SimulationDeviceConfiguration>& a_devices);
    void takeDevice(const Simulation::SimulationDeviceConfiguration& a_device);
    void removeDevice(const QString& a_sId);
    void takeState(const QString& a_sId, const Simulation::SimulationDeviceState& a_state);

    Simulation::SimulationServiceCommunication m_communication;
    Simulation::SimulationsTableModel m_model;
    QMap<QString, QByteArray> m_devices; ///< what is in the table, as XML
    QMap<QString, Simulation::SimulationDeviceState> m_states;
    QTimer m_askAgain;
    bool m_bFollowing = false;
};

} // namespace Monitor

#endif
