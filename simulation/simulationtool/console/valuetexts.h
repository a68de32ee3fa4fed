#ifndef SIMULATIONTOOL_VALUETEXTS_H
#define SIMULATIONTOOL_VALUETEXTS_H

#include "simulationdata/enumerations.h"

#include <QString>

namespace SimulationTool {

/// Values as text for people; independent of the locale.

/// "yes" or "no".
[[nodiscard]] QString yesNo(bool a_bValue);
/// The shortest text that reads back as the same number.
[[nodiscard]] QString plainNumber(double a_dValue);
/// The shortest text that reads back as the same single-precision number.
[[nodiscard]] QString shortNumber(float a_fValue);
/// A level with three decimals, in scientific form unless its magnitude is 0 or in
/// [0.1, 1e5), so that a column keeps its width: "14.012", "1.418e-12".
[[nodiscard]] QString levelText(float a_fLevel);
/// A frequency (Hz) in Hz, kHz, MHz or GHz with all its digits: "156.8 MHz".
[[nodiscard]] QString frequencyText(double a_dFrequency);
/// A number with fixed decimals, or in scientific form from 1e9 on, so that a column
/// keeps its width.
[[nodiscard]] QString fixedNumber(double a_dValue, int a_iDecimals);
/// A duration (ms): "2000 ms", or "unlimited" for EmissionSettings::s_iUnlimited.
[[nodiscard]] QString durationText(qint64 a_iMilliseconds);
/// An end behaviour for people: "then stays at the end".
[[nodiscard]] QString endBehaviourText(Simulation::EndBehaviourType a_eBehaviour);
/// An end behaviour for programs: "stop", "inactive" or "restart".
[[nodiscard]] QString endBehaviourName(Simulation::EndBehaviourType a_eBehaviour);
/// A count with its noun: "1 byte", "2 bytes".
[[nodiscard]] QString counted(quint64 a_uiCount, const char* a_szNoun);
/// The text, or "-" for an empty one.
[[nodiscard]] QString orDash(const QString& a_sText);

} // namespace SimulationTool

#endif
