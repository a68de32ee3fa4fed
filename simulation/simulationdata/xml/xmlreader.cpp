#include "xmlreader_p.h"

#include "xmltext_p.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Simulation {

namespace {

/// Whether the text is a number that is followed by a unit: "118.7 MHz" or "54.1°".
bool isNumberWithUnit(QByteArrayView a_text)
{
    constexpr qsizetype iLongest = 64;
    const QString sText = utf8String(a_text).trimmed();
    if (sText.size() > iLongest) {
        return false;
    }
    const auto isOfUnit = [](QChar a_cUnit) {
        return a_cUnit.isLetter() || QStringView(u"°%/²").contains(a_cUnit);
    };
    qsizetype iUnit = sText.size();
    while (iUnit > 0 && isOfUnit(sText[iUnit - 1])) {
        --iUnit;
    }
    bool bNumber = false;
    (void)sText.left(iUnit).trimmed().toDouble(&bNumber);
    return bNumber && iUnit < sText.size();
}

QString rangeText(const XmlRange& a_range)
{
    const QString sUnit = *a_range.unit == 0 ? QString() : u' ' + QString::fromUtf8(a_range.unit);
    constexpr double dLargestUnsigned = std::numeric_limits<std::uint32_t>::max();
    if (std::isinf(a_range.maximum) || a_range.maximum == dLargestUnsigned) {
        return (a_range.isMinimumExcluded ? QStringLiteral("greater than %1%2")
                                          : QStringLiteral("%1%2 or more"))
            .arg(QString::number(a_range.minimum), sUnit);
    }
    return QStringLiteral("from %1 to %2%3")
        .arg(QString::number(a_range.minimum), QString::number(a_range.maximum), sUnit);
}

} // namespace

const XmlText* XmlReader::attribute(QLatin1String a_sName)
{
    m_bAttributesLeft = false;
    const auto found =
        std::find_if(m_attributes.cbegin(), m_attributes.cend(),
                     [&](const XmlAttribute& a_attribute) { return isName(a_attribute.name, a_sName); });
    return found != m_attributes.cend() ? &found->value : nullptr;
}

void XmlReader::skip()
{
    XmlDeviations* const pDeviations = std::exchange(m_pDeviations, nullptr);
    m_bAttributesLeft = false;
    for (qsizetype iDepth = 1; iDepth > 0;) {
        iDepth += nextChild() ? 1 : -1;
    }
    m_pDeviations = pDeviations;
}

double XmlReader::number(const XmlText& a_text, const XmlRange& a_range)
{
    bool bNumber = false;
    const double dValue = readDouble(a_text.bytes, &bNumber);
    if (!bNumber) {
        reportNumber(a_text, a_range, "number");
    } else if (!a_range.contains(dValue)) {
        reportRange(a_text, a_range);
    }
    return dValue;
}

float XmlReader::singleNumber(const XmlText& a_text, const XmlRange& a_range)
{
    bool bNumber = false;
    const double dValue = readDouble(a_text.bytes, &bNumber);
    const auto fValue = static_cast<float>(dValue);
    if (!bNumber || !std::isfinite(fValue)) {
        reportNumber(a_text, a_range, bNumber ? "number of single precision" : "number");
        return 0.0F;
    }
    if (!a_range.contains(dValue)) {
        reportRange(a_text, a_range);
    }
    return fValue;
}

std::uint32_t XmlReader::unsignedNumber(const XmlText& a_text, const XmlRange& a_range)
{
    bool bNumber = false;
    const std::uint32_t uiValue = readUInt32(a_text.bytes, &bNumber);
    if (!bNumber) {
        reportNumber(a_text, a_range, "whole number from 0 to 4294967295");
    } else if (!a_range.contains(uiValue)) {
        reportRange(a_text, a_range);
    }
    return uiValue;
}

std::int64_t XmlReader::integer(const XmlText& a_text, const XmlRange& a_range)
{
    bool bNumber = false;
    const std::int64_t iValue = readInt64(a_text.bytes, &bNumber);
    if (!bNumber) {
        reportNumber(a_text, a_range, "whole number of 64 bits");
    } else if (!a_range.contains(static_cast<double>(iValue))) {
        reportRange(a_text, a_range);
    }
    return iValue;
}

bool XmlReader::boolean(const XmlText& a_text)
{
    if (a_text.bytes == "true") {
        return true;
    }
    if (a_text.bytes == "false") {
        return false;
    }
    const QString sText = a_text.string();
    const bool bValue = containsTrue(sText);
    if (m_pDeviations == nullptr) {
        return bValue;
    }
    const bool bMeant = sText.compare(boolText(bValue), Qt::CaseInsensitive) == 0;
    m_pDeviations->add(bMeant ? ReadingReport::s_sLetterCase : ReadingReport::s_sNotABoolean, a_text.offset,
                       [&](ReadingEntry& a_entry) {
                           a_entry.found = shownText(a_text.bytes);
                           a_entry.suggestion = bMeant ? boolText(bValue) : QString();
                           a_entry.message =
                               (bMeant ? QStringLiteral("The value is read as \"%1\".")
                                       : QStringLiteral("The value is neither \"true\" nor \"false\": it is "
                                                        "read as \"%1\"."))
                                   .arg(boolText(bValue));
                       });
    return bValue;
}

void XmlReader::reportUnknownValue(const XmlText& a_text, std::span<const QLatin1String> a_values,
                                   const char* a_szMade)
{
    if (m_pDeviations == nullptr) {
        return;
    }
    m_pDeviations->add(ReadingReport::s_sUnknownValue, a_text.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_text.bytes);
        a_entry.suggestion = similarName(a_text.bytes, a_values);
        QStringList values;
        for (const QLatin1String sValue : a_values) {
            values.append(sValue);
        }
        a_entry.message = QStringLiteral("The value is none of %1: %2.")
                              .arg(values.join(QStringLiteral(", ")), QLatin1String(a_szMade));
    });
}

/// Reports the attributes of an element that has none in the format.
void XmlReader::reportAttributes()
{
    m_bAttributesLeft = false;
    for (const XmlAttribute& attribute : m_attributes) {
        m_pDeviations->add(
            ReadingReport::s_sUnknownAttribute, attribute.value.offset, [&](ReadingEntry& a_entry) {
                a_entry.found = shownText(attribute.name);
                a_entry.message = QStringLiteral("The element has no attributes: the value is ignored.");
            });
    }
}

/// Reports text between elements, unless it is blank.
void XmlReader::reportText(QByteArrayView a_text, qsizetype a_iOffset)
{
    const QByteArrayView text = a_text.trimmed();
    if (m_pDeviations == nullptr || text.isEmpty()) {
        return;
    }
    const qsizetype iOffset = a_iOffset < 0 ? a_iOffset : a_iOffset + (text.data() - a_text.data());
    m_pDeviations->add(ReadingReport::s_sUnexpectedText, iOffset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(text);
        a_entry.message = QStringLiteral("Only elements are expected here: the text is ignored.");
    });
}

/// Reports the element that was started inside an element with text.
void XmlReader::reportChildOfText()
{
    if (m_pDeviations == nullptr) {
        return;
    }
    m_pDeviations->add(ReadingReport::s_sUnknownElement, m_iOffset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(m_name);
        a_entry.message =
            QStringLiteral("Only text is expected here: the element is skipped with its content.");
    });
}

/// Reports a text that is not a number; `a_szKind` names what is expected.
void XmlReader::reportNumber(const XmlText& a_text, const XmlRange& a_range, const char* a_szKind)
{
    if (m_pDeviations == nullptr) {
        return;
    }
    const bool bUnit = isNumberWithUnit(a_text.bytes);
    m_pDeviations->add(
        bUnit ? ReadingReport::s_sUnitInNumber : ReadingReport::s_sNotANumber, a_text.offset,
        [&](ReadingEntry& a_entry) {
            a_entry.found = shownText(a_text.bytes);
            a_entry.message =
                bUnit
                    ? QStringLiteral("The number is followed by a unit: the value is read as 0. Write the "
                                     "number alone%1.")
                          .arg(*a_range.unit == 0 ? QString()
                                                  : QStringLiteral(", in ") + QString::fromUtf8(a_range.unit))
                    : QStringLiteral("The text is not a %1: the value is read as 0.")
                          .arg(QLatin1String(a_szKind));
        });
}

void XmlReader::reportRange(const XmlText& a_text, const XmlRange& a_range)
{
    if (m_pDeviations == nullptr) {
        return;
    }
    m_pDeviations->add(ReadingReport::s_sOutOfRange, a_text.offset, [&](ReadingEntry& a_entry) {
        a_entry.found = shownText(a_text.bytes);
        a_entry.message =
            QStringLiteral("The value should be %1: it is taken as it is.").arg(rangeText(a_range));
    });
}

} // namespace Simulation
