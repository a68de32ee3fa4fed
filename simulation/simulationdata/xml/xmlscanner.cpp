#include "xmlscanner_p.h"

#include <cstring>
#include <limits>

namespace Simulation {

namespace {

constexpr const char* s_szCommentOpen = "--";
constexpr const char* s_szCDataOpen = "[CDATA[";
constexpr int s_iByteBits = 8;
constexpr std::uint32_t s_uiTwoBytes = 0xFFFF;
constexpr std::uint32_t s_uiThreeBytes = 0xFFFFFF;
constexpr int s_iMostMarks = 2; ///< a comment ends with "--" and '>', a CDATA section with "]]" and '>'

constexpr std::uint32_t packed(const char* a_szText)
{
    std::uint32_t uiPacked = 0;
    for (; *a_szText != 0; ++a_szText) {
        uiPacked = (uiPacked << s_iByteBits) | static_cast<unsigned char>(*a_szText);
    }
    return uiPacked;
}

const char* find(const char* a_pFrom, const char* a_pEnd, char a_cByte)
{
    return static_cast<const char*>(
        std::memchr(a_pFrom, a_cByte, static_cast<std::size_t>(a_pEnd - a_pFrom)));
}

/// How often the character `a_cMark` occurs in direct succession before `a_pAt`, at most
/// twice. `a_pFrom` is the start of this piece. `a_iBefore` is the number of such
/// characters at the end of the previous piece.
int marksBefore(const char* a_pFrom, const char* a_pAt, char a_cMark, int a_iBefore)
{
    int iMarks = 0;
    while (iMarks < s_iMostMarks && a_pAt != a_pFrom && a_pAt[-1] == a_cMark) {
        ++iMarks;
        --a_pAt;
    }
    return a_pAt == a_pFrom ? std::min(iMarks + a_iBefore, s_iMostMarks) : iMarks;
}

} // namespace

bool XmlDeclarationEnd::consume(char a_cByte)
{
    m_uiRecent = (m_uiRecent << s_iByteBits) | static_cast<unsigned char>(a_cByte);
    bool bLeft = false;
    switch (m_eInside) {
    case Inside::Markup:
        return consumeMarkup(a_cByte);
    case Inside::Quote:
        bLeft = a_cByte == m_cQuote;
        break;
    case Inside::Comment:
        bLeft = (m_uiRecent & s_uiThreeBytes) == packed("-->");
        break;
    case Inside::Instruction:
        bLeft = (m_uiRecent & s_uiTwoBytes) == packed("?>");
        break;
    }
    if (bLeft) {
        m_eInside = Inside::Markup;
        m_uiRecent = 0;
    }
    return false;
}

bool XmlDeclarationEnd::consumeMarkup(char a_cByte)
{
    if (a_cByte == '"' || a_cByte == '\'') {
        m_eInside = Inside::Quote;
        m_cQuote = a_cByte;
    } else if (m_uiRecent == packed("<!--")) {
        m_eInside = Inside::Comment;
        m_uiRecent = 0;
    } else if ((m_uiRecent & s_uiTwoBytes) == packed("<?")) {
        m_eInside = Inside::Instruction;
        m_uiRecent = 0;
    } else if (m_uiRecent == packed("<!EN")) { // only an entity declaration begins like this
        ++m_uiEntities;
    } else if (a_cByte == '[') {
        ++m_uiBrackets;
    } else if (a_cByte == ']' && m_uiBrackets > 0) {
        --m_uiBrackets;
    }
    return a_cByte == '>' && m_uiBrackets == 0;
}

void XmlScanner::scanChunk(QByteArrayView a_bytes, bool a_bOneDocument)
{
    readLimits();
    m_chunk = a_bytes;
    const char* p = a_bytes.data();
    const char* const pEnd = p + a_bytes.size();
    while (p != pEnd && !m_bError && !(a_bOneDocument && m_bComplete)) {
        p = scan(p, pEnd);
    }
    if (!m_bError) {
        const QByteArrayView taken = a_bytes.first(p - a_bytes.data());
        if (!a_bOneDocument) {
            m_openPosition = m_eState == State::Text ? XmlPosition() : openPosition();
            m_chunkPosition = advanced(m_chunkPosition, taken);
        }
        m_iChunk += taken.size();
    }
    m_chunk = {};
}

void XmlScanner::readLimits()
{
    m_uiMaxDepth = Limits::value(Limits::NestingDepth);
    m_uiMaxElements = m_eElements == Limits::LimitCount ? std::numeric_limits<std::uint64_t>::max()
                                                        : Limits::value(m_eElements);
    m_uiMaxAttributes = Limits::value(Limits::ElementAttributes);
    m_uiMaxDoctype = Limits::value(Limits::DoctypeBytes);
    m_uiMaxEntities = Limits::value(Limits::EntityDeclarations);
}

qint64 XmlScanner::parsableBytes() const
{
    if (m_bError) {
        return m_iExceeding;
    }
    // A CDATA section outside the elements is not held back: a parser finds this error
    // at once.
    const bool bHeld = m_eState == State::Open || m_eState == State::Markup || m_eState == State::Comment ||
                       m_eState == State::Instruction || (m_eState == State::CData && m_uiDepth > 0);
    return bHeld ? m_iOpen : m_iChunk;
}

const char* XmlScanner::scan(const char* a_pFrom, const char* a_pEnd)
{
    switch (m_eState) {
    case State::Text:
        return scanText(a_pFrom, a_pEnd);
    case State::Open:
        return scanOpen(a_pFrom);
    case State::StartTag:
        return scanStartTag(a_pFrom, a_pEnd);
    case State::Value:
        return scanValue(a_pFrom, a_pEnd);
    case State::EndTag:
        return scanEndTag(a_pFrom, a_pEnd);
    case State::Instruction:
        return scanUntilMarks(a_pFrom, a_pEnd, '?', 1);
    case State::Markup:
        return scanMarkup(a_pFrom);
    case State::Comment:
        return scanUntilMarks(a_pFrom, a_pEnd, '-', 2);
    case State::CData:
        return scanUntilMarks(a_pFrom, a_pEnd, ']', 2);
    case State::Declaration:
        break;
    }
    return scanDeclaration(a_pFrom, a_pEnd);
}

const char* XmlScanner::scanText(const char* a_pFrom, const char* a_pEnd)
{
    // Many tags directly follow another tag. These need no search.
    const char* const pOpen = *a_pFrom == '<' ? a_pFrom : find(a_pFrom, a_pEnd, '<');
    if (pOpen == nullptr) {
        return a_pEnd;
    }
    m_iOpen = m_iChunk + (pOpen - m_chunk.data());
    m_eState = State::Open;
    return pOpen + 1;
}

const char* XmlScanner::scanOpen(const char* a_pFrom)
{
    switch (*a_pFrom) {
    case '/':
        m_eState = State::EndTag;
        return a_pFrom + 1;
    case '?':
        enter(State::Instruction);
        return a_pFrom + 1;
    case '!':
        enter(State::Markup);
        return a_pFrom + 1;
    default:
        break;
    }
    if (m_uiDepth >= m_uiMaxDepth) {
        offend(Limits::NestingDepth);
    } else if (++m_uiElements > m_uiMaxElements) {
        offend(m_eElements);
    }
    m_uiAttributes = 0;
    m_cLast = 0;
    m_eState = State::StartTag;
    return a_pFrom;
}

const char* XmlScanner::scanStartTag(const char* a_pFrom, const char* a_pEnd)
{
    char cLast = m_cLast;
    for (const char* p = a_pFrom; p != a_pEnd; ++p) {
        const char c = *p;
        if (c == '"' || c == '\'') {
            if (++m_uiAttributes > m_uiMaxAttributes) {
                offendAt(p, Limits::ElementAttributes);
                return a_pEnd;
            }
            const char* const pQuote = find(p + 1, a_pEnd, c);
            if (pQuote == nullptr) {
                m_cQuote = c;
                m_eState = State::Value;
                return a_pEnd;
            }
            p = pQuote;
        } else if (c == '>') {
            m_uiDepth += cLast == '/' ? 0 : 1;
            closeTag();
            return p + 1;
        }
        cLast = c;
    }
    m_cLast = cLast;
    return a_pEnd;
}

const char* XmlScanner::scanValue(const char* a_pFrom, const char* a_pEnd)
{
    const char* const pQuote = find(a_pFrom, a_pEnd, m_cQuote);
    if (pQuote == nullptr) {
        return a_pEnd;
    }
    m_cLast = m_cQuote;
    m_eState = State::StartTag;
    return pQuote + 1;
}

const char* XmlScanner::scanEndTag(const char* a_pFrom, const char* a_pEnd)
{
    const char* const pClose = find(a_pFrom, a_pEnd, '>');
    if (pClose == nullptr) {
        return a_pEnd;
    }
    m_uiDepth -= m_uiDepth > 0 ? 1 : 0;
    closeTag();
    return pClose + 1;
}

const char* XmlScanner::scanMarkup(const char* a_pFrom)
{
    if (m_iMatched == 0) {
        m_szExpected = *a_pFrom == '[' ? s_szCDataOpen : s_szCommentOpen;
    }
    if (*a_pFrom != m_szExpected[m_iMatched]) {
        enter(State::Declaration);
        return a_pFrom;
    }
    ++m_iMatched;
    if (m_szExpected[m_iMatched] == 0) {
        enter(m_szExpected == s_szCDataOpen ? State::CData : State::Comment);
    }
    return a_pFrom + 1;
}

const char* XmlScanner::scanUntilMarks(const char* a_pFrom, const char* a_pEnd, char a_cMark, int a_iCount)
{
    for (const char* p = find(a_pFrom, a_pEnd, '>'); p != nullptr; p = find(p + 1, a_pEnd, '>')) {
        if (marksBefore(a_pFrom, p, a_cMark, m_iRun) >= a_iCount) {
            m_eState = State::Text;
            return p + 1;
        }
    }
    m_iRun = marksBefore(a_pFrom, a_pEnd, a_cMark, m_iRun);
    return a_pEnd;
}

const char* XmlScanner::scanDeclaration(const char* a_pFrom, const char* a_pEnd)
{
    for (const char* p = a_pFrom; p != a_pEnd; ++p) {
        const qint64 iBytes = m_iChunk + (p - m_chunk.data()) - m_iOpen + 1;
        if (m_uiDoctypeBytes + static_cast<std::uint64_t>(iBytes) > m_uiMaxDoctype) {
            offendAt(p, Limits::DoctypeBytes);
            return a_pEnd;
        }
        const bool bEnd = m_declarationEnd.consume(*p);
        if (m_declarationEnd.entities() > m_uiMaxEntities) {
            offendAt(p, Limits::EntityDeclarations);
            return a_pEnd;
        }
        if (bEnd) {
            m_uiDoctypeBytes += static_cast<std::uint64_t>(iBytes);
            m_eState = State::Text;
            return p + 1;
        }
    }
    return a_pEnd;
}

void XmlScanner::enter(State a_eState)
{
    m_iRun = 0;
    if (a_eState == State::Declaration) {
        m_declarationEnd = XmlDeclarationEnd(m_szExpected == s_szCDataOpen && m_iMatched > 0);
    }
    m_iMatched = 0;
    m_eState = a_eState;
}

void XmlScanner::closeTag()
{
    m_bComplete = m_uiDepth == 0;
    m_eState = State::Text;
}

/// Sets the error for a limit that is exceeded at the start of the construct.
void XmlScanner::offend(Limits::Limit a_eLimit)
{
    const XmlPosition position = openPosition();
    m_iExceeding = m_iOpen;
    m_bError = true;
    m_error = {m_iOpen, position.line, position.column, a_eLimit, Limits::exceeded(a_eLimit)};
}

/// Sets the error for a limit that is exceeded at `a_pByte` of the construct. A parser
/// gets all bytes before that byte, whatever the pieces in which they were fed.
void XmlScanner::offendAt(const char* a_pByte, Limits::Limit a_eLimit)
{
    offend(a_eLimit);
    m_iExceeding = m_iChunk + (a_pByte - m_chunk.data());
}

XmlPosition XmlScanner::openPosition() const
{
    return m_iOpen < m_iChunk ? m_openPosition : advanced(m_chunkPosition, m_chunk.first(m_iOpen - m_iChunk));
}

} // namespace Simulation
