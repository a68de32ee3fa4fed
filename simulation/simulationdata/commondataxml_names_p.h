#ifndef SIMULATIONDATA_COMMONDATAXML_NAMES_P_H
#define SIMULATIONDATA_COMMONDATAXML_NAMES_P_H

#include <QLatin1String>

namespace Simulation {

/// The names of the elements and attributes of scenario and deployment documents, and
/// the texts for types, for example "Star". Readers and writers share them. Odd
/// spellings are part of the formats.

inline constexpr QLatin1String s_sActive("Active");
inline constexpr QLatin1String s_sActiveDuration("ActiveDuration");
inline constexpr QLatin1String s_sActivity("Activity");
inline constexpr QLatin1String s_sAntenna("Antenna");
inline constexpr QLatin1String s_sAuthor("Author");
inline constexpr QLatin1String s_sBroadcast("Broadcast");
inline constexpr QLatin1String s_sChirp("Chirp");
inline constexpr QLatin1String s_sClass("Class");
inline constexpr QLatin1String s_sColor("Color");
inline constexpr QLatin1String s_sConfiguredStationId("ConfiguredStationID");
// Before version 4, documents have the spelling "Contionus" or "Contious".
inline constexpr QLatin1String s_sContionus("Contionus");
inline constexpr QLatin1String s_sContious("Contious");
inline constexpr QLatin1String s_sDefault("Default");
inline constexpr QLatin1String s_sDescription("Description");
inline constexpr QLatin1String s_sDevice("Device");
inline constexpr QLatin1String s_sDeviceType("DeviceType");
inline constexpr QLatin1String s_sDuration("Duration");
inline constexpr QLatin1String s_sDwellTime("DWellTime"); // the spelling is part of the format
inline constexpr QLatin1String s_sEdwFile("EDWFile");
inline constexpr QLatin1String s_sElintEmitter("ElintEmitter");
inline constexpr QLatin1String s_sEmission("Emission");
inline constexpr QLatin1String s_sEmissionId("EmissionId");
inline constexpr QLatin1String s_sEmissionSettings("EmissionSettings");
inline constexpr QLatin1String s_sEmitter("Emitter");
inline constexpr QLatin1String s_sEndBehavior("EndBehavior");
inline constexpr QLatin1String s_sFastHopper("FastHopper");
inline constexpr QLatin1String s_sFileFormatVersion("FileFormatVersion");
inline constexpr QLatin1String s_sFixed("Fixed");
inline constexpr QLatin1String s_sFrequency("Frequency");
inline constexpr QLatin1String s_sGroup("Group");
inline constexpr QLatin1String s_sGroupId("GroupId");
inline constexpr QLatin1String s_sGroups("Groups");
inline constexpr QLatin1String s_sHead("Head");
inline constexpr QLatin1String s_sHierarchical("Hierarchical");
inline constexpr QLatin1String s_sIconId("IconId");
inline constexpr QLatin1String s_sId("ID");
inline constexpr QLatin1String s_sInactiveDuration("InactiveDuration");
inline constexpr QLatin1String s_sLat("Lat");
inline constexpr QLatin1String s_sLatitude("Latitude");
inline constexpr QLatin1String s_sLinkTarget("LinkTarget");
inline constexpr QLatin1String s_sLon("Lon");
inline constexpr QLatin1String s_sLongitude("Longitude");
inline constexpr QLatin1String s_sMachine("Machine");
inline constexpr QLatin1String s_sMajor("Major");
inline constexpr QLatin1String s_sManual("Manual");
inline constexpr QLatin1String s_sMovement("Movement");
inline constexpr QLatin1String s_sMovementsXml("MovementsXml");
inline constexpr QLatin1String s_sName("Name");
inline constexpr QLatin1String s_sNetwork("Network");
inline constexpr QLatin1String s_sNetworkType("NetworkType");
inline constexpr QLatin1String s_sNoiseSettings("NoiseSettings");
inline constexpr QLatin1String s_sPersistantId("PersistantId");
inline constexpr QLatin1String s_sPosition("Position");
inline constexpr QLatin1String s_sPower("Power");
inline constexpr QLatin1String s_sReceiverSettings("ReceiverSettings");
inline constexpr QLatin1String s_sScenarioObjects("ScenarioObjects");
inline constexpr QLatin1String s_sSignalPackage("SignalPackage");
inline constexpr QLatin1String s_sSlowHopper("SlowHopper");
inline constexpr QLatin1String s_sSpeed("Speed");
inline constexpr QLatin1String s_sStar("Star");
inline constexpr QLatin1String s_sStartTime("StartTime");
inline constexpr QLatin1String s_sStation("Station");
inline constexpr QLatin1String s_sTiming("Timing");
inline constexpr QLatin1String s_sTransitionTime("TransitionTime");
inline constexpr QLatin1String s_sTransmitter("Transmitter");
inline constexpr QLatin1String s_sType("Type");
inline constexpr QLatin1String s_sUid("Uid");

} // namespace Simulation

#endif
