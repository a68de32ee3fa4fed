#include "inspectcommand.h"

#include "console/inputfile.h"
#include "console/output.h"
#include "console/report.h"
#include "describe/archivedetails.h"
#include "describe/compactdetails.h"
#include "describe/datafiledetails.h"
#include "describe/deploymentdetails.h"
#include "describe/packagedetails.h"
#include "describe/pulsefiledetails.h"
#include "describe/scenariodetails.h"
#include "describe/verdict.h"

#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/simulationlimits.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <optional>

namespace SimulationTool {

namespace {

/// A kind of file other than a scenario.
struct Kind
{
    bool (*recognises)(const QByteArray& a_head); ///< judges by the file's first bytes
    const char* ending; ///< file name ending, used when no kind recognises the first bytes; empty: none
    Verdict (*describe)(Report& a_report, const InputFile& a_file);
};

bool isArchive(const QByteArray& a_head)
{
    return a_head.startsWith("PK\3\4") || a_head.startsWith("PK\5\6");
}

constexpr std::array<Kind, 8> s_kinds{{
    {[](const QByteArray& a_head) { return a_head.startsWith("T&K-SSF"); }, ".ssf", &describeShapeFile},
    {[](const QByteArray& a_head) { return a_head.startsWith("T&K-SDF"); }, ".sdf", &describeSymbolFile},
    {[](const QByteArray& a_head) { return a_head.startsWith("T&K-RDF"); }, ".rdf", &describeResultFile},
    {[](const QByteArray& a_head) { return a_head.startsWith("RIFF"); }, ".wav", &describeWaveFile},
    {[](const QByteArray& a_head) { return a_head.startsWith("\x72\x65\x74\xFB"); }, ".pdw",
     &describePulseFile},
    {&isArchive, ".zip", &describeArchive},
    {[](const QByteArray& a_head) { return hasDocumentRoot(a_head, "SignalPackage"); }, "",
     &describeDescriptor},
    {[](const QByteArray& a_head) { return hasDocumentRoot(a_head, "SimulationDeployment"); }, "",
     &describeDeployment},
}};

/// The kind of a file; null when it may be a scenario.
const Kind* kindOf(const InputFile& a_file)
{
    const QByteArray head = a_file.head();
    if (head.isEmpty() && !QFileInfo(a_file.path()).isFile()) {
        return nullptr;
    }
    auto found = std::find_if(s_kinds.begin(), s_kinds.end(),
                              [&](const Kind& a_kind) { return a_kind.recognises(head); });
    if (found == s_kinds.end()) {
        found = std::find_if(s_kinds.begin(), s_kinds.end(), [&](const Kind& a_kind) {
            const QLatin1String sEnding(a_kind.ending);
            return !sEnding.isEmpty() && a_file.name().endsWith(sEnding, Qt::CaseInsensitive);
        });
    }
    return found != s_kinds.end() ? &*found : nullptr;
}

/// Describes a file or package folder. A file of unknown kind is read as a scenario;
/// no value when the file is not a scenario either.
std::optional<Verdict> describe(Report& a_report, const InputFile& a_file)
{
    if (QFileInfo(a_file.path()).isDir()) {
        a_report.heading(QStringLiteral("Signal package"));
        return describePackageFolder(a_report, a_file.path(), a_file.name());
    }
    if (const Kind* pKind = kindOf(a_file)) {
        return pKind->describe(a_report, a_file);
    }
    std::optional<Verdict> verdict = describeCompact(a_report, a_file);
    return verdict ? verdict : describeScenario(a_report, a_file);
}

} // namespace

ExitCode runInspect(const QString& a_sPath, ReportForm a_eForm, Output& a_output)
{
    if (QFileInfo(a_sPath).isDir() && !Simulation::SignalPackageFolder::isValid(a_sPath)) {
        complain(QStringLiteral("%1: is a folder without a signal package (repository list shows those "
                                "below it)")
                     .arg(a_sPath));
        return ExitCode::Unusable;
    }
    InputFile file(a_sPath);
    if (!file.prepare(Simulation::Limits::value(Simulation::Limits::ArchiveBytes))) {
        return ExitCode::Unusable;
    }
    Report report(a_output, a_eForm);
    const std::optional<Verdict> verdict = describe(report, file);
    if (!verdict) {
        return ExitCode::Unusable;
    }
    report.conclusion("verdict", QStringLiteral("Verdict"), verdict->text);
    report.finish();
    return verdict->code;
}

} // namespace SimulationTool
