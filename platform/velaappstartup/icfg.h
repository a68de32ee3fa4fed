#ifndef VELAAPPSTARTUP_ICFG_H
#define VELAAPPSTARTUP_ICFG_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

/// A group of named settings, read only. What it says never changes: whoever
/// wants later settings asks CfgCenter::CreateCfg() again.
///
/// The implementation behind CfgCenter may be used from any thread.
class SIMULATIONDATA_EXPORT ICfg
{
public:
    virtual ~ICfg() = default;

    ICfg(const ICfg&) = delete;
    ICfg& operator=(const ICfg&) = delete;

    /// The group of that name inside this one. Never null: a group that is not
    /// there is an empty one, whose every value is the default. Owned by the
    /// configuration and valid as long as that is.
    [[nodiscard]] virtual ICfg* openGroup(const QString& a_sName) = 0;

    /// Whether there is a group of that name, which holds at least one value.
    [[nodiscard]] virtual bool hasGroup(const QString& a_sName) const = 0;

    /// The text under that name, or the default where there is none. An empty
    /// text is a text.
    [[nodiscard]] virtual QString readString(const QString& a_sName, const QString& a_sDefault) const = 0;

    /// The decimal number under that name, or the default where there is none.
    /// What is no unsigned 32-bit number gives the default, too, after one trace.
    [[nodiscard]] virtual unsigned readUnsigned(const QString& a_sName, unsigned a_uiDefault) const = 0;

protected:
    ICfg() = default;
};

#endif
