#ifndef SIMULATIONDATA_EMISSIONSETTINGSXML_P_H
#define SIMULATIONDATA_EMISSIONSETTINGSXML_P_H

#include <memory>

class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class EmissionSettings;
class ScenarioNetwork;
class ScenarioReferences;
class SignalPackage;
class SzenarioEmitter;

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
