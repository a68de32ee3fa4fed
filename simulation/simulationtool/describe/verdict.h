#ifndef SIMULATIONTOOL_VERDICT_H
#define SIMULATIONTOOL_VERDICT_H

#include "console/exitcode.h"

#include <QString>

#include <cstdint>

namespace Simulation {
struct SignalPackageProblem;
} // namespace Simulation

namespace SimulationTool {

/// The verdict on a file in one line. The default is a file without findings.
struct Verdict
{
    ExitCode code = ExitCode::Ok;
    QString text = QStringLiteral("whole");
};

/// The verdict on an unusable file.
[[nodiscard]] Verdict refusedVerdict(const QString& a_sReason);

/// The verdict on a file's size, from the number of bytes that the header declares but
/// the file lacks. The number is negative when the file has more bytes than declared,
/// and INT64_MAX when the header declares more bytes than a file can contain.
[[nodiscard]] Verdict sizeVerdict(std::int64_t a_iMissingBytes);

/// The verdict on a file with a problem, or without one.
[[nodiscard]] Verdict problemVerdict(const Simulation::SignalPackageProblem& a_problem);

/// The more severe of two codes.
[[nodiscard]] ExitCode worse(ExitCode a_eFirst, ExitCode a_eSecond);

} // namespace SimulationTool

#endif
