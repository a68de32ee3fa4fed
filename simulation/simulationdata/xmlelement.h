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

/// An element of a small XML document that is held in memory: a record, a
/// descriptor or a message.
///
/// An object is a handle. Copies refer to the same element, and every handle keeps
/// the whole document alive. All handles of one document may be used by one thread
/// at a time. A default object refers to no element: it is null, reads as empty,
/// and setting anything on it does nothing. No operation recurses, so nesting depth
/// does not matter.
///
/// Names may contain colons, also several ("Simulation::Foo"). An operation that
/// would write a name that XML does not allow does nothing.
class SIMULATIONDATA_EXPORT XmlElement
{
public:
    XmlElement() = default;

    /// The root element of the document. Text that is not well formed or exceeds a
    /// limit (see Limits) is refused: the result is null and `*a_pError` (may be
    /// null) is the error text, with line and column where known. The encoding is
    /// that of the byte-order mark, else the declared one, else UTF-8. A document
    /// type is skipped, and entities that it declares are unknown.
    [[nodiscard]] static XmlElement parse(const QByteArray& a_bytes, QString* a_pError = nullptr);

    /// The root element of a new document.
    [[nodiscard]] static XmlElement create(const QString& a_sRootTag);

    [[nodiscard]] bool isNull() const { return m_pNode == nullptr; }
    [[nodiscard]] QString tagName() const;

    /// Whether there is a child element of that name, even an empty one.
    [[nodiscard]] bool hasChildText(const QString& a_sName) const;

    /// The text of the first child element of that name, or of this element when
    /// the name is empty: all text and CDATA directly inside it, joined and not
    /// trimmed. Null when there is no such child; empty but not null when the child
    /// has no text.
    [[nodiscard]] QString childText(const QString& a_sName = QString()) const;

    /// The same text as UTF-8, which saves memory with large texts.
    [[nodiscard]] QByteArray childUtf8(const QString& a_sName = QString()) const;

    /// The child text as a decimal number; 0 with `*a_pOk` false when it is not a
    /// number or does not fit 32 bits.
    [[nodiscard]] unsigned int childUnsigned(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// The child text as a Boolean: only "true" and "false" are valid; anything
    /// else is false with `*a_pOk` false.
    [[nodiscard]] bool childBool(const QString& a_sName, bool* a_pOk = nullptr) const;

    /// Appends a child element with that text. When there is a child of that name
    /// already, nothing changes and the value is dropped. That is deliberate:
    /// messages are written once and never edited. Characters that XML forbids are
    /// left out.
    void setChildText(const QString& a_sName, const QString& a_sValue);

    /// The same with a text in UTF-8, which saves memory with large texts of plain
    /// ASCII.
    void setChildUtf8(const QString& a_sName, const QByteArray& a_text);

    /// The value of the attribute; null when there is no such attribute.
    [[nodiscard]] QString attribute(const QString& a_sName) const;
    [[nodiscard]] bool hasAttribute(const QString& a_sName) const;

    /// Replaces the value of the attribute, or appends the attribute after the
    /// others. Characters that XML forbids are left out.
    void setAttribute(const QString& a_sName, const QString& a_sValue);

    /// Appends an empty child element and returns it.
    XmlElement appendChild(const QString& a_sName);

    /// Appends a copy of the element and all its content, from this or another
    /// document, and returns the copy.
    XmlElement appendCopy(const XmlElement& a_element);

    /// The first child element, or the first of that name when a name is given;
    /// null when there is none.
    [[nodiscard]] XmlElement firstChild(const QString& a_sName = QString()) const;

    /// The next sibling element, or the next of that name when a name is given;
    /// null when there is none.
    [[nodiscard]] XmlElement nextSibling(const QString& a_sName = QString()) const;

    /// The whole document as UTF-8 without XML declaration: four blanks per level,
    /// attributes in the order in which they were set, an element with only text on
    /// one line, a line feed at the end. White space between elements is dropped
    /// unless there is other text beside it. Empty for a null object.
    [[nodiscard]] QByteArray toByteArray() const;

private:
    friend class SimulationServiceCommunication;

    /// As parse(), for a document that was already found plain (see
    /// XmlValidator::plainDocumentBytes()).
    [[nodiscard]] static XmlElement parsePlain(const QByteArray& a_bytes, QString* a_pError);

    XmlElement(std::shared_ptr<pugi::xml_document> a_pDocument, pugi::xml_node_struct* a_pNode);

    std::shared_ptr<pugi::xml_document> m_pDocument;
    pugi::xml_node_struct* m_pNode = nullptr; ///< owned by the document
};

} // namespace Simulation

#endif
