#ifndef SIMULATIONDATA_XMLSEPARATOR_P_H
#define SIMULATIONDATA_XMLSEPARATOR_P_H

#include "simulationdata/io/receivebuffer_p.h"
#include "simulationdata/xml/xmldocumentsplitter_p.h"

#include <QBasicTimer>
#include <QByteArray>
#include <QIODevice>
#include <QObject>
#include <QPointer>
#include <QString>

#include <deque>

/// Splits the bytes of a device, usually a socket, into whole XML documents, and writes
/// documents to it.
///
/// The device is not owned and may be deleted first. The object is used on the thread
/// of the device. Documents are delivered from the thread's event loop, so a receiver
/// may call any method or delete the object with deleteLater(). Time is linear in the
/// bytes, whatever the pieces in which they are received.
///
/// The peer is not trusted. Limits bound the memory that the peer can fill: the size of
/// a document, of a frame and of its content, and of the bytes that wait to be written.
/// An unlimited read buffer of a socket is limited to 64 KiB while the separator uses
/// the socket. A peer that keeps sending during a pause is then blocked.
///
/// A socket whose read buffer is full does not notice that its peer has closed the
/// connection. After an error, when the separator no longer reads, a full buffer is
/// therefore emptied and its bytes are lost. During a pause the bytes are kept, and the
/// end of the connection is noticed when they are read.
class XmlSeparator : public QObject
{
    Q_OBJECT

public:
    /// How the stream is framed.
    enum FramingMode : int {
        AutoDetect = 0,                ///< determined once from the first four bytes
        PlainXml = 1,                  ///< documents one after the other
        LengthPrefixedBigEndian = 2,   ///< each document follows its 4-byte length, big-endian
        LengthPrefixedLittleEndian = 3 ///< each document follows its 4-byte length, little-endian
    };

    /// The first overload uses PlainXml. Bytes that the device already holds are read
    /// as well, from the event loop.
    XmlSeparator(QIODevice* a_pDevice, QObject* a_pParent);
    XmlSeparator(QIODevice* a_pDevice, FramingMode a_eMode, QObject* a_pParent);
    ~XmlSeparator() override;

    /// Releases the device: the separator never reads or writes it again, and removes
    /// its own limit of the read buffer. Documents that were read before are still
    /// delivered.
    void detach();

    /// The device; null when the device was deleted, and after detach().
    [[nodiscard]] QIODevice* device() const { return m_pDevice.data(); }

    /// Whether documents are sent compressed; off by default. Only documents in frames
    /// are ever compressed. An incoming frame that is not compressed switches
    /// compression off.
    void setCompressOutgoing(bool a_bOn) { m_bCompressOutgoing = a_bOn; }

    /// Compression level from 0 (none) to 9 (best); -1, the default, lets zlib choose.
    void setCompressionLevel(int a_iLevel) { m_iCompressionLevel = a_iLevel; }
    [[nodiscard]] int compressionLevel() const { return m_iCompressionLevel; }

    /// The number of held bytes of an incomplete document or frame.
    [[nodiscard]] qint64 unfinishedBytes() const { return m_splitter.bytes() + m_buffer.size(); }

    /// Whether the document is known to be plain (see
    /// XmlValidator::plainDocumentBytes()). `a_document` is the argument of
    /// xmlReceived(). True only while that document is being delivered, and never for a
    /// copy of its bytes.
    [[nodiscard]] bool isPlain(const QByteArray& a_document) const;

    // The names are part of the meta-object and keep their spelling.
    // NOLINTBEGIN(readability-identifier-naming)
Q_SIGNALS:
    /// A complete document, without the blanks before it. Emitted from the event
    /// loop.
    void xmlReceived(const QByteArray& Xml);

    /// The stream cannot be read any further; the argument is the reader's error text
    /// or the exceeded limit. Reading is paused. Until reset(), resume() reports the
    /// same error again. Up to 64 KiB that are received meanwhile stay in the device
    /// for reset(). When a socket receives more, these bytes are lost.
    void errorOccured(const QString& sErrorString);

    /// Internal: queues a document for xmlReceived().
    void queued_xmlReceived(const QByteArray& Xml);

public Q_SLOTS:
    /// Writes one document. False when the framing is not known yet, when the document
    /// is too long for a frame, or when the device cannot be written to or accepts only
    /// a part. Also false, with nothing written, when more than Limits::PendingBytes
    /// would then wait to be written.
    bool sendXml(const QByteArray& Xml);

    /// These slots resume or pause reading, according to the argument.
    void setEnabled(bool bEnabled);
    void setDisabled(bool bDisabled);
    // NOLINTEND(readability-identifier-naming)

    /// Stops reading: received bytes stay in the device. Documents that were read
    /// before are still delivered.
    void pause();

    /// Continues reading, beginning immediately with the bytes that were received during
    /// the pause.
    void resume();

    /// Drops the error, and the bytes that were read but are not yet split into
    /// documents. Reading continues with the bytes that the device holds or receives
    /// next. The framing and the compression do not change.
    void reset();

protected:
    void timerEvent(QTimerEvent* a_pEvent) override;

private Q_SLOTS:
    void readNewData();

private:
    void connectDevice();
    void scheduleRead();
    void takeUp();
    void discardUnread();
    void detectFraming();

    void takeDocuments();
    void deliver(const QByteArray& a_document);
    [[nodiscard]] bool isFramed() const;
    [[nodiscard]] qint64 frameBytes() const;
    void takeFrame();
    bool uncompress(QByteArray* a_pPayload);
    [[nodiscard]] QByteArray framed(const QByteArray& a_xml) const;

    bool fail(QString a_sError);
    void reportError();

    FramingMode m_eMode;
    Simulation::XmlDocumentSplitter m_splitter;
    QPointer<QIODevice> m_pDevice;
    bool m_bBounded = false;            ///< the socket's read buffer is bounded by this object
    Simulation::ReceiveBuffer m_buffer; ///< bytes not split yet
    int m_iCompressionLevel = -1;
    bool m_bCompressOutgoing = false;
    bool m_bUncompressIncoming = true;
    std::deque<QByteArray> m_plain; ///< the plain ones among the queued documents
    QByteArray m_delivered;         ///< the plain document that is being delivered
    QBasicTimer m_readTimer;        ///< schedules a read from the event loop
    bool m_bReporting = false;      ///< whether errorOccured() is being emitted
    QString m_sError;               ///< empty without an error
};

#endif
