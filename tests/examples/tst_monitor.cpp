#include "filesizelimit.h"
#include "kpbase/errorhandler.h"
#include "monitor/monitorwindow.h"
#include "monitor/readabledelegate.h"
#include "simulationdata/ledwidget.h"
#include "simulationtool/toolprocess.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QImage>
#include <QScrollBar>
#include <QStatusBar>
#include <QTableView>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace {

using Communication = Simulation::SimulationServiceCommunication;
using Simulation::ScenarioDataState;
using Simulation::SimulationDeviceConfiguration;

/// A service in the test's process, with two devices. The service sends states only to
/// the peer that acquired it, and sends the states before any other answer.
class FakeService
{
public:
    FakeService() { listen(); }

    void listen()
    {
        m_server = std::make_unique<QTcpServer>();
        QVERIFY(m_server->listen(QHostAddress::LocalHost, m_uiPort));
        m_uiPort = m_server->serverPort();
        QObject::connect(m_server.get(), &QTcpServer::newConnection, [this] { accept(); });
    }
    void end()
    {
        m_peer.reset();
        m_server.reset();
    }
    void accept()
    {
        QTcpSocket* const pSocket = m_server->nextPendingConnection();
        m_peer = std::make_unique<Communication>(pSocket);
        QObject::connect(m_peer.get(), &Communication::commandRequestSimulationDevices,
                         [this] { m_peer->sendResponseSimulationDevices(devices); });
        QObject::connect(m_peer.get(), &Communication::commandAcquireServer, [this] {
            acquired = true;
            report("a", ScenarioDataState::Loaded);
            report("b", ScenarioDataState::Failed);
        });
        QObject::connect(m_peer.get(), &Communication::commandReleaseServer, [this] { acquired = false; });
    }
    void report(const char* a_szId, ScenarioDataState a_eState)
    {
        Simulation::SimulationDeviceState state;
        state.setScenarioDataState(a_eState);
        m_peer->sendSimulationDeviceStateUpdate(QLatin1String(a_szId), state);
    }
    /// Sends bytes that are not a stream of documents. Afterwards the service accepts
    /// no other connection.
    void sendGarbage()
    {
        m_server->close();
        m_peer->socket()->write("<a>\xC3(");
    }
    static SimulationDeviceConfiguration device(const char* a_szId, const char* a_szName)
    {
        SimulationDeviceConfiguration device;
        device.setId(QLatin1String(a_szId));
        device.setName(QLatin1String(a_szName));
        return device;
    }

    [[nodiscard]] quint16 port() const { return m_uiPort; }
    [[nodiscard]] bool hasPeer() const { return m_peer != nullptr; }

    QVector<SimulationDeviceConfiguration> devices{device("a", "Alpha"), device("b", "Beta")};
    bool acquired = false;

private:
    quint16 m_uiPort = 0;
    std::unique_ptr<QTcpServer> m_server;
    std::unique_ptr<Communication> m_peer;
};

/// A monitor window and its visible content.
struct Seen
{
    explicit Seen(const FakeService& a_service)
        : window(QStringLiteral("127.0.0.1"), a_service.port())
        , table(window.findChild<QTableView*>()->model())
        , lamp(*window.findChild<LedWidget*>())
    {
        window.show();
        window.connectToService();
    }

    /// The names of the devices. A colour other than black follows the name.
    [[nodiscard]] QString rows() const
    {
        QStringList all;
        for (int iRow = 0; iRow < table->rowCount(); ++iRow) {
            const QModelIndex name = table->index(iRow, 0);
            const auto color = name.data(Qt::ForegroundRole).value<QColor>();
            all.append(name.data().toString() + (color == QColor(Qt::black) ? QString() : color.name()));
        }
        return all.join(u' ');
    }
    [[nodiscard]] bool shows(const char* a_szRows) const
    {
        return QTest::qWaitFor([&] { return rows() == QLatin1String(a_szRows); }, s_iToolTimeout);
    }
    [[nodiscard]] QAbstractButton* button(const char* a_szText) const
    {
        const auto buttons = window.findChildren<QAbstractButton*>();
        for (QAbstractButton* const pButton : buttons) {
            if (pButton->text().startsWith(QLatin1String(a_szText))) {
                return pButton;
            }
        }
        return nullptr;
    }

    Monitor::MonitorWindow window;
    QAbstractItemModel* table;
    LedWidget& lamp;
};

/// Counts the pixels of a picture for whose colour the test function returns true.
template<typename Test>
int pixels(const QImage& a_picture, const Test& a_isWanted)
{
    int iPixels = 0;
    for (int iY = 0; iY < a_picture.height(); ++iY) {
        for (int iX = 0; iX < a_picture.width(); ++iX) {
            iPixels += a_isWanted(a_picture.pixelColor(iX, iY)) ? 1 : 0;
        }
    }
    return iPixels;
}

bool isLampLit(const QColor& a_color)
{
    return a_color.green() > 190 && a_color.red() < 110 && a_color.blue() < 110;
}

bool isTextOfLoaded(const QColor& a_color)
{
    return a_color.red() < 10 && a_color.blue() < 10 && a_color.green() > 110 && a_color.green() < 130;
}

} // namespace

class TestMonitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void looksOn();
    void followsStates();
    void stateBeforeDevice();
    void staysScrolled();
    void lostConnection();
    void unreadableService();
    void cancel();
    void readableColors_data();
    void readableColors();
    void picture_data();
    void picture();
    void pictureWithoutPlace();
    void withoutDisplay_data();
    void withoutDisplay();
};

void TestMonitor::initTestCase()
{
    ErrorHandler::Instance().setTraceMask(0); // otherwise every command is traced
}

void TestMonitor::looksOn()
{
    FakeService service;
    Seen seen(service);
    QVERIFY(seen.window.waitDialog().isVisible() && !seen.lamp.isLedActive());
    QVERIFY(seen.shows("Alpha Beta"));
    QVERIFY(!seen.window.waitDialog().isVisible() && seen.lamp.isLedActive());
    // The next list adds new devices and removes missing ones.
    service.devices = {FakeService::device("b", "Beta"), FakeService::device("c", "Gamma")};
    QVERIFY(seen.shows("Beta Gamma"));
    QVERIFY(!service.acquired);
}

void TestMonitor::followsStates()
{
    FakeService service;
    Seen seen(service);
    QVERIFY(seen.shows("Alpha Beta"));
    seen.button("Show states")->click();
    QVERIFY(seen.shows("Alpha#008000 Beta#800000"));
    service.report("b", ScenarioDataState::Loading);
    QVERIFY(seen.shows("Alpha#008000 Beta#808000"));
    // A changed record keeps the device's state and row.
    service.devices[0].setName(QStringLiteral("Other"));
    QVERIFY(seen.shows("Other#008000 Beta#808000"));
    seen.button("Show states")->click();
    QVERIFY(seen.shows("Other Beta"));
    QVERIFY(QTest::qWaitFor([&] { return !service.acquired; }, s_iToolTimeout));
}

void TestMonitor::stateBeforeDevice()
{
    FakeService service;
    Seen seen(service);
    seen.window.setFollowingStates(true); // the monitor has no connection yet
    QVERIFY(seen.shows("Alpha#008000 Beta#800000"));
}

/// An update of one device must not scroll the table to the top.
void TestMonitor::staysScrolled()
{
    FakeService service;
    for (int i = 0; i < 200; ++i) {
        const QByteArray id = QByteArray::number(i);
        service.devices.append(FakeService::device(id.constData(), "more"));
    }
    Seen seen(service);
    seen.window.setFollowingStates(true);
    QVERIFY(QTest::qWaitFor([&] { return seen.rows().startsWith(QLatin1String("Alpha#008000")); },
                            s_iToolTimeout));
    QScrollBar* const pBar = seen.window.findChild<QTableView*>()->verticalScrollBar();
    QVERIFY(QTest::qWaitFor([&] { return pBar->maximum() > 2000; }, s_iToolTimeout)); // pixels
    const int iMiddle = pBar->maximum() / 2;
    pBar->setValue(iMiddle);
    service.report("a", ScenarioDataState::Failed);
    QVERIFY(QTest::qWaitFor([&] { return seen.rows().startsWith(QLatin1String("Alpha#800000")); },
                            s_iToolTimeout));
    QCoreApplication::processEvents();
    QCOMPARE(pBar->value(), iMiddle);
}

void TestMonitor::lostConnection()
{
    FakeService service;
    Seen seen(service);
    QVERIFY(seen.shows("Alpha Beta"));
    service.end();
    QVERIFY(seen.shows(""));
    QVERIFY(seen.window.waitDialog().isVisible() && !seen.lamp.isLedActive());
    service.listen();
    QVERIFY(seen.shows("Alpha Beta"));
    QVERIFY(!seen.window.waitDialog().isVisible() && seen.lamp.isLedActive());
}

/// When the data of a connection cannot be read, the window tries to connect again.
void TestMonitor::unreadableService()
{
    FakeService service;
    Seen seen(service);
    QVERIFY(seen.shows("Alpha Beta"));
    const QString sBefore = seen.window.statusBar()->currentMessage();
    service.sendGarbage();
    QVERIFY(seen.shows(""));
    QVERIFY(seen.window.waitDialog().isVisible() && !seen.lamp.isLedActive());
    const QString sStatus = seen.window.statusBar()->currentMessage();
    QCOMPARE(sStatus, QStringLiteral("Trying to connect. The data of the service cannot be read: "
                                     "Encountered incorrectly encoded content."));
    service.listen();
    QVERIFY(seen.shows("Alpha Beta"));
    QCOMPARE(seen.window.statusBar()->currentMessage(), sBefore);
}

/// Cancel ends the connection attempts, but not the program. The Connect button starts
/// new attempts.
void TestMonitor::cancel()
{
    FakeService service;
    service.end();
    Seen seen(service);
    QVERIFY(!seen.button("Connect")->isVisible());
    QTest::mouseClick(seen.button("Cancel"), Qt::LeftButton);
    QVERIFY(!seen.window.waitDialog().isVisible() && seen.button("Connect")->isVisible());
    service.listen();
    QTest::qWait(100); // long enough for many attempts
    QVERIFY(!service.hasPeer());
    QTest::mouseClick(seen.button("Connect"), Qt::LeftButton);
    QVERIFY(seen.shows("Alpha Beta"));
    QVERIFY(!seen.button("Connect")->isVisible());
}

void TestMonitor::readableColors_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("expected"); ///< a changed colour has a contrast slightly above 4.5
    const QColor dark(45, 45, 48);
    const QColor light(239, 239, 239);
    QTest::newRow("good as it is") << QColor(Qt::darkRed) << light << QColor(Qt::darkRed);
    QTest::newRow("a little too light") << QColor(Qt::darkYellow) << light << QColor(109, 109, 0);
    QTest::newRow("black on dark") << QColor(Qt::black) << dark << QColor(Qt::cyan);
    QTest::newRow("red on dark") << QColor(Qt::darkRed) << dark << QColor(255, 102, 102);
}

void TestMonitor::readableColors()
{
    QFETCH(QColor, color);
    QFETCH(QColor, ground);
    QFETCH(QColor, expected);
    QPalette palette(ground);
    palette.setColor(QPalette::WindowText, Qt::cyan); // the palette's text colour
    QCOMPARE(Monitor::readable(color, palette).name(), expected.name());
}

void TestMonitor::picture_data()
{
    QTest::addColumn<bool>("service");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("states");
    QTest::newRow("looks on") << true << QStringList{} << false;
    QTest::newRow("states") << true << QStringList{QStringLiteral("--states")} << true;
    QTest::newRow("nobody there") << false << QStringList{} << false;
}

/// Runs the monitor program with this project's service and devices.
void TestMonitor::picture()
{
    QFETCH(bool, service);
    QFETCH(QStringList, options);
    QFETCH(bool, states);
    const QTemporaryDir folder;
    const QString sFile = folder.filePath(QStringLiteral("monitor.png"));
    const QString sRepository = folder.filePath(QStringLiteral("packages"));
    QCOMPARE(runTool({QStringLiteral("repository"), QStringLiteral("init"), sRepository}).code, 0);
    Service running;
    std::vector<std::unique_ptr<Tool>> devices;
    for (const char* const szId : {"rx-1", "rx-2"}) {
        devices.push_back(std::make_unique<Tool>(QStringList{
            QStringLiteral("device"), QStringLiteral("--server"), running.address(),
            QStringLiteral("--repository"), sRepository, QStringLiteral("--id"), QLatin1String(szId)}));
        QVERIFY(devices.back()->says(QStringLiteral("accepted")));
    }
    QCOMPARE(runTool({QStringLiteral("control"), QStringLiteral("--server"), running.address(),
                      QStringLiteral("load"), QStringLiteral(":/DefaultData/Default.sce.exp")})
                 .code,
             0);
    QVERIFY(running.says(QStringLiteral("released the control")));
    if (!service) {
        QCOMPARE(running.codeAfter(SIGTERM), 0);
    }
    QProcess monitor;
    monitor.start(QStringLiteral(MONITOR_PATH),
                  options + QStringList{QStringLiteral("--server"), running.address(),
                                        QStringLiteral("--picture"), sFile});
    QVERIFY(monitor.waitForFinished(s_iToolTimeout));
    QCOMPARE(monitor.exitStatus(), QProcess::NormalExit);
    QCOMPARE(monitor.exitCode(), 0);
    const QString sLog = QString::fromUtf8(monitor.readAllStandardError());
    QCOMPARE(sLog.count(QStringLiteral("monitor: waits for the simulation service")), 1);
    QCOMPARE(sLog.count(QStringLiteral("monitor: connected")), service ? 1 : 0);

    const QImage picture(sFile);
    QVERIFY(!picture.isNull());
    QCOMPARE(pixels(picture, isLampLit) > 20, service);
    QCOMPARE(pixels(picture, isTextOfLoaded) > 20, states);
    QVERIFY(!service || running.says(QStringLiteral("left"), 2)); // control and monitor have left
    // A monitor that does not show states does not acquire the control.
    QCOMPARE(running.text().count(QStringLiteral("controls\n")), states ? 2 : 1);
}

/// The error text names the cause. A file that cannot be replaced stays unchanged.
void TestMonitor::pictureWithoutPlace()
{
    const QTemporaryDir folder;
    const QString sPipe = folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(sPipe).constData(), S_IRUSR | S_IWUSR), 0);
    const FileSizeLimit limit(1'000);
    for (const auto& [file, sReason] :
         {std::pair(folder.filePath(QStringLiteral("monitor.png")), QStringLiteral("File too large")),
          std::pair(sPipe, QStringLiteral("is not a regular file"))}) {
        QProcess monitor;
        monitor.start(
            QStringLiteral(MONITOR_PATH),
            {QStringLiteral("--server"), QStringLiteral("127.0.0.1:1"), QStringLiteral("--picture"), file});
        QVERIFY(monitor.waitForFinished(s_iToolTimeout));
        QCOMPARE(monitor.exitCode(), 1);
        const QString sLog = QString::fromUtf8(monitor.readAllStandardError());
        QVERIFY2(sLog.contains(QStringLiteral("monitor: %1: %2\n").arg(file, sReason)), qPrintable(sLog));
    }
    QCOMPARE(QDir(folder.path()).entryList(QDir::System | QDir::Files), QStringList(QStringLiteral("pipe")));
}

void TestMonitor::withoutDisplay_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");
    const QString sHelp = QStringLiteral("--server <HOST:PORT>");
    QTest::newRow("help") << QStringList{QStringLiteral("--help")} << 0 << sHelp << QString();
    QTest::newRow("short help") << QStringList{QStringLiteral("--dark"), QStringLiteral("-h")} << 0 << sHelp
                                << QString();
    QTest::newRow("window") << QStringList{} << 2 << QString() << "monitor: no display can be opened: set ";
}

void TestMonitor::withoutDisplay()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, code);
    QFETCH(const QString, out);
    QFETCH(const QString, err);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const szName : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        environment.remove(QLatin1String(szName));
    }
    QProcess monitor;
    monitor.setProcessEnvironment(environment);
    monitor.start(QStringLiteral(MONITOR_PATH), arguments);
    QVERIFY(monitor.waitForFinished(s_iToolTimeout));
    QCOMPARE(monitor.exitStatus(), QProcess::NormalExit);
    QCOMPARE(monitor.exitCode(), code);
    const QString sOut = QString::fromUtf8(monitor.readAllStandardOutput());
    const QString sErr = QString::fromUtf8(monitor.readAllStandardError());
    QVERIFY2(out.isEmpty() ? sOut.isEmpty() : sOut.contains(out), qPrintable(sOut));
    QVERIFY2(err.isEmpty() ? sErr.isEmpty() : sErr.startsWith(err) && sErr.count(u'\n') == 1,
             qPrintable(sErr));
}

QTEST_MAIN(TestMonitor)
#include "tst_monitor.moc"
