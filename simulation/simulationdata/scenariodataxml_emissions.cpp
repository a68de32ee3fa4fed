#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "scenariodataxml_groups_p.h"
#include "scenariodataxml_references_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <QXmlStreamWriter>

namespace Simulation {

namespace {

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;

EmissionPtr readEmission(QXmlStreamReader& a_reader, ScenarioReferences& a_references)
{
    EmissionPtr emission = EmissionSettings::createEmission();
    const QXmlStreamAttributes attributes = a_reader.attributes();
    for (const QXmlStreamAttribute& attribute : attributes) {
        const QStringView sName = attribute.qualifiedName();
        if (sName == s_sId) {
            emission->id = readUInt32(attribute.value());
        } else if (sName == s_sStartTime) {
            emission->start = readInt64(attribute.value());
        } else if (sName == s_sDuration) {
            emission->duration = readInt64(attribute.value());
        } else if (sName == s_sEmitter) {
            a_references.setEmitter(emission, attribute.value().toString());
        } else if (sName == s_sSignalPackage) {
            emission->signalPackage = a_references.packageForId(attribute.value().toString());
        }
    }
    skipChildren(a_reader);
    return emission;
}

void writeEmission(QXmlStreamWriter& a_writer, const EmissionSettings::Emission& a_emission,
                   std::uint32_t a_uiNumber)
{
    a_writer.writeEmptyElement(s_sEmission);
    a_writer.writeAttribute(s_sId, QString::number(a_uiNumber));
    a_writer.writeAttribute(s_sStartTime, QString::number(a_emission.start));
    a_writer.writeAttribute(s_sDuration, QString::number(a_emission.duration));
    writeXmlAttribute(a_writer, s_sEmitter, a_emission.emitter ? a_emission.emitter->id() : QString());
    writeXmlAttribute(a_writer, s_sSignalPackage,
                      a_emission.signalPackage ? a_emission.signalPackage->id() : QString());
}

} // namespace

void readEmissionSettings(QXmlStreamReader& a_reader, EmissionSettings& a_settings,
                          ScenarioReferences& a_references)
{
    if (!a_references.isFirst(ScenarioReferences::ScheduleForm::EmissionSettings, a_settings)) {
        a_settings.clearAll();
    }
    const QXmlStreamAttributes attributes = a_reader.attributes();
    a_settings.setBroadcast(CommonDataXml::toBool(attributes.value(s_sBroadcast)));
    a_settings.setDuration(readInt64(attributes.value(s_sDuration)));
    QList<EmissionPtr> emissions;
    EmissionGroupsReader groups;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sEmission) {
            emissions.append(readEmission(a_reader, a_references));
        } else if (a_sName == s_sGroups) {
            groups.readGroups(a_reader);
        } else {
            return false;
        }
        return true;
    });
    a_settings.addEmissions(emissions);
    groups.addTo(a_settings);
}

void writeEmissionSettings(QXmlStreamWriter& a_writer, const EmissionSettings& a_settings)
{
    a_writer.writeStartElement(s_sEmissionSettings);
    a_writer.writeAttribute(s_sBroadcast, boolText(a_settings.isBroadcast()));
    a_writer.writeAttribute(s_sDuration, QString::number(a_settings.duration()));
    const auto& emissions = a_settings.emissions();
    const std::vector<std::uint32_t> numbers = uniqueNumbers(emissions);
    EmissionNumbers emissionNumbers;
    for (qsizetype i = 0; i < emissions.size(); ++i) {
        const std::uint32_t uiNumber = numbers[static_cast<std::size_t>(i)];
        writeEmission(a_writer, *emissions.at(i), uiNumber);
        if (!a_settings.groups().isEmpty()) {
            emissionNumbers.insert(emissions.at(i).get(), uiNumber);
        }
    }
    writeGroups(a_writer, a_settings, emissionNumbers);
    a_writer.writeEndElement();
}

namespace {

/// Adds emissions one after another, each after a pause. The period becomes the sum of all
/// pauses and emissions.
QList<EmissionPtr> readManual(QXmlStreamReader& a_reader, EmissionSettings& a_settings,
                              const std::shared_ptr<SzenarioEmitter>& a_emitter,
                              const std::shared_ptr<SignalPackage>& a_package,
                              ScenarioReferences& a_references)
{
    QList<EmissionPtr> emissions;
    EmissionGroupsReader groups;
    std::int64_t iTime = 0; // cannot overflow: each element adds less than 2^33
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sGroups) {
            groups.readGroups(a_reader);
            return true;
        }
        if (a_sName != s_sActivity) {
            return false;
        }
        const QXmlStreamAttributes attributes = a_reader.attributes();
        const EmissionPtr emission = EmissionSettings::createEmission();
        emission->id = static_cast<std::uint32_t>(emissions.size() + 1);
        emission->start = iTime + readUInt32(attributes.value(s_sInactiveDuration));
        emission->duration = readUInt32(attributes.value(s_sActiveDuration));
        emission->emitter = a_emitter;
        emission->signalPackage = a_package;
        iTime = emission->start + emission->duration;
        emissions.append(emission);
        skipChildren(a_reader);
        return true;
    });
    if (!a_references.isFirst(ScenarioReferences::ScheduleForm::Manual, a_settings)) {
        a_settings.clearAll();
    }
    a_settings.addEmissions(emissions);
    if (iTime > 0) {
        a_settings.setDuration(iTime);
    }
    groups.addTo(a_settings);
    return emissions;
}

/// Reads the forms of an older timing and returns the emissions made from them.
QList<EmissionPtr> readOlderTiming(QXmlStreamReader& a_reader, EmissionSettings& a_settings,
                                   const std::shared_ptr<SzenarioEmitter>& a_emitter,
                                   const std::shared_ptr<SignalPackage>& a_package,
                                   ScenarioReferences& a_references)
{
    QList<EmissionPtr> emissions;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sContionus || a_sName == s_sContious) {
            a_settings.makeContinousActive(a_emitter, a_package);
            emissions = a_settings.emissions();
            skipChildren(a_reader);
        } else if (a_sName == s_sManual) {
            emissions = readManual(a_reader, a_settings, a_emitter, a_package, a_references);
        } else {
            return false;
        }
        return true;
    });
    return emissions;
}

} // namespace

void readTimingSettings2(QXmlStreamReader& a_reader, const std::shared_ptr<SzenarioEmitter>& a_emitter,
                         const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references)
{
    readOlderTiming(a_reader, *a_emitter->ScenarioObject::emissionSettings(), a_emitter, a_package,
                    a_references);
}

void readActivitySettings2(QXmlStreamReader& a_reader, const std::shared_ptr<ScenarioNetwork>& a_network,
                           const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references)
{
    const QList<EmissionPtr> emissions =
        readOlderTiming(a_reader, *a_network->emissionSettings(), nullptr, a_package, a_references);
    for (const EmissionPtr& emission : emissions) {
        a_references.setHeadEmitter(emission, a_network);
    }
}

} // namespace Simulation
