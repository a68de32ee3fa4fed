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

/// An element of a small XML document that is held in memory: a record, a descriptor
/// or a message.
///
/// An object is a handle. Copies refer to the same element, and every handle keeps
/// the whole document alive. All handles of one document may be used by one thread
/// at a time. A default object is null: it refers to no element and reads as empty.
/// Writing to it has no effect. No operation recurses, so nesting depth does not
/// matter.
///
/// Names may contain several colons ("Simulation::Foo"). An operation that would
/// write a name that XML does not allow has no effect.
class SIMULATIONDATA_EXPORT XmlElement
{
public:
    XmlElement() = default;

    /// Returns the root element of a document. A text that is not well formed or
    /// exceeds a limit (see Limits) is refused. The result is then null, and
    /// `*a_pError` is the error text, with line and column where known. `a_pError`
    /// may be null. The encoding is that of the byte-order mark, else the declared one,
    /// else UTF-8. A document type is skipped, and entities that it declares are
    /// unknown.
    [[nodiscard]] static XmlElement parse(const QByteArray& a_bytes, QString* a_pError = nullptr);

    /// Returns the root element of a new document.
    [[nodiscard]] static XmlElement create(const QString& a_sRootTag);

    [[nodiscard]] bool isNull() const { return m_pNode == nullptr; }
    [[nodiscard]] QString tagName() const;

    /// Whether there is a child element with that name, also an empty one.
    [[nodiscard]] bool hasChildText(const QString& a_sName) const;

    /// Returns the text of the first child element with that name. An empty name
    /// gives the text of this element. The text contains all text and CDATA directly
    /// inside the element, joined and not trimmed. It is null when there is no such
    /// child, and empty but not null when the child has no text.
    [[nodiscard]] QString childText(const QString& a_sName = QString()) const;

    /// Works like childText(), but returns UTF-8. Large texts then take less memory.
    [[nodiscard]] QByteArray childUtf8(const QString& a_sName = QString()) const;

    /// Returns the child text as a decimal number. When it is not a number or does
    /// not fit 32 bits, returns 0 and sets `*a_pOk` to false.
    [[nodiscard]] unsigned int childUnsigned(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// Returns the child text as a Boolean. Only "true" and "false" are valid. Any
    /// other text gives false and sets `*a_pOk` to false.
    [[nodiscard]] bool childBool(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// Appends a child element with that text. Has no effect when a child with that
    /// name already exists, because messages are written once and never edited.
    /// Characters that XML forbids are left out.
    void setChildText(const QString& a_sName, const QString& a_sValue);

    /// Works like setChildText(), but takes UTF-8. Large texts of plain ASCII then
    /// take less memory.
    void setChildUtf8(const QString& a_sName, const QByteArray& a_text);

    /// The value of the attribute; null when there is no such attribute.
    [[nodiscard]] QString attribute(const QString& a_sName) const;
    [[nodiscard]] bool hasAttribute(const QString& a_sName) const;

    /// Replaces the value of the attribute, or appends the attribute after the
    /// others. Characters that XML forbids are left out.
    void setAttribute(const QString& a_sName, const QString& a_sValue);

    /// Appends an empty child element and returns it.
    XmlElement appendChild(const QString& a_sName);

    /// Appends a copy of the element with all its content and returns the copy. The
    /// element may belong to another document.
    XmlElement appendCopy(const XmlElement& a_element);

    /// Returns the first child element, or the first with that name when a name is
    /// given. Null when there is none.
    [[nodiscard]] XmlElement firstChild(const QString& a_sName = QString()) const;

    /// Returns the next sibling element, or the next with that name when a name is
    /// given. Null when there is none.
    [[nodiscard]] XmlElement nextSibling(const QString& a_sName = QString()) const;

    /// Returns the whole document as UTF-8 without XML declaration. Each level is
    /// indented by four blanks. Attributes are in the order in which they were set.
    /// An element with only text is on one line, and a line feed ends the document.
    /// White space between elements is dropped, unless there is other text beside
    /// the elements. Empty for a null object.
    [[nodiscard]] QByteArray toByteArray() const;

private:
    friend class SimulationServiceCommunication;

    /// Works like parse(), for a document that XmlValidator::plainDocumentBytes()
    /// has already accepted as plain.
    [[nodiscard]] static XmlElement parsePlain(const QByteArray& a_bytes, QString* a_pError);

    XmlElement(std::shared_ptr<pugi::xml_document> a_pDocument, pugi::xml_node_struct* a_pNode);

    std::shared_ptr<pugi::xml_document> m_pDocument;
    pugi::xml_node_struct* m_pNode = nullptr; ///< owned by the document
};

} // namespace Simulation

#endif
