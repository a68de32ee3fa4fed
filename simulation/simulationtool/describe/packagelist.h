#ifndef SIMULATIONTOOL_PACKAGELIST_H
#define SIMULATIONTOOL_PACKAGELIST_H

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace SimulationTool {

/// What a list says of one package.
struct ListedPackage
{
    QString folder; ///< relative to the folder that was searched
    QString id;
    QString cleanId; ///< what its files are called in a cache
    QString name;
    QString modulation;
    float bandwidth = 0.0F;
    std::uint32_t duration = 0;
    QStringList files; ///< the kinds of data files that are there: "ssf"
    QStringList problems;
};

/// The packages below a folder, ordered by name and then id. The header of every
/// data file is read.
[[nodiscard]] QList<ListedPackage> listPackages(const QString& a_sFolder);

} // namespace SimulationTool

#endif
