#include "packageverdict.h"

#include "simulationdata/signalpackagecheck.h"
#include "simulationdata/signalpackagefolder.h"

#include <QFileInfo>

namespace SimulationTool {

namespace {

/// Adds a problem to the verdict on the package, which is its most severe problem, of
/// equally severe ones the first.
void addProblem(PackageVerdict& a_verdict, const Simulation::SignalPackageProblem& a_problem)
{
    const QString sText = a_problem.file.isEmpty() ? a_problem.text : a_problem.file + u' ' + a_problem.text;
    const Verdict verdict = problemVerdict(a_problem);
    a_verdict.problems.append(sText);
    if (verdict.code > a_verdict.worst.code) {
        a_verdict.worst = {verdict.code, sText};
    }
}

/// The verdict on one file of a package with these problems.
Verdict verdictOn(const QString& a_sName, const QList<Simulation::SignalPackageProblem>& a_problems)
{
    for (const Simulation::SignalPackageProblem& problem : a_problems) {
        if (problem.file == a_sName) {
            return problemVerdict(problem);
        }
    }
    return {};
}

} // namespace

Verdict descriptorVerdict(const Simulation::SignalPackage& a_package, const QString& a_sFile)
{
    const QString sError = Simulation::SignalPackageCheck::descriptorError(a_package, a_sFile);
    return sError.isEmpty() ? Verdict{} : refusedVerdict(sError);
}

PackageVerdict packageVerdict(const QString& a_sFolder)
{
    PackageVerdict verdict;
    verdict.package = Simulation::SignalPackageFolder::signalPackage(a_sFolder);
    const QList<Simulation::SignalPackageProblem> problems =
        Simulation::SignalPackageCheck::damage(a_sFolder);
    for (const Simulation::SignalPackageProblem& problem : problems) {
        addProblem(verdict, problem);
    }
    const QFileInfo descriptor(Simulation::SignalPackageFolder::signalFilePath(a_sFolder));
    verdict.descriptor = verdictOn(descriptor.fileName(), problems);
    for (const PackageDataFile& file : s_packageDataFiles) {
        const QString sFile = file.path(a_sFolder);
        if (QFileInfo::exists(sFile)) {
            verdict.files.append({&file, QFileInfo(sFile).size(), file.holds(sFile),
                                  verdictOn(QLatin1String(file.name), problems)});
        }
    }
    return verdict;
}

} // namespace SimulationTool
