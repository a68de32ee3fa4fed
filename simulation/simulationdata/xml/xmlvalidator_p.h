#ifndef SIMULATIONDATA_XMLVALIDATOR_P_H
#define SIMULATIONDATA_XMLVALIDATOR_P_H

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <vector>

namespace Simulation {

/// Checks whether UTF-8 bytes without a byte-order mark are a well-formed XML document.
/// The check is needed because the parser of XmlElement also accepts many malformed
/// documents. Time is linear in the bytes. The check is not recursive, and its memory
/// grows only with the nesting depth. Exceeding Limits::RecordElements, NestingDepth or
/// ElementAttributes is an error, too. One object checks one document.
///
/// A document type is skipped: entities that it defines are unknown, and a reference to
/// one is an error.
class XmlValidator
{
public:
    enum Elements : unsigned char {
        LimitedElements,    ///< at most Limits::RecordElements
        AnyNumberOfElements ///< documents, which have limits for their objects
    };

    /// The bytes must outlive the object.
    explicit XmlValidator(QByteArrayView a_bytes, Elements a_eElements = LimitedElements);

    /// False at the first error, with reason() and errorOffset().
    [[nodiscard]] bool validate();

    /// The size (bytes) of the plain document at the start of the bytes; 0 when there
    /// is none or its end is missing. Called instead of validate(). A document is plain
    /// when all parsers read it alike. A plain document is a well-formed element that
    /// contains only tags, text and references. Its names are ASCII, contain no colon
    /// and have at most 1000 bytes.
    [[nodiscard]] qsizetype plainDocumentBytes();

    /// Whether a valid document is plain and has at most blanks around it.
    [[nodiscard]] bool isPlain() const { return m_bPlain && m_bUnambiguous; }

    /// Whether all parsers read the content of a valid document alike: it has no document
    /// type, an XML declaration of version 1.0 only, and plain names.
    [[nodiscard]] bool isUnambiguous() const { return m_bUnambiguous; }

    /// The place of the error (bytes from the start).
    [[nodiscard]] qsizetype errorOffset() const { return m_iError; }
    [[nodiscard]] const QString& reason() const { return m_sReason; }

    /// The bytes of the root element of a valid document.
    [[nodiscard]] QByteArrayView root() const { return m_root; }

private:
    bool characters();
    bool declaration();
    bool misc(bool a_bInProlog);
    bool doctype();
    bool element();
    bool markup();
    bool startTag();
    bool endTag();
    bool attributes();
    bool attribute();
    bool uniqueNames();
    bool name(QByteArrayView* a_pName);
    bool text();
    bool comment();
    bool section();
    bool instruction();
    bool references(qsizetype a_iEnd);
    bool reference();
    [[nodiscard]] bool isAt(QByteArrayView a_text) const;
    [[nodiscard]] bool isAt(char a_cByte) const
    {
        return m_iPos < m_bytes.size() && m_bytes[m_iPos] == a_cByte;
    }
    bool skip(QByteArrayView a_text);
    bool skipBlanks();
    bool skipPast(QByteArrayView a_end, const char* a_szWhat);
    bool fail(qsizetype a_iOffset, const QString& a_sReason);

    QByteArrayView m_bytes;
    qsizetype m_iPos = 0;
    std::vector<QByteArrayView> m_open;  ///< names of the open elements
    std::vector<QByteArrayView> m_names; ///< attribute names of the current tag
    QByteArrayView m_firstValue;         ///< value of the first attribute of the current tag
    QByteArrayView m_root;
    std::uint64_t m_uiElements = 0;
    const std::uint64_t m_uiMaxElements;
    const std::uint64_t m_uiMaxDepth;
    const std::uint64_t m_uiMaxAttributes;
    bool m_bPlain = true;       ///< so far only tags, text and references
    bool m_bUnambiguous = true; ///< so far
    qsizetype m_iError = 0;
    QString m_sReason;
};

} // namespace Simulation

#endif
