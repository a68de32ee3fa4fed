#ifndef SIMULATIONTOOL_VERDICT_H
#define SIMULATIONTOOL_VERDICT_H

#include "console/exitcode.h"

#include <QString>

#include <cstdint>

namespace SimulationTool {

/// What is to be said of a file in one line; by default that nothing is wrong.
struct Verdict
{
    ExitCode code = ExitCode::Ok;
    QString text = QStringLiteral("whole");
};

/// Of a file that cannot be used at all.
[[nodiscard]] Verdict refusedVerdict(const QString& a_sReason);

/// Of a file that lacks so many bytes of what its header claims; negative when
/// it holds more.
[[nodiscard]] Verdict sizeVerdict(std::int64_t a_iMissingBytes);

/// The graver of two.
[[nodiscard]] ExitCode worse(ExitCode a_eFirst, ExitCode a_eSecond);

} // namespace SimulationTool

#endif
