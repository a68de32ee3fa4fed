#ifndef SIMULATIONDATA_XMLWALK_P_H
#define SIMULATIONDATA_XMLWALK_P_H

#include "xmlreader_p.h"
#include "xmlwriter_p.h"

#include <QLatin1String>

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace Simulation {

/// How often an element occurs in its parent, or an attribute in its element.
enum class XmlOccurs : unsigned char {
    Once,        ///< its absence is reported
    AtMost1,     ///< its absence means the default
    AnyTimes,    ///< each occurrence counts
    Several,     ///< each occurrence counts, and its absence is reported
    OneOf,       ///< exactly one of all elements that are marked so
    AtMostOneOf, ///< at most one of all elements that are marked so
    First,       ///< the first one counts, and its absence is reported
    FirstIfAny,  ///< the first one counts
};

/// One child element of a format: its name and the function that reads it up to its end.
template<typename Target>
struct XmlChild
{
    QLatin1String name;
    void (*read)(XmlReader& a_reader, Target& a_target);
    XmlOccurs occurs = XmlOccurs::AtMost1;
};

/// One attribute of a format: its name and the function that takes its value.
template<typename Target>
struct XmlAttributeField
{
    QLatin1String name;
    void (*read)(XmlReader& a_reader, const XmlText& a_value, Target& a_target);
    XmlOccurs occurs = XmlOccurs::AtMost1;
};

/// One value of a record, stored as a child element with text. An array of these
/// defines the record's format for both reading and writing.
template<typename Record>
struct XmlField
{
    QLatin1String name;
    void (*write)(XmlWriter& a_writer, const Record& a_record);
    void (*read)(XmlReader& a_reader, const XmlText& a_text, Record& a_record);
};

/// Reports that the element started last repeats an earlier one, or the meaning of one.
void reportDuplicateElement(XmlReader& a_reader, bool a_bFirstCounts);

/// How often an entry of a table occurs; each field of a record occurs once.
template<typename Entry>
[[nodiscard]] constexpr XmlOccurs occursOf(const Entry& a_entry)
{
    if constexpr (requires { a_entry.occurs; }) {
        return a_entry.occurs;
    } else {
        return XmlOccurs::Once;
    }
}

/// A field that the record offers with a getter and a setter: a text, a real number or an
/// unsigned number. The range holds for numbers.
template<typename Record, auto Get, auto Set, const XmlRange& Range = s_anyNumber>
[[nodiscard]] constexpr XmlField<Record> xmlField(const char* a_szName)
{
    using Value = std::remove_cvref_t<decltype((std::declval<const Record&>().*Get)())>;
    return {QLatin1String(a_szName),
            [](XmlWriter& a_writer, const Record& a_record) {
                if constexpr (std::is_floating_point_v<Value>) {
                    a_writer.number(static_cast<double>((a_record.*Get)()));
                } else if constexpr (std::is_integral_v<Value>) {
                    a_writer.whole((a_record.*Get)());
                } else {
                    a_writer.text((a_record.*Get)());
                }
            },
            [](XmlReader& a_reader, const XmlText& a_text, Record& a_record) {
                if constexpr (std::is_same_v<Value, float>) {
                    (a_record.*Set)(a_reader.singleNumber(a_text, Range));
                } else if constexpr (std::is_same_v<Value, double>) {
                    (a_record.*Set)(a_reader.number(a_text, Range));
                } else if constexpr (std::is_integral_v<Value>) {
                    (a_record.*Set)(a_reader.unsignedNumber(a_text, Range));
                } else {
                    (a_record.*Set)(a_text.string());
                }
            }};
}

/// The entries of a table are counted in the bits of a 32-bit number.
constexpr std::size_t s_uiMostEntries = 32;

/// The index of an entry of a table; its size when there is none of that name.
template<typename Entry>
[[nodiscard]] std::size_t indexOf(QByteArrayView a_name, std::span<const Entry> a_entries)
{
    std::size_t i = 0;
    while (i < a_entries.size() && !isName(a_name, a_entries[i].name)) {
        ++i;
    }
    return i;
}

/// The bits of the entries that occur in one of the given ways.
template<typename Entry, typename... Occurs>
[[nodiscard]] constexpr std::uint32_t bitsOf(std::span<const Entry> a_entries, Occurs... a_occurs)
{
    std::uint32_t uiBits = 0;
    for (std::size_t i = 0; i < a_entries.size(); ++i) {
        uiBits |= ((occursOf(a_entries[i]) == a_occurs) || ...) ? 1U << i : 0U;
    }
    return uiBits;
}

/// The names of a table. An object is made only when something is reported.
class XmlNames
{
public:
    template<typename Table>
    explicit XmlNames(const Table& a_table)
    {
        for (const auto& entry : a_table) {
            m_names.push_back(entry.name);
            m_occurs.push_back(occursOf(entry));
        }
    }

    void reportUnknownElement(XmlReader& a_reader) const;
    void reportUnknownAttribute(XmlReader& a_reader, const XmlAttribute& a_attribute) const;
    /// Reports the entries whose bit is not set in `a_uiSeen` and that have to occur.
    void reportMissingElements(XmlReader& a_reader, qsizetype a_iOffset, std::uint32_t a_uiSeen) const;
    void reportMissingAttributes(XmlReader& a_reader, std::uint32_t a_uiSeen) const;

private:
    std::vector<QLatin1String> m_names;
    std::vector<XmlOccurs> m_occurs;
};

/// Reads the attributes of the element that was started last, in the order of the
/// document. Unknown and missing ones are reported.
template<typename Target, std::size_t Count>
void readXmlAttributes(XmlReader& a_reader, Target& a_target,
                       const XmlAttributeField<Target> (&a_fields)[Count])
{
    static_assert(Count <= s_uiMostEntries);
    const std::span<const XmlAttributeField<Target>> fields(a_fields);
    std::uint32_t uiSeen = 0;
    for (const XmlAttribute& attribute : a_reader.attributes()) {
        const std::size_t i = indexOf(attribute.name, fields);
        if (i < Count) {
            uiSeen |= 1U << i;
            fields[i].read(a_reader, attribute.value, a_target);
        } else if (a_reader.deviations() != nullptr) {
            XmlNames(fields).reportUnknownAttribute(a_reader, attribute);
        }
    }
    if ((~uiSeen & bitsOf(fields, XmlOccurs::Once)) != 0 && a_reader.isCompletenessExpected()) {
        XmlNames(fields).reportMissingAttributes(a_reader, uiSeen);
    }
}

/// Reads the child elements of the current element up to its end, by an array of
/// XmlChild or XmlField. Unknown elements are skipped with their content. Unknown,
/// missing and doubled ones are reported. A field whose element breaks off stays
/// unchanged.
template<typename Target, typename Entry>
void readXmlChildren(XmlReader& a_reader, Target& a_target, std::span<const Entry> a_children)
{
    const qsizetype iOffset = a_reader.offset();
    const std::uint32_t uiChoice = bitsOf(a_children, XmlOccurs::OneOf, XmlOccurs::AtMostOneOf);
    const std::uint32_t uiSingle = ~bitsOf(a_children, XmlOccurs::AnyTimes, XmlOccurs::Several);
    const std::uint32_t uiFirst = bitsOf(a_children, XmlOccurs::First, XmlOccurs::FirstIfAny);
    std::uint32_t uiSeen = 0;
    while (a_reader.nextChild()) {
        const std::size_t i = indexOf(a_reader.name(), a_children);
        if (i == a_children.size()) {
            if (a_reader.deviations() != nullptr) {
                XmlNames(a_children).reportUnknownElement(a_reader);
            }
            a_reader.skip();
            continue;
        }
        const std::uint32_t uiBit = 1U << i;
        if ((uiSeen & uiSingle & ((uiChoice & uiBit) != 0 ? uiChoice : uiBit)) != 0) {
            reportDuplicateElement(a_reader, (uiFirst & uiBit) != 0);
            if ((uiFirst & uiBit) != 0) {
                a_reader.skip();
                continue;
            }
        }
        uiSeen |= uiBit;
        if constexpr (std::is_same_v<Entry, XmlField<Target>>) {
            if (const auto text = a_reader.text()) {
                a_children[i].read(a_reader, *text, a_target);
            }
        } else {
            a_children[i].read(a_reader, a_target);
        }
    }
    const bool bMissing =
        (~uiSeen & bitsOf(a_children, XmlOccurs::Once, XmlOccurs::Several, XmlOccurs::First)) != 0 ||
        (bitsOf(a_children, XmlOccurs::OneOf) != 0 && (uiSeen & uiChoice) == 0);
    if (bMissing && a_reader.isCompletenessExpected() && !a_reader.hasError()) {
        XmlNames(a_children).reportMissingElements(a_reader, iOffset, uiSeen);
    }
}

template<typename Target, typename Entry, std::size_t Count>
void readXmlChildren(XmlReader& a_reader, Target& a_target, const Entry (&a_children)[Count])
{
    static_assert(Count <= s_uiMostEntries);
    readXmlChildren(a_reader, a_target, std::span<const Entry>(a_children));
}

/// Reads an element that has only attributes up to its end. What it contains is
/// reported.
void readXmlEnd(XmlReader& a_reader);

/// Writes all fields in the order of the array.
template<typename Record, std::size_t Count>
void writeXmlFields(XmlWriter& a_writer, const Record& a_record, const XmlField<Record> (&a_fields)[Count])
{
    for (const XmlField<Record>& field : a_fields) {
        a_writer.startElement(field.name);
        field.write(a_writer, a_record);
        a_writer.endElement();
    }
}

} // namespace Simulation

#endif
