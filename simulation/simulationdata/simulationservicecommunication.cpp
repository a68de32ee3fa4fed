#include "simulationservicecommunication.h"

#include "simulationdata/io/trace_p.h"
#include "simulationdata/simulationlimits.h"
#include "simulationdata/xmlelement.h"
#include "simulationservicecommunication_p.h"
#include "xmlseparator_p.h"

#include <QCryptographicHash>
#include <QStringList>
#include <QTcpSocket>

#include <utility>

// The functions that read and write the commands are in
// simulationservicecommunication_commands.cpp.

namespace Simulation {

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/simulationservicecommunication";

} // namespace

SimulationServiceCommunication::SimulationServiceCommunication(QTcpSocket* a_pSocket)
{
    if (a_pSocket != nullptr) {
        setSocket(a_pSocket);
    }
}

SimulationServiceCommunication::~SimulationServiceCommunication()
{
    dropSeparators(m_pSocket);
}

void SimulationServiceCommunication::setSocket(QTcpSocket* a_pSocket)
{
    // Of two separators on one socket, each would read only a part of the bytes.
    dropSeparators(a_pSocket == nullptr ? m_pSocket.data() : a_pSocket);
    m_pSocket = a_pSocket;
    m_bLostCommands = false;
    if (a_pSocket == nullptr) {
        m_pSeparator = nullptr;
        return;
    }
    m_pSeparator = new XmlSeparator(a_pSocket, this);
    connect(m_pSeparator, &XmlSeparator::xmlReceived, this, &SimulationServiceCommunication::slotXmlReceived);
    connect(m_pSeparator, &XmlSeparator::errorOccured, this,
            &SimulationServiceCommunication::slotErrorOccured);
    // Queued like the documents, so that documents received before the error are
    // delivered first.
    connect(
        m_pSeparator, &XmlSeparator::errorOccured, m_pSeparator,
        [this, pSeparator = m_pSeparator](const QString& a_sError) {
            if (pSeparator == m_pSeparator && m_streamErrorHandler) {
                const StreamErrorHandler handler = m_streamErrorHandler; // it may set another handler
                handler(a_sError);
            }
        },
        Qt::QueuedConnection);
    // Drops an unfinished document of the old connection. Slots on connected() may
    // already send commands, so the signal stateChanged() is used: it is emitted before
    // connected().
    connect(a_pSocket, &QTcpSocket::stateChanged, m_pSeparator,
            [this, pSeparator = m_pSeparator](QAbstractSocket::SocketState a_eState) {
                if (a_eState == QAbstractSocket::ConnectedState) {
                    pSeparator->reset();
                    m_bLostCommands = m_bLostCommands && pSeparator != m_pSeparator;
                }
            });
}

QTcpSocket* SimulationServiceCommunication::socket() const
{
    return m_pSocket.data();
}

qint64 SimulationServiceCommunication::unfinishedBytes() const
{
    return m_pSeparator != nullptr ? m_pSeparator->unfinishedBytes() : 0;
}

/// Ends the reading from a socket. Null means all sockets that have been deleted.
void SimulationServiceCommunication::dropSeparators(const QTcpSocket* a_pSocket)
{
    for (XmlSeparator* const pSeparator : findChildren<XmlSeparator*>(Qt::FindDirectChildrenOnly)) {
        if (pSeparator->device() == a_pSocket) {
            pSeparator->disconnect();
            pSeparator->detach();
            pSeparator->deleteLater();
        }
    }
}

QByteArray SimulationServiceCommunication::encode(const CommandSender& a_send)
{
    QByteArray bytes;
    SimulationServiceCommunication encoder(nullptr);
    encoder.m_pEncoded = &bytes;
    a_send(encoder);
    return encoder.m_bLostCommands ? QByteArray() : bytes;
}

void SimulationServiceCommunication::sendEncoded(const QByteArray& a_bytes)
{
    if (m_pEncoded != nullptr) {
        m_pEncoded->append(a_bytes);
    } else if (m_pSeparator != nullptr) {
        m_bLostCommands = !m_pSeparator->sendXml(a_bytes) || m_bLostCommands;
    }
}

void SimulationServiceCommunication::sendCommand(const XmlElement& a_command)
{
    if (!isSending()) {
        return;
    }
    const QByteArray document = a_command.toByteArray();
    if (static_cast<quint64>(document.size()) <= Limits::value(Limits::DocumentBytes)) {
        sendEncoded(document);
        return;
    }
    // A command above the limit is not sent, because the peer would stop reading.
    m_bLostCommands = true;
    traceError(s_szSource, [&] {
        return QStringLiteral("Not sent: %1 of %2 bytes, %3")
            .arg(a_command.tagName(), QString::number(document.size()),
                 Limits::exceeded(Limits::DocumentBytes));
    });
}

/// Adds the bytes to the command and sends the command.
void SimulationServiceCommunication::sendPayload(XmlElement a_command, const QString& a_sName,
                                                 const QByteArray& a_data)
{
    if (isSending()) { // avoids compressing bytes that are not sent
        a_command.setChildUtf8(a_sName, compressPayload(a_data, m_bCompression));
        sendCommand(a_command);
    }
}

// NOLINTNEXTLINE(readability-identifier-naming)
void SimulationServiceCommunication::slotXmlReceived(const QByteArray& Xml)
{
    // With a filter, the names are read first: a refused command then does not cost the
    // time and memory for building the tree of a large document.
    const std::optional<PeekedNames> peeked = m_filter ? peekedNames(Xml) : std::nullopt;
    if (peeked && !peeked->root.isEmpty() && peeked->root != QLatin1String("Command")) {
        traceError(s_szSource, [&] { return QStringLiteral("Invalid xml: ") + peeked->root; });
        return;
    }
    if (peeked && isRefused(peeked->command, Xml.size())) {
        return;
    }
    QString sError;
    const bool bPlain = m_pSeparator != nullptr && m_pSeparator->isPlain(Xml);
    XmlElement root = bPlain ? XmlElement::parsePlain(Xml, &sError) : XmlElement::parse(Xml, &sError);
    if (root.tagName() != QLatin1String("Command")) {
        traceError(s_szSource, [&] {
            return QStringLiteral("Invalid xml: %1").arg(root.isNull() ? sError : root.tagName());
        });
        return;
    }
    root = root.firstChild();
    const QString sName = root.tagName();
    if (!peeked && isRefused(sName, Xml.size())) {
        return;
    }
    // The system's log filters expect processed commands among the errors, and invalid
    // ones among the progress messages.
    if (ReceivedCommand(std::move(root), m_bCompression, this).process()) {
        traceError(s_szSource, [&] { return QStringLiteral("Processed Command/Update: %1").arg(sName); });
    } else {
        trace(ErrorHandler::TraceProgress, s_szSource,
              [&] { return QStringLiteral("Invalid or incomplete command/update: %1").arg(sName); });
    }
}

bool SimulationServiceCommunication::isRefused(const QString& a_sCommand, qsizetype a_iBytes) const
{
    if (!m_filter || m_filter(a_sCommand, a_iBytes)) {
        return false;
    }
    trace(ErrorHandler::TraceProgress, s_szSource,
          [&] { return QStringLiteral("Refused command/update: %1").arg(a_sCommand); });
    return true;
}

// NOLINTNEXTLINE(readability-identifier-naming)
void SimulationServiceCommunication::slotErrorOccured(const QString& sErrorString)
{
    traceError(s_szSource, [&] { return sErrorString; });
}

QString SimulationServiceCommunication::createConfirmation(const SimulationDeviceConfiguration& a_device)
{
    // Both ends hash the same text, so the form of this text must never change.
    const QStringList parts{QStringLiteral("608241937725;4410;27316;81952;64107"), a_device.id(),
                            a_device.machine(), a_device.machineId(), a_device.deviceType()};
    const QByteArray joined = parts.join(u';').toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(joined, QCryptographicHash::Sha1).toBase64());
}

} // namespace Simulation
