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

void traceBreakOff(const XmlDocumentReader& a_document)
{
    if (const QString sError = a_document.errorString(); !sError.isEmpty()) {
        traceError(s_szSource, [&] { return QStringLiteral("Movements broke off: %1").arg(sError); });
    }
}

constexpr XmlRange s_longitudes{-180.0, 180.0, false, "degrees"};
constexpr XmlRange s_latitudes{-90.0, 90.0, false, "degrees"};

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

std::unique_ptr<IPositionSettings> readFixed(XmlReader& a_reader)
{
    TPos position;
    readXmlChildren(a_reader, position, s_coordinateFields);
    return std::make_unique<PositionSettingsFixed>(position);
}

using PositionPtr = std::unique_ptr<IPositionSettings>;

/// The forms of a position. `Occurs` says whether exactly one or at most one is expected.
template<XmlOccurs Occurs>
const XmlChild<PositionPtr> s_positionForms[] = {
    {s_sFixed, [](XmlReader& a_reader, PositionPtr& a_settings) { a_settings = readFixed(a_reader); },
     Occurs},
    {s_sMovement, [](XmlReader& a_reader, PositionPtr& a_settings) { a_settings = readMovement(a_reader); },
     Occurs},
};

} // namespace

std::unique_ptr<IPositionSettings> readPositionSettings(XmlReader& a_reader, bool a_bMayBeEmpty)
{
    PositionPtr settings;
    if (a_bMayBeEmpty) {
        readXmlChildren(a_reader, settings, s_positionForms<XmlOccurs::AtMostOneOf>);
    } else {
        readXmlChildren(a_reader, settings, s_positionForms<XmlOccurs::OneOf>);
    }
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

IPositionSettings* CommonDataXml::readPositionSettings(QXmlStreamReader& a_reader)
{
    XmlStreamReader reader(a_reader);
    return Simulation::readPositionSettings(reader, true).release();
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
