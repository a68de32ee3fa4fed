#ifndef SIMULATIONTOOL_VERDICT_H
#define SIMULATIONTOOL_VERDICT_H

#include "console/exitcode.h"

#include <QString>

#include <cstdint>

namespace SimulationTool {

/// The verdict on a file in one line. The default is a file without findings.
struct Verdict
{
    ExitCode code = ExitCode::Ok;
    QString text = QStringLiteral("whole");
};

/// The verdict on an unusable file.
[[nodiscard]] Verdict refusedVerdict(const QString& a_sReason);

/// The verdict on a file that lacks this many of the bytes that its header declares;
/// negative when it contains more.
[[nodiscard]] Verdict sizeVerdict(std::int64_t a_iMissingBytes);

/// The more severe of two codes.
[[nodiscard]] ExitCode worse(ExitCode a_eFirst, ExitCode a_eSecond);

} // namespace SimulationTool

#endif
