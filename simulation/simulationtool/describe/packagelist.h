#ifndef SIMULATIONTOOL_PACKAGELIST_H
#define SIMULATIONTOOL_PACKAGELIST_H

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace SimulationTool {

/// One package of a list.
struct ListedPackage
{
    QString folder; ///< relative to the folder that was searched
    QString id;
    QString cleanId; ///< base name of the package's files in a cache
    QString name;
    QString modulation;
    float bandwidth = 0.0F;
    std::uint32_t duration = 0;
    QStringList files; ///< kinds of the existing data files
    QStringList problems;
};

/// The packages below a folder, ordered by name, then id. Reads the header of every
/// data file.
[[nodiscard]] QList<ListedPackage> listPackages(const QString& a_sFolder);

} // namespace SimulationTool

#endif
