#ifndef SIMULATIONDATA_READINGREPORT_H
#define SIMULATIONDATA_READINGREPORT_H

#include "simulationdata/checkrule.h"
#include "simulationdata/simulationdata_export.h"

#include <QHash>
#include <QLatin1String>
#include <QList>
#include <QString>

#include <array>
#include <cstddef>
#include <span>

namespace Simulation {

/// One deviation: a place of a document that its reader skipped, replaced or doubted.
struct ReadingEntry
{
    QLatin1String rule; ///< the id of a rule of ReadingReport
    Severity severity = Severity::Error;
    /// The place in the text: line and column, both counted from 1. 0 when the place is not
    /// known. The column counts characters.
    qint64 line = 0;
    qint64 column = 0;
    QString path;       ///< for example "Scenario/Emitter[tower]/Frequency/Fixed"
    QString found;      ///< the text found, shortened when it is long; may contain any character
    QString message;    ///< one English sentence: what is wrong and what the reader did
    QString suggestion; ///< the name or value that was probably meant; empty when there is none
};

/// Everything in a document that its reader skipped, replaced or doubted. The report
/// belongs to the last reading. Reading with a report and reading without one give the
/// same document and the same result.
///
/// A plain value, used by one thread at a time. A new report is empty. Memory is bounded:
/// entries beyond the first s_iMaximumEntries in the order of the document are counted
/// but not listed, and the texts of an entry are shortened.
class SIMULATIONDATA_EXPORT ReadingReport
{
public:
    static constexpr qsizetype s_iMaximumEntries = 1000;

    // The ids of the rules; rules() describes them.
    static constexpr QLatin1String s_sUnknownElement{"unknown-element"};
    static constexpr QLatin1String s_sUnknownAttribute{"unknown-attribute"};
    static constexpr QLatin1String s_sUnexpectedText{"unexpected-text"};
    static constexpr QLatin1String s_sMissingId{"missing-id"};
    static constexpr QLatin1String s_sMissingAttribute{"missing-attribute"};
    static constexpr QLatin1String s_sMissingElement{"missing-element"};
    static constexpr QLatin1String s_sNotANumber{"not-a-number"};
    static constexpr QLatin1String s_sUnitInNumber{"unit-in-number"};
    static constexpr QLatin1String s_sNotABoolean{"not-a-boolean"};
    static constexpr QLatin1String s_sLetterCase{"letter-case"};
    static constexpr QLatin1String s_sUnknownValue{"unknown-value"};
    static constexpr QLatin1String s_sNotAColor{"not-a-color"};
    static constexpr QLatin1String s_sOutOfRange{"out-of-range"};
    static constexpr QLatin1String s_sDuplicateId{"duplicate-id"};
    static constexpr QLatin1String s_sDuplicateElement{"duplicate-element"};
    static constexpr QLatin1String s_sUnknownReference{"unknown-reference"};
    static constexpr QLatin1String s_sInventedObject{"invented-object"};
    static constexpr QLatin1String s_sCircularReference{"circular-reference"};
    static constexpr QLatin1String s_sReplacedPackage{"replaced-package"};
    static constexpr QLatin1String s_sDerivedValue{"derived-value"};
    static constexpr QLatin1String s_sIgnoredValue{"ignored-value"};
    static constexpr QLatin1String s_sOlderVersion{"older-version"};
    static constexpr QLatin1String s_sNewerVersion{"newer-version"};
    static constexpr QLatin1String s_sOtherRoot{"other-root"};
    static constexpr QLatin1String s_sBrokenOff{"broken-off"};

    /// All rules, in the order for display.
    [[nodiscard]] static std::span<const CheckRule> rules();

    /// The entries in the order of the document.
    [[nodiscard]] const QList<ReadingEntry>& entries() const { return m_entries; }

    [[nodiscard]] bool isEmpty() const { return unlisted() == 0 && m_entries.isEmpty(); }

    /// The number of deviations from the rule, listed or not.
    [[nodiscard]] qint64 count(QLatin1String a_sRule) const;
    /// The number of deviations of that severity, listed or not.
    [[nodiscard]] qint64 count(Severity a_eSeverity) const
    {
        return m_severities[static_cast<std::size_t>(a_eSeverity)];
    }
    /// The number of deviations that are not listed.
    [[nodiscard]] qint64 unlisted() const;

    /// Counts the entry, and lists it while fewer than s_iMaximumEntries are listed.
    void add(ReadingEntry a_entry);
    /// Counts deviations that are not listed.
    void addUnlisted(QLatin1String a_sRule, Severity a_eSeverity, qint64 a_iCount);

private:
    QList<ReadingEntry> m_entries;
    QHash<QString, qint64> m_counts;      ///< by rule
    std::array<qint64, 3> m_severities{}; ///< by Severity
};

} // namespace Simulation

#endif
