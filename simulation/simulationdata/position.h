#ifndef SIMULATIONDATA_POSITION_H
#define SIMULATIONDATA_POSITION_H

#include "simulationdata/simulationdata_export.h"

#include <QList>
#include <QLocale>
#include <QString>

namespace Units {

/// A geographic position, longitude first. The layout equals that of
/// Simulation::TPos. A default object is not initialised.
struct Position_t
{
    Position_t() = default;
    Position_t(double a_dLongitude, double a_dLatitude)
        : longitude(a_dLongitude)
        , latitude(a_dLatitude)
    {}

    double longitude; ///< degrees, east positive
    double latitude;  ///< degrees, north positive
};

/// Converts positions to and from the text that users read and type.
///
/// Static operations only: an object has no state. Any thread may call; nothing
/// throws.
class SIMULATIONDATA_EXPORT Position
{
public:
    /// The text forms, in the order in which users see them.
    enum Format : int {
        Decimal = 0,    ///< E008.123456° N48.123456°, the locale's decimal point
        GeoLong = 1,    ///< E008°30'15.25" N48°07'30.00", the locale's decimal point
        GeoShort = 2,   ///< E008°30'15" N48°07'30"
        UTM = 3,        ///< 32U 0691928 5335080
        MGRS = 4,       ///< 32U-PU-919280-350802
        Maidenhead = 5, ///< JN58SD
    };

    /// Whether two latitudes differ by less than 1e-8 degrees. The longitudes are
    /// not compared, on purpose: callers rely on a comparison by latitude only.
    [[nodiscard]] static bool equal(const Position_t& a_first, const Position_t& a_second);

    /// Whether the whole text matches regex() of this format and locale.
    [[nodiscard]] static bool validString(const QString& a_sText, Format a_eFormat, const QLocale& a_locale);

    /// Returns a position as text, empty for an unknown format. In GeoLong and
    /// GeoShort, seconds that round to 60 are not carried into the minutes, on
    /// purpose: the text then has "60.00" or "60" seconds. A coordinate that is not
    /// finite gives "nan" or "inf" in the first three forms. For the other forms see
    /// Coord.
    [[nodiscard]] static QString toString(const Position_t& a_position, Format a_eFormat,
                                          const QLocale& a_locale);
    [[nodiscard]] static QString toString(double a_dLongitude, double a_dLatitude, Format a_eFormat,
                                          const QLocale& a_locale);

    /// Returns the position of a text. The result is always finite. It is (0, 0) for
    /// an unknown format. Check validString() first: the first three forms are read
    /// at fixed places, and text that is not a number counts as 0 there. The seconds
    /// of GeoLong need a decimal "."; seconds with a decimal comma are read as 0, on
    /// purpose.
    [[nodiscard]] static Position_t fromString(const QString& a_sText, Format a_eFormat,
                                               const QLocale& a_locale);

    /// The input mask of a line edit. An unknown format gives the mask of Decimal.
    [[nodiscard]] static QString formatMask(Format a_eFormat, const QLocale& a_locale);

    /// The regular expression of a valid text. An unknown format gives the
    /// expression of Decimal. The decimal point is written as "\x" and four
    /// hexadecimal digits. QRegularExpression does not read these as one character,
    /// so use validString() to match a text.
    [[nodiscard]] static QString regex(Format a_eFormat, const QLocale& a_locale);

    /// Every format, in order.
    [[nodiscard]] static QList<Format> formats();

    /// The translated display name. An unknown format gives "ERROR INVALID
    /// COORDINATES FORMAT".
    [[nodiscard]] static QString formatName(Format a_eFormat);
};

} // namespace Units

#endif
