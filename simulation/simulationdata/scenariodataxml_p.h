#ifndef SIMULATIONDATA_SCENARIODATAXML_P_H
#define SIMULATIONDATA_SCENARIODATAXML_P_H

#include <memory>

namespace Simulation {

class EmissionSettings;
class IFrequencySettings;
class ScenarioNetwork;
class ScenarioNoiseSettings;
class ScenarioReferences;
class SignalPackage;
class SzenarioEmitter;
class TransmitterSettings;
class XmlReader;
class XmlWriter;

/// Reads the children of the current element. Returns the last known form among them
/// as new settings that the caller owns; null if there is none.
[[nodiscard]] std::unique_ptr<IFrequencySettings> readFrequencySettings(XmlReader& a_reader);

/// Writes element "Frequency" with the form for the kind of the settings. Null writes
/// nothing.
void writeFrequencySettings(XmlWriter& a_writer, const IFrequencySettings* a_pSettings);

/// The readers read the children of the current element, up to its end; fields without
/// an element stay unchanged. The writers write the element itself.
void readTransmitterSettings(XmlReader& a_reader, TransmitterSettings& a_settings);
void writeTransmitterSettings(XmlWriter& a_writer, const TransmitterSettings& a_settings);

void readNoiseSettings(XmlReader& a_reader, ScenarioNoiseSettings& a_settings);
void writeNoiseSettings(XmlWriter& a_writer, const ScenarioNoiseSettings& a_settings);

/// Reads the current element up to its end. The first such element of an object adds to
/// its settings, a later one replaces them. The emitters of emissions are set when the
/// references are resolved.
void readEmissionSettings(XmlReader& a_reader, EmissionSettings& a_settings,
                          ScenarioReferences& a_references);

/// Writes element "EmissionSettings". Emissions and groups get unique numbers other
/// than 0 in the document; the settings themselves do not change.
void writeEmissionSettings(XmlWriter& a_writer, const EmissionSettings& a_settings);

/// Read the timing in documents before version 4: that of an emitter, and that of a
/// network. The emissions of a network get its head emitter once its members are known.
void readTimingSettings2(XmlReader& a_reader, const std::shared_ptr<SzenarioEmitter>& a_emitter,
                         const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references);
void readActivitySettings2(XmlReader& a_reader, const std::shared_ptr<ScenarioNetwork>& a_network,
                           const std::shared_ptr<SignalPackage>& a_package, ScenarioReferences& a_references);

} // namespace Simulation

#endif
