#include "monitorwindow.h"

#include "readabledelegate.h"

#include <simulationdata/ledwidget.h>

#include <QBoxLayout>
#include <QCheckBox>
#include <QDebug>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QTcpSocket>

#include <algorithm>
#include <array>

namespace Monitor {

namespace {

using Simulation::ScenarioDataState;
using Simulation::SimulationsTableModel;
using Simulation::TcpServerConnector;
using Simulation::WaitDisplayWidget;

constexpr QSize s_size(820, 420);      ///< of a new window
constexpr int s_iGap = 14;             ///< pixels added to a column's text width
constexpr qsizetype s_iMaxError = 200; ///< characters of an error text, which may quote the service
constexpr int s_iPosition = 4;         ///< the last column: positions, never elided

struct StateName
{
    ScenarioDataState state;
    const char* name; ///< before translation
};
constexpr std::array<StateName, 4> s_states{{
    {ScenarioDataState::None, QT_TRANSLATE_NOOP("Monitor::MonitorWindow", "without a scenario")},
    {ScenarioDataState::Loading, QT_TRANSLATE_NOOP("Monitor::MonitorWindow", "loading")},
    {ScenarioDataState::Loaded, QT_TRANSLATE_NOOP("Monitor::MonitorWindow", "loaded")},
    {ScenarioDataState::Failed, QT_TRANSLATE_NOOP("Monitor::MonitorWindow", "failed")},
}};

/// The colour of a state. It is read from the model, so that the legend and the table
/// cannot differ.
QColor colorOf(ScenarioDataState a_eState)
{
    SimulationsTableModel sample;
    Simulation::SimulationDeviceState state;
    state.setScenarioDataState(a_eState);
    sample.registerSimulation(Simulation::SimulationDeviceConfiguration());
    sample.updateSimulationState(QString(), state);
    return sample.index(0, 0).data(Qt::ForegroundRole).value<QColor>();
}

} // namespace

MonitorWindow::MonitorWindow(const QString& a_sHost, std::uint16_t a_uiPort)
    : m_sHost(a_sHost)
    , m_uiPort(a_uiPort)
    , m_pTable(new QTableView)
    , m_pLamp(new LedWidget)
    , m_pFollow(new QCheckBox(tr("Show states (takes control of the service)")))
    , m_pConnect(new QPushButton(tr("Connect")))
    , m_pCounts(new QLabel)
    , m_pWait(new WaitDisplayWidget(this))
{
    setWindowTitle(tr("Simulation devices at %1:%2").arg(m_sHost, QString::number(m_uiPort)));
    createTable();
    createWait();
    auto* const pCentral = new QWidget;
    auto* const pLayout = new QVBoxLayout(pCentral);
    pLayout->addWidget(createBar());
    pLayout->addWidget(m_pTable);
    pLayout->addWidget(m_pCounts);
    setCentralWidget(pCentral);
    resize(s_size);
    // Shows all updates of one event loop pass together: counting all devices for
    // each update would take quadratic time.
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_feed, &DeviceFeed::updated, &m_refresh, qOverload<>(&QTimer::start));
    connect(&m_feed, &DeviceFeed::updated, this, [this] {
        if (m_bConnected && !m_sUnreadable.isEmpty()) {
            m_sUnreadable.clear();
            showState();
        }
    });
    connect(&m_feed, &DeviceFeed::unreadable, this, &MonitorWindow::abandonConnection);
    connect(&m_refresh, &QTimer::timeout, this, [this] {
        fitColumns();
        showCounts();
        Q_EMIT updated();
    });
    showState();
    showCounts();
}

MonitorWindow::~MonitorWindow() = default;

QWidget* MonitorWindow::createBar()
{
    auto* const pBar = new QWidget;
    auto* const pLayout = new QHBoxLayout(pBar);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(m_pLamp);
    pLayout->addWidget(m_pConnect);
    pLayout->addStretch();
    pLayout->addWidget(m_pFollow);
    m_pFollow->setToolTip(tr("The service sends every change of a state to the program that controls "
                             "it.\nWhile this is checked, the orders of an editor that controlled it before "
                             "are not passed on."));
    connect(m_pConnect, &QPushButton::clicked, this, &MonitorWindow::connectToService);
    connect(m_pFollow, &QCheckBox::toggled, this, [this](bool a_bOn) {
        m_feed.setFollowingStates(a_bOn);
        showState();
        showCounts();
    });
    return pBar;
}

void MonitorWindow::createTable()
{
    m_pTable->setModel(&m_feed.model());
    m_pTable->setItemDelegate(new ReadableDelegate(m_pTable));
    m_pTable->setAlternatingRowColors(true);
    m_pTable->setShowGrid(false);
    m_pTable->setWordWrap(false);
    m_pTable->setSelectionMode(QAbstractItemView::NoSelection);
    m_pTable->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_pTable->verticalHeader()->hide();
    m_pTable->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_pTable->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_pTable->horizontalHeader()->setHighlightSections(false);
    m_pTable->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
}

void MonitorWindow::createWait()
{
    // The button cancels the wait, as Escape does.
    auto* const pCancel = m_pWait->findChild<QPushButton*>(QStringLiteral("cancelButton"));
    connect(pCancel, &QPushButton::clicked, m_pWait, &WaitDisplayWidget::reject);
    connect(m_pWait, &WaitDisplayWidget::canceled, this, &MonitorWindow::cancel);
}

void MonitorWindow::setFollowingStates(bool a_bOn)
{
    m_pFollow->setChecked(a_bOn);
}

void MonitorWindow::connectToService()
{
    m_connector = std::make_unique<TcpServerConnector>(m_sHost, m_uiPort);
    connect(m_connector.get(), &TcpServerConnector::connectedToServer, this, &MonitorWindow::connected);
    connect(m_connector.get(), &TcpServerConnector::disconnectedFromServer, this,
            &MonitorWindow::disconnected);
    m_connector->connectToServer();
    disconnected();
}

void MonitorWindow::connected()
{
    m_bConnected = true;
    // Detects a service whose machine was switched off without closing the
    // connection.
    m_connector->socket()->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    qInfo("monitor: connected");
    m_feed.setSocket(m_connector->socket());
    m_pWait->close();
    showState();
}

void MonitorWindow::disconnected()
{
    m_bConnected = false;
    m_feed.setSocket(nullptr);
    m_bColumnsFit = false;
    showState();
    showCounts();
    const QString sAddress = m_sHost + u':' + QString::number(m_uiPort);
    qInfo().noquote() << "monitor: waits for the simulation service at" << sAddress;
    m_pWait->open(tr("Connecting"), tr("Waiting for the simulation service at %1").arg(sAddress), true, 0);
    Q_EMIT updated();
}

/// Aborts the connection, because its further bytes cannot be read. The connector then
/// starts a new attempt.
void MonitorWindow::abandonConnection(const QString& a_sError)
{
    m_sUnreadable = a_sError.simplified().left(s_iMaxError);
    qInfo().noquote() << "monitor: what the service sends cannot be read:" << m_sUnreadable;
    if (m_connector != nullptr && m_connector->isConnected()) {
        m_connector->socket()->abort();
    }
}

void MonitorWindow::cancel()
{
    m_connector.reset(); // otherwise the connector repeats its attempts without limit
    showState();
}

void MonitorWindow::showState()
{
    m_pLamp->setLedActive(m_bConnected);
    m_pLamp->setText(m_bConnected ? tr("Connected") : tr("Not connected"));
    m_pConnect->setVisible(m_connector == nullptr);
    QString sText = tr("Read-only: device states are not shown.");
    if (m_connector == nullptr) {
        sText = tr("Not connected.");
    } else if (!m_bConnected) {
        sText = tr("Trying to connect.");
    } else if (m_feed.isFollowingStates()) {
        sText = tr("Controls the service to receive device states, until another program acquires it.");
    }
    if (!m_sUnreadable.isEmpty()) {
        sText += QLatin1Char(' ') + tr("The data of the service cannot be read: %1").arg(m_sUnreadable);
    }
    statusBar()->showMessage(sText);
}

/// Shows the number of devices in each state, in the table's colours. The line is the
/// legend of the table.
void MonitorWindow::showCounts()
{
    if (!m_bConnected) {
        m_pCounts->clear();
        return;
    }
    const int iDevices = m_feed.model().rowCount();
    QStringList parts{iDevices == 1 ? tr("1 device") : tr("%1 devices").arg(iDevices)};
    for (const StateName& each : s_states) {
        if (m_feed.isFollowingStates()) {
            const QColor color = readable(colorOf(each.state), palette());
            parts.append(QStringLiteral("<span style=\"color:%1\">%2 %3</span>")
                             .arg(color.name(), QString::number(m_feed.count(each.state)), tr(each.name)));
        }
    }
    m_pCounts->setText(parts.join(QStringLiteral(" &nbsp; ")));
}

/// Sets the column widths when the table gets its first rows after a connection. After
/// that, only the user changes the widths. Each text column gets at most an equal share
/// of the width, so that a long name does not push other columns out of the window. The
/// first column gets the rest.
void MonitorWindow::fitColumns()
{
    if (m_bColumnsFit || m_feed.model().rowCount() == 0) {
        return;
    }
    m_bColumnsFit = true;
    m_pTable->resizeColumnsToContents();
    const int iPosition = m_pTable->columnWidth(s_iPosition) + s_iGap;
    const int iShare = (m_pTable->viewport()->width() - iPosition) / s_iPosition;
    for (int iColumn = 1; iColumn < s_iPosition; ++iColumn) {
        m_pTable->setColumnWidth(iColumn, std::min(m_pTable->columnWidth(iColumn) + s_iGap, iShare));
    }
    m_pTable->setColumnWidth(s_iPosition, iPosition);
}

void MonitorWindow::changeEvent(QEvent* a_pEvent)
{
    QMainWindow::changeEvent(a_pEvent);
    if (a_pEvent->type() == QEvent::PaletteChange) {
        showCounts();
    }
}

} // namespace Monitor
