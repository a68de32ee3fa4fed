#ifndef SIMULATIONTOOL_OUTPUTFILE_H
#define SIMULATIONTOOL_OUTPUTFILE_H

#include "exitcode.h"

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// Replaces the file by the bytes; says why when that fails. What an interrupted
/// command writes is not to take the place: Unusable, and nothing is said.
[[nodiscard]] ExitCode replaceFile(const QString& a_sFile, const QByteArray& a_data);

/// Whether two names, of which the first may be empty or of no file yet, lead to
/// one file.
[[nodiscard]] bool isSameFile(const QString& a_sFirst, const QString& a_sSecond);

} // namespace SimulationTool

#endif
