#include "position.h"

#include "simulationdata/io/numbers_p.h"

#include "geodesy/geodesy.h"
#include "kpbase/coord.h"

#include <array>
#include <cmath>

#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>

namespace Units {

namespace {

constexpr double s_dTolerance = 1e-8; // degrees
constexpr char s_szContext[] = "Units::Position";
constexpr QChar s_degree = u'\u00B0';

/// Input mask, pattern and name of a format; '@' is a placeholder for the decimal
/// point.
struct FormatTexts
{
    QStringView mask;
    QStringView regex;
    const char* name = nullptr;
};

constexpr char16_t s_cDecimalPoint = u'@';

constexpr std::array<FormatTexts, 6> s_formats{{
    {u">A999@999999\u00B0 A99@999999\u00B0",
     uR"re(^(E|W)((0\d{2}|1[0-7]\d)@\d{6}|180@000000)°\s(N|S)([0-8]\d@\d{6}|90@000000)°$)re",
     QT_TRANSLATE_NOOP("Units::Position", "Decimal")},
    {u">A999\u00B099'99@99\" A99\u00B099'99@99\"",
     uR"re(^(E|W)((0\d{2}|1[0-7]\d)°[0-5]\d'[0-5]\d@\d{2}|180°00'00@00)"\s(N|S)([0-8]\d°[0-5]\d'[0-5]\d@\d{2}|90°00'00@00)"$)re",
     QT_TRANSLATE_NOOP("Units::Position", "Geo long")},
    {u">A999\u00B099'99\" A99\u00B099'99\"",
     uR"re(^(E|W)((0\d{2}|1[0-7]\d)°[0-5]\d'[0-5]\d|180°00'00)"\s(N|S)([0-8]\d°[0-5]\d'[0-5]\d|90°00'00)"$)re",
     QT_TRANSLATE_NOOP("Units::Position", "Geo short")},
    {u">99A 9999999 9999999", uR"re(^\d{2}([C-H]|[J-N]|[P-X])\s\d{7}\s\d{7}$)re",
     QT_TRANSLATE_NOOP("Units::Position", "UTM")},
    {u">99A-AA-999999-999999", uR"re(^\d{2}\S-\S{2}-\d{6}-\d{6}$)re",
     QT_TRANSLATE_NOOP("Units::Position", "MGRS (NATO UTM)")},
    {u">AA99AA<", uR"re(^\S{2}\d{2}\S{2}$)re", QT_TRANSLATE_NOOP("Units::Position", "Maidenhead QTH")},
}};

bool isFormat(Position::Format a_eFormat)
{
    return a_eFormat >= Position::Decimal && a_eFormat <= Position::Maidenhead;
}

Position::Format knownFormat(Position::Format a_eFormat)
{
    return isFormat(a_eFormat) ? a_eFormat : Position::Decimal;
}

const FormatTexts& textsOf(Position::Format a_eFormat)
{
    return s_formats[static_cast<std::size_t>(knownFormat(a_eFormat))];
}

/// The code of a format for class Coord. Formats unknown to Coord have the code 0.
int coordFormat(Position::Format a_eFormat)
{
    switch (a_eFormat) {
    case Position::UTM:
        return Coord::s_iFormatUtm;
    case Position::MGRS:
        return Coord::s_iFormatMgrs;
    case Position::Maidenhead:
        return Coord::s_iFormatMaidenhead;
    default:
        return 0;
    }
}

char16_t decimalPointCode(const QLocale& a_locale)
{
    const QString sPoint = a_locale.decimalPoint();
    return sPoint.isEmpty() ? u'.' : sPoint.front().unicode();
}

QString regexWith(Position::Format a_eFormat, const QString& a_sDecimalPoint)
{
    return textsOf(a_eFormat).regex.toString().replace(s_cDecimalPoint, a_sDecimalPoint);
}

/// The expression of a format, compiled once per thread and decimal point.
QRegularExpression expression(Position::Format a_eFormat, char16_t a_cDecimalPoint)
{
    thread_local QHash<quint32, QRegularExpression> t_expressions;
    constexpr int iCodeBits = 16;
    const quint32 uiKey = (static_cast<quint32>(a_eFormat) << iCodeBits) | a_cDecimalPoint;
    QRegularExpression& compiled = t_expressions[uiKey];
    if (compiled.pattern().isEmpty()) {
        const QString sPoint =
            QStringLiteral("\\x{%1}").arg(static_cast<uint>(a_cDecimalPoint), 4, 16, QChar(u'0'));
        compiled = QRegularExpression(QRegularExpression::anchoredPattern(regexWith(a_eFormat, sPoint)),
                                      QRegularExpression::UseUnicodePropertiesOption |
                                          QRegularExpression::DotMatchesEverythingOption);
    }
    return compiled;
}

QChar longitudeLetter(double a_dLongitude)
{
    return a_dLongitude >= 0.0 ? u'E' : u'W';
}

QChar latitudeLetter(double a_dLatitude)
{
    return a_dLatitude >= 0.0 ? u'N' : u'S';
}

/// A whole number as text. A cast to an integer would be undefined for values that do
/// not fit.
QString wholeText(double a_dValue, int a_iWidth)
{
    return QString::number(a_dValue, 'f', 0).rightJustified(a_iWidth, u'0');
}

/// A magnitude with the locale's decimal point, never with group separators.
QString localText(double a_dValue, int a_iDecimals, int a_iWidth, const QLocale& a_locale)
{
    QLocale locale = a_locale;
    locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    return locale.toString(a_dValue, 'f', a_iDecimals).rightJustified(a_iWidth, u'0');
}

QString decimalText(const Position_t& a_position, const QLocale& a_locale)
{
    constexpr int iDecimals = 6;
    constexpr int iLongitudeWidth = 10;
    constexpr int iLatitudeWidth = 9;
    return longitudeLetter(a_position.longitude) +
           localText(std::fabs(a_position.longitude), iDecimals, iLongitudeWidth, a_locale) + s_degree +
           u' ' + latitudeLetter(a_position.latitude) +
           localText(std::fabs(a_position.latitude), iDecimals, iLatitudeWidth, a_locale) + s_degree;
}

/// Rounds to whole seconds; exactly a half is rounded down.
double roundedSeconds(double a_dSeconds)
{
    constexpr double dHalf = 0.5;
    const double dWhole = std::trunc(a_dSeconds);
    return a_dSeconds - dWhole > dHalf ? dWhole + 1.0 : dWhole;
}

/// A magnitude (degrees) as degrees, minutes = trunc(fraction * 60), and seconds =
/// the fraction of the minutes * 60. Seconds that round to 60 are not carried into
/// the minutes.
QString geoAxisText(double a_dMagnitude, int a_iDegreeWidth, Position::Format a_eFormat,
                    const QLocale& a_locale)
{
    constexpr double dSixty = 60.0;
    constexpr int iSecondDecimals = 2;
    constexpr int iLongSecondWidth = 5;
    const double dDegrees = std::trunc(a_dMagnitude);
    const double dAllMinutes = (a_dMagnitude - dDegrees) * dSixty;
    const double dMinutes = std::trunc(dAllMinutes);
    const double dSeconds = (dAllMinutes - dMinutes) * dSixty;
    const QString sSeconds = a_eFormat == Position::GeoLong
                                 ? localText(dSeconds, iSecondDecimals, iLongSecondWidth, a_locale)
                                 : wholeText(roundedSeconds(dSeconds), 2);
    return wholeText(dDegrees, a_iDegreeWidth) + s_degree + wholeText(dMinutes, 2) + u'\'' + sSeconds + u'"';
}

QString geoText(const Position_t& a_position, Position::Format a_eFormat, const QLocale& a_locale)
{
    constexpr int iLongitudeDegrees = 3;
    constexpr int iLatitudeDegrees = 2;
    return longitudeLetter(a_position.longitude) +
           geoAxisText(std::fabs(a_position.longitude), iLongitudeDegrees, a_eFormat, a_locale) + u' ' +
           latitudeLetter(a_position.latitude) +
           geoAxisText(std::fabs(a_position.latitude), iLatitudeDegrees, a_eFormat, a_locale);
}

/// Index and length of a number in the text of a position.
struct Piece
{
    qsizetype at;
    qsizetype length;
};

/// The numbers of one axis. The letter of the hemisphere precedes the degrees.
struct GeoPieces
{
    Piece degrees;
    Piece minutes;
    Piece seconds;
};

QStringView pieceOf(const QString& a_sText, const Piece& a_piece)
{
    return QStringView(a_sText).mid(a_piece.at, a_piece.length);
}

QChar letterBefore(const QString& a_sText, const Piece& a_piece)
{
    return a_piece.at <= a_sText.size() ? a_sText[a_piece.at - 1] : QChar();
}

double decimalAxis(const QString& a_sText, const Piece& a_piece, QChar a_negative, const QLocale& a_locale)
{
    const double dMagnitude = Simulation::finiteOrZero(a_locale.toDouble(pieceOf(a_sText, a_piece)));
    return letterBefore(a_sText, a_piece).toUpper() == a_negative ? -dMagnitude : dMagnitude;
}

double geoAxis(const QString& a_sText, const GeoPieces& a_pieces, QChar a_negative)
{
    const auto number = [&a_sText](const Piece& a_piece) { return pieceOf(a_sText, a_piece).toDouble(); };
    const double dMagnitude = Simulation::finiteOrZero(Geodesy::decimalDegrees(
        number(a_pieces.degrees), number(a_pieces.minutes), number(a_pieces.seconds)));
    return letterBefore(a_sText, a_pieces.degrees) == a_negative ? -dMagnitude : dMagnitude;
}

Position_t fromDecimalText(const QString& a_sText, const QLocale& a_locale)
{
    constexpr Piece longitude{1, 10};
    constexpr Piece latitude{14, 9};
    return {decimalAxis(a_sText, longitude, u'W', a_locale), decimalAxis(a_sText, latitude, u'S', a_locale)};
}

Position_t fromGeoLongText(const QString& a_sText)
{
    constexpr GeoPieces longitude{{1, 3}, {5, 2}, {8, 5}};
    constexpr GeoPieces latitude{{16, 2}, {19, 2}, {22, 5}};
    return {geoAxis(a_sText, longitude, u'W'), geoAxis(a_sText, latitude, u'S')};
}

Position_t fromGeoShortText(const QString& a_sText)
{
    constexpr GeoPieces longitude{{1, 3}, {5, 2}, {8, 2}};
    constexpr GeoPieces latitude{{13, 2}, {16, 2}, {19, 2}};
    return {geoAxis(a_sText, longitude, u'W'), geoAxis(a_sText, latitude, u'S')};
}

} // namespace

bool Position::equal(const Position_t& a_first, const Position_t& a_second)
{
    return std::fabs(a_first.latitude - a_second.latitude) < s_dTolerance;
}

bool Position::validString(const QString& a_sText, Format a_eFormat, const QLocale& a_locale)
{
    return expression(knownFormat(a_eFormat), decimalPointCode(a_locale)).match(a_sText).hasMatch();
}

QString Position::toString(const Position_t& a_position, Format a_eFormat, const QLocale& a_locale)
{
    switch (a_eFormat) {
    case Decimal:
        return decimalText(a_position, a_locale);
    case GeoLong:
    case GeoShort:
        return geoText(a_position, a_eFormat, a_locale);
    default:
        return Coord(a_position.longitude, a_position.latitude).GetString(coordFormat(a_eFormat));
    }
}

QString Position::toString(double a_dLongitude, double a_dLatitude, Format a_eFormat, const QLocale& a_locale)
{
    return toString(Position_t(a_dLongitude, a_dLatitude), a_eFormat, a_locale);
}

Position_t Position::fromString(const QString& a_sText, Format a_eFormat, const QLocale& a_locale)
{
    switch (a_eFormat) {
    case Decimal:
        return fromDecimalText(a_sText, a_locale);
    case GeoLong:
        return fromGeoLongText(a_sText);
    case GeoShort:
        return fromGeoShortText(a_sText);
    default:
        Coord coord;
        coord.SetString(a_sText, coordFormat(a_eFormat)); // (0, 0) for an invalid text
        return {coord.first(), coord.second()};
    }
}

QString Position::formatMask(Format a_eFormat, const QLocale& a_locale)
{
    return textsOf(a_eFormat).mask.toString().replace(s_cDecimalPoint, a_locale.decimalPoint());
}

QString Position::regex(Format a_eFormat, const QLocale& a_locale)
{
    const uint uiCode = decimalPointCode(a_locale);
    return regexWith(a_eFormat, QStringLiteral("\\x%1").arg(uiCode, 4, 16, QChar(u'0')));
}

QList<Position::Format> Position::formats()
{
    return {Decimal, GeoLong, GeoShort, UTM, MGRS, Maidenhead};
}

QString Position::formatName(Format a_eFormat)
{
    if (!isFormat(a_eFormat)) {
        return QStringLiteral("ERROR INVALID COORDINATES FORMAT");
    }
    return QCoreApplication::translate(s_szContext, textsOf(a_eFormat).name);
}

} // namespace Units
