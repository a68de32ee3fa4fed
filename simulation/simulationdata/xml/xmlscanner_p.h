#ifndef SIMULATIONDATA_XMLSCANNER_P_H
#define SIMULATIONDATA_XMLSCANNER_P_H

#include "simulationdata/simulationlimits.h"
#include "xmlencoding_p.h"

#include <QByteArrayView>
#include <QString>

#include <cstdint>

namespace Simulation {

/// Finds the end of a declaration such as "<!DOCTYPE ... [ ... ]>", whose first
/// bytes up to and including "<!" are already consumed. A '>' inside quotes,
/// comments, processing instructions or brackets does not end the declaration.
class XmlDeclarationEnd
{
public:
    /// `a_bInBrackets` is whether a '[' after "<!" was consumed as well.
    explicit XmlDeclarationEnd(bool a_bInBrackets = false)
        : m_uiBrackets(a_bInBrackets ? 1 : 0)
    {}

    /// True when the byte is the closing '>'.
    bool consume(char a_cByte);

    /// Number of entities that the declaration has defined so far.
    [[nodiscard]] std::uint64_t entities() const { return m_uiEntities; }

private:
    enum class Inside : std::uint8_t { Markup, Quote, Comment, Instruction };

    bool consumeMarkup(char a_cByte);

    Inside m_eInside = Inside::Markup;
    char m_cQuote = 0;
    std::uint32_t m_uiRecent = 0; ///< the last four bytes, the latest in the lowest bits
    std::uint64_t m_uiBrackets = 0;
    std::uint64_t m_uiEntities = 0;
};

/// Finds where an XML text exceeds a limit, before a parser reads that place. The limits
/// are nesting depth, attributes of one element, and bytes and entities of a document
/// type. In a stream of documents the scanner also finds where a document ends. The
/// bytes of several document types are added up, because a lenient parser also accepts
/// document types inside elements and keeps the rules of all of them.
///
/// The text is fed in pieces of any size, as UTF-8 or any encoding that contains ASCII.
/// Time is linear in the bytes and memory is constant. The scanner does not check
/// whether the text is well formed: a parser stops at the first error, and up to there
/// scanner and parser find the same tags. Limits are read at each feed. One object may
/// be used by one thread at a time.
class XmlScanner
{
public:
    /// The first place where a limit is exceeded.
    struct Error
    {
        qint64 offset = 0; ///< of the construct's '<', in bytes from the start
        qint64 line = 1;   ///< of that '<', from 1
        qint64 column = 1; ///< of that '<', from 1, in characters
        Limits::Limit limit = Limits::NestingDepth;
        QString reason; ///< for example "nesting depth limit of 256 exceeded"
    };

    /// `a_eElements` limits the number of elements; by default they are not
    /// limited.
    explicit XmlScanner(Limits::Limit a_eElements = Limits::LimitCount)
        : m_eElements(a_eElements)
    {}

    /// Scans the next bytes. After a limit is exceeded, further bytes are ignored.
    void feed(QByteArrayView a_bytes) { scanChunk(a_bytes, false); }

    /// Like feed(), but stops at the end of the document. Lines and columns are not
    /// calculated, so error() contains none.
    void feedDocument(QByteArrayView a_bytes) { scanChunk(a_bytes, true); }

    /// Whether the last tag closed the outermost element, or an element that was
    /// not open.
    [[nodiscard]] bool isDocumentComplete() const { return m_bComplete; }

    /// Whether the next byte belongs to the text of an element, unless it opens a
    /// tag.
    [[nodiscard]] bool isInContent() const { return m_eState == State::Text && m_uiDepth > 0; }

    /// The number of bytes scanned so far. After an exceeded limit, only the bytes of
    /// the earlier pieces count.
    [[nodiscard]] qint64 bytes() const { return m_iChunk; }

    /// The number of scanned bytes that can be passed to a parser. The byte that
    /// exceeds a limit is excluded. So is an unfinished comment, CDATA section or
    /// processing instruction, which a stream reader would scan again with every
    /// further byte.
    [[nodiscard]] qint64 parsableBytes() const;

    [[nodiscard]] bool hasError() const { return m_bError; }

    /// The place of the exceeded limit; a default object when there is none.
    [[nodiscard]] const Error& error() const { return m_error; }

    /// Prepares for another text.
    void reset() { *this = XmlScanner(m_eElements); }

private:
    enum class State : std::uint8_t {
        Text,
        Open,        ///< after '<'
        StartTag,    ///< in a start tag, outside its attribute values
        Value,       ///< in a quoted attribute value
        EndTag,      ///< after "</"
        Instruction, ///< after "<?"
        Markup,      ///< after "<!"
        Comment,     ///< after "<!--"
        CData,       ///< after "<![CDATA["
        Declaration, ///< after "<!", in neither a comment nor a CDATA section
    };

    void scanChunk(QByteArrayView a_bytes, bool a_bOneDocument);
    void readLimits();
    const char* scan(const char* a_pFrom, const char* a_pEnd);
    const char* scanText(const char* a_pFrom, const char* a_pEnd);
    const char* scanOpen(const char* a_pFrom);
    const char* scanStartTag(const char* a_pFrom, const char* a_pEnd);
    const char* scanValue(const char* a_pFrom, const char* a_pEnd);
    const char* scanEndTag(const char* a_pFrom, const char* a_pEnd);
    const char* scanMarkup(const char* a_pFrom);
    const char* scanUntilMarks(const char* a_pFrom, const char* a_pEnd, char a_cMark, int a_iCount);
    const char* scanDeclaration(const char* a_pFrom, const char* a_pEnd);
    void enter(State a_eState);
    void closeTag();
    void offend(Limits::Limit a_eLimit);
    void offendAt(const char* a_pByte, Limits::Limit a_eLimit);
    [[nodiscard]] XmlPosition openPosition() const;

    Limits::Limit m_eElements;
    State m_eState = State::Text;
    char m_cQuote = 0; ///< the quote that ends the value
    char m_cLast = 0;  ///< the last byte of a start tag so far
    bool m_bError = false;
    bool m_bComplete = false;           ///< the last tag left no element open
    int m_iRun = 0;                     ///< end marks just before the next byte, at most 2
    int m_iMatched = 0;                 ///< bytes of m_szExpected that were found
    const char* m_szExpected = nullptr; ///< rest of "<!--" or "<![CDATA["
    XmlDeclarationEnd m_declarationEnd;
    std::uint64_t m_uiDepth = 0;
    std::uint64_t m_uiElements = 0;
    std::uint64_t m_uiAttributes = 0;
    std::uint64_t m_uiDoctypeBytes = 0; ///< of the declarations that have ended
    std::uint64_t m_uiMaxDepth = 0;
    std::uint64_t m_uiMaxElements = 0;
    std::uint64_t m_uiMaxAttributes = 0;
    std::uint64_t m_uiMaxDoctype = 0;
    std::uint64_t m_uiMaxEntities = 0;
    qint64 m_iOpen = 0;          ///< offset of the '<' of the latest construct
    qint64 m_iExceeding = 0;     ///< offset of the byte that exceeds a limit
    qint64 m_iChunk = 0;         ///< offset of the chunk
    QByteArrayView m_chunk;      ///< the chunk being scanned
    XmlPosition m_chunkPosition; ///< of the chunk's first byte
    XmlPosition m_openPosition;  ///< of a '<' in an earlier chunk
    Error m_error;
};

} // namespace Simulation

#endif
