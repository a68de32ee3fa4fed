#ifndef SIMULATIONDATA_NATIVEPATH_P_H
#define SIMULATIONDATA_NATIVEPATH_P_H

#include <QFile>
#include <QString>

#include <filesystem>

namespace Simulation {

/// The path for the file operations of the standard library. Unlike that
/// library's own conversion this one never throws, whatever the name holds.
[[nodiscard]] inline std::filesystem::path nativePath(const QString& a_sPath)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(a_sPath.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(a_sPath).toStdString());
#endif
}

} // namespace Simulation

#endif
