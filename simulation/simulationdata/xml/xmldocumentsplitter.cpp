#include "xmldocumentsplitter_p.h"

#include "xmlencoding_p.h"
#include "xmlvalidator_p.h"

#include <QStringConverter>

#include <algorithm>
#include <iterator>
#include <utility>

namespace Simulation {

namespace {

/// The size of a piece for the reader (bytes). The reader first decodes the whole
/// piece. Decoding is fastest while the result fits the processor's cache.
constexpr std::int64_t s_iPieceBytes = 16'384;

/// The reader returns no token before it has received this number of bytes.
constexpr qsizetype s_iReaderBytes = 4;

/// Whether the text is in an encoding with characters wider than one byte. Such a text
/// begins with a byte-order mark, or its first character contains a zero byte.
bool isWide(QByteArrayView a_start)
{
    constexpr QByteArrayView marks("\xFE\xFF");
    return (!a_start.isEmpty() && (a_start[0] == 0 || marks.contains(a_start[0]))) ||
           (a_start.size() > 1 && a_start[1] == 0);
}

/// The number of bytes at the end that cannot be interpreted without the next byte.
/// These bytes are the start of a UTF-8 character, or brackets that may belong to "]]>".
/// The reader recognises "]]>" only as a whole.
qsizetype unfinishedBytes(QByteArrayView a_bytes)
{
    // Lead bytes from leads[i] on belong to characters that are longer than i bytes.
    constexpr unsigned char leads[] = {0x80, 0xC0, 0xE0, 0xF0};
    if (a_bytes.endsWith(']')) {
        return a_bytes.endsWith("]]") ? 2 : 1;
    }
    for (qsizetype i = 1; i < std::ssize(leads) && i <= a_bytes.size(); ++i) {
        const auto ucByte = static_cast<unsigned char>(a_bytes[a_bytes.size() - i]);
        if (ucByte >= leads[i]) {
            return i;
        }
        if (ucByte < leads[0] || ucByte >= leads[1]) {
            return 0;
        }
    }
    return 0;
}

/// The bytes before the first one that is not valid UTF-8.
QByteArrayView utf8Part(QByteArrayView a_bytes)
{
    if (a_bytes.isValidUtf8()) {
        return a_bytes;
    }
    qsizetype i = 0;
    for (int iLength = 1; iLength > 0; i += iLength) {
        iLength = firstUtf8Character(a_bytes.sliced(i)).length;
    }
    return a_bytes.first(i);
}

/// Whether the bytes are well formed at any place where an element may have text,
/// except inside a reference.
bool isPlainText(QByteArrayView a_bytes)
{
    return !a_bytes.contains('<') && !a_bytes.contains('&') && !a_bytes.contains(']') &&
           xmlAsciiBytes(a_bytes) == a_bytes.size();
}

} // namespace

std::optional<QByteArray> XmlDocumentSplitter::takeDocument()
{
    if (const qsizetype iPlain = plainDocumentBytes(); iPlain > 0) {
        m_bPlain = true;
        return m_buffer.take(iPlain);
    }
    m_bPlain = false;
    while (m_sError.isEmpty() && scan()) {
        const qsizetype iParsable = m_scanner.parsableBytes() - m_document.size();
        if (iParsable > 0 && !parse(iParsable)) {
            break;
        }
        if (m_scanner.hasError()) {
            fail(m_scanner.error().reason);
        } else if (m_scanner.isDocumentComplete()) {
            QByteArray document = std::exchange(m_document, {});
            startDocument();
            return document;
        }
    }
    return std::nullopt;
}

/// The size (bytes) of the next document when it is short, plain and complete, else 0.
/// The scanner and the reader also accept a plain document, but take several times as
/// long.
qsizetype XmlDocumentSplitter::plainDocumentBytes()
{
    if (!m_sError.isEmpty() || m_scanner.bytes() > 0) { // the scanner has begun with the document
        return 0;
    }
    skipBlanks();
    const std::uint64_t uiMost =
        std::min(Limits::value(Limits::DocumentBytes), static_cast<std::uint64_t>(s_iPieceBytes));
    const QByteArrayView bytes = m_buffer.bytes();
    return XmlValidator(bytes.first(std::min(bytes.size(), static_cast<qsizetype>(uiMost))))
        .plainDocumentBytes();
}

/// False when there are no bytes to scan, or after an error.
bool XmlDocumentSplitter::scan()
{
    if (m_document.isEmpty()) {
        skipBlanks();
    }
    const QByteArrayView rest = m_buffer.bytes().sliced(m_scanner.bytes() - m_document.size());
    if (rest.isEmpty()) {
        return false;
    }
    const auto uiMost = static_cast<std::uint64_t>(s_iPieceBytes);
    const auto uiScanned = static_cast<std::uint64_t>(m_scanner.bytes());
    const std::uint64_t uiLimit = Limits::value(Limits::DocumentBytes);
    if (uiScanned >= uiLimit) {
        return fail(Limits::exceeded(Limits::DocumentBytes));
    }
    const auto iAllowed = static_cast<qsizetype>(std::min(uiLimit - uiScanned, uiMost));
    const QByteArrayView piece = rest.first(std::min(rest.size(), iAllowed));
    // Plain text bypasses the reader. The reader would keep a long text as a whole, in
    // twice the memory.
    const bool bSkip = m_scanner.isInContent() && m_scanner.bytes() == m_document.size() &&
                       m_document.size() >= s_iReaderBytes && !m_bInReference && isPlainText(piece);
    m_scanner.feedDocument(piece);
    if (bSkip) {
        m_document.append(m_buffer.take(piece.size()));
    }
    return true;
}

void XmlDocumentSplitter::skipBlanks()
{
    constexpr QByteArrayView blanks(" \n\r\t");
    const QByteArrayView bytes = m_buffer.bytes();
    const auto it =
        std::find_if_not(bytes.begin(), bytes.end(), [&](char a_cByte) { return blanks.contains(a_cByte); });
    m_buffer.skip(it - bytes.begin());
}

bool XmlDocumentSplitter::parse(qsizetype a_iBytes)
{
    const QByteArray piece = m_buffer.take(a_iBytes - unfinishedBytes(m_buffer.bytes().first(a_iBytes)));
    m_document.append(piece);
    const qsizetype iReference = piece.lastIndexOf('&');
    const qsizetype iReferenceEnd = piece.lastIndexOf(';');
    if (iReference != iReferenceEnd) { // correct in text, and the flag is used only there
        m_bInReference = iReference > iReferenceEnd;
    }
    if (isWide(m_document)) {
        return fail(QStringLiteral("The document is not in UTF-8 or a single-byte encoding."));
    }
    // The reader decodes a whole piece before it reads the first byte. After bytes that
    // cannot be decoded, the reader waits for more bytes without limit.
    const qsizetype iDecodable = m_bLatin1 ? piece.size() : utf8Part(piece).size();
    QString sError = readerError(piece.left(iDecodable));
    if (sError.isEmpty() && m_bLatin1 && iDecodable < piece.size()) {
        sError = readerError(piece.sliced(iDecodable));
    } else if (sError.isEmpty() &&
               (iDecodable < piece.size() || m_reader->isEndDocument() != m_scanner.isDocumentComplete())) {
        sError = QStringLiteral("Encountered incorrectly encoded content.");
    }
    return sError.isEmpty() || fail(sError);
}

QString XmlDocumentSplitter::readerError(QByteArray a_piece)
{
    // The reader may mistake a zero byte for the end of the received bytes. The byte is
    // replaced by another forbidden character, which the reader refuses everywhere.
    m_reader->addData(a_piece.replace('\0', '\x01'));
    do { // once at least: an earlier lack of bytes is still set as an error
        m_reader->readNext();
        if (m_reader->isStartDocument() && !adoptEncoding(m_reader->documentEncoding())) {
            return QStringLiteral("Encoding %1 is unsupported in a stream of documents.")
                .arg(m_reader->documentEncoding());
        }
    } while (!m_reader->hasError() && !m_reader->isEndDocument());
    const bool bWaits = m_reader->error() == QXmlStreamReader::PrematureEndOfDocumentError;
    return m_reader->hasError() && !bWaits ? m_reader->errorString() : QString();
}

/// Stores the declared encoding. False when the scanner cannot read it. The scanner
/// needs an encoding in which the bytes of ASCII mean ASCII characters and all other
/// bytes mean other characters.
bool XmlDocumentSplitter::adoptEncoding(QStringView a_sDeclared)
{
    const QByteArray name = a_sDeclared.toLatin1();
    const auto eEncoding = QStringConverter::encodingForName(name.constData());
    m_bDeclared = !name.isEmpty();
    m_bLatin1 = eEncoding == QStringConverter::Latin1;
    return !m_bDeclared || m_bLatin1 || eEncoding == QStringConverter::Utf8 ||
           name.compare("US-ASCII", Qt::CaseInsensitive) == 0;
}

void XmlDocumentSplitter::startDocument()
{
    // A cleared reader would remember the encoding and keep the memory of the text.
    if (m_reader == nullptr || m_bDeclared || m_scanner.bytes() > s_iPieceBytes) {
        m_reader = std::make_unique<QXmlStreamReader>();
    } else {
        m_reader->clear();
    }
    m_scanner.reset();
    m_bDeclared = false;
    m_bLatin1 = false;
    m_bInReference = false;
    // Names in our documents have no prefixes. Resolving a prefix takes time in
    // proportion to the number of namespace declarations. A hostile peer could send many
    // of them.
    m_reader->setNamespaceProcessing(false);
}

/// Sets the error; always false. The received bytes are dropped, so that a peer cannot
/// fill the memory with them.
bool XmlDocumentSplitter::fail(QString a_sError)
{
    clear();
    m_sError = std::move(a_sError);
    return false;
}

} // namespace Simulation
