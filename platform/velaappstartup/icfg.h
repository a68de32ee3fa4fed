#ifndef VELAAPPSTARTUP_ICFG_H
#define VELAAPPSTARTUP_ICFG_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

/// A read-only group of named settings. The values never change: call
/// CfgCenter::CreateCfg() again for newer values.
///
/// The objects of CfgCenter may be used from any thread.
class SIMULATIONDATA_EXPORT ICfg
{
public:
    virtual ~ICfg() = default;

    ICfg(const ICfg&) = delete;
    ICfg& operator=(const ICfg&) = delete;

    /// Returns the group of that name inside this one. Never null: a missing group
    /// is empty, and every value in it is the default. The configuration owns the
    /// group, which is valid as long as the configuration.
    [[nodiscard]] virtual ICfg* openGroup(const QString& a_sName) = 0;

    /// Whether a group of that name holds at least one value.
    [[nodiscard]] virtual bool hasGroup(const QString& a_sName) const = 0;

    /// Returns the text of that name, or the default when there is none. An empty
    /// text is a value.
    [[nodiscard]] virtual QString readString(const QString& a_sName, const QString& a_sDefault) const = 0;

    /// Returns the decimal number of that name, or the default when there is none. A
    /// text that is not an unsigned 32-bit number is traced and also gives the
    /// default.
    [[nodiscard]] virtual unsigned readUnsigned(const QString& a_sName, unsigned a_uiDefault) const = 0;

protected:
    ICfg() = default;
};

#endif
