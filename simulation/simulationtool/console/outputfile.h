#ifndef SIMULATIONTOOL_OUTPUTFILE_H
#define SIMULATIONTOOL_OUTPUTFILE_H

#include "exitcode.h"

#include <QByteArray>
#include <QString>

namespace SimulationTool {

/// Replaces the file's content. Reports an error as one line on standard error and
/// returns Unusable; the old file stays. After an interruption also returns Unusable
/// and keeps the old file, but reports nothing.
[[nodiscard]] ExitCode replaceFile(const QString& a_sFile, const QByteArray& a_data);

/// Whether two names denote the same file. False when the first name is empty or
/// names no file.
[[nodiscard]] bool isSameFile(const QString& a_sFirst, const QString& a_sSecond);

} // namespace SimulationTool

#endif
