#include "commondataxml_p.h"

#include "commondataxml_names_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/positionsettingsptp.h"

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <optional>
#include <vector>

namespace Simulation {

namespace {

/// A new movement has two points at this distance (degrees). The points of a document
/// replace both. When the document has no points, both remain.
constexpr double s_dDefaultOffset = 0.01;

constexpr double s_dDefaultSpeed = 50.0; ///< km/h, of a last point that is not major
constexpr XmlRange s_speeds{0.0, std::numeric_limits<double>::infinity(), false, "km/h"};

/// The attributes of a movement point. Speed and name count for a major point only, and
/// the attributes may have any order.
struct PointAttributes
{
    MovementPoint point;
    qsizetype iDwellTime = -1;      ///< offset of the attribute; -1: it is missing
    qsizetype iTransitionTime = -1; ///< the same
    qsizetype iMajor = -1;          ///< the same
    const XmlText* pSpeed = nullptr;
    const XmlText* pName = nullptr;
};

const XmlAttributeField<PointAttributes> s_pointAttributes[] = {
    {s_sDwellTime,
     [](XmlReader& a_reader, const XmlText& a_value, PointAttributes& a_attributes) {
         a_attributes.point.dwellTime = a_reader.unsignedNumber(a_value, s_milliseconds);
         a_attributes.iDwellTime = a_value.offset;
     },
     XmlOccurs::Once},
    {s_sTransitionTime,
     [](XmlReader& a_reader, const XmlText& a_value, PointAttributes& a_attributes) {
         a_attributes.point.transitionTime = a_reader.unsignedNumber(a_value, s_milliseconds);
         a_attributes.iTransitionTime = a_value.offset;
     },
     XmlOccurs::Once},
    {s_sMajor,
     [](XmlReader& a_reader, const XmlText& a_value, PointAttributes& a_attributes) {
         a_attributes.point.major = a_reader.boolean(a_value);
         a_attributes.iMajor = a_value.offset;
     },
     XmlOccurs::Once},
    {s_sSpeed, [](XmlReader& /*a_reader*/, const XmlText& a_value,
                  PointAttributes& a_attributes) { a_attributes.pSpeed = &a_value; }},
    {s_sName, [](XmlReader& /*a_reader*/, const XmlText& a_value,
                 PointAttributes& a_attributes) { a_attributes.pName = &a_value; }},
};

/// Reports an attribute that has no effect at a minor point.
void reportIgnored(XmlReader& a_reader, const XmlText* a_pValue)
{
    if (a_pValue == nullptr || a_reader.deviations() == nullptr) {
        return;
    }
    a_reader.deviations()->add(ReadingReport::s_sIgnoredValue, a_pValue->offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_pValue->bytes);
        a_entry.message = QStringLiteral("Only a point with Major=\"true\" has a speed and a name: "
                                         "the attribute is ignored.");
    });
}

/// Reports an attribute that every major point has.
void reportMissing(XmlReader& a_reader, const XmlText* a_pValue, const char* a_szName)
{
    if (a_pValue == nullptr && a_reader.isCompletenessExpected()) {
        a_reader.deviations()->add(
            ReadingReport::s_sMissingAttribute, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.message =
                    QStringLiteral(
                        "The attribute \"%1\" is missing: a major point has one, and 0 or an empty text "
                        "is used.")
                        .arg(QLatin1String(a_szName));
            });
    }
}

/// Where the attributes of a point are; -1 for a missing one.
struct PointOffsets
{
    qsizetype transitionTime = -1;
    qsizetype major = -1;
    qsizetype dwellTime = -1;
};

MovementPoint readMovementPoint(XmlReader& a_reader, PointOffsets& a_offsets)
{
    PointAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_pointAttributes);
    MovementPoint& point = attributes.point;
    if (point.major) {
        point.speed = attributes.pSpeed != nullptr ? a_reader.number(*attributes.pSpeed, s_speeds) : 0.0;
        point.name = attributes.pName != nullptr ? attributes.pName->string() : QString();
        reportMissing(a_reader, attributes.pSpeed, "Speed");
        reportMissing(a_reader, attributes.pName, "Name");
    } else {
        reportIgnored(a_reader, attributes.pSpeed);
        reportIgnored(a_reader, attributes.pName);
    }
    a_offsets = {attributes.iTransitionTime, attributes.iMajor, attributes.iDwellTime};
    readXmlChildren(a_reader, point.position, s_coordinateFields);
    return point;
}

void writeMovementPoint(XmlWriter& a_writer, const MovementPoint& a_point)
{
    a_writer.startElement(s_sPosition);
    a_writer.wholeAttribute(s_sDwellTime, a_point.dwellTime);
    a_writer.wholeAttribute(s_sTransitionTime, a_point.transitionTime);
    a_writer.booleanAttribute(s_sMajor, a_point.major);
    if (a_point.major) {
        a_writer.numberAttribute(s_sSpeed, a_point.speed);
        a_writer.attribute(s_sName, a_point.name);
    }
    writeXmlFields(a_writer, a_point.position, s_coordinateFields);
    a_writer.endElement();
}

/// The points of one movement while it is read, and where they are.
struct PointsReading
{
    QVector<MovementPoint> points;
    std::vector<PointOffsets> offsets; ///< filled only when deviations are reported
};

const XmlChild<PointsReading> s_pointElements[] = {
    {s_sPosition,
     [](XmlReader& a_reader, PointsReading& a_reading) {
         PointOffsets offsets;
         const MovementPoint point = readMovementPoint(a_reader, offsets);
         if (a_reader.hasError()) {
             return;
         }
         a_reading.points.append(point);
         if (a_reader.deviations() != nullptr) {
             a_reading.offsets.push_back(offsets);
         }
     },
     XmlOccurs::Several},
};

/// About how long a leg takes (ms), without the cost of a geodesic: the length of the leg on
/// the ellipsoid's tangent plane at the middle latitude phi, with the radii of curvature
/// M = a (1 - e2) / (1 - e2 sin2 phi)^1.5 along the meridian and
/// N = a / (1 - e2 sin2 phi)^0.5 across it (WGS 84). Within 0.02 % of the geodesic for legs
/// up to 2 degrees and latitudes up to 80 degrees; no value for others. 0 for a speed (km/h)
/// of 0 or below.
std::optional<double> roughTravelTime(const TPos& a_from, const TPos& a_to, double a_dSpeed)
{
    constexpr double dLongestLeg = 2.0; // degrees
    constexpr double dHighestLatitude = 80.0;
    constexpr double dRadius = 6378.137;           // a (km)
    constexpr double dEccentricity2 = 0.006694380; // e2
    constexpr double dRadiansPerDegree = std::numbers::pi / 180.0;
    constexpr double dMillisecondsPerHour = 3'600'000.0;
    const double dMiddle = (a_from.latitude + a_to.latitude) / 2;
    const double dNorth = a_to.latitude - a_from.latitude;
    const double dEast = a_to.longitude - a_from.longitude;
    if (!(std::abs(dNorth) <= dLongestLeg && std::abs(dEast) <= dLongestLeg &&
          std::abs(dMiddle) <= dHighestLatitude)) {
        return std::nullopt;
    }
    const double dSine = std::sin(dMiddle * dRadiansPerDegree);
    const double dFactor = 1.0 / (1.0 - dEccentricity2 * dSine * dSine);
    const double dAcross = dRadius * std::sqrt(dFactor) * std::sqrt(1.0 - dSine * dSine); // N cos(phi)
    const double dAlong = dRadius * (1.0 - dEccentricity2) * dFactor * std::sqrt(dFactor);
    const double dKilometres = std::hypot(dAcross * dEast, dAlong * dNorth) * dRadiansPerDegree;
    return a_dSpeed > 0.0 ? dKilometres / a_dSpeed * dMillisecondsPerHour : 0.0;
}

/// Whether a written time differs from a calculated one by more than the share, and by
/// more than rounding.
bool differs(double a_dWritten, double a_dCalculated, double a_dShare)
{
    constexpr double dRounding = 2.0; // ms
    return std::abs(a_dWritten - a_dCalculated) > a_dShare * a_dCalculated + dRounding;
}

/// Reports transition times that differ from those of the speeds, which take precedence, by
/// more than 0.1 %. A geodesic costs more than reading a point, so times that agree with the
/// rough calculation are accepted first.
void reportDerivedTimes(XmlReader& a_reader, const PointsReading& a_reading,
                        const PositionSettingsPtp& a_settings)
{
    constexpr double dRoughShare = 0.0008;
    constexpr double dShare = 0.001;
    const auto& points = a_reading.points;
    if (a_reader.deviations() == nullptr || points.size() < 2) {
        return;
    }
    double dSpeed = s_dDefaultSpeed;
    for (qsizetype i = points.size() - 2; i >= 0; --i) {
        dSpeed = points[i + 1].major ? points[i + 1].speed : dSpeed;
        const qsizetype iOffset = a_reading.offsets[static_cast<std::size_t>(i)].transitionTime;
        const double dWritten = points[i].transitionTime;
        const auto rough = roughTravelTime(points[i].position, points[i + 1].position, dSpeed);
        if (iOffset < 0 || (rough && !differs(dWritten, *rough, dRoughShare))) {
            continue;
        }
        const double dCalculated = a_settings.getMovments()[i].transitionTime;
        if (differs(dWritten, dCalculated, dShare)) {
            a_reader.deviations()->add(ReadingReport::s_sDerivedValue, iOffset, [&](ReadingEntry& a_entry) {
                a_entry.found = QString::number(points[i].transitionTime);
                a_entry.message =
                    QStringLiteral("The time follows from the distance and the speed of the next major "
                                   "point, %1 km/h: %2 ms are used.")
                        .arg(QString::number(dSpeed), QString::number(dCalculated, 'f', 0));
            });
        }
    }
}

/// Reports a first or last point that is not major, because a movement makes it major, and
/// the dwell times of the other minor points, because they are not kept.
void reportMinorPoints(XmlReader& a_reader, const PointsReading& a_reading)
{
    if (a_reader.deviations() == nullptr || a_reading.points.size() < 2) {
        return;
    }
    for (qsizetype i = 1; i < a_reading.points.size() - 1; ++i) {
        const MovementPoint& point = a_reading.points[i];
        if (!point.major && point.dwellTime != 0) {
            const qsizetype iOffset = a_reading.offsets[static_cast<std::size_t>(i)].dwellTime;
            a_reader.deviations()->add(ReadingReport::s_sIgnoredValue, iOffset, [&](ReadingEntry& a_entry) {
                a_entry.found = QString::number(point.dwellTime);
                a_entry.message = QStringLiteral(
                    "Only a point with Major=\"true\" has a dwell time: the attribute is ignored.");
            });
        }
    }
    for (const qsizetype i : {qsizetype{0}, a_reading.points.size() - 1}) {
        const qsizetype iOffset = a_reading.offsets[static_cast<std::size_t>(i)].major;
        if (!a_reading.points[i].major && iOffset >= 0) {
            a_reader.deviations()->add(ReadingReport::s_sIgnoredValue, iOffset, [&](ReadingEntry& a_entry) {
                a_entry.found = QStringLiteral("false");
                a_entry.message =
                    QStringLiteral("The first and the last point are always major: the value is ignored.");
            });
        }
    }
}

/// Reports the transition time of a movement of one point, which leads nowhere.
void reportSinglePoint(XmlReader& a_reader, const PointsReading& a_reading)
{
    if (a_reader.deviations() != nullptr && a_reading.points.constFirst().transitionTime != 0) {
        a_reader.deviations()->add(ReadingReport::s_sDerivedValue, a_reading.offsets.front().transitionTime,
                                   [&](ReadingEntry& a_entry) {
                                       a_entry.found =
                                           QString::number(a_reading.points.constFirst().transitionTime);
                                       a_entry.message =
                                           QStringLiteral("The movement has one point only: 0 ms are used.");
                                   });
    }
}

} // namespace

std::unique_ptr<IPositionSettings> readMovement(XmlReader& a_reader)
{
    auto settings = std::make_unique<PositionSettingsPtp>(TPos{}, s_dDefaultOffset);
    settings->setEndBehavior(readEndBehavior(a_reader));
    PointsReading reading;
    readXmlChildren(a_reader, reading, s_pointElements);
    if (reading.points.size() == 1) {
        settings->removeRow(1);
        settings->setPoint(0, reading.points.constFirst());
        reportSinglePoint(a_reader, reading);
    } else {
        settings->setMovements(reading.points);
        reportMinorPoints(a_reader, reading);
        reportDerivedTimes(a_reader, reading, *settings);
    }
    return settings;
}

QVector<MovementPoint> readMovements(XmlReader& a_reader)
{
    PointsReading reading;
    readXmlChildren(a_reader, reading, s_pointElements);
    return reading.points;
}

void writeMovements(XmlWriter& a_writer, const QVector<MovementPoint>& a_movements)
{
    for (const MovementPoint& point : a_movements) {
        writeMovementPoint(a_writer, point);
    }
}

} // namespace Simulation
