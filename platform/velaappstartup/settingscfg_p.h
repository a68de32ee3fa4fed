#ifndef VELAAPPSTARTUP_SETTINGSCFG_P_H
#define VELAAPPSTARTUP_SETTINGSCFG_P_H

#include "velaappstartup/icfg.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <map>
#include <memory>
#include <mutex>
#include <optional>

/// The values of a settings file by their full names, "Group/Sub-group/Name".
using SettingsValues = QMap<QString, QString>;

/// Returns the values of a text in the form that CfgCenter::CreateCfg() describes.
/// Lines that are not settings are skipped. Returns no value, with an error text,
/// when QSettings cannot read the text.
[[nodiscard]] std::optional<SettingsValues> parseSettings(const QByteArray& a_text, QString* a_pReason);

/// The values of one settings text, and the groups opened in it. The groups live as
/// long as this object. Any thread may call.
class SettingsStore
{
public:
    explicit SettingsStore(SettingsValues a_values);
    ~SettingsStore();
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    [[nodiscard]] const SettingsValues& values() const { return m_values; }

    /// Returns the group of the values whose names begin with `a_sPrefix`. The
    /// prefix is empty or ends in a slash.
    [[nodiscard]] ICfg* group(const QString& a_sPrefix);

private:
    const SettingsValues m_values;
    std::mutex m_mutex;                                ///< guards the groups
    std::map<QString, std::unique_ptr<ICfg>> m_groups; ///< by prefix
};

#endif
