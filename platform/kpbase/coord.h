#ifndef KPBASE_COORD_H
#define KPBASE_COORD_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

/// A geographic position on WGS 84 that can be written and read in grid forms.
///
/// A plain value; a default object is the position (0, 0). No operation throws.
/// Texts are written in upper case and read in either case. The forms, with examples
/// for longitude 11.58, latitude 48.14:
/// - UTM "32U 0691928 5335080": zone, latitude band, easting and northing, rounded
///   to whole metres. Northings just south of the equator are cut to 9999999.
///   Reading uses the band letter only for the hemisphere.
/// - MGRS "32U-PU-919280-350802": zone and band, 100 km square, easting and northing
///   in units of 0.1 m, truncated. The text is read as the centre of its cell.
/// - Maidenhead "JN58SD": a cell of 5 by 2.5 minutes of arc. The text is read as the
///   centre of its cell.
class SIMULATIONDATA_EXPORT Coord
{
public:
    /// Format codes. The values are part of the interface.
    static constexpr int s_iFormatUtm = 3;
    static constexpr int s_iFormatMgrs = 4;
    static constexpr int s_iFormatMaidenhead = 7;

    Coord() = default;

    /// Longitude first, in degrees, east and north positive. Both are stored
    /// unchanged. GetString() takes the longitude modulo 360.
    Coord(double a_dLongitude, double a_dLatitude);

    /// The stored pair: longitude and latitude, degrees.
    [[nodiscard]] double first() const { return m_dLongitude; }
    [[nodiscard]] double second() const { return m_dLatitude; }

    /// Returns the position as text. Empty for an unknown format, and for a position
    /// that is not finite or outside the globe. The UTM and MGRS forms are also
    /// empty outside latitudes [-80, 84).
    [[nodiscard]] QString GetString(int a_iFormat) const;

    /// Reads the position from a text. Returns false for an invalid text and for an
    /// unknown format; the position is then (0, 0).
    bool SetString(const QString& a_sText, int a_iFormat);

private:
    double m_dLongitude = 0.0;
    double m_dLatitude = 0.0;
};

#endif
