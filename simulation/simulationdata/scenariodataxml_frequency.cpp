#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

namespace Simulation {

namespace {

using Fixed = FrequencySettingsFixed;
using Chirp = FrequencySettings_Chirp;
using FastHopper = FrequencySettings_FastHopper;
using SlowHopper = FrequencySettings_SlowHopper;

constexpr double s_dMost = std::numeric_limits<std::uint32_t>::max();
constexpr XmlRange s_sweeps{1.0, s_dMost, false, "milliseconds"};
constexpr XmlRange s_counts{1.0, s_dMost, false, "channels"};
constexpr XmlRange s_rates{1.0, s_dMost, false, "hops per second"};

const XmlField<Chirp> s_chirpFields[] = {
    xmlField<Chirp, &Chirp::getStartFrequency, &Chirp::setStartFrequency, s_frequencies>("StartFrequency"),
    xmlField<Chirp, &Chirp::getStopFrequency, &Chirp::setStopFrequency, s_frequencies>("StopFrequency"),
    xmlField<Chirp, &Chirp::getDuration, &Chirp::setDuration, s_sweeps>("Duration"),
    xmlField<Chirp, &Chirp::getTimeslotOffset, &Chirp::setTimeslotOffset, s_fractions>("TimeslotOffset"),
};

// The spelling "Hopp" is part of the format.
const XmlField<FastHopper> s_fastHopperFields[] = {
    xmlField<FastHopper, &FastHopper::getMinimumFrequency, &FastHopper::setMinimumFrequency, s_frequencies>(
        "MinimumFrequency"),
    xmlField<FastHopper, &FastHopper::getMaximumFrequency, &FastHopper::setMaximumFrequency, s_frequencies>(
        "MaximumFrequency"),
    xmlField<FastHopper, &FastHopper::getHoppCount, &FastHopper::setHoppCount, s_counts>("HoppCount"),
    xmlField<FastHopper, &FastHopper::getHoppRate, &FastHopper::setHoppRate, s_rates>("HoppRate"),
    xmlField<FastHopper, &FastHopper::getHoppSet, &FastHopper::setHoppSet>("HoppSet"),
    xmlField<FastHopper, &FastHopper::getTimeslotOffset, &FastHopper::setTimeslotOffset, s_fractions>(
        "TimeslotOffset"),
};

using SettingsPtr = std::unique_ptr<IFrequencySettings>;

template<typename Settings, const auto& Fields>
void readRecord(XmlReader& a_reader, SettingsPtr& a_settings)
{
    auto settings = std::make_unique<Settings>();
    readXmlChildren(a_reader, *settings, Fields);
    a_settings = std::move(settings);
}

template<typename Settings, std::size_t Count>
void writeRecord(XmlWriter& a_writer, QLatin1String a_sName, const Settings& a_settings,
                 const XmlField<Settings> (&a_fields)[Count])
{
    a_writer.startElement(a_sName);
    writeXmlFields(a_writer, a_settings, a_fields);
    a_writer.endElement();
}

void readFixed(XmlReader& a_reader, SettingsPtr& a_settings)
{
    a_settings.reset();
    if (const auto text = a_reader.text()) {
        auto settings = std::make_unique<Fixed>();
        settings->setCenterFrequency(a_reader.number(*text, s_frequencies));
        a_settings = std::move(settings);
    }
}

const XmlAttributeField<FrequencyStep> s_stepAttributes[] = {
    {s_sDuration,
     [](XmlReader& a_reader, const XmlText& a_value, FrequencyStep& a_step) {
         a_step.duration = a_reader.unsignedNumber(a_value, s_milliseconds);
     },
     XmlOccurs::Once},
};

const XmlChild<QList<FrequencyStep>> s_steps[] = {
    {s_sFrequency,
     [](XmlReader& a_reader, QList<FrequencyStep>& a_steps) {
         FrequencyStep step;
         readXmlAttributes(a_reader, step, s_stepAttributes);
         if (const auto text = a_reader.text()) {
             step.frequency = a_reader.number(*text, s_frequencies);
             a_steps.append(step);
         }
     },
     XmlOccurs::Several},
};

void readSlowHopper(XmlReader& a_reader, SettingsPtr& a_settings)
{
    auto settings = std::make_unique<SlowHopper>();
    settings->setEndBehavior(readEndBehavior(a_reader));
    QList<FrequencyStep> steps;
    readXmlChildren(a_reader, steps, s_steps);
    if (!steps.isEmpty()) { // without steps, the step of a new hopper is kept
        settings->setFrequencySteps(steps);
    }
    a_settings = std::move(settings);
}

void writeSlowHopper(XmlWriter& a_writer, const SlowHopper& a_settings)
{
    a_writer.startElement(s_sSlowHopper);
    a_writer.attribute(s_sEndBehavior, CommonDataXml::endBehaviorToString(a_settings.getEndBehavior()));
    for (const FrequencyStep& step : a_settings.getFrequencySteps()) {
        a_writer.startElement(s_sFrequency);
        a_writer.wholeAttribute(s_sDuration, step.duration);
        a_writer.number(step.frequency);
        a_writer.endElement();
    }
    a_writer.endElement();
}

const XmlChild<SettingsPtr> s_forms[] = {
    {s_sFixed, &readFixed, XmlOccurs::OneOf},
    {s_sChirp, &readRecord<Chirp, s_chirpFields>, XmlOccurs::OneOf},
    {s_sFastHopper, &readRecord<FastHopper, s_fastHopperFields>, XmlOccurs::OneOf},
    {s_sSlowHopper, &readSlowHopper, XmlOccurs::OneOf},
};

} // namespace

SettingsPtr readFrequencySettings(XmlReader& a_reader)
{
    SettingsPtr settings;
    readXmlChildren(a_reader, settings, s_forms);
    return settings;
}

void writeFrequencySettings(XmlWriter& a_writer, const IFrequencySettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return;
    }
    a_writer.startElement(s_sFrequency);
    if (const auto* pFixed = dynamic_cast<const Fixed*>(a_pSettings)) {
        a_writer.startElement(s_sFixed);
        a_writer.number(pFixed->getCenterFrequency());
        a_writer.endElement();
    } else if (const auto* pChirp = dynamic_cast<const Chirp*>(a_pSettings)) {
        writeRecord(a_writer, s_sChirp, *pChirp, s_chirpFields);
    } else if (const auto* pFastHopper = dynamic_cast<const FastHopper*>(a_pSettings)) {
        writeRecord(a_writer, s_sFastHopper, *pFastHopper, s_fastHopperFields);
    } else if (const auto* pSlowHopper = dynamic_cast<const SlowHopper*>(a_pSettings)) {
        writeSlowHopper(a_writer, *pSlowHopper);
    }
    a_writer.endElement();
}

} // namespace Simulation
