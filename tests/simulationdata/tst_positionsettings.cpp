#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <tuple>

#include <QRegularExpression>
#include <QTest>

using namespace Simulation;

namespace {

using Ptp = PositionSettingsPtp;
using Path = QVector<MovementPoint>;
using Change = std::function<void(MovementPoint&)>;
using Edit = std::function<void(Ptp&)>;

constexpr std::uint32_t s_uiMax = 0xFFFFFFFF;
constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr double s_dAngleTolerance = 1e-9; ///< degrees

/// One degree along the equator, km: the ellipsoid's 6378.137 km times pi / 180.
constexpr double s_dEquatorDegree = 6378.137 * 3.14159265358979323846 / 180.0;
constexpr double s_dMillisecondsPerHour = 3'600'000.0;

/// A number in [0, a_uiBound), the same on every machine.
unsigned int below(std::mt19937& a_random, unsigned int a_uiBound)
{
    return static_cast<unsigned int>(a_random() % a_uiBound);
}

MovementPoint wayPoint(double a_dLongitude, double a_dLatitude, double a_dSpeed = 50.0,
                       unsigned int a_uiDwell = 0, const QString& a_sName = {})
{
    return {{a_dLongitude, a_dLatitude}, 0, a_uiDwell, true, a_sName, a_dSpeed};
}

MovementPoint intermediate(double a_dLongitude, double a_dLatitude)
{
    return {{a_dLongitude, a_dLatitude}, 77, 77, false, QString(), 1.0};
}

Ptp movement(const Path& a_path, EndBehaviourType a_eEnd = EndBehaviourType::Restart)
{
    Ptp settings({0.0, 0.0}, 0.01);
    settings.setMovements(a_path);
    settings.setEndBehavior(a_eEnd);
    return settings;
}

bool isNear(const TPos& a_first, const TPos& a_second)
{
    return std::fabs(a_first.longitude - a_second.longitude) < s_dAngleTolerance &&
           std::fabs(a_first.latitude - a_second.latitude) < s_dAngleTolerance;
}

/// The points as text: position, then "M" for a way point, name, dwell and speed.
QString text(const Ptp& a_settings)
{
    QString sText;
    for (const MovementPoint& point : a_settings.getMovments()) {
        sText += QStringLiteral("%1,%2%3%4 %5ms %6ms %7; ")
                     .arg(QString::number(point.position.longitude, 'g', 10),
                          QString::number(point.position.latitude, 'g', 10),
                          point.major ? QStringLiteral("M") : QString(),
                          point.name.isNull() ? QStringLiteral("-") : QStringLiteral("'%1'").arg(point.name),
                          QString::number(point.dwellTime), QString::number(point.transitionTime),
                          QString::number(point.speed, 'g', 17));
    }
    return sText;
}

struct Whereabouts
{
    TPos position;
    double heading = 0.0;
    double speed = 0.0;
};

/// Walks the time line point by point: slow, but plain to see.
Whereabouts walked(const Ptp& a_settings, std::uint64_t a_uiTime)
{
    const Path& path = a_settings.getMovments();
    std::uint64_t uiBegin = 0;
    for (int i = 0; i + 1 < path.size(); ++i) {
        const std::uint64_t uiLeave = uiBegin + path[i].dwellTime;
        const std::uint64_t uiArrive = uiLeave + path[i].transitionTime;
        if (a_uiTime < uiArrive) {
            const TPos& from = path[i].position;
            const TPos& to = path[i + 1].position;
            const double dShare =
                a_uiTime < uiLeave ? 0.0 : static_cast<double>(a_uiTime - uiLeave) / path[i].transitionTime;
            const TPos now{from.longitude + dShare * (to.longitude - from.longitude),
                           from.latitude + dShare * (to.latitude - from.latitude)};
            return {now, azimuth(from, to), double(a_settings.getMovementSpeed(i))};
        }
        uiBegin = uiArrive;
    }
    if (a_settings.getEndBehavior() == EndBehaviourType::Restart && uiBegin != 0) {
        return walked(a_settings, a_uiTime % uiBegin);
    }
    return {path.last().position, azimuth(path[path.size() - 2].position, path.last().position), 0.0};
}

Path randomPath(std::mt19937& a_random)
{
    Path path;
    const unsigned int uiCount = 2 + below(a_random, 6);
    for (unsigned int i = 0; i < uiCount; ++i) {
        const double dLongitude = below(a_random, 4) * 1e-4;
        const double dLatitude = 50.0 + below(a_random, 4) * 1e-4;
        MovementPoint point = wayPoint(dLongitude, dLatitude, double(below(a_random, 4)) * 40.0);
        point.dwellTime = below(a_random, 3) * 300;
        point.major = below(a_random, 3) != 0;
        path.append(point);
    }
    return path;
}

void randomEdit(Ptp& a_settings, unsigned int a_uiSeed)
{
    std::mt19937 random(a_uiSeed);
    const int iRow = static_cast<int>(below(random, 8)) - 1;
    switch (below(random, 10)) {
    case 0:
        return a_settings.setMovementSpeed(iRow, static_cast<float>(below(random, 3)) * 10.0F);
    case 1:
        return a_settings.setArivalTime(iRow, below(random, 100000));
    case 2:
        return a_settings.setDepartureTime(iRow, below(random, 100000));
    case 3:
        return a_settings.removeRow(iRow);
    case 4:
        return a_settings.insertRowAfter(iRow, 1e-4, QString());
    case 5:
        return a_settings.insertRowAfter(iRow, 0.0, QStringLiteral("new"));
    case 6:
        return a_settings.insertRowsAfter(iRow, {intermediate(0.0, 50.1), intermediate(0.1, 50.1)});
    case 7:
        return a_settings.setPosition({below(random, 10) * 0.1, below(random, 80) * 1.0});
    case 8:
        return a_settings.insertArcAfter(iRow, 3, 90, 10.0);
    default: {
        MovementPoint point = randomPath(random).last();
        return a_settings.setPoint(iRow, point);
    }
    }
}

} // namespace

Q_DECLARE_METATYPE(Change)
Q_DECLARE_METATYPE(Edit)

class TestPositionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fixed();
    void newMovement();
    void timeLine_data();
    void timeLine();
    void matchesWalk();
    void whenItIsComputedMakesNoDifference();
    void referencesSeeEveryChange();
    void pointEquality_data();
    void pointEquality();
    void copies();
    void edits_data();
    void edits();
    void ownPointsAsArguments();
    void ignoredRows();
    void arrivalAndDeparture();
    void arc_data();
    void arc();
    void sizes();
    void longDwells();
    void singlePointPath();
    void strangeNumbers();
};

void TestPositionSettings::fixed()
{
    PositionSettingsFixed settings({8.0, 50.0});
    QCOMPARE(static_cast<int>(settings.getType()), 0);
    QVERIFY(!settings.isTimeDependend());
    QVERIFY(settings.isActiveAt(s_uiMax));
    QCOMPARE(settings.activeUntil(), s_uiMax);
    const std::unique_ptr<IPositionSettings> clone(settings.clone());
    QVERIFY(settings.equal(clone.get()));
    settings.setPosition({8.0, 50.0 + 1e-12}); // no tolerance here
    QVERIFY(!settings.equal(clone.get()));
    QVERIFY(!settings.equal(nullptr));
    QCOMPARE(settings.getPositionAt(7).latitude, 50.0 + 1e-12);
    Ptp moving({8.0, 50.0}, 0.0);
    QVERIFY(!clone->equal(&moving));
    QVERIFY(!moving.equal(clone.get()));
}

void TestPositionSettings::newMovement()
{
    Ptp settings({8.0, 50.0}, 0.01);
    QCOMPARE(static_cast<int>(settings.getType()), 1);
    QVERIFY(settings.isTimeDependend());
    QCOMPARE(settings.getEndBehavior(), EndBehaviourType::Restart);
    // 0.01 degrees near 50 degrees north: 717 m east and 1112 m north.
    const double dKilometres = settings.length();
    QVERIFY(std::fabs(dKilometres - std::hypot(0.717, 1.112)) < 0.001);
    const auto uiLeg = static_cast<unsigned int>(dKilometres / 50.0 * s_dMillisecondsPerHour);
    QCOMPARE(settings.getPoint(0).transitionTime, uiLeg);
    QCOMPARE(text(settings), QStringLiteral("8,50M- 0ms %1ms 0; 8.01,50.01M- 0ms 0ms 50; ").arg(uiLeg));
    QCOMPARE(settings.getPositionAt(uiLeg).longitude, 8.0);
    QCOMPARE(settings.activeUntil(), s_uiMax);
}

void TestPositionSettings::timeLine_data()
{
    QTest::addColumn<int>("end");
    QTest::addColumn<unsigned int>("time");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("heading");
    QTest::addColumn<double>("speed");
    QTest::addColumn<bool>("active");
    const int iStop = 0;
    const int iRestart = 1;
    const int iInactive = 2;
    // East for one hour after 1000 ms, there for 2000 ms, then back in half an hour.
    QTest::newRow("dwells, facing the first leg") << iStop << 999U << 0.0 << 90.0 << -1.0 << true;
    QTest::newRow("leaves") << iStop << 1000U << 0.0 << 90.0 << -1.0 << true;
    QTest::newRow("first leg") << iStop << 901'000U << 0.25 << 90.0 << -1.0 << true;
    QTest::newRow("dwells, facing back") << iStop << 3'601'000U << 1.0 << 270.0 << s_dEquatorDegree << true;
    QTest::newRow("way back") << iStop << 4'053'000U << 0.75 << 270.0 << s_dEquatorDegree << true;
    QTest::newRow("stopped") << iStop << 5'403'000U << 0.0 << 270.0 << 0.0 << true;
    QTest::newRow("stopped for ever") << iStop << s_uiMax << 0.0 << 270.0 << 0.0 << true;
    QTest::newRow("begins again") << iRestart << 5'403'000U + 901'000U << 0.25 << 90.0 << -1.0 << true;
    QTest::newRow("last dwell") << iInactive << 5'408'000U << 0.0 << 270.0 << 0.0 << true;
    QTest::newRow("inactive") << iInactive << 5'408'001U << 0.0 << 270.0 << 0.0 << false;
}

void TestPositionSettings::timeLine()
{
    QFETCH(int, end);
    QFETCH(unsigned int, time);
    QFETCH(double, longitude);
    QFETCH(double, speed);
    // A little slower than one degree in an hour, so that the time rounds down to it.
    const double dSpeed = s_dEquatorDegree * (1.0 - 1e-10);
    Ptp settings =
        movement({wayPoint(0, 0, 9.0, 1000), wayPoint(1, 0, dSpeed, 2000), wayPoint(0, 0, 2 * dSpeed, 5000)},
                 static_cast<EndBehaviourType>(end));
    QVERIFY(isNear(settings.getPositionAt(time), {longitude, 0.0}));
    QTEST(settings.headingAt(time), "heading");
    QCOMPARE(static_cast<float>(settings.speedAt(time)), static_cast<float>(speed));
    QTEST(settings.isActiveAt(time), "active");
    QCOMPARE(settings.activeUntil(), end == 2 ? 5'408'000U : s_uiMax);
}

void TestPositionSettings::matchesWalk()
{
    std::mt19937 random(4711);
    for (int i = 0; i < 300; ++i) {
        Ptp settings = movement(randomPath(random), static_cast<EndBehaviourType>(below(random, 3)));
        const unsigned int uiEnd = settings.getArivalTime(static_cast<int>(settings.getMovments().size()));
        for (int iQuery = 0; iQuery < 20; ++iQuery) {
            const unsigned int uiTime = iQuery == 0 ? s_uiMax : below(random, 2 * uiEnd + 10);
            const Whereabouts expected = walked(settings, uiTime);
            QVERIFY(isNear(settings.getPositionAt(uiTime), expected.position));
            QCOMPARE(settings.headingAt(uiTime), expected.heading);
            QCOMPARE(settings.speedAt(uiTime), expected.speed);
        }
    }
}

void TestPositionSettings::whenItIsComputedMakesNoDifference()
{
    std::mt19937 random(815);
    for (int i = 0; i < 2000; ++i) {
        Ptp watched = movement(randomPath(random));
        Ptp unwatched(watched); // nobody asks it before the end
        for (int iEdit = 0; iEdit < 8; ++iEdit) {
            const unsigned int uiSeed = below(random, s_uiMax);
            randomEdit(watched, uiSeed);
            randomEdit(unwatched, uiSeed);
            QCOMPARE(watched.getMovments().last().transitionTime, 0U);
        }
        QCOMPARE(text(unwatched), text(watched));
    }
}

void TestPositionSettings::referencesSeeEveryChange()
{
    Ptp settings = movement({wayPoint(0, 0), wayPoint(1, 0)});
    const Path& path = settings.getMovments();
    const unsigned int uiBefore = path.first().transitionTime;
    settings.setMovementSpeed(1, 100.0F);
    QCOMPARE(path.first().transitionTime, uiBefore / 2);
}

void TestPositionSettings::pointEquality_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char* a_szName, bool a_bEqual, const Change& a_change) {
        QTest::newRow(a_szName) << a_change << a_bEqual;
    };
    row("nothing", true, [](MovementPoint&) {});
    row("longitude within the tolerance", true,
        [](MovementPoint& a_point) { a_point.position.longitude += 9e-11; });
    row("latitude within the tolerance", true,
        [](MovementPoint& a_point) { a_point.position.latitude -= 9e-11; });
    row("longitude", false, [](MovementPoint& a_point) { a_point.position.longitude += 2e-10; });
    row("latitude", false, [](MovementPoint& a_point) { a_point.position.latitude -= 2e-10; });
    row("transition time", false, [](MovementPoint& a_point) { ++a_point.transitionTime; });
    row("dwell time", false, [](MovementPoint& a_point) { ++a_point.dwellTime; });
    row("major", false, [](MovementPoint& a_point) { a_point.major = false; });
    row("name", false, [](MovementPoint& a_point) { a_point.name = QStringLiteral("a"); });
    row("speed", false, [](MovementPoint& a_point) { a_point.speed += 1e-12; });
}

void TestPositionSettings::pointEquality()
{
    QFETCH(Change, change);
    const MovementPoint original = wayPoint(0.1, 0.2, 3.0, 4, QStringLiteral("A"));
    MovementPoint changed = original;
    change(changed);
    QTEST(original == changed, "equal");
}

void TestPositionSettings::copies()
{
    Ptp original =
        movement({wayPoint(0, 0), intermediate(1, 0), wayPoint(2, 0, 30.0, 5, QStringLiteral("end"))},
                 EndBehaviourType::Stop);
    const std::unique_ptr<IPositionSettings> clone(original.clone());
    auto& copy = dynamic_cast<Ptp&>(*clone);
    QVERIFY(original.equal(clone.get()));
    QCOMPARE(text(copy), text(original));
    QCOMPARE(copy.getEndBehavior(), EndBehaviourType::Stop);
    copy.setEndBehavior(EndBehaviourType::Restart);
    QVERIFY(original.equal(clone.get()));
    const QString sBefore = text(original);
    copy.setMovementSpeed(2, 31.0F);
    QVERIFY(!original.equal(clone.get()));
    QCOMPARE(text(original), sBefore);
    copy.setMovementSpeed(2, 30.0F);
    QVERIFY(original.equal(clone.get()));
    copy.insertRowAfter(5, 0.0, QStringLiteral("more"));
    QVERIFY(!original.equal(clone.get()));
    QVERIFY(!original.equal(nullptr));
}

void TestPositionSettings::edits_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("expected");
    // Before each edit: A at 0, an intermediate point at 4, B at 10.
    const char* const szUnchanged = "0M'A'7ms v0 4-0ms v20 10M'B'9ms v20";
    const QString sName = QStringLiteral("N");
    const QString sEmpty = QStringLiteral("");
    const Path twoPoints{intermediate(11, 0), intermediate(12, 0)};
    QTest::newRow("one point is no path") << Edit([](Ptp& a_s) { a_s.setMovements(Path(1)); }) << szUnchanged;
    QTest::newRow("ends become way points")
        << Edit([=](Ptp& a_s) { a_s.setMovements(twoPoints); }) << "11M-77ms v1 12M-77ms v50";
    QTest::newRow("speed runs back to the way point")
        << Edit([](Ptp& a_s) { a_s.setMovementSpeed(2, 30.0F); }) << "0M'A'7ms v0 4-0ms v30 10M'B'9ms v30";
    QTest::newRow("intermediate point has no speed of its own")
        << Edit([](Ptp& a_s) { a_s.setMovementSpeed(1, 30.0F); }) << szUnchanged;
    QTest::newRow("moved as a whole") << Edit([](Ptp& a_s) {
        a_s.setPosition(TPos{3, 0});
    }) << "3M'A'7ms v0 7-0ms v20 13M'B'9ms v20";
    QTest::newRow("between, by distance") << Edit([=](Ptp& a_s) { a_s.insertRowAfter(1, 1.5, sName); })
                                          << "0M'A'7ms v0 4-0ms v50 5.5M'N'0ms v50 10M'B'9ms v20";
    QTest::newRow("between, at most 70 %") << Edit([](Ptp& a_s) { a_s.insertRowAfter(0, 0.0, QString()); })
                                           << "0M'A'7ms v0 2.8-0ms v20 4-0ms v20 10M'B'9ms v20";
    QTest::newRow("between, empty but not null name")
        << Edit([=](Ptp& a_s) { a_s.insertRowAfter(0, 1.0, sEmpty); })
        << "0M'A'7ms v0 1M''0ms v50 4-0ms v20 10M'B'9ms v20";
    QTest::newRow("appended with a name") << Edit([=](Ptp& a_s) { a_s.insertRowAfter(2, 0.0, sName); })
                                          << "0M'A'7ms v0 4-0ms v20 10M'B'9ms v20 16M'N'0ms v50";
    QTest::newRow("appended without a name") << Edit([](Ptp& a_s) { a_s.insertRowAfter(2, 2.0, QString()); })
                                             << "0M'A'7ms v0 4-0ms v20 10-0ms v20 12M'B'9ms v20";
    QTest::newRow("appended from far beyond") << Edit([=](Ptp& a_s) { a_s.insertRowAfter(99, 2.0, sEmpty); })
                                              << "0M'A'7ms v0 4-0ms v50 10M''0ms v50 12M'B'9ms v20";
    QTest::newRow("points between") << Edit([=](Ptp& a_s) { a_s.insertRowsAfter(1, twoPoints); })
                                    << "0M'A'7ms v0 4-0ms v20 11-0ms v20 12-0ms v20 10M'B'9ms v20";
    QTest::newRow("points appended") << Edit([=](Ptp& a_s) { a_s.insertRowsAfter(2, twoPoints); })
                                     << "0M'A'7ms v0 4-0ms v20 10-0ms v20 11-0ms v20 12M'B'9ms v20";
    QTest::newRow("no points") << Edit([](Ptp& a_s) { a_s.insertRowsAfter(2, Path()); }) << szUnchanged;
    QTest::newRow("first point stays") << Edit([](Ptp& a_s) { a_s.removeRow(0); }) << szUnchanged;
    QTest::newRow("removed intermediate point")
        << Edit([](Ptp& a_s) { a_s.removeRow(1); }) << "0M'A'7ms v0 10M'B'9ms v20";
    QTest::newRow("removed way point hands over")
        << Edit([](Ptp& a_s) { a_s.removeRow(2); }) << "0M'A'7ms v0 4M-9ms v20";
    QTest::newRow("removed intermediate end leaves its speed") << Edit([](Ptp& a_s) {
        a_s.setPoint(2, intermediate(8, 0));
        a_s.removeRow(2);
    }) << "0M'A'7ms v0 4-0ms v1";
    QTest::newRow("behind the only point") << Edit([=](Ptp& a_s) {
        a_s.removeRow(1);
        a_s.removeRow(1);
        a_s.insertRowAfter(0, 3.0, sName);
    }) << "0M'A'7ms v0 0M'N'0ms v50";
    QTest::newRow("points behind the only point") << Edit([=](Ptp& a_s) {
        a_s.removeRow(1);
        a_s.removeRow(1);
        a_s.insertRowsAfter(0, twoPoints);
    }) << "0M'A'7ms v0 11-0ms v0 12M'A'7ms v0";
}

void TestPositionSettings::edits()
{
    QFETCH(Edit, edit);
    Ptp settings = movement({wayPoint(0, 0, 0.0, 7, QStringLiteral("A")), intermediate(4, 0),
                             wayPoint(10, 0, 20.0, 9, QStringLiteral("B"))});
    edit(settings);
    QStringList points;
    for (const MovementPoint& point : settings.getMovments()) {
        points +=
            QStringLiteral("%1%2%3%4ms v%5")
                .arg(QString::number(point.position.longitude), point.major ? QStringLiteral("M") : QString(),
                     point.name.isNull() ? QStringLiteral("-") : QStringLiteral("'%1'").arg(point.name),
                     QString::number(point.dwellTime), QString::number(point.speed));
    }
    QTEST(points.join(QLatin1Char(' ')), "expected");

    // Whatever the edit, the times fit the points: nothing is left over from before.
    const Path& path = settings.getMovments();
    for (qsizetype i = 0; i + 1 < path.size(); ++i) {
        const double dLegs = std::fabs(path[i + 1].position.longitude - path[i].position.longitude);
        const double dSpeed = path[i + 1].speed;
        const double dTime = dSpeed > 0 ? dLegs * s_dEquatorDegree / dSpeed * s_dMillisecondsPerHour : 0.0;
        QVERIFY(std::fabs(path[i].transitionTime - std::floor(dTime)) <= 1.0);
    }
}

void TestPositionSettings::ownPointsAsArguments()
{
    Ptp settings = movement({wayPoint(0, 0), wayPoint(1, 0, 20.0, 0, QStringLiteral("B")), wayPoint(2, 0)});
    const std::unique_ptr<IPositionSettings> shared(settings.clone());
    settings.setPoint(0, settings.getPoint(1));
    QCOMPARE(settings.getPoint(0).name, QStringLiteral("B"));
    settings.setMovements(settings.getMovments());
    for (int i = 0; i < 20; ++i) { // grows the storage while an argument lies in it
        settings.insertRowAfter(0, 0.1,
                                settings.getPoint(-1).name.isNull() ? settings.getPoint(1).name : QString());
        settings.insertRowsAfter(1, settings.getMovments().mid(0, 2));
    }
    settings.setPosition(settings.getPoint(7).position);
    QCOMPARE(settings.getMovments().size(), 3 + 20 * 3);
    QCOMPARE(settings.getMovments().count(settings.getPoint(0)) > 0, true);
}

void TestPositionSettings::ignoredRows()
{
    Ptp settings = movement({wayPoint(0, 0), intermediate(1, 0), wayPoint(2, 0, 25.0)});
    const QString sBefore = text(settings);
    for (const int iRow : {std::numeric_limits<int>::min(), -1, 3, std::numeric_limits<int>::max()}) {
        QCOMPARE(settings.getMovementSpeed(iRow), -1.0F);
        QVERIFY(!settings.canRemoveRow(iRow));
        QVERIFY(settings.getPoint(iRow) == settings.getMovments().last());
        settings.setPoint(iRow, wayPoint(9, 9));
        settings.setArivalTime(iRow, 99999);
        settings.setDepartureTime(iRow, 99999);
        settings.setMovementSpeed(iRow, 99.0F);
        settings.removeRow(iRow);
        settings.insertRowsAfter(iRow, {wayPoint(9, 9)});
        settings.insertArcAfter(iRow, 5, 90, 100.0);
        if (iRow < 0) {
            settings.insertRowAfter(iRow, 0.0, QStringLiteral("x"));
        }
        QCOMPARE(text(settings), sBefore);
    }
    QCOMPARE(settings.getMovementSpeed(0), -1.0F);
    settings.setMovementSpeed(0, 99.0F);
    settings.setArivalTime(0, 99999);
    settings.setArivalTime(2, settings.getDepartureTime(1) - 1); // no speed reaches it
    settings.insertArcAfter(1, 0, 90, 100.0);
    settings.insertArcAfter(1, -5, 90, 100.0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("2147483647 points")));
    settings.insertArcAfter(1, std::numeric_limits<int>::max(), 90, 100.0);
    QCOMPARE(text(settings), sBefore);
}

void TestPositionSettings::arrivalAndDeparture()
{
    Ptp settings = movement({wayPoint(0, 0, 0.0, 1000), wayPoint(1, 0, 50.0, 2000), intermediate(1.5, 0),
                             wayPoint(3, 0, 50.0, 3000)});
    const auto bounds = [&settings](int a_iRow, bool a_bArrival) {
        unsigned int uiMin = 1;
        unsigned int uiMax = 1;
        const unsigned int uiTime = a_bArrival ? settings.getArivalTime(a_iRow, &uiMin, &uiMax)
                                               : settings.getDepartureTime(a_iRow, &uiMin, &uiMax);
        return QList<unsigned int>{uiTime, uiMin, uiMax};
    };
    using Times = QList<unsigned int>;
    const auto uiDegree = static_cast<unsigned int>(s_dEquatorDegree / 50.0 * s_dMillisecondsPerHour);
    const unsigned int uiFirst = 1000 + uiDegree;
    QCOMPARE(bounds(0, true), (Times{0, 0, 0}));
    QCOMPARE(bounds(0, false), (Times{1000, 0, s_uiMax}));
    QCOMPARE(bounds(1, true), (Times{uiFirst, 1000, s_uiMax}));
    QCOMPARE(bounds(1, false), (Times{uiFirst + 2000, uiFirst, s_uiMax}));

    settings.setDepartureTime(1, uiFirst + 500);
    QCOMPARE(settings.getPoint(1).dwellTime, 500U);
    QCOMPARE(settings.getArivalTime(2), uiFirst + 500 + uiDegree / 2);
    settings.setDepartureTime(1, uiFirst - 1);
    QCOMPARE(settings.getPoint(1).dwellTime, s_uiMax); // wraps round
    settings.setDepartureTime(1, uiFirst);

    settings.setArivalTime(1, 1000 + 3'600'000); // one degree in one hour
    QCOMPARE(settings.getPoint(1).speed, double(float(s_dEquatorDegree)));
    QVERIFY(std::fabs(double(settings.getMovementSpeed(1)) - s_dEquatorDegree) < 0.001);
    // Two degrees from the way point before, in an hour since the intermediate point.
    settings.setArivalTime(3, settings.getDepartureTime(2)); // at once
    QCOMPARE(settings.getArivalTime(3), settings.getDepartureTime(2));
    settings.setArivalTime(3, settings.getDepartureTime(2) + 3'600'000);
    QVERIFY(std::fabs(settings.getPoint(3).speed - 2.0 * s_dEquatorDegree) < 0.001);
    QCOMPARE(settings.getPoint(2).speed, settings.getPoint(3).speed);

    settings.setMovementSpeed(3, -1.0F); // both legs at once
    QCOMPARE(settings.getMovementSpeed(3), -1.0F);
    QCOMPARE(settings.getArivalTime(3), settings.getDepartureTime(1));
}

void TestPositionSettings::arc_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("angle");
    QTest::addColumn<double>("lastEast"); // metres from the beginning of the arc
    QTest::addColumn<double>("lastNorth");
    const double dPart = 1000.0 * std::sin(3.14159265358979323846 / 4.0);
    // The path runs north to row 1; the first point has no direction and starts to the north too.
    QTest::newRow("quarter to the right") << 1 << 9 << 90 << 1000.0 << 1000.0;
    QTest::newRow("quarter to the left") << 1 << 9 << -90 << -1000.0 << 1000.0;
    QTest::newRow("half circle") << 1 << 7 << 180 << 2000.0 << 0.0;
    QTest::newRow("many turns and an eighth") << 1 << 500 << 3600 + 45 << 1000.0 - dPart << dPart;
    QTest::newRow("from the first point") << 0 << 2 << 90 << 1000.0 << 1000.0;
    QTest::newRow("at the end") << 2 << 3 << 90 << 1000.0 << 1000.0;
    QTest::newRow("one point") << 1 << 1 << 90 << 0.0 << 0.0;
}

void TestPositionSettings::arc()
{
    QFETCH(int, row);
    QFETCH(int, count);
    QFETCH(int, angle);
    QFETCH(double, lastEast);
    QFETCH(double, lastNorth);
    Ptp settings =
        movement({wayPoint(0, 0), wayPoint(0, 0.1), wayPoint(0, 0.2, 40.0, 0, QStringLiteral("end"))});
    const TPos start = settings.getPoint(row).position;
    settings.insertArcAfter(row, count, angle, 1000.0);
    QCOMPARE(settings.getMovments().size(), 3 + count);
    QVERIFY(settings.getMovments().last().major);
    QCOMPARE(settings.getMovments().last().name, QStringLiteral("end"));
    // The arc begins where the path is, but for the meridians' convergence over the radius.
    QVERIFY(distance(settings.getPoint(row + 1).position, start) < 1e-5);
    const TPos last = settings.getPoint(row + count).position;
    QVERIFY(std::fabs((last.longitude - start.longitude) * s_dEquatorDegree * 1000.0 - lastEast) < 0.1);
    QVERIFY(std::fabs((last.latitude - start.latitude) * 110'574.0 - lastNorth) < 0.1);
    for (int i = 1; i < count; ++i) { // all steps alike
        const double dStep =
            distance(settings.getPoint(row + i).position, settings.getPoint(row + i + 1).position);
        const double dTurn = std::fabs(angle) / (count - 1) * 3.14159265358979323846 / 180.0;
        QVERIFY(std::fabs(dStep - 2.0 * std::fabs(std::sin(dTurn / 2.0))) < 1e-6);
    }
}

void TestPositionSettings::sizes()
{
    const Ptp settings = movement({wayPoint(0, 0), wayPoint(2, 1), wayPoint(-1, 0)});
    double dWidth = 0.0;
    double dHeight = 0.0;
    settings.area(dWidth, dHeight);
    QVERIFY(std::fabs(dWidth - 3 * s_dEquatorDegree) < 1e-6);
    QVERIFY(std::fabs(dHeight - 110.574389) < 1e-5); // the first degree of a meridian
    QVERIFY(std::fabs(settings.length() - distance({0, 0}, {2, 1}) - distance({2, 1}, {-1, 0})) < 1e-9);
}

void TestPositionSettings::longDwells()
{
    Ptp settings =
        movement({wayPoint(0, 0, 0.0, s_uiMax), wayPoint(1, 0, 50.0, s_uiMax), wayPoint(2, 0, 50.0, 9)},
                 EndBehaviourType::Inactive);
    QCOMPARE(settings.activeUntil(), s_uiMax);
    QVERIFY(settings.isActiveAt(s_uiMax));
    QCOMPARE(settings.getArivalTime(2), s_uiMax);
    QCOMPARE(settings.getDepartureTime(1), s_uiMax);
    QCOMPARE(settings.getPositionAt(s_uiMax - 1).longitude, 0.0);
    const QString sBefore = text(settings);
    settings.setArivalTime(2, s_uiMax);
    QCOMPARE(text(settings), sBefore);
}

void TestPositionSettings::singlePointPath()
{
    Ptp settings({3.0, 4.0}, 0.01);
    settings.removeRow(1);
    for (const auto eEnd : {EndBehaviourType::Stop, EndBehaviourType::Restart, EndBehaviourType::Inactive}) {
        settings.setEndBehavior(eEnd);
        QCOMPARE(settings.getPositionAt(5).longitude, 3.0);
        QCOMPARE(settings.headingAt(5), 0.0);
        QCOMPARE(settings.speedAt(5), 0.0);
        QCOMPARE(settings.isActiveAt(5), eEnd != EndBehaviourType::Inactive);
        QCOMPARE(settings.length(), 0.0);
        QVERIFY(!settings.canRemoveRow(0));
    }
}

void TestPositionSettings::strangeNumbers()
{
    for (const double dStrange : {s_dNan, s_dInfinity, -s_dInfinity, 1e308, -1e308, 91.0}) {
        Ptp settings = movement({wayPoint(dStrange, 0), intermediate(0, dStrange), wayPoint(1, 0, dStrange),
                                 wayPoint(dStrange, dStrange, 1e-300)});
        settings.insertRowAfter(0, dStrange, QString());
        settings.insertRowAfter(99, dStrange, QStringLiteral("x"));
        settings.insertArcAfter(1, 3, std::numeric_limits<int>::min(), dStrange);
        settings.setMovementSpeed(2, static_cast<float>(s_dNan));
        settings.setArivalTime(3, s_uiMax);
        settings.setPosition({dStrange, -dStrange});
        for (const unsigned int uiTime : {0U, 1U, s_uiMax}) {
            std::ignore = settings.getPositionAt(uiTime);
            std::ignore = settings.speedAt(uiTime);
            const double dHeading = settings.headingAt(uiTime);
            QVERIFY(dHeading >= 0.0 && dHeading < 360.0);
        }
        QCOMPARE(settings.getMovments().size(), 9);
        double dWidth = 0.0;
        double dHeight = 0.0;
        settings.area(dWidth, dHeight);
    }
}

QTEST_GUILESS_MAIN(TestPositionSettings)
#include "tst_positionsettings.moc"
