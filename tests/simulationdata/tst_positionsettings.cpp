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
using Edit = std::function<void(Ptp&)>;

constexpr std::uint32_t s_uiMax = 0xFFFFFFFF;
constexpr double s_dNan = std::numeric_limits<double>::quiet_NaN();
constexpr double s_dInfinity = std::numeric_limits<double>::infinity();
constexpr double s_dAngleTolerance = 1e-9; ///< degrees

/// One degree along the equator (km): the ellipsoid's radius of 6378.137 km times pi / 180.
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

/// The points as text: position, transition time, "M" for a way point, name, dwell time
/// and speed. Without a_bAll, the latitude and the transition time are left out.
QString text(const Ptp& a_settings, bool a_bAll = true)
{
    QStringList points;
    for (const MovementPoint& point : a_settings.getMovments()) {
        const QString sRest = QStringLiteral(",%1 %2ms ").arg(point.position.latitude, 0, 'g', 10);
        points += QString::number(point.position.longitude, 'g', 10) +
                  (a_bAll ? sRest.arg(point.transitionTime) : QString()) +
                  (point.major ? QStringLiteral("M") : QString()) +
                  (point.name.isNull() ? QStringLiteral("-") : u'\'' + point.name + u'\'') +
                  QStringLiteral("%1ms v%2").arg(point.dwellTime).arg(point.speed, 0, 'g', 17);
    }
    return points.join(u' ');
}

struct Whereabouts
{
    TPos position;
    double heading = 0.0;
    double speed = 0.0;
};

/// Computes the result by visiting the points in turn. This takes long, but is easy to
/// verify.
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
    const Edit edits[] = {
        [&](Ptp& a_s) { a_s.setMovementSpeed(iRow, static_cast<float>(below(random, 3)) * 10.0F); },
        [&](Ptp& a_s) { a_s.setArivalTime(iRow, below(random, 100000)); },
        [&](Ptp& a_s) { a_s.setDepartureTime(iRow, below(random, 100000)); },
        [&](Ptp& a_s) { a_s.removeRow(iRow); },
        [&](Ptp& a_s) { a_s.insertRowAfter(iRow, 1e-4, QString()); },
        [&](Ptp& a_s) { a_s.insertRowAfter(iRow, 0.0, QStringLiteral("new")); },
        [&](Ptp& a_s) {
            a_s.insertRowsAfter(iRow, {intermediate(0.0, 50.1), intermediate(0.1, 50.1)});
        },
        [&](Ptp& a_s) {
            a_s.setPosition({below(random, 10) * 0.1, 50.0});
        },
        [&](Ptp& a_s) { a_s.insertArcAfter(iRow, 3, 90, 10.0); },
        [&](Ptp& a_s) { a_s.setPoint(iRow, randomPath(random).last()); },
    };
    edits[below(random, 10)](a_settings);
}

} // namespace

Q_DECLARE_METATYPE(Edit)

class TestPositionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newMovement();
    void timeLine();
    void matchesWalk();
    void whenItIsComputedMakesNoDifference();
    void referencesSeeEveryChange();
    void pointEquality();
    void copies();
    void edits_data();
    void edits();
    void ownPointsAsArguments();
    void ignoredRows();
    void arrivalAndDeparture();
    void arc();
    void sizes();
    void longDwells();
    void singlePointPath();
    void strangeNumbers();
};

void TestPositionSettings::newMovement()
{
    Ptp settings({8.0, 50.0}, 0.01);
    // 0.01 degrees near 50 degrees north: 717 m east and 1112 m north.
    const double dKilometres = settings.length();
    QVERIFY(std::fabs(dKilometres - std::hypot(0.717, 1.112)) < 0.001);
    const auto uiLeg = static_cast<unsigned int>(dKilometres / 50.0 * s_dMillisecondsPerHour);
    QCOMPARE(text(settings), QStringLiteral("8,50 %1ms M-0ms v0 8.01,50.01 0ms M-0ms v50").arg(uiLeg));
}

void TestPositionSettings::timeLine()
{
    // The speed is slightly below one degree in an hour, so that the time is rounded
    // down to one hour.
    const double dSpeed = s_dEquatorDegree * (1.0 - 1e-10);
    // The path goes east for one hour from 1000 ms, dwells for 2000 ms, and returns in
    // half an hour.
    Ptp settings =
        movement({wayPoint(0, 0, 9.0, 1000), wayPoint(1, 0, dSpeed, 2000), wayPoint(0, 0, 2 * dSpeed, 5000)});
    QVERIFY(isNear(settings.getPositionAt(901'000), {0.25, 0.0}));
    QVERIFY(isNear(settings.getPositionAt(3'601'000), {1.0, 0.0}));
    QCOMPARE(settings.headingAt(3'600'999), 90.0);
    QCOMPARE(settings.headingAt(3'601'000), 270.0); // dwells, with the heading of the next leg
    QCOMPARE(float(settings.speedAt(3'601'000)), float(s_dEquatorDegree));
    QVERIFY(isNear(settings.getPositionAt(5'403'000U + 901'000U), {0.25, 0.0}));
    QCOMPARE(settings.activeUntil(), s_uiMax);
    settings.setEndBehavior(EndBehaviourType::Inactive);
    QCOMPARE(settings.activeUntil(), 5'408'000U);
    QVERIFY(settings.isActiveAt(5'408'000) && !settings.isActiveAt(5'408'001));
    QVERIFY(settings.headingAt(5'408'001) == 270.0 && settings.speedAt(5'403'000) == 0.0);
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
        Ptp unwatched(watched); // queried only at the end
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

void TestPositionSettings::pointEquality()
{
    const MovementPoint original = wayPoint(0.1, 0.2, 3.0, 4, QStringLiteral("A"));
    MovementPoint near = original;
    near.position.longitude += 9e-11;
    near.position.latitude -= 9e-11;
    QVERIFY(near == original);
    QList<MovementPoint> others(7, original);
    others[0].position.longitude += 2e-10;
    others[1].position.latitude -= 2e-10;
    ++others[2].transitionTime;
    ++others[3].dwellTime;
    others[4].major = false;
    others[5].name = QStringLiteral("a");
    others[6].speed += 1e-12;
    for (const MovementPoint& other : others) {
        QVERIFY(!(other == original));
    }
}

void TestPositionSettings::copies()
{
    Ptp original =
        movement({wayPoint(0, 0), intermediate(1, 0), wayPoint(2, 0, 30.0, 5, QStringLiteral("end"))},
                 EndBehaviourType::Stop);
    const QString sBefore = text(original);
    const std::unique_ptr<IPositionSettings> clone(original.clone());
    auto& copy = dynamic_cast<Ptp&>(*clone);
    QCOMPARE(text(copy), sBefore);
    QCOMPARE(copy.getEndBehavior(), EndBehaviourType::Stop);
    copy.setEndBehavior(EndBehaviourType::Restart);
    QVERIFY(original.equal(clone.get()));
    copy.setMovementSpeed(2, 31.0F);
    QVERIFY(!original.equal(clone.get()) && !original.equal(nullptr));
    QCOMPARE(text(original), sBefore);
}

void TestPositionSettings::edits_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QString>("expected");
    // Before each edit: A at 0, an intermediate point at 4, B at 10.
    const QString sName = QStringLiteral("N");
    const QString sEmpty = QStringLiteral("");
    const Path twoPoints{intermediate(11, 0), intermediate(12, 0)};
    const auto row = [](const char* a_szName, const char* a_szExpected, const Edit& a_edit) {
        QTest::newRow(a_szName) << a_edit << QString::fromLatin1(a_szExpected);
    };
    row("one point is no path", "0M'A'7ms v0 4-0ms v20 10M'B'9ms v20",
        [](Ptp& a_s) { a_s.setMovements(Path(1)); });
    row("ends become way points", "11M-77ms v1 12M-77ms v50", [=](Ptp& a_s) { a_s.setMovements(twoPoints); });
    row("between, at most 70 %", "0M'A'7ms v0 2.8-0ms v20 4-0ms v20 10M'B'9ms v20",
        [](Ptp& a_s) { a_s.insertRowAfter(0, 0.0, QString()); });
    row("between, empty but not null name", "0M'A'7ms v0 1M''0ms v50 4-0ms v20 10M'B'9ms v20",
        [=](Ptp& a_s) { a_s.insertRowAfter(0, 1.0, sEmpty); });
    row("appended without a name", "0M'A'7ms v0 4-0ms v20 10-0ms v20 12M'B'9ms v20",
        [](Ptp& a_s) { a_s.insertRowAfter(2, 2.0, QString()); });
    row("points appended", "0M'A'7ms v0 4-0ms v20 10-0ms v20 11-0ms v20 12M'B'9ms v20",
        [=](Ptp& a_s) { a_s.insertRowsAfter(2, twoPoints); });
    row("removed way point hands over", "0M'A'7ms v0 4M-9ms v20", [](Ptp& a_s) { a_s.removeRow(2); });
    row("removed intermediate end leaves its speed", "0M'A'7ms v0 4-0ms v1", [](Ptp& a_s) {
        a_s.setPoint(2, intermediate(8, 0));
        a_s.removeRow(2);
    });
    row("behind the only point", "0M'A'7ms v0 0M'N'0ms v50", [=](Ptp& a_s) {
        a_s.removeRow(1);
        a_s.removeRow(1);
        a_s.insertRowAfter(0, 3.0, sName);
    });
}

void TestPositionSettings::edits()
{
    QFETCH(Edit, edit);
    Ptp settings = movement({wayPoint(0, 0, 0.0, 7, QStringLiteral("A")), intermediate(4, 0),
                             wayPoint(10, 0, 20.0, 9, QStringLiteral("B"))});
    edit(settings);
    QTEST(text(settings, false), "expected");

    // After each edit the times match the points, so no derived value is outdated.
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
    // The list grows while an argument refers to one of its elements.
    for (int i = 0; i < 20; ++i) {
        settings.insertRowAfter(0, 0.1,
                                settings.getPoint(-1).name.isNull() ? settings.getPoint(1).name : QString());
        settings.insertRowsAfter(1, settings.getMovments().mid(0, 2));
    }
    QCOMPARE(settings.getMovments().size(), 3 + 20 * 3);
}

void TestPositionSettings::ignoredRows()
{
    Ptp settings = movement({wayPoint(0, 0), intermediate(1, 0), wayPoint(2, 0, 25.0)});
    const QString sBefore = text(settings);
    for (const int iRow : {std::numeric_limits<int>::min(), -1, 3, std::numeric_limits<int>::max()}) {
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
    settings.setMovementSpeed(0, 99.0F);
    settings.setArivalTime(0, 99999);
    settings.setArivalTime(2, settings.getDepartureTime(1) - 1); // an arrival before the departure is refused
    settings.insertArcAfter(1, 0, 90, 100.0);
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

    settings.setDepartureTime(1, uiFirst + 500);
    QCOMPARE(settings.getPoint(1).dwellTime, 500U);
    QCOMPARE(settings.getArivalTime(2), uiFirst + 500 + uiDegree / 2);
    settings.setDepartureTime(1, uiFirst - 1);
    QCOMPARE(settings.getPoint(1).dwellTime, s_uiMax); // -1 ms wraps round
    settings.setDepartureTime(1, uiFirst);

    settings.setArivalTime(1, 1000 + 3'600'000); // one degree in one hour
    QCOMPARE(settings.getPoint(1).speed, double(float(s_dEquatorDegree)));
    // The path from the previous way point is two degrees long. The hour of the second
    // call begins at the departure from the intermediate point.
    settings.setArivalTime(3, settings.getDepartureTime(2)); // the last leg takes no time
    QCOMPARE(settings.getArivalTime(3), settings.getDepartureTime(2));
    settings.setArivalTime(3, settings.getDepartureTime(2) + 3'600'000);
    QVERIFY(std::fabs(settings.getPoint(3).speed - 2.0 * s_dEquatorDegree) < 0.001);

    settings.setMovementSpeed(3, -1.0F); // both legs to the way point take no time
    QCOMPARE(settings.getMovementSpeed(3), -1.0F);
    QCOMPARE(settings.getArivalTime(3), settings.getDepartureTime(1));
}

void TestPositionSettings::arc()
{
    struct Arc
    {
        int row, count, angle;
        double east, north; ///< metres from the beginning to the end of the arc
    };
    const double dPart = 1000.0 * std::sin(3.14159265358979323846 / 4.0);
    // The path runs north to row 1. The first point has no direction and counts as
    // heading north.
    for (const Arc& arc : {Arc{1, 9, 90, 1000.0, 1000.0}, Arc{1, 7, -180, -2000.0, 0.0},
                           Arc{0, 2, 90, 1000.0, 1000.0}, Arc{1, 500, 3600 + 45, 1000.0 - dPart, dPart},
                           Arc{2, 3, 90, 1000.0, 1000.0}, Arc{1, 1, 90, 0, 0}}) {
        Ptp settings = movement({wayPoint(0, 0), wayPoint(0, 0.1), wayPoint(0, 0.2)});
        const TPos start = settings.getPoint(arc.row).position;
        settings.insertArcAfter(arc.row, arc.count, arc.angle, 1000.0);
        QCOMPARE(settings.getMovments().size(), 3 + arc.count);
        // The arc begins at the point of the row, in the direction of the path. Only the
        // convergence of the meridians within the arc's radius changes this direction.
        QVERIFY(distance(settings.getPoint(arc.row + 1).position, start) < 1e-5);
        const TPos last = settings.getPoint(arc.row + arc.count).position;
        QVERIFY(std::fabs((last.longitude - start.longitude) * s_dEquatorDegree * 1000.0 - arc.east) < 0.1);
        QVERIFY(std::fabs((last.latitude - start.latitude) * 110'574.0 - arc.north) < 0.1);
        for (int i = arc.row + 1; i < arc.row + arc.count; ++i) { // all steps are equal
            const double dStep = distance(settings.getPoint(i).position, settings.getPoint(i + 1).position);
            const double dTurn = std::fabs(arc.angle) / (arc.count - 1) * 3.14159265358979323846 / 180.0;
            QVERIFY(std::fabs(dStep - 2.0 * std::fabs(std::sin(dTurn / 2.0))) < 1e-6);
        }
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
}

void TestPositionSettings::longDwells()
{
    Ptp settings =
        movement({wayPoint(0, 0, 0.0, s_uiMax), wayPoint(1, 0, 50.0, s_uiMax), wayPoint(2, 0, 50.0, 9)},
                 EndBehaviourType::Inactive);
    QCOMPARE(settings.activeUntil(), s_uiMax);
    QVERIFY(settings.isActiveAt(s_uiMax));
    QCOMPARE(settings.getArivalTime(2), s_uiMax);
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
        QVERIFY(isNear(settings.getPositionAt(5), {3.0, 4.0}));
        QVERIFY(settings.headingAt(5) == 0.0 && settings.speedAt(5) == 0.0);
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
    }
}

QTEST_GUILESS_MAIN(TestPositionSettings)
#include "tst_positionsettings.moc"
