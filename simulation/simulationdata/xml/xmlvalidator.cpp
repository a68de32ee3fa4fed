#include "xmlvalidator_p.h"

#include "simulationdata/simulationlimits.h"
#include "xmlencoding_p.h"
#include "xmlscanner_p.h"

#include <QSet>

#include <algorithm>
#include <limits>

namespace Simulation {

namespace {

constexpr QByteArrayView s_declarationOpen("<?xml");
constexpr QByteArrayView s_doctypeOpen("<!DOCTYPE");
constexpr QByteArrayView s_commentOpen("<!--");
constexpr QByteArrayView s_sectionOpen("<![CDATA[");
constexpr QByteArrayView s_sectionEnd("]]>");
constexpr QByteArrayView s_instructionOpen("<?");
constexpr QByteArrayView s_instructionEnd("?>");
constexpr qsizetype s_iNamesCompared = 8; ///< up to this number comparing is faster than hashing
constexpr qsizetype s_iShownBytes = 40;   ///< of a name in an error text
constexpr qsizetype s_iPlainName = 1000;  ///< bytes; QXmlStreamReader refuses names above 4096
constexpr char s_cFirstPrintable = 0x20;

bool isBlank(char a_cByte)
{
    return a_cByte == ' ' || a_cByte == '\n' || a_cByte == '\t' || a_cByte == '\r';
}

QString shown(QByteArrayView a_name)
{
    return QString::fromUtf8(a_name.first(std::min(a_name.size(), s_iShownBytes)));
}

/// Whether the version is "1.0" or another "1.x", all of which are read in the same
/// way.
bool isFirstVersion(QByteArrayView a_version)
{
    constexpr QByteArrayView first("1.");
    return a_version.size() > first.size() && a_version.startsWith(first) &&
           std::all_of(a_version.begin() + first.size(), a_version.end(),
                       [](char a_cByte) { return a_cByte >= '0' && a_cByte <= '9'; });
}

} // namespace

XmlValidator::XmlValidator(QByteArrayView a_bytes, Elements a_eElements)
    : m_bytes(a_bytes)
    , m_uiMaxElements(a_eElements == LimitedElements ? Limits::value(Limits::RecordElements)
                                                     : std::numeric_limits<std::uint64_t>::max())
    , m_uiMaxDepth(Limits::value(Limits::NestingDepth))
    , m_uiMaxAttributes(Limits::value(Limits::ElementAttributes))
{}

bool XmlValidator::validate()
{
    if (!characters() || !declaration() || !misc(true)) {
        return false;
    }
    const qsizetype iRoot = m_iPos;
    if (!element()) {
        return false;
    }
    m_root = m_bytes.sliced(iRoot, m_iPos - iRoot);
    return misc(false);
}

qsizetype XmlValidator::plainDocumentBytes()
{
    if (!isAt('<') || !element() || !isPlain()) {
        return 0;
    }
    m_bytes = m_bytes.first(m_iPos); // other documents may follow
    return characters() ? m_iPos : 0;
}

/// Checks that all bytes are UTF-8 and no character is forbidden.
bool XmlValidator::characters()
{
    qsizetype i = xmlAsciiBytes(m_bytes);
    const bool bUtf8 = m_bytes.sliced(i).isValidUtf8();
    for (; i < m_bytes.size(); ++i) {
        const auto c = static_cast<signed char>(m_bytes[i]);
        if (c >= s_cFirstPrintable || isBlank(m_bytes[i])) {
            continue;
        }
        if (c >= 0) {
            return fail(i, QStringLiteral("forbidden character, code %1").arg(static_cast<int>(c)));
        }
        if (bUtf8 && m_bytes[i] != '\xEF') {
            continue;
        }
        const Utf8Character character = firstUtf8Character(m_bytes.sliced(i));
        if (character.length == 0) {
            return fail(i, QStringLiteral("the bytes are not valid UTF-8"));
        }
        if (!isXmlCharacter(character.code)) {
            return fail(
                i, QStringLiteral("forbidden character, code %1").arg(static_cast<uint>(character.code)));
        }
        i += character.length - 1;
    }
    return true;
}

bool XmlValidator::declaration()
{
    constexpr qsizetype iBlank = s_declarationOpen.size();
    if (!isAt(s_declarationOpen) || m_bytes.size() <= iBlank || !isBlank(m_bytes[iBlank])) {
        return true;
    }
    m_bPlain = false;
    m_iPos = iBlank;
    if (!attributes() || !skip(s_instructionEnd)) {
        return fail(m_iPos, QStringLiteral("malformed XML declaration"));
    }
    m_bUnambiguous = m_firstValue == "1.0" && m_names.back() != "standalone";
    // The order of the attributes is fixed; all except "version" are optional.
    auto it = m_names.cbegin();
    for (const QByteArrayView part :
         {QByteArrayView("version"), QByteArrayView("encoding"), QByteArrayView("standalone")}) {
        if (it != m_names.cend() && *it == part) {
            ++it;
        } else if (part == "version") {
            break;
        }
    }
    return (it == m_names.cend() && it != m_names.cbegin() && isFirstVersion(m_firstValue)) ||
           fail(0, QStringLiteral("malformed XML declaration"));
}

/// Reads white space, comments and processing instructions before or after the root
/// element, and the document type before it.
bool XmlValidator::misc(bool a_bInProlog)
{
    bool bDoctypeAllowed = a_bInProlog;
    for (skipBlanks(); m_iPos < m_bytes.size(); skipBlanks()) {
        bool bPassed = false;
        if (a_bInProlog && isAt('<') && !isAt("<!") && !isAt(s_instructionOpen)) {
            return true;
        }
        m_bPlain = false;
        if (isAt(s_commentOpen)) {
            bPassed = comment();
        } else if (isAt(s_instructionOpen)) {
            bPassed = instruction();
        } else if (isAt(s_doctypeOpen) && bDoctypeAllowed) {
            bDoctypeAllowed = false;
            bPassed = doctype();
        } else {
            const bool bElement = isAt('<') && !isAt("<!") && !isAt("</");
            return fail(m_iPos, bElement ? QStringLiteral("a second root element")
                                         : QStringLiteral("text or markup outside the root element"));
        }
        if (!bPassed) {
            return false;
        }
    }
    return !a_bInProlog || fail(m_iPos, QStringLiteral("no root element"));
}

bool XmlValidator::doctype()
{
    const qsizetype iStart = m_iPos;
    m_bUnambiguous = false;
    XmlDeclarationEnd end;
    m_iPos += s_doctypeOpen.size();
    if (m_iPos < m_bytes.size() && !isBlank(m_bytes[m_iPos])) {
        return fail(iStart, QStringLiteral("malformed document type"));
    }
    while (m_iPos < m_bytes.size()) {
        if (end.consume(m_bytes[m_iPos++])) {
            return true;
        }
    }
    return fail(iStart, QStringLiteral("the document type does not end"));
}

bool XmlValidator::element()
{
    if (!startTag()) {
        return false;
    }
    while (!m_open.empty()) {
        if (!text()) {
            return false;
        }
        if (m_iPos == m_bytes.size()) {
            return fail(m_iPos, QStringLiteral("element \"%1\" does not end").arg(shown(m_open.back())));
        }
        if (!markup()) {
            return false;
        }
    }
    return true;
}

bool XmlValidator::markup()
{
    if (isAt("</")) {
        return endTag();
    }
    if (!isAt("<!") && !isAt(s_instructionOpen)) {
        return startTag();
    }
    m_bPlain = false;
    if (isAt(s_commentOpen)) {
        return comment();
    }
    if (isAt(s_sectionOpen)) {
        return section();
    }
    return isAt(s_instructionOpen) ? instruction() : startTag();
}

bool XmlValidator::startTag()
{
    QByteArrayView tag;
    if (++m_uiElements > m_uiMaxElements) {
        return fail(m_iPos, Limits::exceeded(Limits::RecordElements));
    }
    ++m_iPos;
    if (!name(&tag)) {
        return false;
    }
    if (m_open.size() >= m_uiMaxDepth) {
        return fail(m_iPos, Limits::exceeded(Limits::NestingDepth));
    }
    if (!attributes()) {
        return false;
    }
    if (skip("/>")) {
        return true;
    }
    if (!skip(">")) {
        return fail(m_iPos, QStringLiteral("malformed tag \"%1\"").arg(shown(tag)));
    }
    m_open.push_back(tag);
    return true;
}

bool XmlValidator::endTag()
{
    const qsizetype iStart = m_iPos;
    QByteArrayView tag;
    m_iPos += 2;
    if (!name(&tag)) {
        return false;
    }
    skipBlanks();
    if (!skip(">")) {
        return fail(m_iPos, QStringLiteral("malformed end tag \"%1\"").arg(shown(tag)));
    }
    if (tag != m_open.back()) {
        return fail(
            iStart,
            QStringLiteral("end tag \"%1\" where \"%2\" is open").arg(shown(tag), shown(m_open.back())));
    }
    m_open.pop_back();
    return true;
}

/// Reads attributes up to '>', '/' or '?', which the caller checks.
bool XmlValidator::attributes()
{
    m_names.clear();
    for (;;) {
        const bool bBlank = skipBlanks();
        if (isAt('>') || isAt('/') || isAt('?')) {
            return uniqueNames();
        }
        if (m_iPos < m_bytes.size() && !bBlank) {
            return fail(m_iPos, QStringLiteral("white space is missing before an attribute"));
        }
        if (!attribute()) {
            return false;
        }
    }
}

bool XmlValidator::attribute()
{
    QByteArrayView key;
    if (!name(&key)) {
        return false;
    }
    m_names.push_back(key);
    skipBlanks();
    if (!skip("=")) {
        return fail(m_iPos, QStringLiteral("attribute \"%1\" has no value").arg(shown(key)));
    }
    skipBlanks();
    if (!isAt('"') && !isAt('\'')) {
        return fail(m_iPos, QStringLiteral("the value of attribute \"%1\" has no quotes").arg(shown(key)));
    }
    if (m_names.size() > m_uiMaxAttributes && m_uiElements > 0) { // not in the XML declaration
        return fail(m_iPos, Limits::exceeded(Limits::ElementAttributes));
    }
    const char cQuote = m_bytes[m_iPos++];
    const qsizetype iEnd = m_bytes.indexOf(cQuote, m_iPos);
    if (iEnd < 0) {
        return fail(m_iPos, QStringLiteral("the value of attribute \"%1\" does not end").arg(shown(key)));
    }
    const qsizetype iLess = m_bytes.sliced(m_iPos, iEnd - m_iPos).indexOf('<');
    if (iLess >= 0) {
        return fail(m_iPos + iLess, QStringLiteral("\"<\" in the value of attribute \"%1\"").arg(shown(key)));
    }
    if (m_names.size() == 1) {
        m_firstValue = m_bytes.sliced(m_iPos, iEnd - m_iPos);
    }
    if (!references(iEnd)) {
        return false;
    }
    m_iPos = iEnd + 1;
    return true;
}

bool XmlValidator::uniqueNames()
{
    QSet<QByteArrayView> hashed;
    for (auto it = m_names.cbegin(); it != m_names.cend(); ++it) {
        bool bKnown = false;
        if (static_cast<qsizetype>(m_names.size()) <= s_iNamesCompared) {
            bKnown = std::find(m_names.cbegin(), it, *it) != it;
        } else {
            bKnown = hashed.contains(*it);
            hashed.insert(*it);
        }
        if (bKnown) {
            return fail(it->data() - m_bytes.data(),
                        QStringLiteral("attribute \"%1\" occurs twice").arg(shown(*it)));
        }
    }
    return true;
}

bool XmlValidator::name(QByteArrayView* a_pName)
{
    *a_pName = m_bytes.sliced(m_iPos, xmlNameLength(m_bytes.sliced(m_iPos)));
    m_iPos += a_pName->size();
    m_bUnambiguous = m_bUnambiguous && a_pName->size() <= s_iPlainName &&
                     std::all_of(a_pName->begin(), a_pName->end(), [](char a_cByte) {
                         return static_cast<signed char>(a_cByte) > 0 && a_cByte != ':';
                     });
    return !a_pName->isEmpty() || fail(m_iPos, QStringLiteral("a name is missing or malformed"));
}

/// Reads text up to the next '<' or the end.
bool XmlValidator::text()
{
    qsizetype iEnd = m_bytes.indexOf('<', m_iPos);
    iEnd = iEnd < 0 ? m_bytes.size() : iEnd;
    const QByteArrayView content = m_bytes.sliced(m_iPos, iEnd - m_iPos);
    for (qsizetype i = content.indexOf('>'); i >= 0; i = content.indexOf('>', i + 1)) {
        if (content.first(i + 1).endsWith(s_sectionEnd)) {
            return fail(m_iPos + i + 1 - s_sectionEnd.size(), QStringLiteral("\"]]>\" in text"));
        }
    }
    if (!references(iEnd)) {
        return false;
    }
    m_iPos = iEnd;
    return true;
}

bool XmlValidator::comment()
{
    const qsizetype iStart = m_iPos;
    m_iPos += s_commentOpen.size();
    if (!skipPast("--", "comment")) {
        return false;
    }
    return skip(">") || fail(iStart, QStringLiteral("\"--\" inside a comment"));
}

bool XmlValidator::section()
{
    m_iPos += s_sectionOpen.size();
    return skipPast(s_sectionEnd, "CDATA section");
}

bool XmlValidator::instruction()
{
    const qsizetype iStart = m_iPos;
    QByteArrayView target;
    m_iPos += s_instructionOpen.size();
    if (!name(&target)) {
        return false;
    }
    if (target.toByteArray().compare("xml", Qt::CaseInsensitive) == 0) {
        return fail(iStart, QStringLiteral("an XML declaration that is not at the start"));
    }
    if (!isAt(s_instructionEnd) && !skipBlanks()) {
        return fail(m_iPos, QStringLiteral("malformed processing instruction"));
    }
    return skipPast(s_instructionEnd, "processing instruction");
}

/// Checks all references before `a_iEnd`.
bool XmlValidator::references(qsizetype a_iEnd)
{
    while (m_iPos < a_iEnd) {
        const qsizetype iNext = m_bytes.sliced(m_iPos, a_iEnd - m_iPos).indexOf('&');
        if (iNext < 0) {
            return true;
        }
        m_iPos += iNext;
        if (!reference()) {
            return false;
        }
    }
    return true;
}

bool XmlValidator::reference()
{
    const qsizetype iStart = m_iPos++;
    const qsizetype iHash = isAt('#') ? 1 : 0;
    const qsizetype iLength = iHash + xmlNameLength(m_bytes.sliced(m_iPos + iHash), iHash == 0);
    const QByteArrayView inside = m_bytes.sliced(m_iPos, iLength);
    m_iPos += iLength;
    if (inside.size() == iHash || !skip(";")) {
        return fail(iStart, QStringLiteral("malformed reference"));
    }
    if (iHash == 0) {
        return xmlReferencedCharacter(inside) != 0 ||
               fail(iStart, QStringLiteral("unknown entity \"%1\"").arg(shown(inside)));
    }
    return isXmlCharacter(xmlReferencedCharacter(inside)) ||
           fail(iStart,
                QStringLiteral("reference to an invalid or forbidden character \"%1\"").arg(shown(inside)));
}

bool XmlValidator::isAt(QByteArrayView a_text) const
{
    return m_bytes.sliced(m_iPos).startsWith(a_text);
}

bool XmlValidator::skip(QByteArrayView a_text)
{
    const bool bAt = isAt(a_text);
    m_iPos += bAt ? a_text.size() : 0;
    return bAt;
}

/// Skips blanks. Returns whether there were any.
bool XmlValidator::skipBlanks()
{
    const qsizetype iStart = m_iPos;
    while (m_iPos < m_bytes.size() && isBlank(m_bytes[m_iPos])) {
        ++m_iPos;
    }
    return m_iPos != iStart;
}

bool XmlValidator::skipPast(QByteArrayView a_end, const char* a_szWhat)
{
    const qsizetype iEnd = m_bytes.indexOf(a_end, m_iPos);
    if (iEnd < 0) {
        return fail(m_bytes.size(), QStringLiteral("a %1 does not end").arg(QLatin1String(a_szWhat)));
    }
    m_iPos = iEnd + a_end.size();
    return true;
}

/// Sets the error unless there is one already. Always false.
bool XmlValidator::fail(qsizetype a_iOffset, const QString& a_sReason)
{
    if (m_sReason.isEmpty()) {
        m_iError = a_iOffset;
        m_sReason = a_sReason;
    }
    return false;
}

} // namespace Simulation
