#include "xmlnodewriter_p.h"

#include <cstring>

namespace Simulation {

namespace {

constexpr qsizetype s_iIndent = 4; ///< blanks per level
constexpr const char* s_szBlanks = " \t\r\n";

/// The escaped form of a character, null when it is written unchanged. A reader turns a
/// bare carriage return into a line feed. In an attribute value it turns any line break
/// or tab into a blank. Therefore these characters are written as character references.
const char* escaped(char a_cByte, bool a_bInValue)
{
    switch (a_cByte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\r':
        return "&#13;";
    case '"':
        return a_bInValue ? "&quot;" : nullptr;
    case '\n':
        return a_bInValue ? "&#10;" : nullptr;
    case '\t':
        return a_bInValue ? "&#9;" : nullptr;
    default:
        return nullptr;
    }
}

void appendEscaped(QByteArray& a_target, const char* a_szText, bool a_bInValue)
{
    const char* const szSpecial = a_bInValue ? "&<>\r\"\n\t" : "&<>\r";
    for (;;) {
        const std::size_t uiPlain = std::strcspn(a_szText, szSpecial);
        a_target.append(a_szText, static_cast<qsizetype>(uiPlain));
        a_szText += uiPlain;
        if (*a_szText == 0) {
            return;
        }
        a_target.append(escaped(*a_szText, a_bInValue));
        ++a_szText;
    }
}

bool isElement(pugi::xml_node a_node)
{
    return a_node.type() == pugi::node_element;
}

bool isBlank(const char* a_szText)
{
    return a_szText[std::strspn(a_szText, s_szBlanks)] == 0;
}

/// Whether the element contains child elements and, besides them, only white space.
bool hasOnlyElements(pugi::xml_node a_element)
{
    bool bElements = false;
    for (pugi::xml_node node = a_element.first_child(); node; node = node.next_sibling()) {
        if (isElement(node)) {
            bElements = true;
        } else if (!isBlank(node.value())) {
            return false;
        }
    }
    return bElements;
}

bool isEmpty(pugi::xml_node a_element)
{
    pugi::xml_node node = a_element.first_child();
    while (node && !isElement(node) && *node.value() == 0) {
        node = node.next_sibling();
    }
    return node.empty();
}

} // namespace

QByteArray XmlNodeWriter::write(pugi::xml_node a_element)
{
    // Depth first: an element with children is left open until its last child is
    // written.
    pugi::xml_node node = a_element;
    while (node) {
        writeNode(node);
        const bool bOpened = isElement(node) && !isEmpty(node);
        if (bOpened) {
            node = node.first_child();
            continue;
        }
        while (node != a_element && !node.next_sibling()) {
            node = node.parent();
            closeElement(node);
        }
        node = node == a_element ? pugi::xml_node() : node.next_sibling();
    }
    return m_text;
}

void XmlNodeWriter::writeNode(pugi::xml_node a_node)
{
    if (isElement(a_node)) {
        openElement(a_node);
    } else if (layout() == Layout::Inline) {
        appendEscaped(m_text, a_node.value(), false);
    }
}

void XmlNodeWriter::openElement(pugi::xml_node a_element)
{
    startLine();
    m_text.append('<').append(a_element.name());
    for (pugi::xml_attribute attribute = a_element.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        m_text.append(' ').append(attribute.name()).append("=\"");
        appendEscaped(m_text, attribute.value(), true);
        m_text.append('"');
    }
    if (isEmpty(a_element)) {
        m_text.append("/>");
        endLine();
        return;
    }
    m_text.append('>');
    const bool bBlock = layout() == Layout::Block && hasOnlyElements(a_element);
    m_layouts.push_back(bBlock ? Layout::Block : Layout::Inline);
    endLine();
}

void XmlNodeWriter::closeElement(pugi::xml_node a_element)
{
    const Layout eInside = layout();
    m_layouts.pop_back();
    if (eInside == Layout::Block) {
        startLine();
    }
    m_text.append("</").append(a_element.name()).append('>');
    endLine();
}

void XmlNodeWriter::startLine()
{
    if (layout() == Layout::Block) {
        m_text.append(static_cast<qsizetype>(m_layouts.size()) * s_iIndent, ' ');
    }
}

void XmlNodeWriter::endLine()
{
    if (layout() == Layout::Block) {
        m_text.append('\n');
    }
}

} // namespace Simulation
