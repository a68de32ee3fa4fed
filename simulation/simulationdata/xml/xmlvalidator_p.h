#ifndef SIMULATIONDATA_XMLVALIDATOR_P_H
#define SIMULATIONDATA_XMLVALIDATOR_P_H

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <vector>

namespace Simulation {

/// Judges whether UTF-8 bytes without a mark are a well-formed XML document,
/// since the parser behind XmlElement takes much that is not. Linear in the
/// bytes, never recursive, memory grows with the depth only. More elements than
/// Limits::RecordElements are a fault, too.
///
/// A document type is passed over: entities that it defines stay unknown and
/// are refused where they are used.
class XmlValidator
{
public:
    /// The bytes must outlive the object.
    explicit XmlValidator(QByteArrayView a_bytes);

    /// False with a reason and its place at the first fault.
    [[nodiscard]] bool validate();

    /// Where the fault lies, in bytes.
    [[nodiscard]] qsizetype errorOffset() const { return m_iError; }
    [[nodiscard]] const QString& reason() const { return m_sReason; }

    /// The bytes of the root element of a document found well formed.
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
    bool skipBehind(QByteArrayView a_end, const char* a_szWhat);
    bool fail(qsizetype a_iOffset, const QString& a_sReason);

    QByteArrayView m_bytes;
    qsizetype m_iPos = 0;
    std::vector<QByteArrayView> m_open;  ///< names of the open elements
    std::vector<QByteArrayView> m_names; ///< attributes of the tag at hand
    QByteArrayView m_firstValue;         ///< of its first attribute
    QByteArrayView m_root;
    std::uint64_t m_uiElements = 0;
    qsizetype m_iError = 0;
    QString m_sReason;
};

} // namespace Simulation

#endif
