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

/// Turns the bytes of a device, in practice a socket, into whole XML documents,
/// and writes documents to it.
///
/// The device is not owned and may die first. Everything happens on the thread
/// of the device; documents are delivered from its event loop, so a receiver may
/// call any method or delete the object later. Time is linear in the bytes,
/// whatever pieces they come in.
///
/// The peer is not trusted. What it sends is held within Limits: a document, a
/// frame and its content, and what waits to be written. A socket that buffers
/// without bound is given a read buffer of 64 KiB for as long as the separator
/// uses it, so that a peer that sends on during a pause has to wait.
///
/// A socket whose read buffer is full does not notice that its peer has closed
/// the connection. After an error, when nobody reads, a full buffer is therefore
/// emptied and its bytes are lost. During a pause the bytes are kept, and the end
/// of the connection is noticed when they are read.
class XmlSeparator : public QObject
{
    Q_OBJECT

public:
    /// How the stream is framed.
    enum FramingMode : int {
        AutoDetect = 0,                ///< decided once, by the first four bytes
        PlainXml = 1,                  ///< documents back to back
        LengthPrefixedBigEndian = 2,   ///< each behind its length, 4 bytes, most significant first
        LengthPrefixedLittleEndian = 3 ///< as before, least significant first
    };

    /// Of plain XML. What waits in the device already is read, too, from the
    /// event loop.
    XmlSeparator(QIODevice* a_pDevice, QObject* a_pParent);
    XmlSeparator(QIODevice* a_pDevice, FramingMode a_eMode, QObject* a_pParent);
    ~XmlSeparator() override;

    /// Leaves the device to others for good: reads and writes nothing any more
    /// and lifts the bound of the read buffer. Documents that were found already
    /// are still delivered.
    void detach();

    /// Null when it has died, and after detach().
    [[nodiscard]] QIODevice* device() const { return m_pDevice.data(); }

    /// Whether documents leave compressed, in frames only. By default they do
    /// not. A first incoming frame that is not compressed switches it off.
    void setCompressOutgoing(bool a_bOn) { m_bCompressOutgoing = a_bOn; }

    /// From 0, none, to 9, best; -1, the default, is zlib's own choice.
    void setCompressionLevel(int a_iLevel) { m_iCompressionLevel = a_iLevel; }
    [[nodiscard]] int compressionLevel() const { return m_iCompressionLevel; }

    /// What is held of a document or frame whose end has not come (bytes).
    [[nodiscard]] qint64 unfinishedBytes() const { return m_splitter.bytes() + m_buffer.size(); }

    // The meta-object carries these names, misspelt or not.
    // NOLINTBEGIN(readability-identifier-naming)
Q_SIGNALS:
    /// One whole document, without the blanks before it. Delivered from the
    /// event loop.
    void xmlReceived(const QByteArray& Xml);

    /// The stream cannot be read on: the reader's own words, or the limit that
    /// the peer went beyond. Reading is paused and, until reset(), meets the
    /// same error again whenever it is resumed. Up to 64 KiB that come meanwhile
    /// stay in the device for reset(); a socket that is sent more loses them.
    void errorOccured(const QString& sErrorString);

    /// Internal: a document on its way to xmlReceived().
    void queued_xmlReceived(const QByteArray& Xml);

public Q_SLOTS:
    /// Writes one document. False when the framing is not decided yet, when the
    /// device cannot be written to or takes a part only, and, with nothing
    /// written, when more than Limits::PendingBytes would then wait.
    bool sendXml(const QByteArray& Xml);

    /// resume() or pause().
    void setEnabled(bool bEnabled);
    void setDisabled(bool bDisabled);
    // NOLINTEND(readability-identifier-naming)

    /// Reads no more: what comes stays in the device. Documents that were read
    /// already are still delivered.
    void pause();

    /// Reads on, at once with what has come meanwhile.
    void resume();

    /// Forgets what was read, an error, too, and reads on with what comes next.
    /// The framing and the compression stay.
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
    Simulation::ReceiveBuffer m_buffer; ///< what is not split yet
    int m_iCompressionLevel = -1;
    bool m_bCompressOutgoing = false;
    bool m_bUncompressIncoming = true;
    QBasicTimer m_readTimer;   ///< a read that waits for the event loop
    bool m_bReporting = false; ///< receivers are hearing of the error
    QString m_sError;          ///< empty while there is none
};

#endif
