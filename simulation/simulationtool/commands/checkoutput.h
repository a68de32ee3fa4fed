#ifndef SIMULATIONTOOL_CHECKOUTPUT_H
#define SIMULATIONTOOL_CHECKOUTPUT_H

#include "checkfinding.h"
#include "console/sourceexcerpt.h"

#include <QMap>
#include <QString>

#include <memory>
#include <optional>

namespace SimulationTool {

class Output;

/// The form in which a check reports.
enum class CheckForm {
    Text,  ///< like a compiler's messages
    Json,  ///< one JSON document
    Sarif, ///< SARIF 2.1.0, for code-review systems
};

/// The numbers of a whole check.
struct CheckSummary
{
    quint64 checked = 0; ///< files
    quint64 unreadable = 0;
    quint64 errors = 0;
    quint64 warnings = 0;
    quint64 notes = 0;
    quint64 repaired = 0; ///< findings
    QString writtenFile;  ///< of the repaired scenario; empty = none
};

/// The report of a check in one of its forms. Files are reported one after another.
class CheckOutput
{
public:
    virtual ~CheckOutput() = default;
    CheckOutput(const CheckOutput&) = delete;
    CheckOutput& operator=(const CheckOutput&) = delete;

    /// Begins the report of a file. Everything up to finish() belongs to the file begun
    /// last.
    virtual void beginFile(const QString& a_sName) = 0;
    virtual void setKind(const char* /*a_szKind*/) {}
    /// The file or a part of it cannot be read. The caller writes the line on standard
    /// error.
    virtual void addError(const QString& a_sReason) = 0;
    /// A finding, and for people the line of the document.
    virtual void addFinding(const CheckFinding& a_finding, const std::optional<Excerpt>& a_excerpt) = 0;
    /// The findings that are not listed, by rule.
    virtual void addUnlisted(const QMap<QString, quint64>& a_counts) = 0;
    /// A fact about the repair, for programs, and a line for people, which may be empty.
    virtual void addRepair(const char* /*a_szKey*/, const QString& /*a_sValue*/, const QString& /*a_sLine*/)
    {}
    /// Writes the rest. Call once, last.
    virtual void finish(const CheckSummary& a_summary) = 0;

protected:
    CheckOutput() = default;
};

/// The report in a form, to an output that must outlive it.
[[nodiscard]] std::unique_ptr<CheckOutput> makeCheckOutput(Output& a_output, CheckForm a_eForm);

/// The message of a finding without its place: object, found text, sentence, suggestion.
[[nodiscard]] QString messageOf(const CheckFinding& a_finding);
/// "1234 more: not-a-number 1200, unknown-element 34".
[[nodiscard]] QString unlistedText(const QMap<QString, quint64>& a_counts);

} // namespace SimulationTool

#endif
