#include "simulationdata/datastorefactory.h"
#include "simulationdata/position.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/simulationstablemodel.h"
#include "tracecollector.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QColor>
#include <QLocale>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTranslator>

using namespace Simulation;

namespace {

SimulationDeviceConfiguration deviceOf(const QString& a_sId, const QString& a_sName = QString())
{
    SimulationDeviceConfiguration device;
    device.setId(a_sId);
    device.setName(a_sName);
    return device;
}

SimulationDeviceState stateOf(int a_iState)
{
    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataState(a_iState));
    return state;
}

QStringList names(const SimulationsTableModel& a_model)
{
    QStringList all;
    for (int iRow = 0; iRow < a_model.rowCount(); ++iRow) {
        all.append(a_model.index(iRow, 0).data().toString());
    }
    return all;
}

/// The colour of a row; "mixed" when its columns differ.
QVariant colorOf(const SimulationsTableModel& a_model, int a_iRow = 0)
{
    QVariant first = a_model.index(a_iRow, 0).data(Qt::ForegroundRole);
    for (int iColumn = 1; iColumn < a_model.columnCount(); ++iColumn) {
        if (a_model.index(a_iRow, iColumn).data(Qt::ForegroundRole) != first) {
            return QStringLiteral("mixed");
        }
    }
    return first;
}

/// Puts the texts of the library's classes into angle brackets. Other texts stay
/// unchanged.
class TurningTranslator : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* a_szContext, const char* a_szText, const char* /*a_szNote*/,
                                    int /*a_iNumber*/) const override
    {
        static const QStringList s_contexts{QStringLiteral("Simulation::SimulationsTableModel"),
                                            QStringLiteral("Simulation::DataStoreFactory"),
                                            QStringLiteral("Units::Position")};
        return s_contexts.contains(QLatin1String(a_szContext)) ? turned(QLatin1String(a_szText)) : QString();
    }
    static QString turned(const QString& a_sText) { return u'<' + a_sText + u'>'; }
};

QStringList headers(const SimulationsTableModel& a_model)
{
    QStringList all;
    for (int iColumn = 0; iColumn < a_model.columnCount(); ++iColumn) {
        all.append(a_model.headerData(iColumn, Qt::Horizontal).toString());
    }
    return all;
}

/// Title and text of the box that reports a missing repository.
QStringList missingRepositoryBox()
{
    QStringList texts;
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&texts] {
        if (auto* pBox = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            texts = QStringList{pBox->windowTitle(), pBox->text()};
            pBox->accept();
        }
    });
    looking.start(10);
    static_cast<void>(DataStoreFactory::initializeDataStore(nullptr));
    return texts;
}

} // namespace

class TestSimulationsTableModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void texts();
    void nothingToShow();
    void colors();
    void operations();
    void limit();
    void manyDevices();
    void translation();
};

void TestSimulationsTableModel::cleanup()
{
    Limits::setValue(Limits::ListedDevices, 0);
    QLocale::setDefault(QLocale::c());
}

void TestSimulationsTableModel::texts()
{
    SimulationsTableModel model;
    SimulationDeviceConfiguration device = deviceOf(QStringLiteral("rx-1"), QStringLiteral("North tower"));
    device.setMachine(QStringLiteral("sim04"));
    device.setStationName(QStringLiteral("Harbour"));
    device.setDeviceType(QStringLiteral("Receiver"));
    device.setPositionLongitude(-8.25);
    device.setPositionLatitude(48.5);
    model.registerSimulation(device);

    QLocale::setDefault(QLocale(QLocale::German)); // the texts do not depend on the locale
    QStringList row;
    for (int iColumn = 0; iColumn < model.columnCount(); ++iColumn) {
        row.append(model.index(0, iColumn).data().toString());
    }
    QCOMPARE(row,
             (QStringList{QStringLiteral("North tower"), QStringLiteral("sim04"), QStringLiteral("Harbour"),
                          QStringLiteral("Receiver"), QStringLiteral("W008.250000° N48.500000°")}));
    QCOMPARE(model.flags(model.index(0, 0)) & (Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable),
             Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    QVERIFY(!model.setData(model.index(0, 0), QStringLiteral("other")));
    QCOMPARE(names(model), QStringList{QStringLiteral("North tower")});
}

void TestSimulationsTableModel::nothingToShow()
{
    SimulationsTableModel model;
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(headers(model),
             (QStringList{QStringLiteral("Name"), QStringLiteral("Machine"), QStringLiteral("Station"),
                          QStringLiteral("Type"), QStringLiteral("Position")}));
    QVERIFY(!model.headerData(-1, Qt::Horizontal).isValid());
    QVERIFY(!model.headerData(5, Qt::Horizontal).isValid());
    QVERIFY(!model.headerData(0, Qt::Vertical).isValid());
    QVERIFY(!model.headerData(0, Qt::Horizontal, Qt::DecorationRole).isValid());

    model.registerSimulation(deviceOf(QStringLiteral("a")));
    const QModelIndex kept = model.index(0, 0);
    QVERIFY(!kept.data(Qt::ToolTipRole).isValid());
    QVERIFY(!model.data(QModelIndex()).isValid());
    QCOMPARE(model.rowCount(kept), 0);
    model.unregisterSimulation(QStringLiteral("a"));
    QVERIFY(!model.data(kept).isValid()); // the row of `kept` does not exist any more
}

/// Checks the colour for each state from -1 to 4. A peer may send all of these states.
/// Not every state has a colour.
void TestSimulationsTableModel::colors()
{
    const QVariantList expected{
        QVariant(),          QColor(Qt::black), QColor(Qt::darkYellow), QColor(Qt::darkGreen),
        QColor(Qt::darkRed), QVariant()};
    SimulationsTableModel model;
    QVariantList colors;
    for (int iRow = 0; iRow < expected.size(); ++iRow) {
        model.registerSimulation(deviceOf(QString::number(iRow)));
        model.updateSimulationState(QString::number(iRow), stateOf(iRow - 1));
        colors.append(colorOf(model, iRow));
    }
    QCOMPARE(colors, expected);
}

void TestSimulationsTableModel::operations()
{
    SimulationsTableModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    const QString sA = QStringLiteral("a");
    const QString sB = QStringLiteral("b");

    model.updateSimulationState(sA, stateOf(2));
    QCOMPARE(model.rowCount(), 0); // the model keeps the state without a row
    model.registerSimulation(deviceOf(sA, QStringLiteral("first")));
    model.registerSimulation(deviceOf(sB, QStringLiteral("second")));
    QCOMPARE(colorOf(model), QVariant(QColor(Qt::black))); // registering resets the state
    model.setAllSimulationsLoading();
    QCOMPARE(colorOf(model, 1), QVariant(QColor(Qt::darkYellow)));

    model.registerSimulation(deviceOf(sA, QStringLiteral("again")));
    QCOMPARE(names(model), (QStringList{QStringLiteral("again"), QStringLiteral("second")}));
    QCOMPARE(colorOf(model, 0), QVariant(QColor(Qt::black)));
    QCOMPARE(colorOf(model, 1), QVariant(QColor(Qt::darkYellow)));

    model.unregisterSimulation(QStringLiteral("unknown"));
    model.unregisterSimulation(sA);
    QCOMPARE(names(model), QStringList{QStringLiteral("second")});
    model.registerSimulation(deviceOf(sA, QStringLiteral("last")));
    QCOMPARE(names(model), (QStringList{QStringLiteral("second"), QStringLiteral("last")}));
    QCOMPARE(resets.count(), 8);
}

void TestSimulationsTableModel::limit()
{
    Limits::setValue(Limits::ListedDevices, 2);
    const TraceCollector traces;
    SimulationsTableModel model;
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    const auto expectRefusal = [&](qsizetype a_iResets, qsizetype a_iTraces) {
        return resets.count() == a_iResets && TraceCollector::lines().size() == a_iTraces &&
               (a_iTraces == 0 || TraceCollector::lines().constLast().contains(
                                      QStringLiteral("listed devices limit of 2 exceeded")));
    };
    for (const char* const szId : {"a", "b", "c"}) {
        model.registerSimulation(deviceOf(QLatin1String(szId)));
    }
    QVERIFY(expectRefusal(2, 1));
    QCOMPARE(model.rowCount(), 2);
    for (const char* const szId : {"x", "y", "z"}) {
        model.updateSimulationState(QLatin1String(szId), stateOf(1));
    }
    QVERIFY(expectRefusal(4, 2));

    // Known devices can still change. A removed device makes room for another one.
    model.registerSimulation(deviceOf(QStringLiteral("b")));
    model.updateSimulationState(QStringLiteral("a"), stateOf(2));
    model.updateSimulationState(QStringLiteral("x"), stateOf(2));
    model.unregisterSimulation(QStringLiteral("y"));
    model.updateSimulationState(QStringLiteral("z"), stateOf(2));
    model.unregisterSimulation(QStringLiteral("b"));
    model.registerSimulation(deviceOf(QStringLiteral("z")));
    QVERIFY(expectRefusal(11, 2));
    QCOMPARE(model.rowCount(), 2);
}

void TestSimulationsTableModel::manyDevices()
{
    constexpr int iDevices = 10'000;
    SimulationsTableModel model;
    for (int i = 0; i < iDevices; ++i) {
        model.registerSimulation(deviceOf(QString::number(i), QString::number(i)));
    }
    QCOMPARE(model.rowCount(), iDevices);
    QCOMPARE(names(model).constLast(), QString::number(iDevices - 1));
    for (int i = 0; i < iDevices; ++i) {
        model.unregisterSimulation(QString::number(i));
    }
    QCOMPARE(model.rowCount(), 0);
}

/// All texts for users are translated, each in the context of its class.
void TestSimulationsTableModel::translation()
{
    const auto texts = [] {
        const TraceCollector quiet;
        const SimulationsTableModel model;
        return headers(model) + QStringList{Units::Position::formatName(Units::Position::UTM)} +
               missingRepositoryBox();
    };
    QStringList expected = texts();
    QCOMPARE(expected.size(), 8);
    for (QString& sText : expected) {
        sText = TurningTranslator::turned(sText);
    }
    TurningTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(texts(), expected);
}

QTEST_MAIN(TestSimulationsTableModel)
#include "tst_simulationstablemodel.moc"
