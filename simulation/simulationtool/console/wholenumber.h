#ifndef SIMULATIONTOOL_WHOLENUMBER_H
#define SIMULATIONTOOL_WHOLENUMBER_H

#include <QString>

#include <cstdint>
#include <optional>

namespace SimulationTool {

/// The allowed range of a number on the command line.
struct NumberRange
{
    QString name;     ///< the option or argument, for example "--step"
    const char* unit; ///< follows "a whole number" in the error text: " of seconds", or ""
    std::uint32_t min = 0;
    std::uint32_t max = UINT32_MAX;
};

/// Reads a number that is written with digits only. For any other text, and outside
/// the range, returns no value and sets the error text `a_sReason`.
[[nodiscard]] std::optional<std::uint32_t> wholeNumber(const QString& a_sText, const NumberRange& a_range,
                                                       QString& a_sReason);

} // namespace SimulationTool

#endif
