#include "wholenumber.h"

#include <algorithm>

namespace SimulationTool {

std::optional<std::uint32_t> wholeNumber(const QString& a_sText, const NumberRange& a_range,
                                         QString& a_sReason)
{
    const bool bDigits = std::all_of(a_sText.cbegin(), a_sText.cend(),
                                     [](QChar a_cUnit) { return a_cUnit >= u'0' && a_cUnit <= u'9'; });
    bool bNumber = false;
    const std::uint32_t uiValue = a_sText.toUInt(&bNumber);
    if (bDigits && bNumber && uiValue >= a_range.min && uiValue <= a_range.max) {
        return uiValue;
    }
    a_sReason = QStringLiteral("%1 needs a whole number%2 from %3 to %4, not \"")
                    .arg(a_range.name, QLatin1String(a_range.unit), QString::number(a_range.min),
                         QString::number(a_range.max)) +
                a_sText + u'"';
    return std::nullopt;
}

} // namespace SimulationTool
