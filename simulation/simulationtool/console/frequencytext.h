#ifndef SIMULATIONTOOL_FREQUENCYTEXT_H
#define SIMULATIONTOOL_FREQUENCYTEXT_H

#include <QString>

#include <optional>

namespace SimulationTool {

/// Reads a frequency of the command line: a number with an optional sign and one of the
/// units Hz, kHz, MHz and GHz, or their first letters ("250", "-2.5k", "2.4MHz").
/// Without a unit it is in Hz. Returns Hz in [a_dMin, a_dMax]. For any other text returns
/// no value and sets `a_sReason` to an error text that names the option and the range.
[[nodiscard]] std::optional<double> frequencyOf(const QString& a_sText, const QString& a_sOption,
                                                double a_dMin, double a_dMax, QString& a_sReason);

} // namespace SimulationTool

#endif
