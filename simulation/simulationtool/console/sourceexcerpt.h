#ifndef SIMULATIONTOOL_SOURCEEXCERPT_H
#define SIMULATIONTOOL_SOURCEEXCERPT_H

#include <QByteArray>
#include <QString>

#include <optional>

namespace SimulationTool {

/// A line of a document for people, and a caret below the place that is meant.
struct Excerpt
{
    QString line; ///< the part around the place; safe for a terminal
    QString caret;
};

/// The text of an XML document as UTF-8, without a byte-order mark. The encoding is that of
/// the mark, else the declared one; bytes of an unknown encoding stay as they are.
[[nodiscard]] QByteArray utf8Document(const QByteArray& a_document);

/// Shows places of a document. Ascending places are found in one walk through the
/// document.
class SourceExcerpts
{
public:
    /// The document in its own encoding.
    explicit SourceExcerpts(const QByteArray& a_document);

    /// The excerpt at a line and a column, both counted from 1, the column in characters.
    /// No value when the document has no such line. A column beyond the end of the line
    /// gives the end. Bytes that are not UTF-8 are spelled out: "\x{e4}".
    [[nodiscard]] std::optional<Excerpt> at(qint64 a_iLine, qint64 a_iColumn);

private:
    [[nodiscard]] bool moveTo(qint64 a_iLine, qint64 a_iColumn);

    QByteArray m_text; ///< UTF-8, where the document's encoding is known
    qsizetype m_iOffset = 0;
    qint64 m_iLine = 1; ///< of m_iOffset
    qint64 m_iColumn = 1;
};

} // namespace SimulationTool

#endif
