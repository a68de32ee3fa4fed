#ifndef SIMULATIONDATA_COMMONDATAXML_NAMES_P_H
#define SIMULATIONDATA_COMMONDATAXML_NAMES_P_H

#include <QString>

namespace Simulation {

/// The names of the elements and attributes of scenario and deployment documents, and
/// the texts for types, for example "Star". Readers and writers share them. Odd
/// spellings are part of the formats.

inline const QString s_sActive = QStringLiteral("Active");
inline const QString s_sActiveDuration = QStringLiteral("ActiveDuration");
inline const QString s_sActivity = QStringLiteral("Activity");
inline const QString s_sAntenna = QStringLiteral("Antenna");
inline const QString s_sAuthor = QStringLiteral("Author");
inline const QString s_sBroadcast = QStringLiteral("Broadcast");
inline const QString s_sChirp = QStringLiteral("Chirp");
inline const QString s_sClass = QStringLiteral("Class");
inline const QString s_sColor = QStringLiteral("Color");
// Before version 4, documents have the spelling "Contionus" or "Contious".
inline const QString s_sContionus = QStringLiteral("Contionus");
inline const QString s_sContious = QStringLiteral("Contious");
inline const QString s_sDefault = QStringLiteral("Default");
inline const QString s_sDescription = QStringLiteral("Description");
inline const QString s_sDevice = QStringLiteral("Device");
inline const QString s_sDuration = QStringLiteral("Duration");
inline const QString s_sDwellTime = QStringLiteral("DWellTime"); // the spelling is part of the format
inline const QString s_sEdwFile = QStringLiteral("EDWFile");
inline const QString s_sElintEmitter = QStringLiteral("ElintEmitter");
inline const QString s_sEmission = QStringLiteral("Emission");
inline const QString s_sEmissionId = QStringLiteral("EmissionId");
inline const QString s_sEmissionSettings = QStringLiteral("EmissionSettings");
inline const QString s_sEmitter = QStringLiteral("Emitter");
inline const QString s_sEndBehavior = QStringLiteral("EndBehavior");
inline const QString s_sFastHopper = QStringLiteral("FastHopper");
inline const QString s_sFileFormatVersion = QStringLiteral("FileFormatVersion");
inline const QString s_sFixed = QStringLiteral("Fixed");
inline const QString s_sFrequency = QStringLiteral("Frequency");
inline const QString s_sGroup = QStringLiteral("Group");
inline const QString s_sGroupId = QStringLiteral("GroupId");
inline const QString s_sGroups = QStringLiteral("Groups");
inline const QString s_sHead = QStringLiteral("Head");
inline const QString s_sHierarchical = QStringLiteral("Hierarchical");
inline const QString s_sIconId = QStringLiteral("IconId");
inline const QString s_sId = QStringLiteral("ID");
inline const QString s_sInactiveDuration = QStringLiteral("InactiveDuration");
inline const QString s_sLat = QStringLiteral("Lat");
inline const QString s_sLatitude = QStringLiteral("Latitude");
inline const QString s_sLinkTarget = QStringLiteral("LinkTarget");
inline const QString s_sLon = QStringLiteral("Lon");
inline const QString s_sLongitude = QStringLiteral("Longitude");
inline const QString s_sMajor = QStringLiteral("Major");
inline const QString s_sManual = QStringLiteral("Manual");
inline const QString s_sMovement = QStringLiteral("Movement");
inline const QString s_sMovementsXml = QStringLiteral("MovementsXml");
inline const QString s_sName = QStringLiteral("Name");
inline const QString s_sNetwork = QStringLiteral("Network");
inline const QString s_sNetworkType = QStringLiteral("NetworkType");
inline const QString s_sNoiseSettings = QStringLiteral("NoiseSettings");
inline const QString s_sPersistantId = QStringLiteral("PersistantId");
inline const QString s_sPosition = QStringLiteral("Position");
inline const QString s_sPower = QStringLiteral("Power");
inline const QString s_sReceiverSettings = QStringLiteral("ReceiverSettings");
inline const QString s_sScenarioObjects = QStringLiteral("ScenarioObjects");
inline const QString s_sSignalPackage = QStringLiteral("SignalPackage");
inline const QString s_sSlowHopper = QStringLiteral("SlowHopper");
inline const QString s_sSpeed = QStringLiteral("Speed");
inline const QString s_sStar = QStringLiteral("Star");
inline const QString s_sStartTime = QStringLiteral("StartTime");
inline const QString s_sStation = QStringLiteral("Station");
inline const QString s_sTiming = QStringLiteral("Timing");
inline const QString s_sTransitionTime = QStringLiteral("TransitionTime");
inline const QString s_sTransmitter = QStringLiteral("Transmitter");
inline const QString s_sType = QStringLiteral("Type");
inline const QString s_sUid = QStringLiteral("Uid");

} // namespace Simulation

#endif
