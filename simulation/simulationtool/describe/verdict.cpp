#include "verdict.h"

#include "simulationdata/signalpackagecheck.h"

#include <algorithm>

namespace SimulationTool {

Verdict refusedVerdict(const QString& a_sReason)
{
    return {ExitCode::Unusable, QStringLiteral("refused: ") + a_sReason};
}

Verdict sizeVerdict(std::int64_t a_iMissingBytes)
{
    return problemVerdict({{}, Simulation::SignalPackageCheck::sizeError(a_iMissingBytes), false});
}

Verdict problemVerdict(const Simulation::SignalPackageProblem& a_problem)
{
    if (a_problem.text.isEmpty()) {
        return {};
    }
    return {a_problem.isUnusable ? ExitCode::Unusable : ExitCode::Findings, a_problem.text};
}

ExitCode worse(ExitCode a_eFirst, ExitCode a_eSecond)
{
    return std::max(a_eFirst, a_eSecond);
}

} // namespace SimulationTool
