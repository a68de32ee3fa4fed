#include "xmltext_p.h"

#include "simulationdata/io/numbers_p.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
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

qsizetype writeNumber(double a_dValue, int a_iDigits, char* a_pBuffer, std::size_t a_uiSize)
{
    const auto result = std::to_chars(a_pBuffer, a_pBuffer + a_uiSize, finiteOrZero(a_dValue),
                                      std::chars_format::general, a_iDigits);
    return result.ptr - a_pBuffer;
}

namespace {

QString realText(double a_dValue, int a_iDigits)
{
    std::array<char, 32> buffer;
    return QString::fromLatin1(buffer.data(), writeNumber(a_dValue, a_iDigits, buffer.data(), buffer.size()));
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
        number = a_otherwise(QString::fromUtf8(a_text), &bOk);
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
