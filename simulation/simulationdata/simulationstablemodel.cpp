#include "simulationstablemodel.h"

#include "simulationdata/io/trace_p.h"
#include "simulationdata/position.h"
#include "simulationdata/simulationlimits.h"

#include <QColor>
#include <QLocale>

#include <array>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationstablemodel";

QString positionText(const SimulationDeviceConfiguration& a_device)
{
    return Units::Position::toString(a_device.positionLongitude(), a_device.positionLatitude(),
                                     Units::Position::Decimal, QLocale::c());
}

struct Column
{
    const char* name; ///< before translation
    QString (*text)(const SimulationDeviceConfiguration&);
};

using Device = SimulationDeviceConfiguration;
constexpr std::array<Column, 5> s_columns{{
    {QT_TRANSLATE_NOOP("Simulation::SimulationsTableModel", "Name"),
     [](const Device& a_device) { return a_device.name(); }},
    {QT_TRANSLATE_NOOP("Simulation::SimulationsTableModel", "Machine"),
     [](const Device& a_device) { return a_device.machine(); }},
    {QT_TRANSLATE_NOOP("Simulation::SimulationsTableModel", "Station"),
     [](const Device& a_device) { return a_device.stationName(); }},
    {QT_TRANSLATE_NOOP("Simulation::SimulationsTableModel", "Type"),
     [](const Device& a_device) { return a_device.deviceType(); }},
    {QT_TRANSLATE_NOOP("Simulation::SimulationsTableModel", "Position"), positionText},
}};
constexpr int s_iColumns = static_cast<int>(s_columns.size());

QVariant stateColor(ScenarioDataState a_eState)
{
    switch (a_eState) {
    case ScenarioDataState::None:
        return QColor(Qt::black);
    case ScenarioDataState::Loading:
        return QColor(Qt::darkYellow);
    case ScenarioDataState::Loaded:
        return QColor(Qt::darkGreen);
    case ScenarioDataState::Failed:
        return QColor(Qt::darkRed);
    }
    return {}; // a peer may send other values
}

bool isFull(qsizetype a_iDevices)
{
    return static_cast<std::uint64_t>(a_iDevices) >= Limits::value(Limits::ListedDevices);
}

} // namespace

SimulationsTableModel::SimulationsTableModel() = default;
SimulationsTableModel::~SimulationsTableModel() = default;

int SimulationsTableModel::rowCount(const QModelIndex& a_parent) const
{
    return a_parent.isValid() ? 0 : static_cast<int>(m_ids.size());
}

int SimulationsTableModel::columnCount(const QModelIndex& /*a_parent*/) const
{
    return s_iColumns;
}

QVariant SimulationsTableModel::data(const QModelIndex& a_index, int a_iRole) const
{
    // An index from before a reset may have a row that no longer exists.
    if (!a_index.isValid() || a_index.row() >= m_ids.size() || a_index.column() >= s_iColumns) {
        return {};
    }
    const QString& sId = m_ids[a_index.row()];
    switch (a_iRole) {
    case Qt::DisplayRole:
        return s_columns[static_cast<std::size_t>(a_index.column())].text(m_configurations.value(sId));
    case Qt::ForegroundRole:
        return stateColor(m_states.value(sId));
    default:
        return {};
    }
}

QVariant SimulationsTableModel::headerData(int a_iSection, Qt::Orientation a_eOrientation, int a_iRole) const
{
    if (a_iSection < 0 || a_iSection >= s_iColumns || a_eOrientation != Qt::Horizontal ||
        a_iRole != Qt::DisplayRole) {
        return {};
    }
    return tr(s_columns[static_cast<std::size_t>(a_iSection)].name);
}

Qt::ItemFlags SimulationsTableModel::flags(const QModelIndex& a_index) const
{
    return QAbstractTableModel::flags(a_index);
}

bool SimulationsTableModel::setData(const QModelIndex& /*a_index*/, const QVariant& /*a_value*/,
                                    int /*a_iRole*/)
{
    return false;
}

void SimulationsTableModel::registerSimulation(const SimulationDeviceConfiguration& a_device)
{
    const QString sId = a_device.id();
    const bool bListed = m_configurations.contains(sId);
    if (!bListed && isFull(m_ids.size())) {
        traceError(s_szSource, [&] {
            return QStringLiteral("device not listed: ") + Limits::exceeded(Limits::ListedDevices);
        });
        return;
    }
    beginResetModel();
    if (!bListed) {
        m_ids.append(sId);
    }
    m_configurations[sId] = a_device;
    m_states[sId] = ScenarioDataState::None;
    endResetModel();
}

void SimulationsTableModel::unregisterSimulation(const QString& a_sId)
{
    beginResetModel();
    if (m_configurations.remove(a_sId) > 0) {
        m_ids.removeOne(a_sId);
    }
    m_states.remove(a_sId);
    endResetModel();
}

void SimulationsTableModel::updateSimulationState(const QString& a_sId, const SimulationDeviceState& a_state)
{
    // Every row has a state. The difference is therefore the number of devices that
    // have a state but no row.
    if (!m_states.contains(a_sId) && isFull(m_states.size() - m_ids.size())) {
        traceError(s_szSource, [] {
            return QStringLiteral("state of an unregistered device not stored: ") +
                   Limits::exceeded(Limits::ListedDevices);
        });
        return;
    }
    beginResetModel();
    m_states[a_sId] = a_state.scenarioDataState();
    endResetModel();
}

void SimulationsTableModel::setAllSimulationsLoading()
{
    beginResetModel();
    for (const QString& sId : std::as_const(m_ids)) {
        m_states[sId] = ScenarioDataState::Loading;
    }
    endResetModel();
}

} // namespace Simulation
