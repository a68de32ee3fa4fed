#include "commondataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "simulationdata/io/trace_p.h"
#include "simulationdata/positionsettingsfixed.h"
#include "simulationdata/positionsettingsptp.h"
#include "simulationdata/xml/xmldocumentreader_p.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QXmlStreamWriter>

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <optional>
#include <vector>

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/commondataxml";

/// A new movement has two points at this distance (degrees). The points of a document
/// replace both. When the document has no points, both remain.
constexpr double s_dDefaultOffset = 0.01;

void traceBreakOff(const XmlDocumentReader& a_document)
{
    if (const QString sError = a_document.errorString(); !sError.isEmpty()) {
        traceError(s_szSource, [&] { return QStringLiteral("Movements broke off: %1").arg(sError); });
    }
}

constexpr double s_dDefaultSpeed = 50.0; ///< km/h, of a last point that is not major

constexpr XmlRange s_longitudes{-180.0, 180.0, false, "degrees"};
constexpr XmlRange s_latitudes{-90.0, 90.0, false, "degrees"};
constexpr XmlRange s_speeds{0.0, std::numeric_limits<double>::infinity(), false, "km/h"};

} // namespace

const XmlField<TPos> s_coordinateFields[2] = {
    {s_sLon, [](XmlWriter& a_writer, const TPos& a_position) { a_writer.coordinate(a_position.longitude); },
     [](XmlReader& a_reader, const XmlText& a_text, TPos& a_position) {
         a_position.longitude = a_reader.number(a_text, s_longitudes);
     }},
    {s_sLat, [](XmlWriter& a_writer, const TPos& a_position) { a_writer.coordinate(a_position.latitude); },
     [](XmlReader& a_reader, const XmlText& a_text, TPos& a_position) {
         a_position.latitude = a_reader.number(a_text, s_latitudes);
     }},
};

namespace {

/// The attributes of a movement point. Speed and name count for a major point only, and
/// the attributes may have any order.
struct PointAttributes
{
    MovementPoint point;
    const XmlText* pDwellTime = nullptr;
    qsizetype iTransitionTime = -1; ///< offset of the attribute; -1: it is missing
    const XmlText* pSpeed = nullptr;
    const XmlText* pName = nullptr;
};

const XmlAttributeField<PointAttributes> s_pointAttributes[] = {
    {s_sDwellTime,
     [](XmlReader& a_reader, const XmlText& a_value, PointAttributes& a_attributes) {
         a_attributes.point.dwellTime = a_reader.unsignedNumber(a_value, s_milliseconds);
         a_attributes.pDwellTime = &a_value;
     }},
    {s_sTransitionTime,
     [](XmlReader& a_reader, const XmlText& a_value, PointAttributes& a_attributes) {
         a_attributes.point.transitionTime = a_reader.unsignedNumber(a_value, s_milliseconds);
         a_attributes.iTransitionTime = a_value.offset;
     }},
    {s_sMajor, [](XmlReader& a_reader, const XmlText& a_value,
                  PointAttributes& a_attributes) { a_attributes.point.major = a_reader.boolean(a_value); }},
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
        a_entry.message =
            QStringLiteral("Only a point with Major=\"true\" has a speed, a name and a dwell time: "
                           "the attribute is ignored.");
    });
}

/// Sets `*a_pTransitionTime` to the offset of that attribute; -1 when it is missing.
MovementPoint readMovementPoint(XmlReader& a_reader, qsizetype* a_pTransitionTime)
{
    PointAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_pointAttributes);
    MovementPoint& point = attributes.point;
    if (point.major) {
        point.speed = attributes.pSpeed != nullptr ? a_reader.number(*attributes.pSpeed, s_speeds) : 0.0;
        point.name = attributes.pName != nullptr ? attributes.pName->string() : QString();
    } else {
        reportIgnored(a_reader, attributes.pSpeed);
        reportIgnored(a_reader, attributes.pName);
        reportIgnored(a_reader, point.dwellTime != 0 ? attributes.pDwellTime : nullptr);
    }
    *a_pTransitionTime = attributes.iTransitionTime;
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

/// The points of one movement while it is read, and where their transition times are.
struct PointsReading
{
    QVector<MovementPoint> points;
    std::vector<qsizetype> transitionTimes; ///< offsets; filled only when deviations are reported
};

const XmlChild<PointsReading> s_pointElements[] = {
    {s_sPosition,
     [](XmlReader& a_reader, PointsReading& a_reading) {
         qsizetype iTransitionTime = -1;
         const MovementPoint point = readMovementPoint(a_reader, &iTransitionTime);
         if (a_reader.hasError()) {
             return;
         }
         a_reading.points.append(point);
         if (a_reader.deviations() != nullptr) {
             a_reading.transitionTimes.push_back(iTransitionTime);
         }
     },
     XmlOccurs::Several},
};

/// About how long a leg takes (ms). The plane of longitude and latitude, with the longitude
/// scaled by the cosine of the middle latitude, and a sphere of 6371 km; for legs up to
/// s_dShortLeg this is within 1 % of the geodesic. 0 for a speed (km/h) of 0 or below; no
/// value for a longer leg.
std::optional<double> roughTravelTime(const TPos& a_from, const TPos& a_to, double a_dSpeed)
{
    constexpr double dShortLeg = 2.0; // degrees
    constexpr double dHighLatitude = 80.0;
    constexpr double dKilometresPerDegree = 111.195;
    constexpr double dMillisecondsPerHour = 3'600'000.0;
    const double dMiddle = (a_from.latitude + a_to.latitude) / 2;
    const double dEast = (a_to.longitude - a_from.longitude) * std::cos(dMiddle * std::numbers::pi / 180.0);
    const double dDegrees = std::hypot(dEast, a_to.latitude - a_from.latitude);
    if (!(dDegrees <= dShortLeg && std::abs(dMiddle) <= dHighLatitude)) {
        return std::nullopt;
    }
    return a_dSpeed > 0.0 ? dDegrees * dKilometresPerDegree / a_dSpeed * dMillisecondsPerHour : 0.0;
}

/// Whether a written time differs from a calculated one by more than the share, and by
/// more than rounding.
bool differs(double a_dWritten, double a_dCalculated, double a_dShare)
{
    constexpr double dRounding = 2.0; // ms
    return std::abs(a_dWritten - a_dCalculated) > a_dShare * a_dCalculated + dRounding;
}

/// Reports transition times that contradict the speeds, which take precedence. Most are
/// recognised as right by a rough calculation, because a geodesic costs more than reading
/// the whole point.
void reportDerivedTimes(XmlReader& a_reader, const PointsReading& a_reading,
                        const PositionSettingsPtp& a_settings)
{
    constexpr double dRoughShare = 0.02;
    constexpr double dShare = 0.01;
    const auto& points = a_reading.points;
    if (a_reader.deviations() == nullptr || points.size() < 2) {
        return;
    }
    double dSpeed = s_dDefaultSpeed;
    for (qsizetype i = points.size() - 2; i >= 0; --i) {
        dSpeed = points[i + 1].major ? points[i + 1].speed : dSpeed;
        const qsizetype iOffset = a_reading.transitionTimes[static_cast<std::size_t>(i)];
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

std::unique_ptr<IPositionSettings> readFixed(XmlReader& a_reader)
{
    TPos position;
    readXmlChildren(a_reader, position, s_coordinateFields);
    return std::make_unique<PositionSettingsFixed>(position);
}

std::unique_ptr<IPositionSettings> readMovement(XmlReader& a_reader)
{
    auto settings = std::make_unique<PositionSettingsPtp>(TPos{}, s_dDefaultOffset);
    settings->setEndBehavior(readEndBehavior(a_reader));
    PointsReading reading;
    readXmlChildren(a_reader, reading, s_pointElements);
    if (reading.points.size() == 1) {
        settings->removeRow(1);
        settings->setPoint(0, reading.points.constFirst());
    } else {
        settings->setMovements(reading.points);
        reportDerivedTimes(a_reader, reading, *settings);
    }
    return settings;
}

using PositionPtr = std::unique_ptr<IPositionSettings>;

const XmlChild<PositionPtr> s_positionForms[] = {
    {s_sFixed, [](XmlReader& a_reader, PositionPtr& a_settings) { a_settings = readFixed(a_reader); },
     XmlOccurs::OneOf},
    {s_sMovement, [](XmlReader& a_reader, PositionPtr& a_settings) { a_settings = readMovement(a_reader); },
     XmlOccurs::OneOf},
};

} // namespace

std::unique_ptr<IPositionSettings> readPositionSettings(XmlReader& a_reader)
{
    PositionPtr settings;
    readXmlChildren(a_reader, settings, s_positionForms);
    return settings;
}

void writePositionSettings(XmlWriter& a_writer, IPositionSettings* a_pSettings)
{
    if (const auto* pMovement = dynamic_cast<PositionSettingsPtp*>(a_pSettings)) {
        a_writer.startElement(s_sMovement);
        a_writer.attribute(s_sEndBehavior, CommonDataXml::endBehaviorToString(pMovement->getEndBehavior()));
        writeMovements(a_writer, pMovement->getMovments());
        a_writer.endElement();
    } else if (a_pSettings != nullptr && a_pSettings->getType() == PositionSettingsType::Fixed) {
        a_writer.startElement(s_sFixed);
        writeXmlFields(a_writer, a_pSettings->getPosition(), s_coordinateFields);
        a_writer.endElement();
    }
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

EndBehaviourType readEndBehavior(XmlReader& a_reader)
{
    static constexpr QLatin1String s_values[] = {QLatin1String("STOP"), QLatin1String("RESTART"),
                                                 QLatin1String("INACTIVE")};
    static const XmlAttributeField<EndBehaviourType> s_fields[] = {
        {s_sEndBehavior,
         [](XmlReader& a_fieldReader, const XmlText& a_value, EndBehaviourType& a_eBehaviour) {
             a_eBehaviour = CommonDataXml::stringToEndBehavior(a_value.string());
             if (a_eBehaviour == EndBehaviourType::Stop && !isName(a_value.bytes, s_values[0])) {
                 a_fieldReader.reportUnknownValue(a_value, s_values, "\"STOP\" is used");
             }
         },
         XmlOccurs::Once},
    };
    EndBehaviourType eBehaviour = EndBehaviourType::Stop;
    readXmlAttributes(a_reader, eBehaviour, s_fields);
    return eBehaviour;
}

QString readText(XmlReader& a_reader, const QString& a_sFormer)
{
    const auto text = a_reader.text();
    return text ? text->string() : a_sFormer;
}

bool readMark(XmlReader& a_reader, const XmlText& a_value)
{
    if (a_value.bytes != "true" && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sIgnoredValue, a_value.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_value.bytes);
                a_entry.message =
                    QStringLiteral("The attribute counts as \"true\" whatever its value: remove it where "
                                   "it does not apply.");
            });
    }
    return true;
}

std::uint32_t readVersion(XmlReader& a_reader, const XmlText& a_value, std::uint32_t a_uiKnown)
{
    bool bNumber = false;
    const std::uint32_t uiVersion = readUInt32(a_value.bytes, &bNumber);
    if (!bNumber) {
        return a_reader.unsignedNumber(a_value); // reports the text
    }
    if (uiVersion == a_uiKnown || a_reader.deviations() == nullptr) {
        return uiVersion;
    }
    const bool bNewer = uiVersion > a_uiKnown;
    a_reader.deviations()->add(
        bNewer ? ReadingReport::s_sNewerVersion : ReadingReport::s_sOlderVersion, a_value.offset,
        [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_value.bytes);
            a_entry.message =
                (bNewer ? QStringLiteral(
                              "Version %1 is newer than %2, the newest that is known: what is new in it is "
                              "skipped.")
                        : QStringLiteral(
                              "Version %1 is older than %2: the document is read, and saved in version %2."))
                    .arg(QString::number(uiVersion), QString::number(a_uiKnown));
        });
    return uiVersion;
}

void reportMissingVersion(XmlReader& a_reader)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sOlderVersion, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.message =
                    QStringLiteral("The document names no version: it is read as one of version 0.");
            });
    }
}

void reportMissingId(XmlReader& a_reader)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(
            ReadingReport::s_sMissingId, a_reader.offset(), [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(a_reader.name());
                a_entry.message =
                    QStringLiteral("The element has no attribute \"ID\": it is skipped with its content.");
            });
    }
}

void reportMerged(XmlReader& a_reader, const XmlText& a_id)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(ReadingReport::s_sDuplicateId, a_id.offset, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_id.bytes);
            a_entry.message =
                QStringLiteral("An earlier element has this id: both are read as one object, and the "
                               "values of this element replace the earlier ones.");
        });
    }
}

void reportIgnoredElement(XmlReader& a_reader, const char* a_szMessage)
{
    if (a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(ReadingReport::s_sIgnoredValue, a_reader.offset(),
                                   [&](ReadingEntry& a_entry) {
                                       a_entry.found = shownText(a_reader.name());
                                       a_entry.message = QLatin1String(a_szMessage);
                                   });
    }
}

IPositionSettings* CommonDataXml::readPositionSettings(QXmlStreamReader& a_reader)
{
    XmlStreamReader reader(a_reader);
    return Simulation::readPositionSettings(reader).release();
}

void CommonDataXml::writePositionSettings(IPositionSettings* a_pSettings, QXmlStreamWriter& a_writer)
{
    XmlStreamWriter writer(a_writer);
    Simulation::writePositionSettings(writer, a_pSettings);
}

TPos CommonDataXml::readCoordinate(QXmlStreamReader& a_reader)
{
    XmlStreamReader reader(a_reader);
    TPos position;
    readXmlChildren(reader, position, s_coordinateFields);
    return position;
}

void CommonDataXml::writeCoordinate(const TPos& a_position, QXmlStreamWriter& a_writer)
{
    XmlStreamWriter writer(a_writer);
    writeXmlFields(writer, a_position, s_coordinateFields);
}

QVector<MovementPoint> CommonDataXml::readMovements(QXmlStreamReader& a_reader)
{
    XmlStreamReader reader(a_reader);
    return Simulation::readMovements(reader);
}

void CommonDataXml::writeMovements(const QVector<MovementPoint>& a_movements, QXmlStreamWriter& a_writer)
{
    XmlStreamWriter writer(a_writer);
    Simulation::writeMovements(writer, a_movements);
}

QString CommonDataXml::xmlForMovements(const QVector<MovementPoint>& a_movements)
{
    QByteArray xml;
    XmlTextWriter writer(xml);
    writer.startDocument(false);
    writer.startElement(s_sMovementsXml);
    Simulation::writeMovements(writer, a_movements);
    writer.endElement();
    writer.endDocument();
    return QString::fromUtf8(xml);
}

QVector<MovementPoint> CommonDataXml::movementsForXml(const QString& a_sXml)
{
    XmlDocumentReader document(a_sXml);
    QVector<MovementPoint> movements;
    if (document.readRoot()) {
        movements = Simulation::readMovements(document.reader());
        document.readToEnd();
    }
    traceBreakOff(document);
    return movements;
}

QString CommonDataXml::endBehaviorToString(EndBehaviourType a_eBehaviour)
{
    switch (a_eBehaviour) {
    case EndBehaviourType::Stop:
        return QStringLiteral("STOP");
    case EndBehaviourType::Inactive:
        return QStringLiteral("INACTIVE");
    case EndBehaviourType::Restart:
        break;
    }
    return QStringLiteral("RESTART");
}

EndBehaviourType CommonDataXml::stringToEndBehavior(QStringView a_sText)
{
    if (a_sText == u"RESTART") {
        return EndBehaviourType::Restart;
    }
    return a_sText == u"INACTIVE" ? EndBehaviourType::Inactive : EndBehaviourType::Stop;
}

bool CommonDataXml::toBool(QStringView a_sText)
{
    return containsTrue(a_sText);
}

} // namespace Simulation
