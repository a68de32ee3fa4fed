#ifndef SIMULATIONTOOL_WHOLENUMBER_H
#define SIMULATIONTOOL_WHOLENUMBER_H

#include <QString>

#include <cstdint>
#include <optional>

namespace SimulationTool {

/// What a number on the command line must be.
struct NumberRange
{
    QString name;     ///< as it is called there, "--step"
    const char* unit; ///< " of milliseconds", or ""
    std::uint32_t min = 0;
    std::uint32_t max = UINT32_MAX;
};

/// Reads a number that is written with digits only. Nothing, with a reason, for
/// any other text and beyond the range.
[[nodiscard]] std::optional<std::uint32_t> wholeNumber(const QString& a_sText, const NumberRange& a_range,
                                                       QString& a_sReason);

} // namespace SimulationTool

#endif
