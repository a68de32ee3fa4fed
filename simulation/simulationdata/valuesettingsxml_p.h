#ifndef SIMULATIONDATA_VALUESETTINGSXML_P_H
#define SIMULATIONDATA_VALUESETTINGSXML_P_H

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class ScenarioNoiseSettings;
class TransmitterSettings;

/// Read the children of the element on which the reader stands, up to its end;
/// what is missing stays as it is. The writers write the element itself.
void readTransmitterSettings(QXmlStreamReader& a_reader, TransmitterSettings& a_settings);
void writeTransmitterSettings(QXmlStreamWriter& a_writer, const TransmitterSettings& a_settings);

void readNoiseSettings(QXmlStreamReader& a_reader, ScenarioNoiseSettings& a_settings);
void writeNoiseSettings(QXmlStreamWriter& a_writer, const ScenarioNoiseSettings& a_settings);

} // namespace Simulation

#endif
