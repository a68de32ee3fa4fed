#include "xmltext_p.h"

#include "simulationdata/io/numbers_p.h"
#include "xmlencoding_p.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace Simulation {

namespace {

constexpr char16_t s_cFirstPrintable = 0x20;
constexpr char16_t s_cFirstSurrogate = 0xD800;
constexpr char16_t s_cFirstNonCharacter = 0xFFFE;

/// Whether XML 1.0 forbids the code unit, or allows it only as half of a surrogate
/// pair.
bool isSuspicious(QChar a_cUnit)
{
    const char16_t c = a_cUnit.unicode();
    if (c < s_cFirstPrintable) {
        return c != u'\t' && c != u'\n' && c != u'\r';
    }
    return c >= s_cFirstSurrogate && (QChar::isSurrogate(c) || c >= s_cFirstNonCharacter);
}

QString withoutForbidden(const QString& a_sText)
{
    QString sClean;
    sClean.reserve(a_sText.size());
    for (qsizetype i = 0; i < a_sText.size(); ++i) {
        const QChar c = a_sText.at(i);
        if (c.isHighSurrogate() && i + 1 < a_sText.size() && a_sText.at(i + 1).isLowSurrogate()) {
            sClean.append(c);
            sClean.append(a_sText.at(++i));
        } else if (!isSuspicious(c)) {
            sClean.append(c);
        }
    }
    return sClean;
}

} // namespace

QString cleanXmlText(const QString& a_sText)
{
    const bool bClean = std::none_of(a_sText.cbegin(), a_sText.cend(), isSuspicious);
    return bClean ? a_sText : withoutForbidden(a_sText);
}

namespace {

/// The shortest decimal that is read back as the number: digits d.ddd and an exponent.
struct Decimal
{
    std::array<char, 24> digits{};
    int count = 0;
    int exponent = 0; ///< of the first digit
};

Decimal shortestDecimal(double a_dMagnitude)
{
    std::array<char, 32> text{};
    const auto result = std::to_chars(text.begin(), text.end(), a_dMagnitude, std::chars_format::scientific);
    Decimal decimal;
    const char* p = text.data();
    for (; *p != 'e'; ++p) {
        if (*p != '.') {
            decimal.digits[static_cast<std::size_t>(decimal.count++)] = *p;
        }
    }
    p += p[1] == '+' ? 2 : 1; // std::from_chars refuses a plus sign
    std::from_chars(p, result.ptr, decimal.exponent);
    return decimal;
}

/// Rounds to that many digits, and drops zeros at the end. False when the digit after the
/// last one is a 5 and the end: the exact value decides then, and the decimal stays.
bool roundDigits(Decimal& a_decimal, int a_iDigits)
{
    const auto digit = [&](int a_iIndex) -> char& {
        return a_decimal.digits[static_cast<std::size_t>(a_iIndex)];
    };
    if (a_decimal.count > a_iDigits) {
        if (a_decimal.count == a_iDigits + 1 && digit(a_iDigits) == '5') {
            return false;
        }
        const bool bUp = digit(a_iDigits) >= '5';
        a_decimal.count = a_iDigits;
        int i = a_iDigits - 1;
        while (bUp && i >= 0 && digit(i) == '9') {
            digit(i--) = '0';
        }
        if (bUp && i >= 0) {
            ++digit(i);
        } else if (bUp) { // 9.99 became 10.0
            digit(0) = '1';
            ++a_decimal.exponent;
        }
    }
    while (a_decimal.count > 1 && digit(a_decimal.count - 1) == '0') {
        --a_decimal.count;
    }
    return true;
}

/// Writes a decimal in general format, and returns the end: with an exponent of at least
/// two digits when it is below -4, or not below the number of digits.
char* writeGeneral(const Decimal& a_decimal, int a_iDigits, char* a_pTo)
{
    constexpr int iLeastExponent = -4;
    constexpr int iTwoDigits = 10;
    const char* const pDigits = a_decimal.digits.data();
    const auto copy = [&](int a_iFrom, int a_iEnd) {
        a_pTo = std::copy(pDigits + a_iFrom, pDigits + a_iEnd, a_pTo);
    };
    const int iExponent = a_decimal.exponent;
    if (iExponent < iLeastExponent || iExponent >= a_iDigits) {
        copy(0, 1);
        if (a_decimal.count > 1) {
            *a_pTo++ = '.';
            copy(1, a_decimal.count);
        }
        *a_pTo++ = 'e';
        *a_pTo++ = iExponent < 0 ? '-' : '+';
        if (std::abs(iExponent) < iTwoDigits) {
            *a_pTo++ = '0';
        }
        return std::to_chars(a_pTo, a_pTo + 3, std::abs(iExponent)).ptr;
    }
    if (iExponent < 0) {
        a_pTo = std::copy_n("0.", 2, a_pTo);
        a_pTo = std::fill_n(a_pTo, -iExponent - 1, '0');
        copy(0, a_decimal.count);
        return a_pTo;
    }
    copy(0, std::min(iExponent + 1, a_decimal.count));
    a_pTo = std::fill_n(a_pTo, std::max(iExponent + 1 - a_decimal.count, 0), '0');
    if (a_decimal.count > iExponent + 1) {
        *a_pTo++ = '.';
        copy(iExponent + 1, a_decimal.count);
    }
    return a_pTo;
}

} // namespace

qsizetype writeNumber(double a_dValue, int a_iDigits, NumberBuffer& a_buffer)
{
    char* pTo = a_buffer.data();
    if (a_dValue == 0.0 || !std::isfinite(a_dValue)) { // also -0
        *pTo = '0';
        return 1;
    }
    Decimal decimal = shortestDecimal(std::abs(a_dValue));
    // The shortest decimal of a number below the normal range has fewer digits than asked.
    if (!std::isnormal(a_dValue) || !roundDigits(decimal, a_iDigits)) {
        const QByteArray number = QByteArray::number(a_dValue, 'g', a_iDigits);
        std::copy(number.cbegin(), number.cend(), pTo);
        return number.size();
    }
    if (a_dValue < 0.0) {
        *pTo++ = '-';
    }
    return writeGeneral(decimal, a_iDigits, pTo) - a_buffer.data();
}

namespace {

QString realText(double a_dValue, int a_iDigits)
{
    NumberBuffer buffer;
    return QString::fromLatin1(buffer.data(), writeNumber(a_dValue, a_iDigits, buffer));
}

} // namespace

QString coordinateText(double a_dDegrees)
{
    return realText(a_dDegrees, s_iCoordinateDigits);
}

QString numberText(double a_dValue)
{
    return realText(a_dValue, s_iNumberDigits);
}

const QString& boolText(bool a_bValue)
{
    static const QString s_sTrue = QStringLiteral("true");
    static const QString s_sFalse = QStringLiteral("false");
    return a_bValue ? s_sTrue : s_sFalse;
}

namespace {

/// Whether the text has only digits, signs, one point or an exponent, and begins with a
/// digit or a minus sign: the form that writers write. Every conversion reads it alike.
bool isPlainNumber(QByteArrayView a_text)
{
    const auto isDigit = [](char a_cByte) { return a_cByte >= '0' && a_cByte <= '9'; };
    const qsizetype iFirst = a_text.startsWith('-') ? 1 : 0;
    return a_text.size() > iFirst && isDigit(a_text[iFirst]) && isDigit(a_text.back());
}

/// The number when the whole text is a plain number that fits the type; else what
/// `a_otherwise` returns for the text as a string.
template<typename Number, typename Otherwise>
Number convert(QByteArrayView a_text, bool* a_pOk, const Otherwise& a_otherwise)
{
    Number number{};
    bool bOk = false;
    if (isPlainNumber(a_text)) {
        const char* const pEnd = a_text.data() + a_text.size();
        const auto result = std::from_chars(a_text.data(), pEnd, number);
        bOk = result.ec == std::errc() && result.ptr == pEnd;
    }
    if (!bOk) {
        number = a_otherwise(utf8String(a_text), &bOk);
    }
    if (a_pOk != nullptr) {
        *a_pOk = bOk;
    }
    return number;
}

} // namespace

double readDouble(QByteArrayView a_text, bool* a_pOk)
{
    return convert<double>(a_text, a_pOk, [](const QString& a_sText, bool* a_pConverted) {
        const double dValue = a_sText.toDouble(a_pConverted);
        *a_pConverted = *a_pConverted && std::isfinite(dValue);
        return finiteOrZero(dValue);
    });
}

std::uint32_t readUInt32(QByteArrayView a_text, bool* a_pOk)
{
    return convert<std::uint32_t>(a_text, a_pOk, [](const QString& a_sText, bool* a_pConverted) {
        return a_sText.toUInt(a_pConverted);
    });
}

std::int64_t readInt64(QByteArrayView a_text, bool* a_pOk)
{
    return convert<std::int64_t>(a_text, a_pOk, [](const QString& a_sText, bool* a_pConverted) {
        return a_sText.toLongLong(a_pConverted);
    });
}

bool containsTrue(QStringView a_sText)
{
    return a_sText.contains(u"true", Qt::CaseInsensitive);
}

} // namespace Simulation
