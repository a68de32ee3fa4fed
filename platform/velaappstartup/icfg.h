#ifndef VELAAPPSTARTUP_ICFG_H
#define VELAAPPSTARTUP_ICFG_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

/// A group of named settings, read only. Its values never change: call
/// CfgCenter::CreateCfg() again for newer ones.
///
/// The objects of CfgCenter may be used from any thread.
class SIMULATIONDATA_EXPORT ICfg
{
public:
    virtual ~ICfg() = default;

    ICfg(const ICfg&) = delete;
    ICfg& operator=(const ICfg&) = delete;

    /// The group of that name inside this one. Never null: a missing group is an
    /// empty one, in which every value is the default. Owned by the configuration and
    /// valid as long as the configuration.
    [[nodiscard]] virtual ICfg* openGroup(const QString& a_sName) = 0;

    /// Whether a group of that name holds at least one value.
    [[nodiscard]] virtual bool hasGroup(const QString& a_sName) const = 0;

    /// The text under that name, or the default where there is none. An empty text is
    /// a value.
    [[nodiscard]] virtual QString readString(const QString& a_sName, const QString& a_sDefault) const = 0;

    /// The decimal number under that name, or the default where there is none. A text
    /// that is not an unsigned 32-bit number is traced and gives the default, too.
    [[nodiscard]] virtual unsigned readUnsigned(const QString& a_sName, unsigned a_uiDefault) const = 0;

protected:
    ICfg() = default;
};

#endif
