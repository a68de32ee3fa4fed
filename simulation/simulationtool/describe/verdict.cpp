#include "verdict.h"

#include "console/valuetexts.h"

#include <algorithm>
#include <limits>

namespace SimulationTool {

Verdict refusedVerdict(const QString& a_sReason)
{
    return {ExitCode::Unusable, QStringLiteral("refused: ") + a_sReason};
}

Verdict sizeVerdict(std::int64_t a_iMissingBytes)
{
    if (a_iMissingBytes == 0) {
        return {};
    }
    if (a_iMissingBytes == std::numeric_limits<std::int64_t>::max()) {
        return {ExitCode::Findings,
                QStringLiteral("truncated: the header declares more than a file can contain")};
    }
    const auto uiBytes = static_cast<std::uint64_t>(a_iMissingBytes);
    return {ExitCode::Findings,
            a_iMissingBytes > 0
                ? QStringLiteral("truncated by ") + counted(uiBytes, "byte")
                : counted(0 - uiBytes, "byte") + QStringLiteral(" more than the header declares")};
}

ExitCode worse(ExitCode a_eFirst, ExitCode a_eSecond)
{
    return std::max(a_eFirst, a_eSecond);
}

} // namespace SimulationTool
