#ifndef SIMULATIONTOOL_REPOSITORYCFG_H
#define SIMULATIONTOOL_REPOSITORYCFG_H

#include "velaappstartup/icfg.h"

#include <QString>

namespace SimulationTool {

/// A configuration without values. openGroup() returns the object itself.
class EmptyCfg : public ICfg
{
public:
    ICfg* openGroup(const QString& a_sName) override;
    bool hasGroup(const QString& a_sName) const override;
    QString readString(const QString& a_sName, const QString& a_sDefault) const override;
    unsigned readUnsigned(const QString& a_sName, unsigned a_uiDefault) const override;
};

/// A configuration whose repository is one folder; all other values are at their
/// defaults. Does not read the settings of this machine.
class RepositoryCfg : public EmptyCfg
{
public:
    explicit RepositoryCfg(const QString& a_sFolder);

    ICfg* openGroup(const QString& a_sName) override;
    bool hasGroup(const QString& a_sName) const override;

private:
    class FileSystem : public EmptyCfg
    {
    public:
        explicit FileSystem(const QString& a_sFolder);
        QString readString(const QString& a_sName, const QString& a_sDefault) const override;

    private:
        QString m_sFolder;
    };

    FileSystem m_fileSystem;
    EmptyCfg m_other;
};

} // namespace SimulationTool

#endif
