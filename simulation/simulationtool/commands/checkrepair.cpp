#include "checkrepair.h"

#include "checkcommand.h"
#include "checkdocument.h"
#include "checkoutput.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/outputfile.h"

#include "simulationdata/simulationlimits.h"

#include <QFileInfo>

#include <optional>

namespace SimulationTool {

namespace {

/// Saves the content in a new file, whose name is the canonical path of `a_sFile` with
/// "~" added. Returns the new name. When the new file exists already or cannot be
/// written, writes one line to standard error and returns no value.
std::optional<QString> keepFormer(const QString& a_sFile, const QByteArray& a_content)
{
    const QString sBackup = QFileInfo(a_sFile).canonicalFilePath() + u'~';
    if (QFileInfo::exists(sBackup)) {
        complain(QStringLiteral("%1: exists already: move it elsewhere, it may be the only complete copy")
                     .arg(sBackup));
        return std::nullopt;
    }
    return replaceFile(sBackup, a_content) == ExitCode::Ok ? std::make_optional(sBackup) : std::nullopt;
}

/// Whether the repaired scenario, which lacks `a_sLoss`, may be written. It may replace
/// its input file only if `a_sLoss` is empty, or with --force. With --force, saves the
/// former file.
bool mayReplace(const InputFile& a_file, const QString& a_sLoss, const CheckOptions& a_options,
                CheckOutput& a_output)
{
    if (a_sLoss.isEmpty() || !a_file.isSameAs(a_options.repairFile)) {
        return true;
    }
    if (a_options.force) {
        const std::optional<QString> backup = keepFormer(a_options.repairFile, a_file.content());
        a_output.addRepair("former_file", backup.value_or(QString()), {});
        return backup.has_value();
    }
    complain(QStringLiteral("check: %1: not replaced, because it would lose %2: give --repair another file, "
                            "or add --force, which keeps the former file, \"~\" added to its name")
                 .arg(a_file.name(), a_sLoss));
    return false;
}

} // namespace

ExitCode writeRepaired(const InputFile& a_file, const CheckedDocument& a_checked,
                       const CheckOptions& a_options, CheckOutput& a_output)
{
    if (a_checked.kind != DocumentKind::Scenario) {
        complain(QStringLiteral("check: %1: is a %2, and only scenarios are repaired")
                     .arg(a_file.name(), QLatin1String(kindName(a_checked.kind))));
        return ExitCode::Unusable;
    }
    if (a_checked.repaired.isEmpty()) {
        complain(
            QStringLiteral("%1: not written: %2")
                .arg(a_options.repairFile, Simulation::Limits::exceeded(Simulation::Limits::DocumentBytes)));
        return ExitCode::Unusable;
    }
    if (!mayReplace(a_file, a_checked.loss, a_options, a_output)) {
        return ExitCode::Unusable;
    }
    const ExitCode eCode = replaceFile(a_options.repairFile, a_checked.repaired);
    const bool bTold = eCode == ExitCode::Ok && !a_checked.loss.isEmpty();
    a_output.addRepair(
        "left_out", a_checked.loss,
        bTold ? QStringLiteral("%1: the repaired scenario lacks %2").arg(a_file.name(), a_checked.loss)
              : QString());
    return eCode;
}

} // namespace SimulationTool
