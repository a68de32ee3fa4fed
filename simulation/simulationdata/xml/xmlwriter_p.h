#ifndef SIMULATIONDATA_XMLWRITER_P_H
#define SIMULATIONDATA_XMLWRITER_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QLatin1String>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace Simulation {

/// Writes the elements of a document: one interface for every target of XML. Characters
/// that XML forbids are left out. A carriage return is written as a reference, because a
/// reader turns a bare one into a line feed.
class XmlWriter
{
public:
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;
    virtual ~XmlWriter() = default;

    virtual void startElement(QLatin1String a_sName) = 0;
    virtual void endElement() = 0;

    /// An attribute of the element that was started last. Attributes precede text and
    /// children.
    virtual void attribute(QLatin1String a_sName, QStringView a_sValue) = 0;
    virtual void text(QStringView a_sText) = 0;

    /// Like attribute() and text(), for ASCII without characters that need escaping.
    virtual void plainAttribute(QLatin1String a_sName, QLatin1String a_sValue) = 0;
    virtual void plainText(QLatin1String a_sText) = 0;

    void textElement(QLatin1String a_sName, QStringView a_sText);
    void plainElement(QLatin1String a_sName, QLatin1String a_sText);

    void wholeAttribute(QLatin1String a_sName, std::int64_t a_iValue);
    void numberAttribute(QLatin1String a_sName, double a_dValue);
    void booleanAttribute(QLatin1String a_sName, bool a_bValue);

    /// Numbers as the text of the current element, in the forms of numberText() and
    /// coordinateText().
    void whole(std::int64_t a_iValue);
    void number(double a_dValue);
    void coordinate(double a_dDegrees);

protected:
    XmlWriter() = default;
};

/// Writes UTF-8 into a byte array, each element on a line of its own and indented by
/// four blanks per level, unless there is text beside it.
class XmlTextWriter : public XmlWriter
{
public:
    /// The bytes are not owned; the writer appends to them.
    explicit XmlTextWriter(QByteArray& a_bytes)
        : m_bytes(a_bytes)
    {}

    /// Writes the XML declaration. `a_bEncoding`: whether it names UTF-8; false for a
    /// document that becomes a string.
    void startDocument(bool a_bEncoding = true);
    /// Ends the document with a line feed.
    void endDocument() { m_bytes.append('\n'); }

    void startElement(QLatin1String a_sName) override;
    void endElement() override;
    void attribute(QLatin1String a_sName, QStringView a_sValue) override;
    void text(QStringView a_sText) override;
    void plainAttribute(QLatin1String a_sName, QLatin1String a_sValue) override;
    void plainText(QLatin1String a_sText) override;

private:
    void closeStartTag();
    void startLine();
    void append(QLatin1String a_sText) { m_bytes.append(a_sText.data(), a_sText.size()); }

    QByteArray& m_bytes;
    std::vector<QLatin1String> m_open; ///< names of the open elements
    bool m_bInStartTag = false;
    bool m_bAfterText = false; ///< the last thing written is text
};

/// Where an escaped text is written.
enum class XmlEscape : unsigned char {
    Text,  ///< the text of an element
    Value, ///< as an attribute's value: tabs and line ends are escaped, too
};

/// Appends the text with markup characters escaped, as UTF-8.
void appendEscaped(QByteArray& a_target, QStringView a_sText, XmlEscape a_eEscape);

} // namespace Simulation

#endif
