#ifndef SIMULATIONDATA_ENUMERATIONS_H
#define SIMULATIONDATA_ENUMERATIONS_H

#include "simulationdata/simulationdata_export.h"

#include <QString>
#include <QStringList>

namespace Simulation {

/// How an object is positioned. The values are stored and sent.
enum class PositionSettingsType : int {
    Fixed = 0,    ///< does not move
    Movement = 1, ///< moves from way point to way point
};

/// How the frequency of an object behaves. The values are stored and sent.
enum class FrequencySettingsType : int {
    Fixed = 0,
    SlowHopper = 1, ///< hops through a table of steps
    Chirp = 2,      ///< sweeps linearly
    FastHopper = 3, ///< hops over channels in a pseudo-random order
};

/// What a step table or a movement does after its end.
enum class EndBehaviourType : int {
    Stop = 0,     ///< stays at the last step or way point
    Restart = 1,  ///< starts again
    Inactive = 2, ///< the object is no longer active
};

/// The modulation of a signal package. There is no value for "None": the text "None"
/// is read as CW.
enum class AnalogModulations : int {
    CW = 0,
    AM = 1,
    FM = 2,
    LSB = 3,
    USB = 4,
    Digital = 5,
};

/// The topology of a network of emitters.
enum class NetworkType : int {
    Hierarchical = 0,
    Star = 1,
};

/// Whether two frequencies (Hz) differ by less than 0.001 Hz. The difference is
/// first rounded to single precision.
[[nodiscard]] SIMULATIONDATA_EXPORT bool compareFrequency(float a_fFirst, float a_fSecond);

/// Display texts; an unknown value gives an empty text.
[[nodiscard]] SIMULATIONDATA_EXPORT QString stringForPositionSettingsType(PositionSettingsType a_eType);
[[nodiscard]] SIMULATIONDATA_EXPORT QString stringForFrequencySettingsType(FrequencySettingsType a_eType);

/// Display text; every value but Hierarchical gives "Star".
[[nodiscard]] SIMULATIONDATA_EXPORT QString stringForNetworkType(NetworkType a_eType);

/// The texts of all modulations, in the order of their values.
[[nodiscard]] SIMULATIONDATA_EXPORT QStringList analogModulationTexts();

/// The text of a modulation; an unknown value gives "None".
[[nodiscard]] SIMULATIONDATA_EXPORT QString analogModulationToString(AnalogModulations a_eModulation);

/// The modulation of a text, case-sensitive; "None" and unknown texts give CW.
[[nodiscard]] SIMULATIONDATA_EXPORT AnalogModulations analogModulationFromString(const QString& a_sText);

} // namespace Simulation

#endif
