#include "xmlelement.h"

#include "simulationdata/xml/xmlencoding_p.h"
#include "simulationdata/xml/xmlnodewriter_p.h"
#include "simulationdata/xml/xmlrecord_p.h"
#include "simulationdata/xml/xmltext_p.h"

#include <pugixml.hpp>

#include <algorithm>
#include <utility>

namespace Simulation {

namespace {

constexpr unsigned int s_uiParseFlags = pugi::parse_default | pugi::parse_ws_pcdata;

bool isElement(pugi::xml_node a_node)
{
    return a_node.type() == pugi::node_element;
}

/// The first element of that name among the node and the siblings after it. An empty
/// name matches any element.
pugi::xml_node elementFrom(pugi::xml_node a_node, const QString& a_sName)
{
    const QByteArray name = a_sName.toUtf8();
    while (a_node && !(isElement(a_node) && (name.isEmpty() || name == a_node.name()))) {
        a_node = a_node.next_sibling();
    }
    return a_node;
}

pugi::xml_node firstElement(pugi::xml_node a_parent, const QString& a_sName)
{
    return elementFrom(a_parent.first_child(), a_sName);
}

QByteArray ownText(pugi::xml_node a_element)
{
    QByteArray text("");
    for (pugi::xml_node node = a_element.first_child(); node; node = node.next_sibling()) {
        if (!isElement(node)) {
            text.append(node.value());
        }
    }
    return text;
}

/// Whether the text consists of ASCII characters that XML allows, so that it needs
/// no cleaning.
bool isCleanAscii(const QByteArray& a_text)
{
    return xmlAsciiBytes(a_text) == a_text.size();
}

/// Parses the bytes of a root element. Null with the error text when the parser refuses
/// the bytes.
std::shared_ptr<pugi::xml_document> loadRoot(QByteArrayView a_root, QString* a_pError)
{
    auto pDocument = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result result = pDocument->load_buffer(
        a_root.data(), static_cast<std::size_t>(a_root.size()), s_uiParseFlags, pugi::encoding_utf8);
    if (!result) {
        *a_pError = QString::fromLatin1(result.description());
        return nullptr;
    }
    return pDocument;
}

/// Decodes, checks and parses a document. Null with the error text when the bytes are
/// refused.
std::shared_ptr<pugi::xml_document> load(const QByteArray& a_bytes, QString* a_pError)
{
    // The parser gets only the root element: the rest of the document is checked
    // already.
    const XmlRecord record(a_bytes, a_pError);
    return a_pError->isEmpty() ? loadRoot(record.root(), a_pError) : nullptr;
}

} // namespace

XmlElement::XmlElement(std::shared_ptr<pugi::xml_document> a_pDocument, pugi::xml_node_struct* a_pNode)
    : m_pDocument(std::move(a_pDocument))
    , m_pNode(a_pNode)
{}

XmlElement XmlElement::parse(const QByteArray& a_bytes, QString* a_pError)
{
    QString sError;
    const std::shared_ptr<pugi::xml_document> pDocument = load(a_bytes, &sError);
    if (a_pError != nullptr) {
        *a_pError = sError;
    }
    return pDocument ? XmlElement(pDocument, pDocument->document_element().internal_object()) : XmlElement();
}

XmlElement XmlElement::parsePlain(const QByteArray& a_bytes, QString* a_pError)
{
    const std::shared_ptr<pugi::xml_document> pDocument = loadRoot(a_bytes, a_pError);
    return pDocument ? XmlElement(pDocument, pDocument->document_element().internal_object()) : XmlElement();
}

XmlElement XmlElement::create(const QString& a_sRootTag)
{
    const auto pDocument = std::make_shared<pugi::xml_document>();
    return XmlElement(pDocument, pDocument->internal_object()).appendChild(a_sRootTag);
}

QString XmlElement::tagName() const
{
    return QString::fromUtf8(pugi::xml_node(m_pNode).name());
}

bool XmlElement::hasChildText(const QString& a_sName) const
{
    return !firstChild(a_sName).isNull();
}

QString XmlElement::childText(const QString& a_sName) const
{
    return QString::fromUtf8(childUtf8(a_sName));
}

QByteArray XmlElement::childUtf8(const QString& a_sName) const
{
    const pugi::xml_node element(m_pNode);
    const pugi::xml_node named = a_sName.isEmpty() ? element : firstElement(element, a_sName);
    return named ? ownText(named) : QByteArray();
}

unsigned int XmlElement::childUnsigned(const QString& a_sName, bool* a_pOk) const
{
    return childText(a_sName).toUInt(a_pOk);
}

bool XmlElement::childBool(const QString& a_sName, bool* a_pOk) const
{
    const QString sText = childText(a_sName);
    const bool bTrue = sText == QLatin1String("true");
    if (a_pOk != nullptr) {
        *a_pOk = bTrue || sText == QLatin1String("false");
    }
    return bTrue;
}

void XmlElement::setChildText(const QString& a_sName, const QString& a_sValue)
{
    setChildUtf8(a_sName, cleanXmlText(a_sValue).toUtf8());
}

void XmlElement::setChildUtf8(const QString& a_sName, const QByteArray& a_text)
{
    if (hasChildText(a_sName)) {
        return;
    }
    pugi::xml_node child(appendChild(a_sName).m_pNode);
    const QByteArray text = isCleanAscii(a_text) ? a_text : cleanXmlText(QString::fromUtf8(a_text)).toUtf8();
    if (child && !text.isEmpty()) {
        child.append_child(pugi::node_pcdata).set_value(text.constData());
    }
}

QString XmlElement::attribute(const QString& a_sName) const
{
    // A name that XML does not allow is not compared, because a NUL in it would end the
    // comparison.
    const QByteArray name = a_sName.toUtf8();
    const pugi::xml_attribute attribute =
        isXmlName(name) ? pugi::xml_node(m_pNode).attribute(name.constData()) : pugi::xml_attribute();
    return attribute ? QString::fromUtf8(attribute.value()) : QString();
}

bool XmlElement::hasAttribute(const QString& a_sName) const
{
    return !attribute(a_sName).isNull();
}

void XmlElement::setAttribute(const QString& a_sName, const QString& a_sValue)
{
    const QByteArray name = a_sName.toUtf8();
    if (!isXmlName(name)) {
        return;
    }
    pugi::xml_node element(m_pNode);
    pugi::xml_attribute attribute = element.attribute(name.constData());
    if (!attribute) {
        attribute = element.append_attribute(name.constData());
    }
    attribute.set_value(cleanXmlText(a_sValue).toUtf8().constData());
}

XmlElement XmlElement::appendChild(const QString& a_sName)
{
    const QByteArray name = a_sName.toUtf8();
    if (isNull() || !isXmlName(name)) {
        return {};
    }
    return {m_pDocument, pugi::xml_node(m_pNode).append_child(name.constData()).internal_object()};
}

XmlElement XmlElement::appendCopy(const XmlElement& a_element)
{
    if (isNull() || a_element.isNull()) {
        return {};
    }
    return {m_pDocument,
            pugi::xml_node(m_pNode).append_copy(pugi::xml_node(a_element.m_pNode)).internal_object()};
}

XmlElement XmlElement::firstChild(const QString& a_sName) const
{
    const pugi::xml_node child = firstElement(pugi::xml_node(m_pNode), a_sName);
    return child ? XmlElement(m_pDocument, child.internal_object()) : XmlElement();
}

XmlElement XmlElement::nextSibling(const QString& a_sName) const
{
    const pugi::xml_node sibling = elementFrom(pugi::xml_node(m_pNode).next_sibling(), a_sName);
    return sibling ? XmlElement(m_pDocument, sibling.internal_object()) : XmlElement();
}

QByteArray XmlElement::toByteArray() const
{
    return isNull() ? QByteArray() : XmlNodeWriter().write(m_pDocument->document_element());
}

} // namespace Simulation
