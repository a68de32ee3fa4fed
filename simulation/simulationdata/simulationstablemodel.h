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

/// A table model of the simulation devices that are registered with the service.
/// Each device has one row, in the order of registration. The text colour of a row
/// shows the state of the device's scenario data. The application updates the model
/// when SimulationServiceCommunication emits signals.
///
/// Every change resets the whole model. Used on the thread of its views; a new
/// model has no rows.
class SIMULATIONDATA_EXPORT SimulationsTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    SimulationsTableModel();
    ~SimulationsTableModel() override;

    /// The number of devices; 0 for a parent that is a device.
    [[nodiscard]] int rowCount(const QModelIndex& a_parent = QModelIndex()) const override;

    /// Always 5.
    [[nodiscard]] int columnCount(const QModelIndex& a_parent = QModelIndex()) const override;

    /// For Qt::DisplayRole returns the text of a column. For Qt::ForegroundRole
    /// returns a QColor: black without a scenario, dark yellow while the scenario is
    /// being loaded, dark green when it is loaded, dark red when loading failed.
    /// Returns an invalid QVariant for an unknown state, other roles and an invalid
    /// index.
    [[nodiscard]] QVariant data(const QModelIndex& a_index, int a_iRole = Qt::DisplayRole) const override;

    /// The translated names of the columns.
    [[nodiscard]] QVariant headerData(int a_iSection, Qt::Orientation a_eOrientation,
                                      int a_iRole = Qt::DisplayRole) const override;

    /// Selectable and enabled, not editable.
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& a_index) const override;

    /// Always false: the model is read-only.
    bool setData(const QModelIndex& a_index, const QVariant& a_value, int a_iRole = Qt::EditRole) override;

    /// Adds a row for the device, with the state None. A device whose id is already
    /// listed keeps its row; its values are replaced and its state is reset. A
    /// device beyond Limits::ListedDevices is refused with a trace.
    void registerSimulation(const SimulationDeviceConfiguration& a_device);

    /// Removes the row and the stored state. Also removes a state without a row.
    void unregisterSimulation(const QString& a_sId);

    /// Stores the state of a device, also of a device without a row. Stores at most
    /// Limits::ListedDevices states without a row; further ones are refused with a
    /// trace. The registration of the device resets its state.
    void updateSimulationState(const QString& a_sId, const SimulationDeviceState& a_state);

    /// Sets the state of every listed device to loading, until the device reports
    /// another state.
    void setAllSimulationsLoading();

private:
    QStringList m_ids; ///< ids of the rows, in order
    QMap<QString, SimulationDeviceConfiguration> m_configurations;
    QMap<QString, ScenarioDataState> m_states; ///< of all rows and of devices without a row, by id
};

} // namespace Simulation

#endif
