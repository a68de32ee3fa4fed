#include "scenariodataxml.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "scenariodataxml_p.h"
#include "scenariodataxml_references_p.h"
#include "simulationdata/elintscenarioemitter.h"
#include "simulationdata/ifrequencysettings.h"
#include "simulationdata/ipositionsettings.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QSet>

#include <algorithm>
#include <span>

namespace Simulation {

namespace {

/// One emitter or network while it is read.
template<typename Object>
struct ObjectReading
{
    std::shared_ptr<Object> object;
    ScenarioReferences& references;
    std::shared_ptr<SignalPackage> olderPackage; ///< for the timing of older documents
    QSet<QString> members;                       ///< of a network, if deviations are reported
    bool hasHead = false;                        ///< the same
};

using EmitterReading = ObjectReading<SzenarioEmitter>;
using NetworkReading = ObjectReading<ScenarioNetwork>;

// The children that emitters and networks have in common.

template<typename Reading>
void readDescription(XmlReader& a_reader, Reading& a_reading)
{
    a_reading.object->setDescription(readText(a_reader, a_reading.object->description()));
}

template<typename Reading>
void readFrequency(XmlReader& a_reader, Reading& a_reading)
{
    std::unique_ptr<IFrequencySettings> settings = readFrequencySettings(a_reader);
    if (settings || !a_reader.hasError()) {
        a_reading.object->setFrequencySettings(settings.release());
    }
}

template<typename Reading>
void readSchedule(XmlReader& a_reader, Reading& a_reading)
{
    // The element in a member describes the emitter's own schedule, not the
    // network's.
    readEmissionSettings(a_reader, *a_reading.object->ScenarioObject::emissionSettings(),
                         a_reading.references);
}

template<typename Reading>
void readOlderPackage(XmlReader& a_reader, Reading& a_reading)
{
    if (!a_reading.references.hasProvider()) {
        a_reader.skip();
    } else if (const auto id = a_reader.text()) {
        a_reading.olderPackage = a_reading.references.packageForId(a_reader, *id);
    }
}

void readPosition(XmlReader& a_reader, EmitterReading& a_reading)
{
    std::unique_ptr<IPositionSettings> settings = readPositionSettings(a_reader, false);
    if (settings || !a_reader.hasError()) {
        a_reading.object->setPositionSettings(settings.release());
    }
}

/// Only an ELINT emitter has the last one.
const XmlChild<EmitterReading> s_emitterElements[] = {
    {s_sDescription, &readDescription<EmitterReading>, XmlOccurs::Once},
    {s_sClass,
     [](XmlReader& a_reader, EmitterReading& a_reading) {
         a_reading.object->setClass(readText(a_reader, a_reading.object->getClass()));
     },
     XmlOccurs::Once},
    {s_sTransmitter,
     [](XmlReader& a_reader, EmitterReading& a_reading) {
         if (TransmitterSettings* const pSettings = a_reading.object->getTranmitterSettings()) {
             readTransmitterSettings(a_reader, *pSettings);
         } else {
             a_reader.skip();
         }
     },
     XmlOccurs::Once},
    {s_sFrequency, &readFrequency<EmitterReading>, XmlOccurs::Once},
    {s_sSignalPackage, &readOlderPackage<EmitterReading>},
    {s_sTiming,
     [](XmlReader& a_reader, EmitterReading& a_reading) {
         readTimingSettings2(a_reader, a_reading.object, a_reading.olderPackage, a_reading.references);
     }},
    {s_sEmissionSettings, &readSchedule<EmitterReading>, XmlOccurs::Once},
    {s_sPosition, &readPosition, XmlOccurs::Once},
    {s_sEdwFile,
     [](XmlReader& a_reader, EmitterReading& a_reading) {
         const auto elint = std::dynamic_pointer_cast<ElintScenarioEmitter>(a_reading.object);
         if (elint) {
             elint->SetEDWFile(readText(a_reader, elint->getEDWFile()));
         } else {
             a_reader.skip(); // the id is that of an emitter of the other kind
         }
     },
     XmlOccurs::Once},
};

void readColor(XmlReader& a_reader, NetworkReading& a_reading)
{
    const auto text = a_reader.text();
    const QColor color = QColor::fromString(text ? text->string() : QString());
    if (color.isValid()) {
        a_reading.object->setColor(color);
    } else if (text && a_reader.deviations() != nullptr) {
        a_reader.deviations()->add(ReadingReport::s_sNotAColor, text->offset, [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(text->bytes);
            a_entry.message =
                QStringLiteral("The text is not a colour: %1 is used.").arg(a_reading.object->color().name());
        });
    }
}

void readNetworkType(XmlReader& a_reader, NetworkReading& a_reading)
{
    static constexpr QLatin1String s_types[] = {s_sStar, s_sHierarchical};
    const auto text = a_reader.text();
    if (!text) {
        return;
    }
    if (isName(text->bytes, s_sStar) || isName(text->bytes, s_sHierarchical)) {
        a_reading.object->setNetworkType(ScenarioDataXml::stringToNetworkType(text->string()));
    } else {
        a_reader.reportUnknownValue(*text, s_types, "the type stays unchanged");
    }
}

/// Finds out whether a member is the head. The presence of the attribute counts, whatever
/// its value.
const XmlAttributeField<bool> s_memberAttributes[] = {
    {s_sHead, [](XmlReader& a_reader, const XmlText& a_value,
                 bool& a_bHead) { a_bHead = readMark(a_reader, a_value); }},
};

void reportMember(XmlReader& a_reader, qsizetype a_iOffset, const XmlText& a_id, const char* a_szMessage)
{
    a_reader.deviations()->add(ReadingReport::s_sDuplicateElement, a_iOffset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_id.bytes);
        a_entry.message = QLatin1String(a_szMessage);
    });
}

void readMember(XmlReader& a_reader, NetworkReading& a_reading)
{
    const qsizetype iOffset = a_reader.offset();
    bool bHead = false;
    readXmlAttributes(a_reader, bHead, s_memberAttributes);
    const auto id = a_reader.text();
    if (!id) {
        return;
    }
    a_reading.references.addMember(a_reading.object, *id, bHead);
    if (a_reader.deviations() != nullptr) {
        const QString sId = id->string();
        if (a_reading.members.contains(sId)) {
            reportMember(a_reader, iOffset, *id,
                         "The network has this member already: the element adds none.");
        } else if (bHead && a_reading.hasHead) {
            reportMember(a_reader, iOffset, *id, "The network has a head already: the last one is the head.");
        }
        a_reading.members.insert(sId);
        a_reading.hasHead = a_reading.hasHead || bHead;
    }
}

const XmlChild<NetworkReading> s_networkElements[] = {
    {s_sDescription, &readDescription<NetworkReading>, XmlOccurs::Once},
    {s_sColor, &readColor, XmlOccurs::Once},
    {s_sNetworkType, &readNetworkType, XmlOccurs::Once},
    {s_sFrequency, &readFrequency<NetworkReading>, XmlOccurs::Once},
    {s_sSignalPackage, &readOlderPackage<NetworkReading>},
    {s_sActivity,
     [](XmlReader& a_reader, NetworkReading& a_reading) {
         readActivitySettings2(a_reader, a_reading.object, a_reading.olderPackage, a_reading.references);
     }},
    {s_sEmissionSettings, &readSchedule<NetworkReading>, XmlOccurs::Once},
    {s_sEmitter, &readMember, XmlOccurs::AnyTimes},
};

/// The attributes of an emitter or network. They may have any order, and an emitter is
/// found by its id before the others are set.
struct ObjectAttributes
{
    const XmlText* pId = nullptr;
    const XmlText* pName = nullptr;
    const XmlText* pLinkTarget = nullptr;
    bool isActive = false;
    bool isDefault = false;
};

template<auto Member>
void takeText(XmlReader& /*a_reader*/, const XmlText& a_value, ObjectAttributes& a_attributes)
{
    a_attributes.*Member = &a_value;
}

void readActive(XmlReader& a_reader, const XmlText& a_value, ObjectAttributes& a_attributes)
{
    a_attributes.isActive = a_reader.boolean(a_value);
}

const XmlAttributeField<ObjectAttributes> s_emitterAttributes[] = {
    {s_sId, &takeText<&ObjectAttributes::pId>}, // its absence is reported as such
    {s_sName, &takeText<&ObjectAttributes::pName>, XmlOccurs::Once},
    {s_sActive, &readActive, XmlOccurs::Once},
    {s_sDefault,
     [](XmlReader& a_reader, const XmlText& a_value, ObjectAttributes& a_attributes) {
         a_attributes.isDefault = readMark(a_reader, a_value);
     }},
    {s_sLinkTarget, &takeText<&ObjectAttributes::pLinkTarget>},
};

const XmlAttributeField<ObjectAttributes> s_networkAttributes[] = {
    {s_sId, &takeText<&ObjectAttributes::pId>, XmlOccurs::Once},
    {s_sName, &takeText<&ObjectAttributes::pName>, XmlOccurs::Once},
    {s_sActive, &readActive, XmlOccurs::Once},
};

} // namespace

void ScenarioDataXml::readScenarioEmitter(XmlReader& a_reader, EmitterType a_eType,
                                          ScenarioReferences& a_references)
{
    ObjectAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_emitterAttributes);
    if (attributes.pId == nullptr) {
        reportMissingId(a_reader);
        a_reader.skip();
        return;
    }
    const QString sId = attributes.pId->string();
    if (a_references.hasEmitter(sId)) {
        qsizetype& iElements = m_mergedIds[sId];
        iElements = std::max<qsizetype>(iElements, 1) + 1;
        reportMerged(a_reader, *attributes.pId);
    }
    const auto emitter = a_references.emitterForId(sId, a_eType);
    if (!emitter) {
        a_reader.raiseError(Limits::exceeded(Limits::ScenarioObjects));
        return;
    }
    emitter->setActive(attributes.isActive);
    if (attributes.pName != nullptr) {
        emitter->setName(attributes.pName->string());
    }
    if (attributes.isDefault) {
        m_defaultEmitters.append(emitter);
    }
    if (attributes.pLinkTarget != nullptr) {
        a_references.link(emitter, *attributes.pLinkTarget);
    }
    EmitterReading reading{emitter, a_references, {}, {}};
    const bool bElint = a_eType == EmitterType::ElintEmitter ||
                        emitter->type() == ScenarioObject::ScenarioObjectType::ElintEmitter;
    const std::span elements(s_emitterElements);
    readXmlChildren(a_reader, reading, bElint ? elements : elements.first(elements.size() - 1));
}

void ScenarioDataXml::writeScenarioEmitter(XmlWriter& a_writer, const SzenarioEmitter& a_emitter,
                                           bool a_bDefault)
{
    const bool bElint = a_emitter.type() == ScenarioObject::ScenarioObjectType::ElintEmitter;
    a_writer.startElement(bElint ? s_sElintEmitter : s_sEmitter);
    a_writer.attribute(s_sId, a_emitter.id());
    a_writer.attribute(s_sName, a_emitter.name());
    a_writer.booleanAttribute(s_sActive, a_emitter.isActive());
    if (a_bDefault) {
        a_writer.booleanAttribute(s_sDefault, true);
    }
    if (const auto target = a_emitter.linkTargetEmitter()) {
        a_writer.attribute(s_sLinkTarget, target->id());
    }
    a_writer.textElement(s_sDescription, a_emitter.description());
    a_writer.textElement(s_sClass, a_emitter.getClass());
    if (const TransmitterSettings* pTransmitter = a_emitter.getTranmitterSettings()) {
        writeTransmitterSettings(a_writer, *pTransmitter);
    }
    writeFrequencySettings(a_writer, a_emitter.frequencySettings());
    writeEmissionSettings(a_writer, *a_emitter.ScenarioObject::emissionSettings());
    if (IPositionSettings* pPosition = a_emitter.positionSettings()) {
        a_writer.startElement(s_sPosition);
        writePositionSettings(a_writer, pPosition);
        a_writer.endElement();
    }
    if (bElint) {
        a_writer.textElement(s_sEdwFile, static_cast<const ElintScenarioEmitter&>(a_emitter).getEDWFile());
    }
    a_writer.endElement();
}

void ScenarioDataXml::readScenarioNetwork(XmlReader& a_reader, ScenarioReferences& a_references)
{
    if (a_references.isFull()) {
        a_reader.raiseError(Limits::exceeded(Limits::ScenarioObjects));
        return;
    }
    ObjectAttributes attributes;
    readXmlAttributes(a_reader, attributes, s_networkAttributes);
    const auto network =
        std::make_shared<ScenarioNetwork>(attributes.pId != nullptr ? attributes.pId->string() : QString());
    m_objects.insert(network);
    network->setActive(attributes.isActive);
    if (attributes.pName != nullptr) {
        network->setName(attributes.pName->string());
    }
    NetworkReading reading{network, a_references, {}, {}};
    readXmlChildren(a_reader, reading, s_networkElements);
}

void ScenarioDataXml::writeScenarioNetwork(XmlWriter& a_writer, const ScenarioNetwork& a_network)
{
    a_writer.startElement(s_sNetwork);
    a_writer.attribute(s_sId, a_network.id());
    a_writer.attribute(s_sName, a_network.name());
    a_writer.booleanAttribute(s_sActive, a_network.isActive());
    a_writer.textElement(s_sDescription, a_network.description());
    a_writer.textElement(s_sColor, a_network.color().name());
    a_writer.textElement(s_sNetworkType, networkTypeToString(a_network.networkType()));
    writeFrequencySettings(a_writer, a_network.frequencySettings());
    writeEmissionSettings(a_writer, *a_network.emissionSettings());
    bool bHead = true;
    const auto members = a_network.emitterList();
    for (const std::shared_ptr<SzenarioEmitter>& member : members) {
        a_writer.startElement(s_sEmitter);
        if (bHead) {
            a_writer.booleanAttribute(s_sHead, true);
            bHead = false;
        }
        a_writer.text(member->id());
        a_writer.endElement();
    }
    a_writer.endElement();
}

} // namespace Simulation
