#include "inspectcommand.h"

#include "archivedetails.h"
#include "compactdetails.h"
#include "datafiledetails.h"
#include "deploymentdetails.h"
#include "output.h"
#include "packagedetails.h"
#include "pulsefiledetails.h"
#include "report.h"
#include "scenariodetails.h"
#include "verdict.h"

#include "simulationdata/signalpackagefolder.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <optional>

namespace SimulationTool {

namespace {

constexpr qint64 s_iHeadBytes = 4096;

/// A kind of file that is more than a scenario.
struct Kind
{
    bool (*recognises)(const QByteArray& a_head); ///< by the file's first bytes
    const char* ending; ///< of files whose first bytes say nothing; empty: there are none
    Verdict (*describe)(Report& a_report, const QString& a_sFile);
};

bool hasRoot(const QByteArray& a_head, const char* a_szName)
{
    QXmlStreamReader reader(a_head);
    return reader.readNextStartElement() && reader.name() == QLatin1String(a_szName);
}

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
    {[](const QByteArray& a_head) { return hasRoot(a_head, "SignalPackage"); }, "", &describeDescriptor},
    {[](const QByteArray& a_head) { return hasRoot(a_head, "SimulationDeployment"); }, "",
     &describeDeployment},
}};

/// The kind of a file; null for what may be a scenario.
const Kind* kindOf(const QString& a_sFile)
{
    QFile file(a_sFile);
    // A pipe could keep us waiting for ever.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    const QByteArray head = file.read(s_iHeadBytes);
    auto found = std::find_if(s_kinds.begin(), s_kinds.end(),
                              [&](const Kind& a_kind) { return a_kind.recognises(head); });
    if (found == s_kinds.end()) {
        found = std::find_if(s_kinds.begin(), s_kinds.end(), [&](const Kind& a_kind) {
            const QLatin1String sEnding(a_kind.ending);
            return !sEnding.isEmpty() && a_sFile.endsWith(sEnding, Qt::CaseInsensitive);
        });
    }
    return found != s_kinds.end() ? &*found : nullptr;
}

} // namespace

ExitCode runInspect(const QString& a_sPath, Output& a_output)
{
    Report report(a_output);
    const bool bFolder = QFileInfo(a_sPath).isDir();
    if (bFolder && !Simulation::SignalPackageFolder::isValid(a_sPath)) {
        complain(QStringLiteral("%1: is a folder without a signal package (repository list shows those "
                                "below it)")
                     .arg(a_sPath));
        return ExitCode::Unusable;
    }
    const Kind* pKind = bFolder ? nullptr : kindOf(a_sPath);
    std::optional<Verdict> verdict;
    if (bFolder) {
        verdict = describePackageFolder(report, a_sPath);
    } else if (pKind != nullptr) {
        verdict = pKind->describe(report, a_sPath);
    } else {
        verdict = describeCompact(report, a_sPath);
    }
    if (!verdict) {
        return describeScenario(report, a_sPath);
    }
    report.conclusion(QStringLiteral("Verdict"), verdict->text);
    return verdict->code;
}

} // namespace SimulationTool
