#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "simulationdata/io/numbers_p.h"
#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/xml/xmlwalk_p.h"

namespace Simulation {

namespace {

float readFloat(QStringView a_sText)
{
    return static_cast<float>(finiteOrZero(static_cast<double>(a_sText.toFloat())));
}

using AntennaField = XmlField<TransmitterSettings>;

const AntennaField s_antennaFields[] = {
    {QStringLiteral("Gain"),
     [](const TransmitterSettings& a_record) {
         return numberText(static_cast<double>(a_record.getAntennaGain()));
     },
     [](TransmitterSettings& a_record, QStringView a_sText) { a_record.setAntennaGain(readFloat(a_sText)); }},
    {QStringLiteral("HeightOverGround"),
     [](const TransmitterSettings& a_record) {
         return numberText(static_cast<double>(a_record.getAntennaHeight()));
     },
     [](TransmitterSettings& a_record, QStringView a_sText) {
         a_record.setAntennaHeight(readFloat(a_sText));
     }},
    {QStringLiteral("Direction"),
     [](const TransmitterSettings& a_record) {
         return numberText(static_cast<double>(a_record.getAntennaDirection()));
     },
     [](TransmitterSettings& a_record, QStringView a_sText) {
         a_record.setAntennaDirection(readFloat(a_sText));
     }},
};

using Noise = ScenarioNoiseSettings;

const XmlField<Noise> s_noiseFields[] = {
    {QStringLiteral("Density"), [](const Noise& a_record) { return numberText(a_record.noiseDensity()); },
     [](Noise& a_record, QStringView a_sText) { a_record.setNoiseDensity(readDouble(a_sText)); }},
    {QStringLiteral("Deviation"), [](const Noise& a_record) { return numberText(a_record.noiseDeviation()); },
     [](Noise& a_record, QStringView a_sText) { a_record.setNoiseDeviation(readDouble(a_sText)); }},
    {QStringLiteral("FrequencyDependentDensity"),
     [](const Noise& a_record) { return numberText(a_record.frequencyDependentNoiseDensity()); },
     [](Noise& a_record, QStringView a_sText) {
         a_record.setFrequencyDependentNoiseDensity(readDouble(a_sText));
     }},
    {QStringLiteral("FrequencyDependentGranularity"),
     [](const Noise& a_record) { return numberText(a_record.frequencyDependentNoiseGranularity()); },
     [](Noise& a_record, QStringView a_sText) {
         a_record.setFrequencyDependentNoiseGranularity(readDouble(a_sText));
     }},
    {QStringLiteral("FrequencyDependentVariability"),
     [](const Noise& a_record) { return numberText(a_record.frequencyDependentNoiseVariability()); },
     [](Noise& a_record, QStringView a_sText) {
         a_record.setFrequencyDependentNoiseVariability(readDouble(a_sText));
     }},
};

void readAntenna(QXmlStreamReader& a_reader, TransmitterSettings& a_settings)
{
    a_settings.setAntennaType(a_reader.attributes().value(s_sType).toString());
    forEachChild(a_reader, [&](QStringView a_sName) {
        return readXmlField(a_reader, a_sName, s_antennaFields, a_settings);
    });
}

void writeAntenna(QXmlStreamWriter& a_writer, const TransmitterSettings& a_settings)
{
    a_writer.writeStartElement(s_sAntenna);
    writeXmlAttribute(a_writer, s_sType, a_settings.getAntennaType());
    writeXmlFields(a_writer, s_antennaFields, a_settings);
    a_writer.writeEndElement();
}

} // namespace

void readTransmitterSettings(QXmlStreamReader& a_reader, TransmitterSettings& a_settings)
{
    forEachChild(a_reader, [&](QStringView a_sName) {
        if (a_sName == s_sPower) {
            if (const auto sText = elementText(a_reader)) {
                a_settings.setPower(readFloat(*sText));
            }
        } else if (a_sName == s_sAntenna) {
            readAntenna(a_reader, a_settings);
        } else {
            return false;
        }
        return true;
    });
}

void writeTransmitterSettings(QXmlStreamWriter& a_writer, const TransmitterSettings& a_settings)
{
    a_writer.writeStartElement(s_sTransmitter);
    a_writer.writeTextElement(s_sPower, numberText(static_cast<double>(a_settings.getPower())));
    writeAntenna(a_writer, a_settings);
    a_writer.writeEndElement();
}

void readNoiseSettings(QXmlStreamReader& a_reader, ScenarioNoiseSettings& a_settings)
{
    forEachChild(a_reader, [&](QStringView a_sName) {
        return readXmlField(a_reader, a_sName, s_noiseFields, a_settings);
    });
}

void writeNoiseSettings(QXmlStreamWriter& a_writer, const ScenarioNoiseSettings& a_settings)
{
    a_writer.writeStartElement(s_sNoiseSettings);
    writeXmlFields(a_writer, s_noiseFields, a_settings);
    a_writer.writeEndElement();
}

} // namespace Simulation
