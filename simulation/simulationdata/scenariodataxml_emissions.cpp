#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "scenariodataxml_groups_p.h"
#include "scenariodataxml_references_p.h"
#include "simulationdata/scenarionetwork.h"
#include "simulationdata/signalpackage.h"
#include "simulationdata/szenarioemitter.h"
#include "simulationdata/xml/xmltext_p.h"
#include "simulationdata/xml/xmlwalk_p.h"

namespace Simulation {

namespace {

using EmissionPtr = boost::shared_ptr<EmissionSettings::Emission>;

/// One emission while it is read, and what it belongs to.
struct EmissionReading
{
    EmissionPtr emission;
    ScenarioReferences& references;
    SeenNumbers& numbers;
};

const XmlAttributeField<EmissionReading> s_emissionAttributes[] = {
    {s_sId,
     [](XmlReader& a_reader, const XmlText& a_value, EmissionReading& a_reading) {
         a_reading.emission->id = a_reader.unsignedNumber(a_value);
         a_reading.numbers.add(a_reader, a_value, a_reading.emission->id);
     },
     XmlOccurs::Once},
    {s_sStartTime,
     [](XmlReader& a_reader, const XmlText& a_value, EmissionReading& a_reading) {
         a_reading.emission->start = a_reader.integer(a_value);
     },
     XmlOccurs::Once},
    {s_sDuration,
     [](XmlReader& a_reader, const XmlText& a_value, EmissionReading& a_reading) {
         a_reading.emission->duration = a_reader.integer(a_value, s_longMilliseconds);
     },
     XmlOccurs::Once},
    {s_sEmitter,
     [](XmlReader& /*a_reader*/, const XmlText& a_value, EmissionReading& a_reading) {
         a_reading.references.setEmitter(a_reading.emission, a_value);
     },
     XmlOccurs::Once},
    {s_sSignalPackage,
     [](XmlReader& a_reader, const XmlText& a_value, EmissionReading& a_reading) {
         a_reading.emission->signalPackage = a_reading.references.packageForId(a_reader, a_value);
     },
     XmlOccurs::Once},
};

void writeEmission(XmlWriter& a_writer, const EmissionSettings::Emission& a_emission,
                   std::uint32_t a_uiNumber)
{
    a_writer.startElement(s_sEmission);
    a_writer.wholeAttribute(s_sId, a_uiNumber);
    a_writer.wholeAttribute(s_sStartTime, a_emission.start);
    a_writer.wholeAttribute(s_sDuration, a_emission.duration);
    a_writer.attribute(s_sEmitter, a_emission.emitter ? a_emission.emitter->id() : QString());
    a_writer.attribute(s_sSignalPackage,
                       a_emission.signalPackage ? a_emission.signalPackage->id() : QString());
    a_writer.endElement();
}

/// One schedule while it is read.
struct ScheduleReading
{
    EmissionSettings& settings;
    ScenarioReferences& references;
    QList<EmissionPtr> emissions;
    EmissionGroupsReader groups;
    SeenNumbers numbers;
};

/// Reports a period below 1 ms, which the settings take as unlimited.
void reportUnlimited(XmlReader& a_reader, const XmlText& a_text, std::int64_t a_iPeriod)
{
    bool bNumber = false;
    (void)readInt64(a_text.bytes, &bNumber); // other texts are reported already
    if (a_iPeriod >= 1 || !bNumber || a_reader.deviations() == nullptr) {
        return;
    }
    a_reader.deviations()->add(ReadingReport::s_sDerivedValue, a_text.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_text.bytes);
        a_entry.message =
            QStringLiteral("A period below 1 ms is read as unlimited: the schedule does not repeat. Write "
                           "%1 for an unlimited period.")
                .arg(EmissionSettings::s_iUnlimited);
    });
}

const XmlAttributeField<EmissionSettings> s_scheduleAttributes[] = {
    {s_sBroadcast, [](XmlReader& a_reader, const XmlText& a_value,
                      EmissionSettings& a_settings) { a_settings.setBroadcast(a_reader.boolean(a_value)); }},
    {s_sDuration,
     [](XmlReader& a_reader, const XmlText& a_value, EmissionSettings& a_settings) {
         const std::int64_t iPeriod = a_reader.integer(a_value, s_anyMilliseconds);
         a_settings.setDuration(iPeriod);
         reportUnlimited(a_reader, a_value, iPeriod);
     },
     XmlOccurs::Once},
};

const XmlChild<ScheduleReading> s_scheduleElements[] = {
    {s_sEmission,
     [](XmlReader& a_reader, ScheduleReading& a_schedule) {
         EmissionReading reading{EmissionSettings::createEmission(), a_schedule.references,
                                 a_schedule.numbers};
         readXmlAttributes(a_reader, reading, s_emissionAttributes);
         readXmlEnd(a_reader);
         a_schedule.emissions.append(reading.emission);
     },
     XmlOccurs::AnyTimes},
    {s_sGroups,
     [](XmlReader& a_reader, ScheduleReading& a_schedule) { a_schedule.groups.readGroups(a_reader); },
     XmlOccurs::AnyTimes},
};

} // namespace

void readEmissionSettings(XmlReader& a_reader, EmissionSettings& a_settings, ScenarioReferences& a_references)
{
    if (!a_references.isFirst(ScenarioReferences::ScheduleForm::EmissionSettings, a_settings)) {
        a_settings.clearAll();
    }
    a_settings.setBroadcast(false);
    a_settings.setDuration(0);
    readXmlAttributes(a_reader, a_settings, s_scheduleAttributes);
    ScheduleReading schedule{a_settings, a_references, {}, {}, {}};
    readXmlChildren(a_reader, schedule, s_scheduleElements);
    a_settings.addEmissions(schedule.emissions);
    schedule.groups.addTo(a_settings, a_reader);
}

void writeEmissionSettings(XmlWriter& a_writer, const EmissionSettings& a_settings)
{
    a_writer.startElement(s_sEmissionSettings);
    a_writer.booleanAttribute(s_sBroadcast, a_settings.isBroadcast());
    a_writer.wholeAttribute(s_sDuration, a_settings.duration());
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
    a_writer.endElement();
}

namespace {

/// A schedule of an older document while it is read.
struct OlderTiming
{
    EmissionSettings& settings;
    std::shared_ptr<SzenarioEmitter> emitter; ///< null for a network
    std::shared_ptr<SignalPackage> package;
    ScenarioReferences& references;
    QList<EmissionPtr> emissions; ///< made from the last form
};

/// Adds emissions one after another, each after a pause. The period becomes the sum of all
/// pauses and emissions.
struct ManualReading
{
    const OlderTiming& timing;
    QList<EmissionPtr> emissions;
    EmissionGroupsReader groups;
    std::int64_t time = 0; ///< ms; cannot overflow: each element adds less than 2^33
};

/// The pause before an emission and its duration (ms).
struct ActivityTimes
{
    std::uint32_t inactive = 0;
    std::uint32_t active = 0;
};

const XmlAttributeField<ActivityTimes> s_activityAttributes[] = {
    {s_sInactiveDuration,
     [](XmlReader& a_reader, const XmlText& a_value, ActivityTimes& a_times) {
         a_times.inactive = a_reader.unsignedNumber(a_value, s_milliseconds);
     },
     XmlOccurs::Once},
    {s_sActiveDuration,
     [](XmlReader& a_reader, const XmlText& a_value, ActivityTimes& a_times) {
         a_times.active = a_reader.unsignedNumber(a_value, s_milliseconds);
     },
     XmlOccurs::Once},
};

void readActivity(XmlReader& a_reader, ManualReading& a_manual)
{
    ActivityTimes times;
    readXmlAttributes(a_reader, times, s_activityAttributes);
    const EmissionPtr emission = EmissionSettings::createEmission();
    emission->id = static_cast<std::uint32_t>(a_manual.emissions.size() + 1);
    emission->start = a_manual.time + times.inactive;
    emission->duration = times.active;
    emission->emitter = a_manual.timing.emitter;
    emission->signalPackage = a_manual.timing.package;
    a_manual.time = emission->start + emission->duration;
    a_manual.emissions.append(emission);
    readXmlEnd(a_reader);
}

const XmlChild<ManualReading> s_manualElements[] = {
    {s_sActivity, &readActivity, XmlOccurs::AnyTimes},
    {s_sGroups, [](XmlReader& a_reader, ManualReading& a_manual) { a_manual.groups.readGroups(a_reader); },
     XmlOccurs::AnyTimes},
};

void readManual(XmlReader& a_reader, OlderTiming& a_timing)
{
    ManualReading manual{a_timing, {}, {}};
    readXmlChildren(a_reader, manual, s_manualElements);
    EmissionSettings& settings = a_timing.settings;
    if (!a_timing.references.isFirst(ScenarioReferences::ScheduleForm::Manual, settings)) {
        settings.clearAll();
    }
    settings.addEmissions(manual.emissions);
    if (manual.time > 0) {
        settings.setDuration(manual.time);
    }
    manual.groups.addTo(settings, a_reader);
    a_timing.emissions = manual.emissions;
}

void readContinuous(XmlReader& a_reader, OlderTiming& a_timing)
{
    a_timing.settings.makeContinousActive(a_timing.emitter, a_timing.package);
    a_timing.emissions = a_timing.settings.emissions();
    readXmlEnd(a_reader);
}

const XmlChild<OlderTiming> s_timingForms[] = {
    {s_sContionus, &readContinuous, XmlOccurs::OneOf},
    {s_sContious, &readContinuous, XmlOccurs::OneOf},
    {s_sManual, &readManual, XmlOccurs::OneOf},
};

} // namespace

void readTimingSettings2(XmlReader& a_reader, const std::shared_ptr<SzenarioEmitter>& a_emitter,
                         const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references)
{
    OlderTiming timing{
        *a_emitter->ScenarioObject::emissionSettings(), a_emitter, a_package, a_references, {}};
    readXmlChildren(a_reader, timing, s_timingForms);
}

void readActivitySettings2(XmlReader& a_reader, const std::shared_ptr<ScenarioNetwork>& a_network,
                           const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references)
{
    OlderTiming timing{*a_network->emissionSettings(), nullptr, a_package, a_references, {}};
    readXmlChildren(a_reader, timing, s_timingForms);
    for (const EmissionPtr& emission : timing.emissions) {
        a_references.setHeadEmitter(emission, a_network);
    }
}

} // namespace Simulation
