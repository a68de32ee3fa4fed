#ifndef SIMULATIONDATA_XMLELEMENT_H
#define SIMULATIONDATA_XMLELEMENT_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace pugi {
class xml_document;
struct xml_node_struct;
} // namespace pugi

namespace Simulation {

/// An element of a small XML document that is held in memory: records,
/// descriptors, messages.
///
/// An object is a handle. Copies name the same element, and every handle keeps
/// the whole document alive. All handles of one document belong to one thread
/// at a time. A default object names no element: it is null, reads as empty,
/// and setting anything on it does nothing. No operation recurses over depth.
///
/// Names may hold colons, several of them too ("Simulation::Foo"). A name that
/// XML does not allow is never written: the operation does nothing then.
class SIMULATIONDATA_EXPORT XmlElement
{
public:
    XmlElement() = default;

    /// The root of the document in the bytes. Anything that is not well formed
    /// or goes beyond a limit (see Limits) is refused: null, with the reason
    /// and where known its line and column in `*a_pError` (may be null). The
    /// encoding is that of the byte-order mark or the declaration, UTF-8
    /// without. A document type is passed over, its entities are not known.
    [[nodiscard]] static XmlElement parse(const QByteArray& a_bytes, QString* a_pError = nullptr);

    /// The root of a new document.
    [[nodiscard]] static XmlElement create(const QString& a_sRootTag);

    [[nodiscard]] bool isNull() const { return m_pNode == nullptr; }
    [[nodiscard]] QString tagName() const;

    /// Whether there is a child element of that name, an empty one included.
    [[nodiscard]] bool hasChildText(const QString& a_sName) const;

    /// The text of the first child element of that name, of this element when
    /// the name is empty: all text and CDATA directly inside it, joined,
    /// nothing trimmed. Null when there is no such child, empty but not null
    /// when it is empty.
    [[nodiscard]] QString childText(const QString& a_sName = QString()) const;

    /// The same text as UTF-8: for large texts, which are not widened then.
    [[nodiscard]] QByteArray childUtf8(const QString& a_sName = QString()) const;

    /// The child text as a number in base 10; 0 with `*a_pOk` false when it is
    /// none or does not fit 32 bits.
    [[nodiscard]] unsigned int childUnsigned(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// The child text as a truth value: only "true" and "false" are valid;
    /// anything else is false with `*a_pOk` false.
    [[nodiscard]] bool childBool(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// Appends a child element with that text. When there is a child of that
    /// name already, nothing changes: the value is dropped, deliberately, for
    /// messages are written once and never edited. Characters that XML forbids
    /// are left out.
    void setChildText(const QString& a_sName, const QString& a_sValue);

    /// The same with a text in UTF-8: for large texts, of which plain ASCII is
    /// not widened then.
    void setChildUtf8(const QString& a_sName, const QByteArray& a_text);

    /// The value of the attribute, null when there is none.
    [[nodiscard]] QString attribute(const QString& a_sName) const;
    [[nodiscard]] bool hasAttribute(const QString& a_sName) const;

    /// Replaces the attribute or appends it behind the others. Characters that
    /// XML forbids are left out.
    void setAttribute(const QString& a_sName, const QString& a_sValue);

    /// Appends an empty child element and gives it.
    XmlElement appendChild(const QString& a_sName);

    /// Appends a copy of the element and all that is in it, from this or
    /// another document, and gives the copy.
    XmlElement appendCopy(const XmlElement& a_element);

    /// The first child element, of that name when one is given; null when there
    /// is none.
    [[nodiscard]] XmlElement firstChild(const QString& a_sName = QString()) const;

    /// The next element behind this one under the same parent, of that name
    /// when one is given; null when there is none.
    [[nodiscard]] XmlElement nextSibling(const QString& a_sName = QString()) const;

    /// The whole document as UTF-8 without XML declaration: four blanks per
    /// level, attributes in the order they were set, an element with only text
    /// on one line, a line feed at the end. White space between elements is
    /// not kept unless there is other text beside it. Empty for a null object.
    [[nodiscard]] QByteArray toByteArray() const;

private:
    XmlElement(std::shared_ptr<pugi::xml_document> a_pDocument, pugi::xml_node_struct* a_pNode);

    std::shared_ptr<pugi::xml_document> m_pDocument;
    pugi::xml_node_struct* m_pNode = nullptr; ///< owned by the document
};

} // namespace Simulation

#endif
