#ifndef SIMULATIONDATA_SIMULATIONSTABLEMODEL_H
#define SIMULATIONDATA_SIMULATIONSTABLEMODEL_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/simulationdeviceconfiguration.h"
#include "simulationdata/simulationdevicestate.h"

#include <QAbstractTableModel>
#include <QMap>
#include <QString>
#include <QStringList>

namespace Simulation {

/// The simulation devices that are registered with the service, one row each in
/// the order of their registration. The colour of a row's text tells the state of
/// the device's scenario data. An application feeds it from the signals of
/// SimulationServiceCommunication.
///
/// Every change resets the whole model. Lives on the thread of its views; a new
/// model has no rows.
class SIMULATIONDATA_EXPORT SimulationsTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    SimulationsTableModel();
    ~SimulationsTableModel() override;

    /// The number of devices; 0 below one of them.
    [[nodiscard]] int rowCount(const QModelIndex& a_parent = QModelIndex()) const override;

    /// 5, with devices or without.
    [[nodiscard]] int columnCount(const QModelIndex& a_parent = QModelIndex()) const override;

    /// The texts of a device, and for Qt::ForegroundRole a QColor: black without
    /// a scenario, dark yellow while it loads, dark green when it is loaded, dark
    /// red when it failed. Nothing for a state that is none of these, for other
    /// roles and without a device.
    [[nodiscard]] QVariant data(const QModelIndex& a_index, int a_iRole = Qt::DisplayRole) const override;

    /// The translated names of the columns.
    [[nodiscard]] QVariant headerData(int a_iSection, Qt::Orientation a_eOrientation,
                                      int a_iRole = Qt::DisplayRole) const override;

    /// Selectable and enabled, not editable.
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& a_index) const override;

    /// False: nothing can be edited.
    bool setData(const QModelIndex& a_index, const QVariant& a_value, int a_iRole = Qt::EditRole) override;

    /// Adds a row without a scenario. A device whose id is listed keeps its place
    /// and has its values replaced and its state taken back. Refused with a trace
    /// beyond Limits::ListedDevices.
    void registerSimulation(const SimulationDeviceConfiguration& a_device);

    /// Removes the row, and a state that was kept without one.
    void unregisterSimulation(const QString& a_sId);

    /// Keeps the state also of a device that has no row, up to
    /// Limits::ListedDevices of them; beyond that it is refused with a trace.
    /// Such a state does not outlive the registration of its device.
    void updateSimulationState(const QString& a_sId, const SimulationDeviceState& a_state);

    /// Shows every listed device as loading, until it reports otherwise.
    void setAllSimulationsLoading();

private:
    QStringList m_ids; ///< the rows
    QMap<QString, SimulationDeviceConfiguration> m_configurations;
    QMap<QString, ScenarioDataState> m_states; ///< of every row, and of devices without one
};

} // namespace Simulation

#endif
