#include "readingreport.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Simulation {

namespace {

constexpr std::array s_rules{
    CheckRule{
        ReadingReport::s_sUnknownElement, Severity::Error,
        QLatin1String("The format has no element of this name at this place."),
        QLatin1String(
            "The element and its content are skipped: correct the name, its letter case or the place.")},
    CheckRule{ReadingReport::s_sUnknownAttribute, Severity::Error,
              QLatin1String("The element has no attribute of this name."),
              QLatin1String("The value is ignored: correct the name or its letter case.")},
    CheckRule{ReadingReport::s_sUnexpectedText, Severity::Error,
              QLatin1String("Text stands where the format allows only elements."),
              QLatin1String("The text is ignored: put the value into the element that holds it.")},
    CheckRule{
        ReadingReport::s_sMissingId, Severity::Error, QLatin1String("An element has no \"ID\" attribute."),
        QLatin1String("Without an id the element is skipped with its content: give it an id of its own.")},
    CheckRule{
        ReadingReport::s_sMissingAttribute, Severity::Warning,
        QLatin1String("An attribute that every writer writes is missing."),
        QLatin1String(
            "A number is then 0, a text empty and a truth value false, which may not be what was meant: "
            "write the attribute.")},
    CheckRule{ReadingReport::s_sMissingElement, Severity::Warning,
              QLatin1String("An element that every writer writes is missing."),
              QLatin1String("The default is used, which may not be what was meant: write the element.")},
    CheckRule{ReadingReport::s_sNotANumber, Severity::Error,
              QLatin1String("A text is not a number, or the number does not fit its type."),
              QLatin1String("The value is read as 0: write digits with a decimal point, and no separators.")},
    CheckRule{ReadingReport::s_sUnitInNumber, Severity::Error,
              QLatin1String("A number is followed by a unit or another word."),
              QLatin1String("The value is read as 0: write the number alone, in the unit of the format.")},
    CheckRule{ReadingReport::s_sNotABoolean, Severity::Error,
              QLatin1String("A text is neither \"true\" nor \"false\"."),
              QLatin1String(
                  "A text that contains \"true\" is read as true and any other as false: write \"true\" or "
                  "\"false\".")},
    CheckRule{
        ReadingReport::s_sLetterCase, Severity::Note,
        QLatin1String("A value is written in another letter case than the format's."),
        QLatin1String(
            "It is understood here, but other programs may refuse it: write it in the letter case of the "
            "format.")},
    CheckRule{ReadingReport::s_sUnknownValue, Severity::Error,
              QLatin1String("A text is not one of the values that the format knows."),
              QLatin1String("The default is used: write one of the known values, in the same letter case.")},
    CheckRule{ReadingReport::s_sNotAColor, Severity::Error, QLatin1String("A text is not a colour."),
              QLatin1String("The colour stays as it was: write \"#RRGGBB\" or the name of a colour.")},
    CheckRule{ReadingReport::s_sOutOfRange, Severity::Warning,
              QLatin1String("A value is outside the range that is physically or formally possible."),
              QLatin1String("The value is taken as it is, and what plays the scenario decides: correct it.")},
    CheckRule{
        ReadingReport::s_sDuplicateId, Severity::Error, QLatin1String("Several elements have the same id."),
        QLatin1String(
            "Only one of them can be referred to, or they are merged into one: give each an id of its own.")},
    CheckRule{ReadingReport::s_sDuplicateElement, Severity::Error,
              QLatin1String("An element that may occur once occurs again."),
              QLatin1String("One of them is ignored or overwritten: remove one.")},
    CheckRule{ReadingReport::s_sUnknownReference, Severity::Error,
              QLatin1String("A reference names an id that nothing defines."),
              QLatin1String("The reference is dropped: correct the id, or define what it names.")},
    CheckRule{
        ReadingReport::s_sInventedObject, Severity::Error,
        QLatin1String("A reference names an object that the document does not describe."),
        QLatin1String(
            "An object without data is created for the id, at latitude 0 and longitude 0: correct the id, "
            "or describe the object.")},
    CheckRule{ReadingReport::s_sCircularReference, Severity::Error,
              QLatin1String("A group would contain itself, directly or through other groups."),
              QLatin1String("The reference that closes the circle is dropped: remove it.")},
    CheckRule{ReadingReport::s_sReplacedPackage, Severity::Error,
              QLatin1String("The signal package of an emission is not known."),
              QLatin1String(
                  "The default package, or none, is used instead: correct the id, or add the package to the "
                  "repository.")},
    CheckRule{ReadingReport::s_sDerivedValue, Severity::Error,
              QLatin1String("A value contradicts another one from which it is calculated, or is replaced."),
              QLatin1String("The calculated value is used, not the written one: correct one of the two.")},
    CheckRule{ReadingReport::s_sIgnoredValue, Severity::Error,
              QLatin1String("A value is written where it has no effect, or another effect than it says."),
              QLatin1String("The value is lost or changed: remove it, or change what makes it ineffective.")},
    CheckRule{ReadingReport::s_sOlderVersion, Severity::Note,
              QLatin1String("The document has an older version of the format, or names none."),
              QLatin1String("It is read, and written in the current version when it is saved.")},
    CheckRule{
        ReadingReport::s_sNewerVersion, Severity::Error,
        QLatin1String("The document has a newer version of the format than this program knows."),
        QLatin1String(
            "What the newer version added is skipped: use a newer program, and do not save the document "
            "with this one.")},
    CheckRule{
        ReadingReport::s_sOtherRoot, Severity::Error,
        QLatin1String("The root element is not that of the expected document."),
        QLatin1String(
            "A document is then not read at all, and a descriptor is read all the same: open a document "
            "of the right kind, or correct the root element.")},
    CheckRule{
        ReadingReport::s_sBrokenOff, Severity::Error,
        QLatin1String(
            "The document ends early, is not well-formed XML, exceeds a limit, or cannot be opened."),
        QLatin1String(
            "What stands before the error is kept and the rest is lost; of a descriptor nothing is kept: "
            "correct the error at that place.")},
};

} // namespace

std::span<const CheckRule> ReadingReport::rules()
{
    return s_rules;
}

qint64 ReadingReport::count(QLatin1String a_sRule) const
{
    return m_counts.value(a_sRule);
}

qint64 ReadingReport::unlisted() const
{
    return std::accumulate(m_severities.begin(), m_severities.end(), qint64{0}) - m_entries.size();
}

void ReadingReport::add(ReadingEntry a_entry)
{
    addUnlisted(a_entry.rule, a_entry.severity, 1);
    if (m_entries.size() < s_iMaximumEntries) {
        m_entries.append(std::move(a_entry));
    }
}

void ReadingReport::addUnlisted(QLatin1String a_sRule, Severity a_eSeverity, qint64 a_iCount)
{
    m_counts[a_sRule] += a_iCount;
    m_severities[static_cast<std::size_t>(a_eSeverity)] += a_iCount;
}

} // namespace Simulation
