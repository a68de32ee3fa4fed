#ifndef SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_P_H
#define SIMULATIONDATA_SIMULATIONSERVICECOMMUNICATION_P_H

#include "simulationdata/xmlelement.h"

#include <QByteArray>
#include <QLatin1String>
#include <QString>

#include <optional>

namespace Simulation {

class SimulationServiceCommunication;

/// The names of a document's root and of the first element in the root. A name is empty
/// when it is not within the first 256 KiB.
struct PeekedNames
{
    QString root;
    QString command;
};

/// Reads the names at the beginning of a document, without the rest. No value for a
/// short document, because reading a short document as a whole costs no more.
[[nodiscard]] std::optional<PeekedNames> peekedNames(const QByteArray& a_document);

/// A received command and the signal that it triggers.
class ReceivedCommand
{
public:
    ReceivedCommand(XmlElement a_element, bool a_bCompressed, SimulationServiceCommunication* a_pReceiver);

    [[nodiscard]] const XmlElement& element() const { return m_element; }

    /// Decodes the text of a child; empty after one trace when decoding fails. Releases
    /// the document before decoding, because document and payload may be large. Read all
    /// other parts first, and keep no other handle to the document.
    [[nodiscard]] QByteArray takePayload(QLatin1String a_name);

    /// Checks the complete command and emits its signal. Returns false, without a
    /// signal, when the command is unknown or incomplete or contains a value that cannot
    /// be converted. When the call returns, a slot may have deleted the receiver.
    bool process();

    /// The object whose signals are to be emitted.
    [[nodiscard]] SimulationServiceCommunication* receiver() const { return m_pReceiver; }

private:
    XmlElement m_element;
    bool m_bCompressed;
    SimulationServiceCommunication* m_pReceiver;
};

/// Returns the bytes as the text of an XML element in UTF-8. With compression, the text
/// is the Base64 of qCompress(). Without it, each byte is one Latin-1 character.
[[nodiscard]] QByteArray compressPayload(const QByteArray& a_data, bool a_bCompress);

/// Returns the bytes of a text that compressPayload() made. Empty, with the error text
/// in `*a_pError`, when the bytes cannot be decompressed or exceed
/// Limits::InflatedBytes.
///
/// Empties `a_text`, so that the memory of the text is reused or freed.
[[nodiscard]] QByteArray uncompressPayload(QByteArray&& a_text, bool a_bCompressed, QString* a_pError);

} // namespace Simulation

#endif
