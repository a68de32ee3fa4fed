#ifndef SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_P_H
#define SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_P_H

#include "simulationdata/xmlelement.h"

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <optional>

namespace Simulation {

class SimulationServiceCommunication;

/// The names of a document's root and of the first element in it. Empty when the
/// first 256 KiB do not show them.
struct PeekedNames
{
    QString root;
    QString command;
};

/// No value for a short document: reading it whole costs no more.
[[nodiscard]] std::optional<PeekedNames> peekedNames(const QByteArray& a_document);

/// A received command and the signal that it triggers.
class ReceivedCommand
{
public:
    ReceivedCommand(XmlElement a_element, bool a_bCompressed, SimulationServiceCommunication* a_pReceiver);

    [[nodiscard]] const XmlElement& element() const { return m_element; }

    /// Decodes the child's text; empty after one trace when that fails. Releases the
    /// document before decoding, because both may be large. Read all other parts first,
    /// and keep no other handle to the document.
    [[nodiscard]] QByteArray takePayload(QLatin1String a_name);

    /// Checks the complete command and emits its signal. False, without a signal, when
    /// the command is unknown or incomplete or contains a value that does not convert.
    /// A slot may have deleted the receiver afterwards.
    bool process();

    /// The object whose signals are to be emitted.
    [[nodiscard]] SimulationServiceCommunication* receiver() const { return m_pReceiver; }

private:
    XmlElement m_element;
    bool m_bCompressed;
    SimulationServiceCommunication* m_pReceiver;
};

/// Returns the bytes as the text of an XML element in UTF-8. Compressed: Base64 of
/// qCompress(). Otherwise each byte is one Latin-1 character.
[[nodiscard]] QByteArray compressPayload(const QByteArray& a_data, bool a_bCompress);

/// Returns the bytes of such a text. Empty, with the error text in `*a_pError`, when
/// they cannot be decompressed or exceed Limits::InflatedBytes.
///
/// Takes the text over, so that only the text and the result are in memory at a time.
[[nodiscard]] QByteArray uncompressPayload(QByteArray&& a_text, bool a_bCompressed, QString* a_pError);

} // namespace Simulation

#endif
