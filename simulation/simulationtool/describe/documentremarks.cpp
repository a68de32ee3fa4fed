#include "documentremarks.h"

#include "console/inputfile.h"
#include "console/output.h"
#include "console/valuetexts.h"

#include "simulationdata/readingreport.h"

#include <QCommandLineParser>

#include <algorithm>

namespace SimulationTool {

namespace {

using Simulation::ReadingReport;
using Simulation::Severity;

const QString s_sStrict = QStringLiteral("strict");

/// The name as an argument for a shell: in quotes if it needs them.
QString shellArgument(const QString& a_sName)
{
    const bool bPlain = std::all_of(a_sName.cbegin(), a_sName.cend(), [](QChar a_c) {
        return a_c.isLetterOrNumber() || QStringLiteral("-_./:+,=@%").contains(a_c);
    });
    return bPlain ? a_sName : u'\'' + QString(a_sName).replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

quint64 countOf(const ReadingReport& a_report, Severity a_eSeverity)
{
    // An unknown package is an error.
    const qint64 iPackages =
        a_eSeverity == Severity::Error ? a_report.count(ReadingReport::s_sReplacedPackage) : 0;
    return static_cast<quint64>(a_report.count(a_eSeverity) - iPackages);
}

} // namespace

void addStrictOption(QCommandLineParser& a_parser)
{
    a_parser.addOption({s_sStrict, QStringLiteral("Refuse a document with errors or warnings, as "
                                                  "simulationtool check lists them.")});
}

bool isStrict(const QCommandLineParser& a_parser)
{
    return a_parser.isSet(s_sStrict);
}

QString countsText(quint64 a_uiErrors, quint64 a_uiWarnings, quint64 a_uiNotes)
{
    const QString sText =
        counted(a_uiErrors, "error") + QStringLiteral(", ") + counted(a_uiWarnings, "warning");
    return a_uiNotes == 0 ? sText : sText + QStringLiteral(", ") + counted(a_uiNotes, "note");
}

bool complainAbout(const ReadingReport& a_report, const QString& a_sFile)
{
    const quint64 uiErrors = countOf(a_report, Severity::Error);
    const quint64 uiWarnings = countOf(a_report, Severity::Warning);
    if (uiErrors + uiWarnings == 0) {
        return false;
    }
    complain(QStringLiteral("%1: %2: see them with: simulationtool check %3")
                 .arg(InputFile(a_sFile).name(), countsText(uiErrors, uiWarnings), shellArgument(a_sFile)));
    return true;
}

} // namespace SimulationTool
