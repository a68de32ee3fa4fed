#include "xmltextreader_p.h"

#include "xmlscanner_p.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Simulation {

namespace {

constexpr QByteArrayView s_commentOpen("<!--");
constexpr QByteArrayView s_sectionOpen("<![CDATA[");
constexpr QByteArrayView s_sectionEnd("]]>");

constexpr bool isBlank(char a_cByte)
{
    return a_cByte == ' ' || a_cByte == '\n' || a_cByte == '\t' || a_cByte == '\r';
}

/// Whether the byte ends a name in a tag.
constexpr bool endsName(char a_cByte)
{
    return isBlank(a_cByte) || a_cByte == '>' || a_cByte == '/' || a_cByte == '=';
}

const char* afterBlanks(const char* a_pFrom, const char* a_pEnd)
{
    while (a_pFrom != a_pEnd && isBlank(*a_pFrom)) {
        ++a_pFrom;
    }
    return a_pFrom;
}

/// Whether converted() would return the same text.
bool isLiteral(const char* a_pFrom, const char* a_pTo, XmlTextPlace a_ePlace)
{
    const bool bValue = a_ePlace == XmlTextPlace::Value;
    return std::none_of(a_pFrom, a_pTo, [bValue](char a_cByte) {
        return a_cByte == '&' || a_cByte == '\r' || (bValue && (a_cByte == '\n' || a_cByte == '\t'));
    });
}

/// The text as an application gets it. A line end becomes a line feed; in an attribute's
/// value, line ends and tabs become blanks. References are replaced, except in a section.
QByteArray converted(QByteArrayView a_text, XmlTextPlace a_ePlace)
{
    QByteArray text;
    text.reserve(a_text.size());
    for (qsizetype i = 0; i < a_text.size(); ++i) {
        const char c = a_text[i];
        if (c == '&' && a_ePlace != XmlTextPlace::Section) {
            const qsizetype iEnd = a_text.indexOf(';', i);
            const qsizetype iLast = iEnd < 0 ? a_text.size() : iEnd;
            const char32_t cCode = xmlReferencedCharacter(a_text.sliced(i + 1, iLast - i - 1));
            text.append(QString::fromUcs4(&cCode, 1).toUtf8());
            i = iLast;
        } else if (a_ePlace == XmlTextPlace::Value) {
            i += c == '\r' && i + 1 < a_text.size() && a_text[i + 1] == '\n' ? 1 : 0;
            text.append(isBlank(c) ? ' ' : c);
        } else if (c != '\r') {
            text.append(c);
        } else if (i + 1 == a_text.size() || a_text[i + 1] != '\n') {
            text.append('\n');
        }
    }
    return text;
}

} // namespace

XmlTextReader::XmlTextReader(QByteArrayView a_text, XmlDeviations* a_pDeviations, qsizetype a_iFrom)
    : XmlReader(a_pDeviations)
    , m_pStart(a_text.data())
    , m_pNext(m_pStart + a_iFrom)
    , m_pEnd(m_pStart + a_text.size())
{}

const char* XmlTextReader::find(char a_cByte, const char* a_pFrom) const
{
    const void* const pFound = std::memchr(a_pFrom, a_cByte, static_cast<std::size_t>(m_pEnd - a_pFrom));
    return pFound != nullptr ? static_cast<const char*>(pFound) : m_pEnd;
}

bool XmlTextReader::nextChild()
{
    leaveTag();
    if (std::exchange(m_bEmptyElement, false)) {
        return false;
    }
    for (;;) {
        const char* const pText = m_pNext;
        m_pNext = afterBlanks(m_pNext, m_pEnd);
        if (m_pNext != m_pEnd && *m_pNext != '<') {
            m_pNext = find('<', m_pNext);
            reportText({pText, m_pNext}, pText - m_pStart);
        }
        if (m_pEnd - m_pNext < 2) {
            m_pNext = m_pEnd;
            return false;
        }
        if (m_pNext[1] == '/') {
            skipTag();
            return false;
        }
        if (!skipMarkup()) {
            startElement();
            return true;
        }
    }
}

/// Reads the rest of a start tag or end tag.
void XmlTextReader::skipTag()
{
    m_pNext = find('>', m_pNext);
    m_pNext += m_pNext != m_pEnd ? 1 : 0;
}

/// Skips a comment, a section or a processing instruction; false when an element
/// follows. The text of a section is reported.
bool XmlTextReader::skipMarkup()
{
    const QByteArrayView rest(m_pNext, m_pEnd);
    if (rest.startsWith(s_commentOpen)) {
        m_pNext += s_commentOpen.size();
        skipPast("-->");
    } else if (rest.startsWith(s_sectionOpen)) {
        const QByteArrayView inside = section();
        reportText(inside, inside.data() - m_pStart);
        skipPast(s_sectionEnd);
    } else if (rest.startsWith("<?")) {
        skipPast("?>");
    } else if (rest.startsWith("<!")) {
        XmlDeclarationEnd end; // a document type
        m_pNext += 2;
        while (m_pNext != m_pEnd && !end.consume(*m_pNext++)) {
        }
    } else {
        return false;
    }
    return true;
}

/// The text of the section that follows.
QByteArrayView XmlTextReader::section() const
{
    const QByteArrayView rest = QByteArrayView(m_pNext, m_pEnd).sliced(s_sectionOpen.size());
    const qsizetype iEnd = rest.indexOf(s_sectionEnd);
    return iEnd < 0 ? rest : rest.first(iEnd);
}

void XmlTextReader::skipPast(QByteArrayView a_end)
{
    const qsizetype iEnd = QByteArrayView(m_pNext, m_pEnd).indexOf(a_end);
    m_pNext = iEnd < 0 ? m_pEnd : m_pNext + iEnd + a_end.size();
}

/// Reads the start tag that follows.
void XmlTextReader::startElement()
{
    m_iOffset = m_pNext - m_pStart;
    m_attributes.clear();
    m_copies.clear();
    const char* const pName = ++m_pNext;
    m_pNext = std::find_if(m_pNext, m_pEnd, endsName);
    m_name = QByteArrayView(pName, m_pNext);
    for (;;) {
        m_pNext = afterBlanks(m_pNext, m_pEnd);
        if (m_pNext == m_pEnd || *m_pNext == '>' || *m_pNext == '/') {
            break;
        }
        readAttribute();
    }
    m_bEmptyElement = m_pNext != m_pEnd && *m_pNext == '/';
    skipTag();
    tagRead();
}

void XmlTextReader::readAttribute()
{
    const char* const pName = m_pNext;
    const char* const pNameEnd = std::find_if(m_pNext, m_pEnd, endsName);
    const char* const pQuote =
        std::find_if(pNameEnd, m_pEnd, [](char a_cByte) { return a_cByte == '"' || a_cByte == '\''; });
    if (pQuote == m_pEnd) {
        m_pNext = m_pEnd;
        return;
    }
    const char* const pValue = pQuote + 1;
    const char* const pValueEnd = find(*pQuote, pValue);
    m_pNext = pValueEnd != m_pEnd ? pValueEnd + 1 : m_pEnd;
    m_attributes.push_back(
        {QByteArrayView(pName, pNameEnd), {value(pValue, pValueEnd, XmlTextPlace::Value), pName - m_pStart}});
}

/// The text as an application gets it; copied only when that changes it.
QByteArrayView XmlTextReader::value(const char* a_pFrom, const char* a_pTo, XmlTextPlace a_ePlace)
{
    return isLiteral(a_pFrom, a_pTo, a_ePlace) ? QByteArrayView(a_pFrom, a_pTo)
                                               : m_copies.emplace_back(converted({a_pFrom, a_pTo}, a_ePlace));
}

std::optional<XmlText> XmlTextReader::text()
{
    leaveTag();
    if (std::exchange(m_bEmptyElement, false)) {
        return XmlText{QByteArrayView(m_pNext, m_pNext), m_iOffset};
    }
    const qsizetype iOffset = position();
    const char* const pFrom = m_pNext;
    const char* const pTo = find('<', pFrom);
    if (m_pEnd - pTo < 2) {
        m_pNext = m_pEnd;
        return std::nullopt;
    }
    if (pTo[1] != '/') {
        return mixedText(pFrom);
    }
    m_pNext = pTo;
    skipTag();
    return XmlText{value(pFrom, pTo, XmlTextPlace::Content), iOffset};
}

/// The text of an element with markup inside.
std::optional<XmlText> XmlTextReader::mixedText(const char* a_pFrom)
{
    QByteArray text;
    m_pNext = a_pFrom;
    for (;;) {
        const char* const pText = m_pNext;
        m_pNext = find('<', pText);
        text.append(converted({pText, m_pNext}, XmlTextPlace::Content));
        const QByteArrayView rest(m_pNext, m_pEnd);
        if (rest.size() < 2) {
            m_pNext = m_pEnd;
            return std::nullopt;
        }
        if (rest[1] == '/') {
            skipTag();
            return XmlText{m_copies.emplace_back(std::move(text)), a_pFrom - m_pStart};
        }
        if (rest.startsWith(s_sectionOpen)) {
            text.append(converted(section(), XmlTextPlace::Section));
            skipPast(s_sectionEnd);
        } else if (!skipMarkup()) {
            startElement();
            reportChildOfText();
            skip();
        }
    }
}

void XmlTextReader::raiseError(const QString& a_sReason)
{
    if (hasError()) {
        return;
    }
    m_sError = xmlErrorText(streamPosition({m_pStart, m_pNext}), a_sReason);
    m_pError = std::exchange(m_pNext, m_pEnd);
    m_bEmptyElement = false;
}

XmlPosition streamPosition(QByteArrayView a_text)
{
    constexpr int iLeadMask = 0xC0;
    constexpr int iContinuation = 0x80;
    constexpr unsigned char cFourBytes = 0xF0; // such a character has two UTF-16 units
    XmlPosition position{1, 0};
    for (qsizetype i = 0; i < a_text.size(); ++i) {
        const char c = a_text[i];
        const bool bReturn = c == '\r' && !(i + 1 < a_text.size() && a_text[i + 1] == '\n');
        if (c == '\n' || bReturn) {
            position = {position.line + 1, 0};
        } else if ((c & iLeadMask) != iContinuation) {
            position.column += static_cast<unsigned char>(c) >= cFourBytes ? 2 : 1;
        }
    }
    return position;
}

} // namespace Simulation
