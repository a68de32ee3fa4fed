#ifndef SIMULATIONTOOL_TIMETEXT_H
#define SIMULATIONTOOL_TIMETEXT_H

#include <QString>

#include <cstdint>
#include <optional>

namespace SimulationTool {

/// Reads a scenario time of the command line: digits with an optional decimal
/// point and one of the units ms, s, min and h ("1500", "1.5s", "2min"). Without
/// a unit the digits are whole milliseconds. The result is in ms, at least
/// `a_uiMin`. Nothing, with a reason that names the option and what is allowed,
/// for any other text, for parts of a millisecond and beyond 2^32 - 1 ms.
[[nodiscard]] std::optional<std::uint32_t> timeOf(const QString& a_sText, const QString& a_sOption,
                                                  std::uint32_t a_uiMin, QString& a_sReason);

} // namespace SimulationTool

#endif
