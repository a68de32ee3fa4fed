#include "repositorycfg.h"

namespace SimulationTool {

ICfg* EmptyCfg::openGroup(const QString& /*a_sName*/)
{
    return this;
}

bool EmptyCfg::hasGroup(const QString& /*a_sName*/) const
{
    return false;
}

QString EmptyCfg::readString(const QString& /*a_sName*/, const QString& a_sDefault) const
{
    return a_sDefault;
}

unsigned EmptyCfg::readUnsigned(const QString& /*a_sName*/, unsigned a_uiDefault) const
{
    return a_uiDefault;
}

RepositoryCfg::RepositoryCfg(const QString& a_sFolder)
    : m_fileSystem(a_sFolder)
{}

ICfg* RepositoryCfg::openGroup(const QString& a_sName)
{
    if (hasGroup(a_sName)) {
        return &m_fileSystem;
    }
    return &m_other;
}

bool RepositoryCfg::hasGroup(const QString& a_sName) const
{
    return a_sName == u"FileSystem";
}

RepositoryCfg::FileSystem::FileSystem(const QString& a_sFolder)
    : m_sFolder(a_sFolder)
{}

QString RepositoryCfg::FileSystem::readString(const QString& a_sName, const QString& a_sDefault) const
{
    return a_sName == u"Repository" ? m_sFolder : a_sDefault;
}

} // namespace SimulationTool
