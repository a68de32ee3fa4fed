#ifndef SIMULATIONDATA_SCENARIODATAXML_P_H
#define SIMULATIONDATA_SCENARIODATAXML_P_H

#include <memory>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class EmissionSettings;
class IFrequencySettings;
class ScenarioNetwork;
class ScenarioNoiseSettings;
class ScenarioReferences;
class SignalPackage;
class SzenarioEmitter;
class TransmitterSettings;

/// The last known form among the children of the element on which the reader
/// stands, as new settings owned by the caller; null when there is none.
[[nodiscard]] IFrequencySettings* readFrequencySettings(QXmlStreamReader& a_reader);

/// Writes element "Frequency" with the form of the settings' kind; nothing for
/// null.
void writeFrequencySettings(QXmlStreamWriter& a_writer, const IFrequencySettings* a_pSettings);

/// Read the children of the element on which the reader stands, up to its end;
/// what is missing stays as it is. The writers write the element itself.
void readTransmitterSettings(QXmlStreamReader& a_reader, TransmitterSettings& a_settings);
void writeTransmitterSettings(QXmlStreamWriter& a_writer, const TransmitterSettings& a_settings);

void readNoiseSettings(QXmlStreamReader& a_reader, ScenarioNoiseSettings& a_settings);
void writeNoiseSettings(QXmlStreamWriter& a_writer, const ScenarioNoiseSettings& a_settings);

/// Reads the element on which the reader stands, up to its end. The first such
/// element of an object adds to its settings, a later one replaces them.
/// Emitters that emissions name are set when the references are resolved.
void readEmissionSettings(QXmlStreamReader& a_reader, EmissionSettings& a_settings,
                          ScenarioReferences& a_references);

/// Writes element "EmissionSettings". Emissions and groups are numbered so that
/// every number is unique and not 0; those in the settings stay as they are.
void writeEmissionSettings(QXmlStreamWriter& a_writer, const EmissionSettings& a_settings);

/// Read the timing of documents before version 4: of an emitter, and of a
/// network, whose emissions get its head emitter once the members are known.
void readTimingSettings2(QXmlStreamReader& a_reader, const std::shared_ptr<SzenarioEmitter>& a_emitter,
                         const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references);
void readActivitySettings2(QXmlStreamReader& a_reader, const std::shared_ptr<ScenarioNetwork>& a_network,
                           const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references);

} // namespace Simulation

#endif
