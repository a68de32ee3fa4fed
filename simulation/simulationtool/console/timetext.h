#ifndef SIMULATIONTOOL_TIMETEXT_H
#define SIMULATIONTOOL_TIMETEXT_H

#include <QString>

#include <cstdint>
#include <optional>

namespace SimulationTool {

/// Reads a scenario time of the command line: digits with an optional decimal point
/// and one of the units ms, s, min and h ("1500", "1.5s", "2min"). Without a unit the
/// digits are whole milliseconds. Returns ms in [a_uiMin, 2^32 - 1]. For any other
/// text, and for fractions of a millisecond, returns no value and sets `a_sReason` to
/// an error text that names the option and the allowed range.
[[nodiscard]] std::optional<std::uint32_t> timeOf(const QString& a_sText, const QString& a_sOption,
                                                  std::uint32_t a_uiMin, QString& a_sReason);

} // namespace SimulationTool

#endif
