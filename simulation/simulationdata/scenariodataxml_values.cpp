#include "scenariodataxml_p.h"

#include "commondataxml_names_p.h"
#include "commondataxml_p.h"
#include "simulationdata/scenarionoisesettings.h"
#include "simulationdata/transmittersettings.h"
#include "simulationdata/xml/xmlwalk_p.h"

namespace Simulation {

namespace {

constexpr XmlRange s_directions{-360.0, 360.0, false, "degrees"}; // larger ones lose whole turns

using Transmitter = TransmitterSettings;

const XmlField<Transmitter> s_antennaFields[] = {
    xmlField<Transmitter, &Transmitter::getAntennaGain, &Transmitter::setAntennaGain>("Gain"),
    xmlField<Transmitter, &Transmitter::getAntennaHeight, &Transmitter::setAntennaHeight, s_notNegative>(
        "HeightOverGround"),
    xmlField<Transmitter, &Transmitter::getAntennaDirection, &Transmitter::setAntennaDirection, s_directions>(
        "Direction"),
};

using Noise = ScenarioNoiseSettings;

const XmlField<Noise> s_noiseFields[] = {
    xmlField<Noise, &Noise::noiseDensity, &Noise::setNoiseDensity>("Density"),
    xmlField<Noise, &Noise::noiseDeviation, &Noise::setNoiseDeviation>("Deviation"),
    xmlField<Noise, &Noise::frequencyDependentNoiseDensity, &Noise::setFrequencyDependentNoiseDensity>(
        "FrequencyDependentDensity"),
    xmlField<Noise, &Noise::frequencyDependentNoiseGranularity,
             &Noise::setFrequencyDependentNoiseGranularity>("FrequencyDependentGranularity"),
    xmlField<Noise, &Noise::frequencyDependentNoiseVariability,
             &Noise::setFrequencyDependentNoiseVariability>("FrequencyDependentVariability"),
};

const XmlAttributeField<Transmitter> s_antennaAttributes[] = {
    {s_sType, [](XmlReader& /*a_reader*/, const XmlText& a_value,
                 Transmitter& a_settings) { a_settings.setAntennaType(a_value.string()); }},
};

void readAntenna(XmlReader& a_reader, Transmitter& a_settings)
{
    a_settings.setAntennaType(QString());
    readXmlAttributes(a_reader, a_settings, s_antennaAttributes);
    readXmlChildren(a_reader, a_settings, s_antennaFields);
}

void writeAntenna(XmlWriter& a_writer, const Transmitter& a_settings)
{
    a_writer.startElement(s_sAntenna);
    a_writer.attribute(s_sType, a_settings.getAntennaType());
    writeXmlFields(a_writer, a_settings, s_antennaFields);
    a_writer.endElement();
}

const XmlChild<Transmitter> s_transmitterElements[] = {
    {s_sPower,
     [](XmlReader& a_reader, Transmitter& a_settings) {
         if (const auto text = a_reader.text()) {
             a_settings.setPower(a_reader.singleNumber(*text, s_notNegative));
         }
     },
     XmlOccurs::Once},
    {s_sAntenna, &readAntenna, XmlOccurs::Once},
};

} // namespace

void readTransmitterSettings(XmlReader& a_reader, TransmitterSettings& a_settings)
{
    readXmlChildren(a_reader, a_settings, s_transmitterElements);
}

void writeTransmitterSettings(XmlWriter& a_writer, const TransmitterSettings& a_settings)
{
    a_writer.startElement(s_sTransmitter);
    a_writer.startElement(s_sPower);
    a_writer.number(static_cast<double>(a_settings.getPower()));
    a_writer.endElement();
    writeAntenna(a_writer, a_settings);
    a_writer.endElement();
}

void readNoiseSettings(XmlReader& a_reader, ScenarioNoiseSettings& a_settings)
{
    readXmlChildren(a_reader, a_settings, s_noiseFields);
}

void writeNoiseSettings(XmlWriter& a_writer, const ScenarioNoiseSettings& a_settings)
{
    a_writer.startElement(s_sNoiseSettings);
    writeXmlFields(a_writer, a_settings, s_noiseFields);
    a_writer.endElement();
}

} // namespace Simulation
