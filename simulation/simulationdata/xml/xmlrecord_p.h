#ifndef SIMULATIONDATA_XMLRECORD_P_H
#define SIMULATIONDATA_XMLRECORD_P_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace Simulation {

/// The text of a record, descriptor or message from an untrusted source, decoded and
/// checked: it is well-formed and within all limits, also Limits::RecordElements. A
/// document type is skipped, and entities that it declares are unknown. Unlike a
/// document, a record that is not valid is refused as a whole.
class XmlRecord
{
public:
    /// `*a_pError`, which must be empty, becomes the error text, with line and column where
    /// known. It stays empty when the bytes are valid.
    XmlRecord(const QByteArray& a_bytes, QString* a_pError);

    /// The text as UTF-8; null when the bytes are refused before they are decoded.
    [[nodiscard]] QByteArrayView text() const { return m_text; }
    /// The part of the text that is the root element; null when the text is refused.
    [[nodiscard]] QByteArrayView root() const { return m_root; }

    /// The place of the error (bytes from the start of the text); -1 when it is not known.
    [[nodiscard]] qsizetype errorOffset() const { return m_iError; }

private:
    void validate(QString* a_pError);

    QByteArray m_bytes; ///< decoded
    QByteArrayView m_text;
    QByteArrayView m_root;
    qsizetype m_iError = -1;
};

} // namespace Simulation

#endif
