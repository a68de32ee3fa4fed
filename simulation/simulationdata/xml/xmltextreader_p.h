#ifndef SIMULATIONDATA_XMLTEXTREADER_P_H
#define SIMULATIONDATA_XMLTEXTREADER_P_H

#include "xmlencoding_p.h"
#include "xmlreader_p.h"

#include <QByteArray>
#include <QByteArrayView>

#include <deque>

namespace Simulation {

/// Where a text is written, which decides how it is converted.
enum class XmlTextPlace : unsigned char {
    Value,   ///< an attribute's value
    Content, ///< the text of an element
    Section, ///< a CDATA section
};

/// Reads a UTF-8 text that XmlValidator has found valid, without document type. The
/// text is read where it is: a value is copied only when it contains a reference or a
/// line end that has to be replaced. Of a text that is not valid the result is arbitrary,
/// but no byte outside the text is read. Time is linear in the bytes. Memory is that of the
/// values of one element that had to be copied.
class XmlTextReader : public XmlReader
{
public:
    /// The bytes must outlive the reader. It is then before the root element, which
    /// nextChild() starts. `a_iFrom` is a place before the root and after a document type.
    explicit XmlTextReader(QByteArrayView a_text, XmlDeviations* a_pDeviations = nullptr,
                           qsizetype a_iFrom = 0);

    [[nodiscard]] bool nextChild() override;
    [[nodiscard]] std::optional<XmlText> text() override;
    void raiseError(const QString& a_sReason) override;
    [[nodiscard]] bool hasError() const override { return !m_sError.isEmpty(); }

    /// "line 3, column 7: reason" of the error raised; empty without an error.
    [[nodiscard]] const QString& errorString() const { return m_sError; }

    /// The bytes read so far; after an error, those before it.
    [[nodiscard]] qsizetype position() const { return (hasError() ? m_pError : m_pNext) - m_pStart; }

private:
    void startElement();
    void readAttribute();
    QByteArrayView value(const char* a_pFrom, const char* a_pTo, XmlTextPlace a_ePlace);
    std::optional<XmlText> mixedText(const char* a_pFrom);
    void skipTag();
    bool skipMarkup();
    QByteArrayView section() const;
    void skipPast(QByteArrayView a_end);
    [[nodiscard]] const char* find(char a_cByte, const char* a_pFrom) const;

    const char* m_pStart;
    const char* m_pNext;
    const char* m_pEnd;
    bool m_bEmptyElement = false;    ///< the current element was "<name/>"
    std::deque<QByteArray> m_copies; ///< values of the current element that had to be changed
    const char* m_pError = nullptr;
    QString m_sError;
};

/// The place after the bytes, as a stream reader counts: the line from 1, and the column
/// from 0 in UTF-16 units.
[[nodiscard]] XmlPosition streamPosition(QByteArrayView a_text);

} // namespace Simulation

#endif
