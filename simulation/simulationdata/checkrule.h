#ifndef SIMULATIONDATA_CHECKRULE_H
#define SIMULATIONDATA_CHECKRULE_H

#include <QLatin1String>

namespace Simulation {

/// How much a finding matters to the author of a document.
enum class Severity {
    Note,    ///< worth knowing; nothing is wrong
    Warning, ///< read as written, but probably not meant
    Error,   ///< a part of the document was lost or changed
};

/// A rule by which documents are read and scenarios are checked. The texts are English
/// and never change while the program runs.
struct CheckRule
{
    QLatin1String id; ///< stable, for scripts: lower case with hyphens
    Severity severity = Severity::Warning;
    QLatin1String summary; ///< one sentence: what a finding of this rule means
    QLatin1String reason;  ///< why it matters and what to do
};

} // namespace Simulation

#endif
