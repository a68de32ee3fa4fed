#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "simulationdata/commondataxml.h"
#include "simulationdata/frequencysettings_chirp.h"
#include "simulationdata/frequencysettings_fasthopper.h"
#include "simulationdata/frequencysettings_slowhopper.h"
#include "simulationdata/frequencysettingsfixed.h"
#include "simulationdata/xml/xmlwalk_p.h"

#include <memory>
#include <utility>

namespace Simulation {

namespace {

using Fixed = FrequencySettingsFixed;
using Chirp = FrequencySettings_Chirp;
using FastHopper = FrequencySettings_FastHopper;
using SlowHopper = FrequencySettings_SlowHopper;

float readOffset(QStringView a_sText)
{
    // An offset beyond the range of a float has no meaning and is read as 0.
    const double dOffset = readDouble(a_sText);
    return std::isfinite(static_cast<float>(dOffset)) ? static_cast<float>(dOffset) : 0.0F;
}

QString offsetText(float a_fOffset)
{
    return numberText(static_cast<double>(a_fOffset));
}

const XmlField<Chirp> s_chirpFields[] = {
    {QStringLiteral("StartFrequency"),
     [](const Chirp& a_record) { return numberText(a_record.getStartFrequency()); },
     [](Chirp& a_record, QStringView a_sText) { a_record.setStartFrequency(readDouble(a_sText)); }},
    {QStringLiteral("StopFrequency"),
     [](const Chirp& a_record) { return numberText(a_record.getStopFrequency()); },
     [](Chirp& a_record, QStringView a_sText) { a_record.setStopFrequency(readDouble(a_sText)); }},
    {s_sDuration, [](const Chirp& a_record) { return QString::number(a_record.getDuration()); },
     [](Chirp& a_record, QStringView a_sText) { a_record.setDuration(readUInt32(a_sText)); }},
    {QStringLiteral("TimeslotOffset"),
     [](const Chirp& a_record) { return offsetText(a_record.getTimeslotOffset()); },
     [](Chirp& a_record, QStringView a_sText) { a_record.setTimeslotOffset(readOffset(a_sText)); }},
};

// The spelling "Hopp" is part of the format.
const XmlField<FastHopper> s_fastHopperFields[] = {
    {QStringLiteral("MinimumFrequency"),
     [](const FastHopper& a_record) { return numberText(a_record.getMinimumFrequency()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setMinimumFrequency(readDouble(a_sText)); }},
    {QStringLiteral("MaximumFrequency"),
     [](const FastHopper& a_record) { return numberText(a_record.getMaximumFrequency()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setMaximumFrequency(readDouble(a_sText)); }},
    {QStringLiteral("HoppCount"),
     [](const FastHopper& a_record) { return QString::number(a_record.getHoppCount()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setHoppCount(readUInt32(a_sText)); }},
    {QStringLiteral("HoppRate"),
     [](const FastHopper& a_record) { return QString::number(a_record.getHoppRate()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setHoppRate(readUInt32(a_sText)); }},
    {QStringLiteral("HoppSet"),
     [](const FastHopper& a_record) { return QString::number(a_record.getHoppSet()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setHoppSet(readUInt32(a_sText)); }},
    {QStringLiteral("TimeslotOffset"),
     [](const FastHopper& a_record) { return offsetText(a_record.getTimeslotOffset()); },
     [](FastHopper& a_record, QStringView a_sText) { a_record.setTimeslotOffset(readOffset(a_sText)); }},
};

template<typename Settings, typename Fields>
std::unique_ptr<IFrequencySettings> readRecord(QXmlStreamReader& a_reader, const Fields& a_fields)
{
    auto settings = std::make_unique<Settings>();
    forEachChild(a_reader,
                 [&](QStringView a_sName) { return readXmlField(a_reader, a_sName, a_fields, *settings); });
    return settings;
}

template<typename Settings, typename Fields>
void writeRecord(QXmlStreamWriter& a_writer, const QString& a_sName, const Fields& a_fields,
                 const Settings& a_settings)
{
    a_writer.writeStartElement(a_sName);
    writeXmlFields(a_writer, a_fields, a_settings);
    a_writer.writeEndElement();
}

std::unique_ptr<IFrequencySettings> readFixed(QXmlStreamReader& a_reader)
{
    auto settings = std::make_unique<Fixed>();
    const auto sText = elementText(a_reader);
    if (!sText) {
        return nullptr;
    }
    settings->setCenterFrequency(readDouble(*sText));
    return settings;
}

std::unique_ptr<IFrequencySettings> readSlowHopper(QXmlStreamReader& a_reader)
{
    auto settings = std::make_unique<SlowHopper>();
    settings->setEndBehavior(CommonDataXml::stringToEndBehavior(a_reader.attributes().value(s_sEndBehavior)));
    QList<FrequencyStep> steps;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName != s_sFrequency) {
            return false;
        }
        FrequencyStep step;
        step.duration = readUInt32(a_reader.attributes().value(s_sDuration));
        if (const auto sText = elementText(a_reader)) {
            step.frequency = readDouble(*sText);
            steps.append(step);
        }
        return true;
    });
    if (!steps.isEmpty()) { // without steps, the step of a new hopper is kept
        settings->setFrequencySteps(steps);
    }
    return settings;
}

void writeSlowHopper(QXmlStreamWriter& a_writer, const SlowHopper& a_settings)
{
    a_writer.writeStartElement(s_sSlowHopper);
    a_writer.writeAttribute(s_sEndBehavior, CommonDataXml::endBehaviorToString(a_settings.getEndBehavior()));
    for (const FrequencyStep& step : a_settings.getFrequencySteps()) {
        a_writer.writeStartElement(s_sFrequency);
        a_writer.writeAttribute(s_sDuration, QString::number(step.duration));
        a_writer.writeCharacters(numberText(step.frequency));
        a_writer.writeEndElement();
    }
    a_writer.writeEndElement();
}

} // namespace

IFrequencySettings* readFrequencySettings(QXmlStreamReader& a_reader)
{
    std::unique_ptr<IFrequencySettings> settings;
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sFixed) {
            settings = readFixed(a_reader);
        } else if (a_sName == s_sChirp) {
            settings = readRecord<Chirp>(a_reader, s_chirpFields);
        } else if (a_sName == s_sFastHopper) {
            settings = readRecord<FastHopper>(a_reader, s_fastHopperFields);
        } else if (a_sName == s_sSlowHopper) {
            settings = readSlowHopper(a_reader);
        } else {
            return false;
        }
        return true;
    });
    return settings.release();
}

void writeFrequencySettings(QXmlStreamWriter& a_writer, const IFrequencySettings* a_pSettings)
{
    if (a_pSettings == nullptr) {
        return;
    }
    a_writer.writeStartElement(s_sFrequency);
    if (const auto* pFixed = dynamic_cast<const Fixed*>(a_pSettings)) {
        a_writer.writeTextElement(s_sFixed, numberText(pFixed->getCenterFrequency()));
    } else if (const auto* pChirp = dynamic_cast<const Chirp*>(a_pSettings)) {
        writeRecord(a_writer, s_sChirp, s_chirpFields, *pChirp);
    } else if (const auto* pFastHopper = dynamic_cast<const FastHopper*>(a_pSettings)) {
        writeRecord(a_writer, s_sFastHopper, s_fastHopperFields, *pFastHopper);
    } else if (const auto* pSlowHopper = dynamic_cast<const SlowHopper*>(a_pSettings)) {
        writeSlowHopper(a_writer, *pSlowHopper);
    }
    a_writer.writeEndElement();
}

} // namespace Simulation
