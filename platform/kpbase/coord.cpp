#include "kpbase/coord.h"

#include <GeographicLib/MGRS.hpp>
#include <GeographicLib/UTMUPS.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>
#include <string>

#include <QStringList>
#include <QStringView>

using GeographicLib::MGRS;
using GeographicLib::UTMUPS;

namespace {

constexpr double s_dMaximumLatitude = 90.0;
constexpr double s_dHalfCircle = 180.0;
constexpr double s_dFullCircle = 360.0;

/// Letters of the UTM latitude bands, from 80 degrees south. Each band is 8 degrees
/// high, the last one 12 degrees. The letters I and O are not used.
constexpr QStringView s_sBands = u"CDEFGHJKLMNPQRSTUVWX";
constexpr qsizetype s_iFirstNorthernBand = 10;
constexpr double s_dBandOrigin = -80.0;
constexpr double s_dBandHeight = 8.0;

constexpr int s_iMetreDigits = 7;
constexpr double s_dLargestMetres = 9999999.0;

constexpr qsizetype s_iMgrsDigits = 6; ///< digits per axis for 0.1 m, GeographicLib's precision 6
/// Lengths of the parts of an MGRS text: zone and band, square, digits per axis.
constexpr qsizetype s_iMgrsZone = 3;
constexpr qsizetype s_iMgrsSquare = 2;
constexpr qsizetype s_iMgrsLength = s_iMgrsZone + s_iMgrsSquare + 2 * s_iMgrsDigits;

/// In the Maidenhead form each axis has 18 fields of 10 squares of 24 subsquares. A
/// subsquare, here called cell, is therefore 5 minutes of arc wide and 2.5 minutes high.
constexpr int s_iFields = 18;
constexpr int s_iSquares = 10;
constexpr int s_iSubsquares = 24;
constexpr int s_iCells = s_iFields * s_iSquares * s_iSubsquares;
constexpr double s_dCellsPerLongitude = s_iCells / s_dFullCircle;
constexpr double s_dCellsPerLatitude = s_iCells / s_dHalfCircle;
constexpr qsizetype s_iMaidenheadLength = 6;
constexpr double s_dCellCentre = 0.5;

/// A UTM position. The false easting and false northing of its zone and hemisphere are
/// included.
struct GridPoint
{
    int zone = UTMUPS::INVALID;
    bool northern = true;
    double easting = 0.0;  ///< metres
    double northing = 0.0; ///< metres
};

// GeographicLib takes the latitude first and may throw exceptions. GetString() and
// SetString() catch them.

/// Returns the UTM position in the standard zone; no value outside latitudes [-80,
/// 84).
std::optional<GridPoint> gridPoint(const Coord& a_coord)
{
    // Adding 0 removes the sign of -0, which would count as south of the equator.
    const double dLatitude = a_coord.second() + 0.0;
    if (UTMUPS::StandardZone(dLatitude, a_coord.first()) < UTMUPS::MINUTMZONE) {
        return std::nullopt;
    }
    GridPoint point;
    UTMUPS::Forward(dLatitude, a_coord.first(), point.zone, point.northern, point.easting, point.northing);
    return point;
}

Coord fromGridPoint(const GridPoint& a_point)
{
    double dLatitude = 0.0;
    double dLongitude = 0.0;
    UTMUPS::Reverse(a_point.zone, a_point.northern, a_point.easting, a_point.northing, dLatitude, dLongitude);
    return {dLongitude, dLatitude};
}

/// Returns whole metres in 7 digits. The northing 10,000,000 of the equator in the
/// southern hemisphere needs 8 digits and is cut to 9999999.
QString metresText(double a_dMetres)
{
    const double dMetres = std::clamp(std::round(a_dMetres), 0.0, s_dLargestMetres);
    return QString::number(dMetres, 'f', 0).rightJustified(s_iMetreDigits, u'0');
}

bool isDigits(QStringView a_sText)
{
    return std::all_of(a_sText.begin(), a_sText.end(),
                       [](QChar a_character) { return a_character >= u'0' && a_character <= u'9'; });
}

bool isLetters(QStringView a_sText)
{
    return std::all_of(a_sText.begin(), a_sText.end(),
                       [](QChar a_character) { return a_character >= u'A' && a_character <= u'Z'; });
}

/// Returns the distance of a character from `a_first`; no value outside [0,
/// a_iCount).
std::optional<int> indexOf(QChar a_character, char16_t a_first, int a_iCount)
{
    const int iIndex = a_character.unicode() - a_first;
    return iIndex >= 0 && iIndex < a_iCount ? std::optional<int>(iIndex) : std::nullopt;
}

QString utmText(const Coord& a_coord)
{
    const std::optional<GridPoint> point = gridPoint(a_coord);
    if (!point) {
        return {};
    }
    // Band number = floor((latitude + 80) / 8). The latitude is first rounded down
    // to whole degrees. Otherwise, adding 80 could round a latitude just south of a
    // band's edge onto the edge.
    const double dBand = std::floor((std::floor(a_coord.second()) - s_dBandOrigin) / s_dBandHeight);
    const qsizetype iBand = std::clamp<qsizetype>(static_cast<qsizetype>(dBand), 0, s_sBands.size() - 1);
    return QString::number(point->zone).rightJustified(2, u'0') + s_sBands[iBand] + u' ' +
           metresText(point->easting) + u' ' + metresText(point->northing);
}

/// Reads a text such as "32U 0691928 5335080", in upper case. The band is only used for
/// the hemisphere.
std::optional<Coord> fromUtmText(QStringView a_sText)
{
    constexpr qsizetype iEastingAt = 4;
    constexpr qsizetype iNorthingAt = iEastingAt + s_iMetreDigits + 1;
    constexpr qsizetype iLength = iNorthingAt + s_iMetreDigits;
    if (a_sText.size() != iLength || !a_sText[iEastingAt - 1].isSpace() ||
        !a_sText[iNorthingAt - 1].isSpace()) {
        return std::nullopt;
    }
    const QStringView sZone = a_sText.first(2);
    const QStringView sEasting = a_sText.mid(iEastingAt, s_iMetreDigits);
    const QStringView sNorthing = a_sText.mid(iNorthingAt);
    const qsizetype iBand = s_sBands.indexOf(a_sText[2]);
    if (!isDigits(sZone) || !isDigits(sEasting) || !isDigits(sNorthing) || iBand < 0) {
        return std::nullopt;
    }
    const int iZone = sZone.toInt();
    if (iZone < UTMUPS::MINUTMZONE || iZone > UTMUPS::MAXUTMZONE) {
        return std::nullopt;
    }
    return fromGridPoint({iZone, iBand >= s_iFirstNorthernBand, sEasting.toDouble(), sNorthing.toDouble()});
}

QString mgrsText(const Coord& a_coord)
{
    const std::optional<GridPoint> point = gridPoint(a_coord);
    if (!point) {
        return {};
    }
    std::string mgrs;
    MGRS::Forward(point->zone, point->northern, point->easting, point->northing, a_coord.second() + 0.0,
                  int{s_iMgrsDigits}, mgrs);
    QString sText = QString::fromStdString(mgrs);
    for (const qsizetype iPart : {s_iMgrsLength - s_iMgrsDigits, s_iMgrsZone + s_iMgrsSquare, s_iMgrsZone}) {
        sText.insert(iPart, u'-');
    }
    return sText;
}

/// Reads a text such as "32U-PU-919280-350802", in upper case. Returns the centre of the
/// cell.
std::optional<Coord> fromMgrsText(const QString& a_sText)
{
    const QStringList parts = a_sText.split(u'-');
    constexpr qsizetype iParts = 4;
    if (parts.size() != iParts || parts[0].size() != s_iMgrsZone || parts[1].size() != s_iMgrsSquare ||
        parts[2].size() != s_iMgrsDigits || parts[3].size() != s_iMgrsDigits) {
        return std::nullopt;
    }
    if (!isDigits(parts[0].first(2)) || !isLetters(parts[0].last(1)) || !isLetters(parts[1]) ||
        !isDigits(parts[2]) || !isDigits(parts[3])) {
        return std::nullopt;
    }
    GridPoint point;
    int iPrecision = 0;
    MGRS::Reverse(parts.join(QString()).toStdString(), point.zone, point.northern, point.easting,
                  point.northing, iPrecision);
    return fromGridPoint(point);
}

QString maidenheadText(const Coord& a_coord)
{
    const auto cell = [](double a_dCells) {
        return static_cast<int>(std::clamp(a_dCells, 0.0, s_iCells - 1.0));
    };
    // In [-180, 180]; longitude 180 belongs to the cells that begin at -180.
    const double dLongitude = std::remainder(a_coord.first(), s_dFullCircle);
    const double dEast = dLongitude >= s_dHalfCircle ? 0.0 : dLongitude + s_dHalfCircle;
    const int iEast = cell(dEast * s_dCellsPerLongitude);
    // Cells are counted from longitude -180 and latitude -90. Field, square and
    // subsquare are the digits of the cell number in the bases 18, 10 and 24. Each is
    // written for the longitude first, then for the latitude.
    const int iNorth = cell((a_coord.second() + s_dMaximumLatitude) * s_dCellsPerLatitude);
    QString sText;
    for (const int iCell : {iEast, iNorth}) {
        sText += QChar(u'A' + iCell / (s_iSquares * s_iSubsquares));
    }
    for (const int iCell : {iEast, iNorth}) {
        sText += QChar(u'0' + iCell / s_iSubsquares % s_iSquares);
    }
    for (const int iCell : {iEast, iNorth}) {
        sText += QChar(u'A' + iCell % s_iSubsquares);
    }
    return sText;
}

/// The cell number on one axis; no value for an invalid character. The characters of
/// field, square and subsquare are two places apart, because those of the other axis are
/// between them.
std::optional<int> maidenheadCell(QStringView a_sText)
{
    const std::optional<int> field = indexOf(a_sText[0], u'A', s_iFields);
    const std::optional<int> square = indexOf(a_sText[2], u'0', s_iSquares);
    const std::optional<int> subsquare = indexOf(a_sText[4], u'A', s_iSubsquares);
    if (!field || !square || !subsquare) {
        return std::nullopt;
    }
    return (*field * s_iSquares + *square) * s_iSubsquares + *subsquare;
}

/// Reads a text such as "JN58SD", in upper case. Returns the centre of the cell.
std::optional<Coord> fromMaidenheadText(QStringView a_sText)
{
    if (a_sText.size() != s_iMaidenheadLength) {
        return std::nullopt;
    }
    const std::optional<int> east = maidenheadCell(a_sText);
    const std::optional<int> north = maidenheadCell(a_sText.mid(1));
    if (!east || !north) {
        return std::nullopt;
    }
    return Coord((*east + s_dCellCentre) / s_dCellsPerLongitude - s_dHalfCircle,
                 (*north + s_dCellCentre) / s_dCellsPerLatitude - s_dMaximumLatitude);
}

} // namespace

Coord::Coord(double a_dLongitude, double a_dLatitude)
    : m_dLongitude(a_dLongitude)
    , m_dLatitude(a_dLatitude)
{}

QString Coord::GetString(int a_iFormat) const
{
    if (!std::isfinite(m_dLongitude) || !(std::fabs(m_dLatitude) <= s_dMaximumLatitude)) {
        return {};
    }
    try {
        switch (a_iFormat) {
        case s_iFormatUtm:
            return utmText(*this);
        case s_iFormatMgrs:
            return mgrsText(*this);
        case s_iFormatMaidenhead:
            return maidenheadText(*this);
        default:
            return {};
        }
    } catch (const std::exception&) {
        return {};
    }
}

bool Coord::SetString(const QString& a_sText, int a_iFormat)
{
    std::optional<Coord> read;
    try {
        const QString sUpper = a_sText.toUpper();
        if (a_iFormat == s_iFormatUtm) {
            read = fromUtmText(sUpper);
        } else if (a_iFormat == s_iFormatMgrs) {
            read = fromMgrsText(sUpper);
        } else if (a_iFormat == s_iFormatMaidenhead) {
            read = fromMaidenheadText(sUpper);
        }
    } catch (const std::exception&) {
        read.reset(); // the square or the zone does not exist
    }
    *this = read.value_or(Coord());
    return read.has_value();
}
