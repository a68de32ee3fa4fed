#include "xmlwriter_p.h"

#include "xmltext_p.h"

#include <charconv>

namespace Simulation {

namespace {

constexpr qsizetype s_iIndent = 4; ///< blanks per level

QLatin1String wholeText(std::int64_t a_iValue, NumberBuffer& a_buffer)
{
    const auto result = std::to_chars(a_buffer.begin(), a_buffer.end(), a_iValue);
    return {a_buffer.data(), result.ptr - a_buffer.data()};
}

QLatin1String realText(double a_dValue, int a_iDigits, NumberBuffer& a_buffer)
{
    const qsizetype iLength = writeNumber(a_dValue, a_iDigits, a_buffer);
    return {a_buffer.data(), iLength};
}

/// The escaped form of a character; null when it is written unchanged.
const char* escaped(char16_t a_cUnit, XmlEscape a_eEscape)
{
    const bool bValue = a_eEscape == XmlEscape::Value;
    switch (a_cUnit) {
    case u'&':
        return "&amp;";
    case u'<':
        return "&lt;";
    case u'>':
        return "&gt;";
    case u'"':
        return "&quot;";
    case u'\r':
        return "&#13;";
    case u'\n':
        return bValue ? "&#10;" : nullptr;
    case u'\t':
        return bValue ? "&#9;" : nullptr;
    default:
        return nullptr;
    }
}

} // namespace

void appendEscaped(QByteArray& a_target, QStringView a_sText, XmlEscape a_eEscape)
{
    constexpr char16_t cFirstPrintable = 0x20;
    constexpr char16_t cFirstNotPlain = 0x7F;
    for (qsizetype i = 0; i < a_sText.size(); ++i) {
        const char16_t c = a_sText[i].unicode();
        if (const char* const szEscaped = escaped(c, a_eEscape)) {
            a_target.append(szEscaped);
        } else if ((c >= cFirstPrintable && c < cFirstNotPlain) || c == u'\n' || c == u'\t') {
            a_target.append(static_cast<char>(c));
        } else {
            // A run of characters that are not ASCII or that XML forbids.
            qsizetype iEnd = i + 1;
            while (iEnd < a_sText.size() && a_sText[iEnd].unicode() >= cFirstNotPlain) {
                ++iEnd;
            }
            a_target.append(cleanXmlText(a_sText.sliced(i, iEnd - i).toString()).toUtf8());
            i = iEnd - 1;
        }
    }
}

void XmlWriter::textElement(QLatin1String a_sName, QStringView a_sText)
{
    startElement(a_sName);
    text(a_sText);
    endElement();
}

void XmlWriter::plainElement(QLatin1String a_sName, QLatin1String a_sText)
{
    startElement(a_sName);
    plainText(a_sText);
    endElement();
}

void XmlWriter::wholeAttribute(QLatin1String a_sName, std::int64_t a_iValue)
{
    NumberBuffer buffer;
    plainAttribute(a_sName, wholeText(a_iValue, buffer));
}

void XmlWriter::numberAttribute(QLatin1String a_sName, double a_dValue)
{
    NumberBuffer buffer;
    plainAttribute(a_sName, realText(a_dValue, s_iNumberDigits, buffer));
}

void XmlWriter::booleanAttribute(QLatin1String a_sName, bool a_bValue)
{
    plainAttribute(a_sName, a_bValue ? QLatin1String("true") : QLatin1String("false"));
}

void XmlWriter::whole(std::int64_t a_iValue)
{
    NumberBuffer buffer;
    plainText(wholeText(a_iValue, buffer));
}

void XmlWriter::number(double a_dValue)
{
    NumberBuffer buffer;
    plainText(realText(a_dValue, s_iNumberDigits, buffer));
}

void XmlWriter::coordinate(double a_dDegrees)
{
    NumberBuffer buffer;
    plainText(realText(a_dDegrees, s_iCoordinateDigits, buffer));
}

void XmlTextWriter::startDocument(bool a_bEncoding)
{
    m_bytes.append(a_bEncoding ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" : "<?xml version=\"1.0\"?>");
}

void XmlTextWriter::startElement(QLatin1String a_sName)
{
    closeStartTag();
    if (!m_bAfterText) {
        startLine();
    }
    m_bytes.append('<');
    append(a_sName);
    m_open.push_back(a_sName);
    m_bInStartTag = true;
    m_bAfterText = false;
}

void XmlTextWriter::endElement()
{
    const QLatin1String sName = m_open.back();
    m_open.pop_back();
    if (m_bInStartTag) {
        m_bytes.append("/>");
    } else {
        if (!m_bAfterText) {
            startLine();
        }
        m_bytes.append("</");
        append(sName);
        m_bytes.append('>');
    }
    m_bInStartTag = false;
    m_bAfterText = false;
}

void XmlTextWriter::attribute(QLatin1String a_sName, QStringView a_sValue)
{
    m_bytes.append(' ');
    append(a_sName);
    m_bytes.append("=\"");
    appendEscaped(m_bytes, a_sValue, XmlEscape::Value);
    m_bytes.append('"');
}

void XmlTextWriter::plainAttribute(QLatin1String a_sName, QLatin1String a_sValue)
{
    m_bytes.append(' ');
    append(a_sName);
    m_bytes.append("=\"");
    append(a_sValue);
    m_bytes.append('"');
}

void XmlTextWriter::text(QStringView a_sText)
{
    closeStartTag();
    appendEscaped(m_bytes, a_sText, XmlEscape::Text);
    m_bAfterText = true;
}

void XmlTextWriter::plainText(QLatin1String a_sText)
{
    closeStartTag();
    append(a_sText);
    m_bAfterText = true;
}

void XmlTextWriter::closeStartTag()
{
    if (m_bInStartTag) {
        m_bytes.append('>');
        m_bInStartTag = false;
    }
}

void XmlTextWriter::startLine()
{
    m_bytes.append('\n');
    m_bytes.append(static_cast<qsizetype>(m_open.size()) * s_iIndent, ' ');
}

} // namespace Simulation
