#include "scenariodataxml.h"

#include "commondataxml_names_p.h"
#include "scenariodataxml_p.h"
#include "scenariodataxml_references_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QXmlStreamWriter>

#include <algorithm>

namespace Simulation {

namespace {

/// The state of reading one emitter or network element.
struct ElementReading
{
    QXmlStreamReader& reader;
    ScenarioReferences& references;
    std::shared_ptr<SignalPackage> olderPackage; ///< for the timing of older documents
};

/// Reads the children that emitters and networks have in common.
bool readObjectChild(ElementReading& a_reading, QStringView a_sName, ScenarioObject& a_object)
{
    if (a_sName == s_sDescription) {
        a_object.setDescription(elementText(a_reading.reader).value_or(a_object.description()));
    } else if (a_sName == s_sFrequency) {
        std::unique_ptr<IFrequencySettings> settings(readFrequencySettings(a_reading.reader));
        if (settings || !a_reading.reader.hasError()) {
            a_object.setFrequencySettings(settings.release());
        }
    } else if (a_sName == s_sEmissionSettings) {
        // In a network's member, the element describes the emitter's own schedule, not
        // the schedule of the network.
        readEmissionSettings(a_reading.reader, *a_object.ScenarioObject::emissionSettings(),
                             a_reading.references);
    } else if (a_sName == s_sSignalPackage && a_reading.references.hasProvider()) {
        if (const auto sId = elementText(a_reading.reader)) {
            a_reading.olderPackage = a_reading.references.packageForId(*sId);
        }
    } else {
        return false;
    }
    return true;
}

bool readEmitterChild(ElementReading& a_reading, QStringView a_sName,
                      const std::shared_ptr<SzenarioEmitter>& a_emitter)
{
    if (a_sName == s_sClass) {
        a_emitter->setClass(elementText(a_reading.reader).value_or(a_emitter->getClass()));
    } else if (a_sName == s_sPosition) {
        std::unique_ptr<IPositionSettings> settings(CommonDataXml::readPositionSettings(a_reading.reader));
        if (settings || !a_reading.reader.hasError()) {
            a_emitter->setPositionSettings(settings.release());
        }
    } else if (a_sName == s_sTransmitter && a_emitter->getTranmitterSettings() != nullptr) {
        readTransmitterSettings(a_reading.reader, *a_emitter->getTranmitterSettings());
    } else if (a_sName == s_sTiming) {
        readTimingSettings2(a_reading.reader, a_emitter, a_reading.olderPackage, a_reading.references);
    } else if (a_sName == s_sEdwFile &&
               a_emitter->type() == ScenarioObject::ScenarioObjectType::ElintEmitter) {
        auto& elint = static_cast<ElintScenarioEmitter&>(*a_emitter);
        elint.SetEDWFile(elementText(a_reading.reader).value_or(elint.getEDWFile()));
    } else {
        return readObjectChild(a_reading, a_sName, *a_emitter);
    }
    return true;
}

void readColor(QXmlStreamReader& a_reader, ScenarioNetwork& a_network)
{
    const QColor color = QColor::fromString(elementText(a_reader).value_or(QString()));
    if (color.isValid()) {
        a_network.setColor(color);
    }
}

void readNetworkType(QXmlStreamReader& a_reader, ScenarioNetwork& a_network)
{
    const QString sType = elementText(a_reader).value_or(QString());
    const NetworkType eType = ScenarioDataXml::stringToNetworkType(sType);
    if (ScenarioDataXml::networkTypeToString(eType) == sType) {
        a_network.setNetworkType(eType);
    }
}

bool readNetworkChild(ElementReading& a_reading, QStringView a_sName,
                      const std::shared_ptr<ScenarioNetwork>& a_network)
{
    if (a_sName == s_sColor) {
        readColor(a_reading.reader, *a_network);
    } else if (a_sName == s_sNetworkType) {
        readNetworkType(a_reading.reader, *a_network);
    } else if (a_sName == s_sActivity) {
        readActivitySettings2(a_reading.reader, a_network, a_reading.olderPackage, a_reading.references);
    } else if (a_sName == s_sEmitter) {
        const bool bHead = a_reading.reader.attributes().hasAttribute(s_sHead);
        a_reading.references.addMember(a_network, elementText(a_reading.reader).value_or(QString()), bHead);
    } else {
        return readObjectChild(a_reading, a_sName, *a_network);
    }
    return true;
}

} // namespace

void ScenarioDataXml::readScenarioEmitter(QXmlStreamReader& a_reader, EmitterType a_eType,
                                          ScenarioReferences& a_references)
{
    const QXmlStreamAttributes attributes = a_reader.attributes();
    if (!attributes.hasAttribute(s_sId)) {
        skipElement(a_reader);
        return;
    }
    const QString sId = attributes.value(s_sId).toString();
    if (a_references.hasEmitter(sId)) {
        qsizetype& iElements = m_mergedIds[sId];
        iElements = std::max<qsizetype>(iElements, 1) + 1;
    }
    const auto emitter = a_references.emitterForId(sId, a_eType);
    if (!emitter) {
        a_reader.raiseError(Limits::exceeded(Limits::ScenarioObjects));
        return;
    }
    emitter->setActive(CommonDataXml::toBool(attributes.value(s_sActive)));
    if (attributes.hasAttribute(s_sName)) {
        emitter->setName(attributes.value(s_sName).toString());
    }
    // The attribute marks a default emitter, whatever its value.
    if (attributes.hasAttribute(s_sDefault)) {
        m_defaultEmitters.append(emitter);
    }
    a_references.link(emitter, attributes.value(s_sLinkTarget).toString());

    ElementReading reading{a_reader, a_references, nullptr};
    forEachChild(a_reader, [&](QStringView a_sName) { return readEmitterChild(reading, a_sName, emitter); });
}

void ScenarioDataXml::writeScenarioEmitter(QXmlStreamWriter& a_writer, const SzenarioEmitter& a_emitter,
                                           bool a_bDefault)
{
    const bool bElint = a_emitter.type() == ScenarioObject::ScenarioObjectType::ElintEmitter;
    a_writer.writeStartElement(bElint ? s_sElintEmitter : s_sEmitter);
    writeXmlAttribute(a_writer, s_sId, a_emitter.id());
    writeXmlAttribute(a_writer, s_sName, a_emitter.name());
    a_writer.writeAttribute(s_sActive, boolText(a_emitter.isActive()));
    if (a_bDefault) {
        a_writer.writeAttribute(s_sDefault, boolText(true));
    }
    if (const auto target = a_emitter.linkTargetEmitter()) {
        writeXmlAttribute(a_writer, s_sLinkTarget, target->id());
    }
    writeXmlTextElement(a_writer, s_sDescription, a_emitter.description());
    writeXmlTextElement(a_writer, s_sClass, a_emitter.getClass());
    if (const TransmitterSettings* pTransmitter = a_emitter.getTranmitterSettings()) {
        writeTransmitterSettings(a_writer, *pTransmitter);
    }
    writeFrequencySettings(a_writer, a_emitter.frequencySettings());
    writeEmissionSettings(a_writer, *a_emitter.ScenarioObject::emissionSettings());
    if (IPositionSettings* pPosition = a_emitter.positionSettings()) {
        a_writer.writeStartElement(s_sPosition);
        CommonDataXml::writePositionSettings(pPosition, a_writer);
        a_writer.writeEndElement();
    }
    if (bElint) {
        writeXmlTextElement(a_writer, s_sEdwFile,
                            static_cast<const ElintScenarioEmitter&>(a_emitter).getEDWFile());
    }
    a_writer.writeEndElement();
}

void ScenarioDataXml::readScenarioNetwork(QXmlStreamReader& a_reader, ScenarioReferences& a_references)
{
    const QXmlStreamAttributes attributes = a_reader.attributes();
    if (a_references.isFull()) {
        a_reader.raiseError(Limits::exceeded(Limits::ScenarioObjects));
        return;
    }
    const auto network = std::make_shared<ScenarioNetwork>(attributes.value(s_sId).toString());
    m_objects.insert(network);
    network->setActive(CommonDataXml::toBool(attributes.value(s_sActive)));
    if (attributes.hasAttribute(s_sName)) {
        network->setName(attributes.value(s_sName).toString());
    }
    ElementReading reading{a_reader, a_references, nullptr};
    forEachChild(a_reader, [&](QStringView a_sName) { return readNetworkChild(reading, a_sName, network); });
}

void ScenarioDataXml::writeScenarioNetwork(QXmlStreamWriter& a_writer, const ScenarioNetwork& a_network)
{
    a_writer.writeStartElement(s_sNetwork);
    writeXmlAttribute(a_writer, s_sId, a_network.id());
    writeXmlAttribute(a_writer, s_sName, a_network.name());
    a_writer.writeAttribute(s_sActive, boolText(a_network.isActive()));
    writeXmlTextElement(a_writer, s_sDescription, a_network.description());
    a_writer.writeTextElement(s_sColor, a_network.color().name());
    a_writer.writeTextElement(s_sNetworkType, networkTypeToString(a_network.networkType()));
    writeFrequencySettings(a_writer, a_network.frequencySettings());
    writeEmissionSettings(a_writer, *a_network.emissionSettings());
    bool bHead = true;
    const auto members = a_network.emitterList();
    for (const std::shared_ptr<SzenarioEmitter>& member : members) {
        a_writer.writeStartElement(s_sEmitter);
        if (bHead) {
            a_writer.writeAttribute(s_sHead, boolText(true));
            bHead = false;
        }
        writeXmlCharacters(a_writer, member->id());
        a_writer.writeEndElement();
    }
    a_writer.writeEndElement();
}

} // namespace Simulation
