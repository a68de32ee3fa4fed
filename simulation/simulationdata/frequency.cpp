#include "frequency.h"

#include <array>
#include <cmath>
#include <limits>

#include <QRegularExpression>

namespace Units {

namespace {

constexpr QStringView s_sPattern = uR"re((\d+[.,]?\d*)\W*([hHkKmMgG]?).*)re";
constexpr int s_iNumberCapture = 1;
constexpr int s_iUnitCapture = 2;

constexpr double s_dTolerance = 1e-6; // Hz
constexpr int s_iFreeDecimals = 6;

struct Band
{
    double upperEnd = 0.0; ///< Hz, not part of the band
    char16_t unit = 0;     ///< unit letter in user input, lower case
    QLatin1String prefix;
    double divisor = 1.0; ///< Hz per unit
    int decimals = 0;
};

constexpr double s_dKilo = 1e3;
constexpr double s_dMega = 1e6;
constexpr double s_dGiga = 1e9;

constexpr std::array<Band, 4> s_bands{{
    {s_dKilo, u'h', QLatin1String(""), 1.0, 0},
    {10 * s_dMega, u'k', QLatin1String("k"), s_dKilo, 3},
    {s_dGiga, u'm', QLatin1String("M"), s_dMega, 6},
    {std::numeric_limits<double>::infinity(), u'g', QLatin1String("G"), s_dGiga, 6},
}};

/// The band that contains a frequency (Hz). The band determines the unit of the text.
const Band& bandOf(double a_dValue)
{
    for (const Band& band : s_bands) {
        if (a_dValue < band.upperEnd) {
            return band;
        }
    }
    return s_bands.back(); // infinite or not a number
}

/// The number of Hz per unit. A letter in either case names the unit. Without a letter,
/// the unit is the one that toString() uses for the reference (Hz), or Hz for the
/// reference 0.
double multiplierOf(QStringView a_sUnit, double a_dReference)
{
    if (a_sUnit.isEmpty()) {
        return a_dReference == 0.0 ? 1.0 : bandOf(a_dReference).divisor;
    }
    for (const Band& band : s_bands) {
        if (a_sUnit.front().toLower() == band.unit) {
            return band.divisor;
        }
    }
    return 1.0;
}

/// The compiled pattern. It is compiled on first use, which may be before s_sRegex is
/// initialised.
const QRegularExpression& expression()
{
    static const QRegularExpression s_expression(QRegularExpression::anchoredPattern(s_sPattern),
                                                 QRegularExpression::UseUnicodePropertiesOption |
                                                     QRegularExpression::DotMatchesEverythingOption);
    return s_expression;
}

} // namespace

const QString Frequency::s_sRegex = s_sPattern.toString();

bool Frequency::equal(double a_dFirst, double a_dSecond)
{
    return std::fabs(a_dFirst - a_dSecond) < s_dTolerance;
}

QString Frequency::toString(double a_dValue, bool a_bFixedDecimals, bool* a_pbOk)
{
    if (a_pbOk != nullptr) {
        *a_pbOk = true;
    }
    const Band& band = bandOf(a_dValue);
    const int iDecimals = a_bFixedDecimals ? band.decimals : s_iFreeDecimals;
    return QString::number(a_dValue / band.divisor, 'f', iDecimals) + u' ' + band.prefix +
           QLatin1String("Hz");
}

bool Frequency::validString(const QString& a_sText)
{
    return expression().match(a_sText).hasMatch();
}

double Frequency::fromString(const QString& a_sText, double a_dReference)
{
    const QRegularExpressionMatch match = expression().match(a_sText);
    if (!match.hasMatch()) {
        return 0.0;
    }
    const QString sNumber = match.captured(s_iNumberCapture).replace(u',', u'.');
    bool bOk = false;
    const double dNumber = sNumber.toDouble(&bOk);
    return bOk ? multiplierOf(match.capturedView(s_iUnitCapture), a_dReference) * dNumber : 0.0;
}

} // namespace Units
