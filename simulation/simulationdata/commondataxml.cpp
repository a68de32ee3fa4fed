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

#include <memory>

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

IPositionSettings* readFixed(QXmlStreamReader& a_reader)
{
    return std::make_unique<PositionSettingsFixed>(CommonDataXml::readCoordinate(a_reader)).release();
}

IPositionSettings* readMovement(QXmlStreamReader& a_reader)
{
    auto settings = std::make_unique<PositionSettingsPtp>(TPos{}, s_dDefaultOffset);
    const QXmlStreamAttributes attributes = a_reader.attributes();
    settings->setEndBehavior(CommonDataXml::stringToEndBehavior(attributes.value(s_sEndBehavior)));
    const QVector<MovementPoint> movements = CommonDataXml::readMovements(a_reader);
    if (movements.size() == 1) {
        settings->removeRow(1);
        settings->setPoint(0, movements.constFirst());
    } else {
        settings->setMovements(movements);
    }
    return settings.release();
}

MovementPoint readMovementPoint(QXmlStreamReader& a_reader)
{
    MovementPoint point;
    const QXmlStreamAttributes attributes = a_reader.attributes();
    point.dwellTime = readUInt32(attributes.value(s_sDwellTime));
    point.transitionTime = readUInt32(attributes.value(s_sTransitionTime));
    point.major = CommonDataXml::toBool(attributes.value(s_sMajor));
    if (point.major) {
        point.speed = readDouble(attributes.value(s_sSpeed));
        point.name = attributes.value(s_sName).toString();
    }
    point.position = CommonDataXml::readCoordinate(a_reader);
    return point;
}

void writeMovementPoint(const MovementPoint& a_point, QXmlStreamWriter& a_writer)
{
    a_writer.writeStartElement(s_sPosition);
    a_writer.writeAttribute(s_sDwellTime, QString::number(a_point.dwellTime));
    a_writer.writeAttribute(s_sTransitionTime, QString::number(a_point.transitionTime));
    a_writer.writeAttribute(s_sMajor, boolText(a_point.major));
    if (a_point.major) {
        a_writer.writeAttribute(s_sSpeed, numberText(a_point.speed));
        writeXmlAttribute(a_writer, s_sName, a_point.name);
    }
    CommonDataXml::writeCoordinate(a_point.position, a_writer);
    a_writer.writeEndElement();
}

} // namespace

IPositionSettings* CommonDataXml::readPositionSettings(QXmlStreamReader& a_reader)
{
    std::unique_ptr<IPositionSettings> settings;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sFixed) {
            settings.reset(readFixed(a_reader));
        } else if (a_sName == s_sMovement) {
            settings.reset(readMovement(a_reader));
        } else {
            return false;
        }
        return true;
    });
    return settings.release();
}

void CommonDataXml::writePositionSettings(IPositionSettings* a_pSettings, QXmlStreamWriter& a_writer)
{
    if (const auto* pMovement = dynamic_cast<PositionSettingsPtp*>(a_pSettings)) {
        a_writer.writeStartElement(s_sMovement);
        a_writer.writeAttribute(s_sEndBehavior, endBehaviorToString(pMovement->getEndBehavior()));
        writeMovements(pMovement->getMovments(), a_writer);
        a_writer.writeEndElement();
    } else if (a_pSettings != nullptr && a_pSettings->getType() == PositionSettingsType::Fixed) {
        a_writer.writeStartElement(s_sFixed);
        writeCoordinate(a_pSettings->getPosition(), a_writer);
        a_writer.writeEndElement();
    }
}

TPos readCoordinate(QXmlStreamReader& a_reader, const QString& a_sLongitude, const QString& a_sLatitude)
{
    TPos position;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == a_sLongitude) {
            position.longitude = readDouble(elementText(a_reader).value_or(QString()));
        } else if (a_sName == a_sLatitude) {
            position.latitude = readDouble(elementText(a_reader).value_or(QString()));
        } else {
            return false;
        }
        return true;
    });
    return position;
}

TPos CommonDataXml::readCoordinate(QXmlStreamReader& a_reader)
{
    return Simulation::readCoordinate(a_reader, s_sLon, s_sLat);
}

void CommonDataXml::writeCoordinate(const TPos& a_position, QXmlStreamWriter& a_writer)
{
    a_writer.writeTextElement(s_sLon, coordinateText(a_position.longitude));
    a_writer.writeTextElement(s_sLat, coordinateText(a_position.latitude));
}

QVector<MovementPoint> CommonDataXml::readMovements(QXmlStreamReader& a_reader)
{
    QVector<MovementPoint> movements;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName != s_sPosition) {
            return false;
        }
        const MovementPoint point = readMovementPoint(a_reader);
        if (!a_reader.hasError()) {
            movements.append(point);
        }
        return true;
    });
    return movements;
}

void CommonDataXml::writeMovements(const QVector<MovementPoint>& a_movements, QXmlStreamWriter& a_writer)
{
    for (const MovementPoint& point : a_movements) {
        writeMovementPoint(point, a_writer);
    }
}

QString CommonDataXml::xmlForMovements(const QVector<MovementPoint>& a_movements)
{
    QString sXml;
    QXmlStreamWriter writer(&sXml);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(s_sMovementsXml);
    writeMovements(a_movements, writer);
    writer.writeEndElement();
    writer.writeEndDocument();
    return sXml;
}

QVector<MovementPoint> CommonDataXml::movementsForXml(const QString& a_sXml)
{
    XmlDocumentReader document(a_sXml);
    if (!document.stream().readNextStartElement()) {
        traceBreakOff(document);
        return {};
    }
    QVector<MovementPoint> movements = readMovements(document.stream());
    document.readToEnd();
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
    return a_sText.contains(u"true", Qt::CaseInsensitive);
}

} // namespace Simulation
