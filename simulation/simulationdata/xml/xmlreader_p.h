#ifndef SIMULATIONDATA_XMLREADER_P_H
#define SIMULATIONDATA_XMLREADER_P_H

#include "xmldeviations_p.h"
#include "xmlencoding_p.h"

#include <QByteArrayView>
#include <QLatin1String>
#include <QString>

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace Simulation {

/// Text of a document as UTF-8: an attribute's value or the text of an element, with
/// its references replaced. Valid until the reader moves.
struct XmlText
{
    QByteArrayView bytes;
    qsizetype offset = -1; ///< where it begins in the document (bytes); -1: not known

    [[nodiscard]] QString string() const { return utf8String(bytes); }
};

/// Whether a name of a document is that name of a format.
[[nodiscard]] inline bool isName(QByteArrayView a_name, QLatin1String a_sExpected)
{
    return a_name == QByteArrayView(a_sExpected.data(), a_sExpected.size());
}

struct XmlAttribute
{
    QByteArrayView name;
    XmlText value; ///< its offset is that of the attribute's name
};

/// The numbers that make sense as a value, and their unit.
struct XmlRange
{
    double minimum = -std::numeric_limits<double>::infinity();
    double maximum = std::numeric_limits<double>::infinity();
    bool isMinimumExcluded = false;
    const char* unit = ""; ///< as shown in a sentence: "Hz"

    [[nodiscard]] constexpr bool contains(double a_dValue) const
    {
        return a_dValue <= maximum && (isMinimumExcluded ? a_dValue > minimum : a_dValue >= minimum);
    }
};

inline constexpr XmlRange s_anyNumber;

/// Walks through the elements of a document: one interface for every source of XML.
///
/// nextChild() moves to the next child of the current element. Read each child to its end
/// with nextChild(), text() or skip() before you ask for the next one. Deviations from the
/// format are added to the deviations object, unless it is null. After an error all open
/// elements end.
class XmlReader
{
public:
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;
    virtual ~XmlReader() = default;

    /// Moves to the start of the next child element. False at the end of the current
    /// element, which is then read. Text between the children is reported.
    [[nodiscard]] virtual bool nextChild() = 0;

    /// The text of the current element, which is then read. Child elements are skipped
    /// and reported, so that an unexpected one does not make the rest of the document
    /// unreadable. No value when the document breaks off inside: half of a number is a
    /// different number.
    [[nodiscard]] virtual std::optional<XmlText> text() = 0;

    /// Skips the rest of the current element. Neither its content nor its unread
    /// attributes are reported.
    void skip();

    /// Ends the reading: the document breaks off here for that reason.
    virtual void raiseError(const QString& a_sReason) = 0;
    [[nodiscard]] virtual bool hasError() const = 0;

    /// The name, attributes and place of the element that was started last.
    [[nodiscard]] QByteArrayView name() const { return m_name; }
    [[nodiscard]] qsizetype offset() const { return m_iOffset; }
    /// Attributes that the caller does not look at are reported when the reader moves.
    [[nodiscard]] const std::vector<XmlAttribute>& attributes()
    {
        m_bAttributesLeft = false;
        return m_attributes;
    }
    /// The value of an attribute of that element; null when there is none.
    [[nodiscard]] const XmlText* attribute(QLatin1String a_sName);

    /// Null: nothing is reported.
    [[nodiscard]] XmlDeviations* deviations() const { return m_pDeviations; }

    /// Whether missing elements and attributes are reported; by default they are.
    /// Documents of older versions lack what newer versions added.
    [[nodiscard]] bool isCompletenessExpected() const { return m_bComplete && m_pDeviations != nullptr; }
    void setCompletenessExpected(bool a_bExpected) { m_bComplete = a_bExpected; }

    // Values. A text that does not convert gives 0 or false and is reported, and so is a
    // number outside its range, which is returned as it is.
    [[nodiscard]] double number(const XmlText& a_text, const XmlRange& a_range = s_anyNumber);
    [[nodiscard]] float singleNumber(const XmlText& a_text, const XmlRange& a_range = s_anyNumber);
    [[nodiscard]] std::uint32_t unsignedNumber(const XmlText& a_text, const XmlRange& a_range = s_anyNumber);
    [[nodiscard]] std::int64_t integer(const XmlText& a_text, const XmlRange& a_range = s_anyNumber);
    /// True when the text contains "true" in any letter case.
    [[nodiscard]] bool boolean(const XmlText& a_text);

    /// Reports a text that is none of the values of an enumeration. `a_szMade` ends the
    /// sentence: "\"STOP\" is used".
    void reportUnknownValue(const XmlText& a_text, std::span<const QLatin1String> a_values,
                            const char* a_szMade);

protected:
    explicit XmlReader(XmlDeviations* a_pDeviations)
        : m_pDeviations(a_pDeviations)
    {}

    /// Implementations call these after they have read a start tag, and before they
    /// read on.
    void tagRead() { m_bAttributesLeft = m_pDeviations != nullptr && !m_attributes.empty(); }
    void leaveTag()
    {
        if (m_bAttributesLeft) {
            reportAttributes();
        }
    }

    void reportText(QByteArrayView a_text, qsizetype a_iOffset);
    void reportChildOfText();

    QByteArrayView m_name;
    std::vector<XmlAttribute> m_attributes;
    qsizetype m_iOffset = 0; ///< of the start tag; -1: not known

private:
    void reportAttributes();
    void reportNumber(const XmlText& a_text, const XmlRange& a_range, const char* a_szKind);
    void reportRange(const XmlText& a_text, const XmlRange& a_range);

    XmlDeviations* m_pDeviations;
    bool m_bAttributesLeft = false; ///< nobody has looked at the attributes
    bool m_bComplete = true;        ///< missing parts are reported
};

} // namespace Simulation

#endif
