#include "simulationdata/ledwidget.h"
#include "simulationdata/waitdisplaywidget.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimerEvent>

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>

using Simulation::WaitDisplayWidget;

namespace {

const QString s_sTitle = QStringLiteral("Title");
const QString s_sMessage = QStringLiteral("Message");

QList<QAbstractEventDispatcher::TimerInfo> timersOf(QObject& a_object)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(&a_object);
}

void sendTimerEvent(QObject& a_object, int a_iTimer)
{
    QTimerEvent event(a_iTimer);
    QCoreApplication::sendEvent(&a_object, &event);
}

/// Simulates time for a dialog: sends at most a_iMost of its timer events. Returns the
/// number of events sent, which is smaller when the timer has stopped.
int tick(QObject& a_dialog, int a_iMost)
{
    int iTicks = 0;
    for (; iTicks < a_iMost && timersOf(a_dialog).size() == 1; ++iTicks) {
        sendTimerEvent(a_dialog, timersOf(a_dialog).constFirst().timerId);
    }
    return iTicks;
}

/// A dialog in memory that the test owns. The memory is overwritten when a slot destroys
/// the dialog, so that a later access crashes.
class MortalDialog
{
public:
    MortalDialog() { new (m_bytes.data()) WaitDisplayWidget; }
    ~MortalDialog()
    {
        if (m_bAlive) {
            kill();
        }
    }
    MortalDialog(const MortalDialog&) = delete;
    MortalDialog& operator=(const MortalDialog&) = delete;

    WaitDisplayWidget* get() { return reinterpret_cast<WaitDisplayWidget*>(m_bytes.data()); }
    void kill()
    {
        get()->~WaitDisplayWidget();
        std::memset(m_bytes.data(), 0xA5, m_bytes.size());
        m_bAlive = false;
    }
    [[nodiscard]] bool isAlive() const { return m_bAlive; }

private:
    alignas(WaitDisplayWidget) std::array<std::byte, sizeof(WaitDisplayWidget)> m_bytes{};
    bool m_bAlive = true;
};

} // namespace

class TestWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void led();
    void lamp();
    void waitForm();
    void timeouts_data();
    void timeouts();
    void secondOpen();
    void pause();
    void endings_data();
    void endings();
};

void TestWidgets::led()
{
    LedWidget led;
    QVERIFY(led.isLedActive());
    led.deactivateLed();
    led.activeateLed();
    QVERIFY(led.isLedActive());
    // The slot is called by its name, as forms and scripts do.
    QVERIFY(QMetaObject::invokeMethod(&led, "setLedActive", Q_ARG(bool, false)));
    QVERIFY(!led.isLedActive());

    QCOMPARE(led.text(), QStringLiteral("Text"));
    led.setText(QStringLiteral("a"));
    const int iWidth = led.width();
    led.setText(QStringLiteral("connected with the simulation service"));
    QVERIFY(led.width() > iWidth);
    QCOMPARE(led.findChild<QLabel*>(QStringLiteral("textLabel"))->text(), led.text());
}

void TestWidgets::lamp()
{
    LedWidget led;
    auto* const pLamp = led.findChild<QLabel*>(QStringLiteral("activeLed"));
    led.show(); // a hidden lamp has no layout
    QCOMPARE(pLamp->pixmap(Qt::ReturnByValue).deviceIndependentSize(), QSizeF(10, 10));
    QCOMPARE(QImage(QStringLiteral(":/Icons/Led-10x10@2x.png")).size(), QSize(20, 20));
    const auto center = [&] { return pLamp->grab().toImage().pixelColor(pLamp->rect().center()); };
    const QColor lit = center();
    led.deactivateLed();
    const QColor off = center();
    QVERIFY2(lit.hsvSaturation() > 120 && off.hsvSaturation() < 30,
             qPrintable(lit.name() + u' ' + off.name()));
}

void TestWidgets::waitForm()
{
    WaitDisplayWidget dialog;
    QVERIFY(timersOf(dialog).isEmpty());
    QCOMPARE(dialog.windowModality(), Qt::WindowModal);
    const Qt::WindowFlags wanted = Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint;
    const Qt::WindowFlags unwanted = Qt::WindowCloseButtonHint | Qt::WindowContextHelpButtonHint;
    QCOMPARE(dialog.windowFlags() & (wanted | unwanted), wanted);

    dialog.open(s_sTitle, s_sMessage, false, 0);
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.size(), QSize(400, 94));
    QCOMPARE(dialog.windowTitle(), s_sTitle);
    QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("messageLabel"))->text(), s_sMessage);
    QCOMPARE(timersOf(dialog).size(), 1);
    QCOMPARE(timersOf(dialog).constFirst().interval, 100);

    const auto* const pBar = dialog.findChild<QProgressBar*>(QStringLiteral("progressBar"));
    sendTimerEvent(dialog, timersOf(dialog).constFirst().timerId + 1); // a timer of another object
    QCOMPARE(pBar->value(), 0);
    tick(dialog, 10);
    QCOMPARE(pBar->value(), 10);
    tick(dialog, 1);
    QCOMPARE(pBar->value(), 0);
    // The application connects the button; the dialog itself does not.
    dialog.open(s_sTitle, s_sMessage, true, 0);
    dialog.findChild<QPushButton*>(QStringLiteral("cancelButton"))->click();
    QVERIFY(dialog.isVisible());
}

void TestWidgets::timeouts_data()
{
    QTest::addColumn<unsigned int>("seconds");
    QTest::addColumn<int>("ticks"); ///< until the time-out; 100 = no time-out
    QTest::newRow("none") << 0U << 100;
    QTest::newRow("one second") << 1U << 11;
    QTest::newRow("2^32 ms and 704 more") << 4'294'968U << 100;
    QTest::newRow("most") << UINT_MAX << 100;
}

void TestWidgets::timeouts()
{
    QFETCH(unsigned int, seconds);
    QFETCH(int, ticks);
    WaitDisplayWidget dialog;
    QSignalSpy timeout(&dialog, &WaitDisplayWidget::timeout);
    QSignalSpy result(&dialog, &QDialog::finished);
    for (int iTime = 0; iTime < 2; ++iTime) { // opening again restarts the time
        dialog.open(s_sTitle, s_sMessage, true, seconds);
        QCOMPARE(tick(dialog, 100), ticks);
        QCOMPARE(timeout.count(), ticks < 100 ? iTime + 1 : 0);
        QCOMPARE(dialog.isVisible(), ticks == 100);
    }
    QCOMPARE(result.count(), 0);
}

void TestWidgets::secondOpen()
{
    WaitDisplayWidget dialog;
    dialog.open(s_sTitle, s_sMessage, false, 1);
    QCOMPARE(tick(dialog, 5), 5);
    dialog.open(QStringLiteral("new title"), QStringLiteral("new message"), true, 9);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("new title"));
    QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("messageLabel"))->text(),
             QStringLiteral("new message"));
    QVERIFY(dialog.findChild<QWidget*>(QStringLiteral("cancelBox"))->isVisible());
    QCOMPARE(tick(dialog, 100), 6);
}

void TestWidgets::pause()
{
    WaitDisplayWidget dialog;
    dialog.open(s_sTitle, s_sMessage, false, 1);
    tick(dialog, 7);
    dialog.pause();
    dialog.pause();
    QVERIFY(!dialog.isVisible() && timersOf(dialog).isEmpty());
    dialog.doContinue();
    dialog.doContinue();
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.windowModality(), Qt::WindowModal);
    QCOMPARE(timersOf(dialog).size(), 1);
    QCOMPARE(tick(dialog, 100), 4);
}

using Act = std::function<void(WaitDisplayWidget&)>;

void TestWidgets::endings_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<bool>("cancelable");
    QTest::addColumn<QString>("signals"); ///< empty = the dialog stays open
    const auto escape = [](WaitDisplayWidget& a_dialog) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(&a_dialog, &event);
    };
    const auto closeWindow = [](WaitDisplayWidget& a_dialog) { a_dialog.QWidget::close(); };
    const QString sCanceled = QStringLiteral("rejected canceled ");
    QTest::newRow("Escape") << Act(escape) << true << sCanceled;
    QTest::newRow("Escape, not cancelable") << Act(escape) << false << QString();
    QTest::newRow("window closed") << Act(closeWindow) << true << sCanceled;
    QTest::newRow("window closed, not cancelable") << Act(closeWindow) << false << QString();
    QTest::newRow("rejected") << Act(&WaitDisplayWidget::reject) << true << sCanceled;
    QTest::newRow("closed") << Act(&WaitDisplayWidget::close) << false
                            << QStringLiteral("accepted finished ");
    QTest::newRow("time-out") << Act([](WaitDisplayWidget& a_dialog) { tick(a_dialog, 11); }) << true
                              << QStringLiteral("timeout ");
}

/// Each way to end the dialog emits its signals once and stops the timer. A slot of the
/// last signal may delete the dialog.
void TestWidgets::endings()
{
    QFETCH(Act, act);
    QFETCH(bool, cancelable);
    for (const bool bKill : {false, true}) {
        MortalDialog dialog;
        QString sSignals;
        const auto note = [&](auto a_signal, const char* a_szName, bool a_bLast) {
            connect(dialog.get(), a_signal, this, [&, a_szName, a_bLast] {
                sSignals += QLatin1String(a_szName) + u' ';
                if (a_bLast && bKill) {
                    dialog.kill();
                }
            });
        };
        note(&QDialog::accepted, "accepted", false);
        note(&QDialog::rejected, "rejected", false);
        note(&WaitDisplayWidget::canceled, "canceled", true);
        note(&WaitDisplayWidget::timeout, "timeout", true);
        note(qOverload<>(&WaitDisplayWidget::finished), "own finished", false);
        connect(dialog.get(), &QDialog::finished, this, [&](int a_iResult) {
            if (a_iResult == QDialog::Accepted) {
                sSignals += QStringLiteral("finished ");
                bKill ? dialog.kill() : void();
            }
        });
        dialog.get()->open(s_sTitle, s_sMessage, cancelable, 1);
        act(*dialog.get());
        QTEST(sSignals, "signals");
        QCOMPARE(dialog.isAlive(), !bKill || sSignals.isEmpty());
        if (dialog.isAlive()) {
            QCOMPARE(dialog.get()->isVisible(), sSignals.isEmpty());
            QCOMPARE(timersOf(*dialog.get()).isEmpty(), !sSignals.isEmpty());
        }
    }
}

QTEST_MAIN(TestWidgets)
#include "tst_widgets.moc"
