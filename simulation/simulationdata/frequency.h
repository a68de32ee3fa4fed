#ifndef SIMULATIONDATA_FREQUENCY_H
#define SIMULATIONDATA_FREQUENCY_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

namespace Units {

/// Converts frequencies (Hz) to and from the text that users read and type.
///
/// Static operations only: an object has no state. Any thread may call; nothing
/// throws.
class SIMULATIONDATA_EXPORT Frequency
{
public:
    /// The pattern of a frequency that a user types: a number and an optional unit
    /// letter. Text after the unit letter is ignored. Do not use the pattern before main()
    /// begins.
    static const QString s_sRegex;

    /// Whether two frequencies (Hz) differ by less than 1e-6 Hz.
    [[nodiscard]] static bool equal(double a_dFirst, double a_dSecond);

    /// Returns a frequency (Hz) with a suitable unit, for example "433.920000 MHz".
    /// The unit is Hz below 1000, kHz below 1e7, MHz below 1e9, otherwise GHz, also
    /// for NaN. 1 MHz to 10 MHz stay in kHz on purpose. The unit is chosen before
    /// rounding.
    ///
    /// With `a_bFixedDecimals` the unit determines the number of decimals (0, 3, 6,
    /// 6 for Hz, kHz, MHz, GHz). Otherwise there are always six. The decimal point
    /// is "." in every locale. Sets `*a_pbOk` to true unless the pointer is null.
    [[nodiscard]] static QString toString(double a_dValue, bool a_bFixedDecimals, bool* a_pbOk = nullptr);

    /// Whether the whole text matches s_sRegex.
    [[nodiscard]] static bool validString(const QString& a_sText);

    /// Returns the frequency (Hz) of a text, 0 for an invalid text. "m" and "M" both
    /// mean mega. A text without a unit letter is in the unit that toString() would
    /// use for `a_dReference` (Hz). That unit is Hz when the reference is 0.
    ///
    /// The decimal mark is a point or a comma, whatever the application's default
    /// locale. A text of toString() therefore gives the same frequency everywhere.
    [[nodiscard]] static double fromString(const QString& a_sText, double a_dReference);
};

} // namespace Units

#endif
