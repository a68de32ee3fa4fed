#include "xmlseparator_p.h"

#include "simulationdata/io/inflate_p.h"
#include "simulationdata/io/trace_p.h"

#include <QAbstractSocket>
#include <QtEndian>
#include <QTimerEvent>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Simulation;

namespace {

constexpr const char* s_szSource = "simulation/simulationdata/xmlseparator";

constexpr qsizetype s_iLengthBytes = 4;
/// The size of a socket's read buffer (bytes). No more bytes are split before other
/// events are handled. Queued documents may take much more memory: the shortest
/// documents about 60 times their size.
constexpr qint64 s_iSocketBytes = 65'536;

/// Whether both arrays share the same bytes in memory.
bool isSame(const QByteArray& a_one, const QByteArray& a_other)
{
    return a_one.constData() == a_other.constData() && a_one.size() == a_other.size();
}

qint64 limit(Limits::Limit a_eLimit)
{
    constexpr std::uint64_t uiMost = std::numeric_limits<qint64>::max();
    return static_cast<qint64>(std::min(Limits::value(a_eLimit), uiMost));
}

} // namespace

XmlSeparator::XmlSeparator(QIODevice* a_pDevice, QObject* a_pParent)
    : XmlSeparator(a_pDevice, PlainXml, a_pParent)
{}

XmlSeparator::XmlSeparator(QIODevice* a_pDevice, FramingMode a_eMode, QObject* a_pParent)
    : QObject(a_pParent)
    , m_eMode(a_eMode)
    , m_pDevice(a_pDevice)
{
    auto* const pSocket = qobject_cast<QAbstractSocket*>(a_pDevice);
    if (pSocket != nullptr && pSocket->readBufferSize() == 0) {
        pSocket->setReadBufferSize(s_iSocketBytes);
        m_bBounded = true;
    }
    if (a_pDevice != nullptr) {
        connect(a_pDevice, &QIODevice::readyRead, this, &XmlSeparator::discardUnread);
    }
    connectDevice();
    scheduleRead();
    connect(this, &XmlSeparator::queued_xmlReceived, this, &XmlSeparator::deliver, Qt::QueuedConnection);
}

XmlSeparator::~XmlSeparator()
{
    detach();
}

void XmlSeparator::detach()
{
    m_readTimer.stop();
    if (m_pDevice == nullptr) {
        return;
    }
    m_pDevice->disconnect(this);
    auto* const pSocket = qobject_cast<QAbstractSocket*>(m_pDevice.data());
    m_pDevice = nullptr;
    if (m_bBounded && pSocket != nullptr && pSocket->readBufferSize() == s_iSocketBytes) {
        pSocket->setReadBufferSize(0);
    }
}

void XmlSeparator::setEnabled(bool bEnabled) // NOLINT(readability-identifier-naming)
{
    if (bEnabled) {
        resume();
    } else {
        pause();
    }
}

void XmlSeparator::setDisabled(bool bDisabled) // NOLINT(readability-identifier-naming)
{
    setEnabled(!bDisabled);
}

void XmlSeparator::pause()
{
    m_readTimer.stop();
    if (m_pDevice != nullptr) {
        disconnect(m_pDevice, &QIODevice::readyRead, this, &XmlSeparator::readNewData);
    }
}

void XmlSeparator::resume()
{
    connectDevice();
    readNewData();
}

void XmlSeparator::reset()
{
    m_splitter.clear();
    m_buffer.clear();
    m_bReporting = false;
    m_sError.clear();
    connectDevice();
    scheduleRead();
}

void XmlSeparator::connectDevice()
{
    pause();
    if (m_pDevice != nullptr) {
        connect(m_pDevice, &QIODevice::readyRead, this, &XmlSeparator::readNewData);
    }
}

/// Schedules a read of bytes that the device already holds. The device emits no further
/// readyRead() for these bytes.
void XmlSeparator::scheduleRead()
{
    m_readTimer.start(0, this);
}

void XmlSeparator::readNewData()
{
    if (!m_sError.isEmpty()) {
        reportError();
        return;
    }
    // Frames are taken one at a time, and the device is read only when the buffer does
    // not contain a whole frame. Otherwise a peer that sends short frames could fill the
    // memory with bytes that are not split yet.
    if (!isFramed() || m_buffer.size() < s_iLengthBytes || m_buffer.size() < frameBytes()) {
        takeUp();
    }
    if (m_eMode == AutoDetect) {
        detectFraming();
    }
    if (isFramed()) {
        takeFrame();
    } else if (m_eMode == PlainXml) {
        takeDocuments();
    }
}

void XmlSeparator::takeUp()
{
    if (m_pDevice != nullptr && m_pDevice->isReadable()) {
        m_buffer.append(m_pDevice->readAll());
    }
}

/// Empties the full buffer of a socket that is not read because of an error. A socket
/// with a full buffer reads no bytes from the system and does not notice the end of the
/// connection.
void XmlSeparator::discardUnread()
{
    const auto* const pSocket = qobject_cast<QAbstractSocket*>(m_pDevice.data());
    if (pSocket == nullptr || m_sError.isEmpty() || m_bReporting || pSocket->readBufferSize() == 0) {
        return;
    }
    if (pSocket->bytesAvailable() >= pSocket->readBufferSize()) {
        m_pDevice->skip(pSocket->bytesAvailable());
    }
}

void XmlSeparator::detectFraming()
{
    if (m_buffer.size() < s_iLengthBytes) {
        return;
    }
    const QByteArrayView bytes = m_buffer.bytes();
    if (bytes[0] == 0) {
        m_eMode = LengthPrefixedBigEndian;
    } else {
        m_eMode = bytes[s_iLengthBytes - 1] != 0 ? PlainXml : LengthPrefixedLittleEndian;
    }
}

void XmlSeparator::takeDocuments()
{
    m_splitter.append(m_buffer.takeAll());
    while (const auto document = m_splitter.takeDocument()) {
        if (m_splitter.isPlain()) {
            m_plain.push_back(*document);
        }
        Q_EMIT queued_xmlReceived(*document);
    }
    if (!m_splitter.error().isEmpty()) {
        fail(m_splitter.error());
    }
}

/// Receivers may have deleted the object when the function returns.
void XmlSeparator::deliver(const QByteArray& a_document)
{
    // When a slot runs its own event loop, the next document is delivered inside this
    // delivery.
    const QByteArray outer = std::exchange(m_delivered, {});
    if (!m_plain.empty() && isSame(m_plain.front(), a_document)) {
        m_delivered = std::move(m_plain.front());
        m_plain.pop_front();
    }
    const QPointer<XmlSeparator> self(this);
    Q_EMIT xmlReceived(a_document);
    if (self != nullptr) {
        m_delivered = outer;
    }
}

bool XmlSeparator::isPlain(const QByteArray& a_document) const
{
    return isSame(m_delivered, a_document);
}

// Frames

bool XmlSeparator::isFramed() const
{
    return m_eMode == LengthPrefixedBigEndian || m_eMode == LengthPrefixedLittleEndian;
}

/// The size of the first frame in the buffer, including its length field.
qint64 XmlSeparator::frameBytes() const
{
    const char* const pLength = m_buffer.bytes().data();
    const quint32 uiLength = m_eMode == LengthPrefixedBigEndian ? qFromBigEndian<quint32>(pLength)
                                                                : qFromLittleEndian<quint32>(pLength);
    return s_iLengthBytes + qint64{uiLength};
}

void XmlSeparator::takeFrame()
{
    if (m_buffer.size() < s_iLengthBytes) {
        return;
    }
    const qint64 iFrame = frameBytes();
    if (iFrame - s_iLengthBytes > limit(Limits::DocumentBytes)) {
        fail(Limits::exceeded(Limits::DocumentBytes));
        return;
    }
    if (m_buffer.size() < iFrame) {
        return;
    }
    m_buffer.skip(s_iLengthBytes);
    QByteArray payload = m_buffer.take(iFrame - s_iLengthBytes);
    scheduleRead(); // the next frame may be in the buffer or in the device
    if (!m_bUncompressIncoming || uncompress(&payload)) {
        Q_EMIT queued_xmlReceived(payload);
    }
}

void XmlSeparator::timerEvent(QTimerEvent* a_pEvent)
{
    if (a_pEvent->timerId() != m_readTimer.timerId()) {
        QObject::timerEvent(a_pEvent);
        return;
    }
    m_readTimer.stop();
    readNewData();
}

/// Uncompresses the payload in place. False after an error. A payload that is not
/// compressed stays unchanged; from then on compression is off in both directions.
bool XmlSeparator::uncompress(QByteArray* a_pPayload)
{
    QString sReason;
    auto content = inflateBounded(*a_pPayload, &sReason);
    if (sReason == Limits::exceeded(Limits::InflatedBytes)) {
        return fail(sReason);
    }
    if (content.has_value() && !content->isEmpty()) {
        *a_pPayload = std::move(*content);
    } else {
        m_bUncompressIncoming = false;
        m_bCompressOutgoing = false;
    }
    return true;
}

QByteArray XmlSeparator::framed(const QByteArray& a_xml) const
{
    const QByteArray payload = m_bCompressOutgoing ? qCompress(a_xml, m_iCompressionLevel) : a_xml;
    if (payload.size() > std::numeric_limits<quint32>::max()) {
        return {};
    }
    const auto uiLength = static_cast<quint32>(payload.size());
    QByteArray frame(s_iLengthBytes, Qt::Uninitialized);
    if (m_eMode == LengthPrefixedBigEndian) {
        qToBigEndian(uiLength, frame.data());
    } else {
        qToLittleEndian(uiLength, frame.data());
    }
    return frame.append(payload);
}

bool XmlSeparator::sendXml(const QByteArray& Xml) // NOLINT(readability-identifier-naming)
{
    const auto refused = [&Xml](const QString& a_sReason) {
        traceError(s_szSource, [&] {
            return QStringLiteral("document of %1 bytes not sent: %2")
                .arg(QString::number(Xml.size()), a_sReason);
        });
        return false;
    };
    if (m_eMode == AutoDetect) {
        return refused(QStringLiteral("the peer's framing is not known yet"));
    }
    if (m_pDevice == nullptr || !m_pDevice->isWritable()) {
        return refused(QStringLiteral("the device is closed"));
    }
    const QByteArray bytes = m_eMode == PlainXml ? Xml : framed(Xml);
    if (m_eMode != PlainXml && bytes.isEmpty()) {
        return refused(QStringLiteral("it is too long for a frame"));
    }
    const qint64 iPending = m_pDevice->bytesToWrite();
    if (iPending + bytes.size() > limit(Limits::PendingBytes)) {
        return refused(QStringLiteral("%1; %2 bytes are already waiting")
                           .arg(Limits::exceeded(Limits::PendingBytes), QString::number(iPending)));
    }
    const qint64 iWritten = m_pDevice->write(bytes);
    return iWritten == bytes.size() ||
           refused(QStringLiteral("the device took %1 of %2 bytes")
                       .arg(QString::number(iWritten), QString::number(bytes.size())));
}

// Errors

/// Reports the error; always false. The receivers trace the error. They may have deleted
/// the object when the function returns.
bool XmlSeparator::fail(QString a_sError)
{
    m_buffer.clear(); // the rest of the stream cannot be read
    m_sError = std::move(a_sError);
    reportError();
    return false;
}

void XmlSeparator::reportError()
{
    if (m_bReporting) { // a receiver called resume() and has this report already
        return;
    }
    pause();
    m_bReporting = true;
    const QPointer<XmlSeparator> self(this);
    const QString sError = m_sError;
    Q_EMIT errorOccured(sError);
    if (self != nullptr) {
        m_bReporting = false;
        discardUnread();
    }
}
