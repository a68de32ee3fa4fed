#include "velaappstartup/cfgcenter.h"

#include "kpbase/errorhandler.h"
#include "velaappstartup/settingscfg_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QSysInfo>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace {

constexpr const char* s_szSource = "platform/velaappstartup/cfgcenter";
constexpr const char* s_szFolderVariable = "SIMULATION_CONFIG_DIR";
constexpr qint64 s_iMaxBytes = qint64{1} << 20; ///< bytes of one file; usually a few hundred

/// All settings that CreateCfg() has returned. They are never freed.
struct Centre
{
    std::mutex mutex; ///< guards the rest
    QString folder;   ///< empty = the default folders
    /// The settings by the text of their file: loading unchanged settings again takes no
    /// further memory.
    std::map<QByteArray, std::unique_ptr<SettingsStore>> stores;
};

Centre& centre()
{
    static Centre s_centre;
    return s_centre;
}

void traceUnread(const QString& a_sFile, const QString& a_sReason)
{
    if (ErrorHandler::Instance().traces(ErrorHandler::TraceError)) {
        _Q_Trace(
            QStringLiteral("Cannot read settings \"%1\": %2; the defaults are used").arg(a_sFile, a_sReason),
            s_szSource, __LINE__);
    }
}

QString settingsFile(const QString& a_sFolder, const QString& a_sName)
{
    const QString sFileName = a_sName + QStringLiteral(".ini");
    const QString sFolder = a_sFolder.isEmpty() ? qEnvironmentVariable(s_szFolderVariable) : a_sFolder;
    if (!sFolder.isEmpty()) {
        return QDir(sFolder).absoluteFilePath(sFileName);
    }
    return QStandardPaths::locate(QStandardPaths::GenericConfigLocation,
                                  QStringLiteral("simulation/") + sFileName);
}

QString tooLarge(qint64 a_iBytes)
{
    return QStringLiteral("%1 bytes or more, %2 are allowed")
        .arg(QString::number(a_iBytes), QString::number(s_iMaxBytes));
}

/// Returns the bytes of a settings file; empty when it is missing or cannot be read.
QByteArray readText(const QString& a_sFile)
{
    const QFileInfo info(a_sFile);
    if (a_sFile.isEmpty() || !info.exists()) {
        return {};
    }
    // Opening a pipe or a device could block without limit.
    if (!info.isFile()) {
        traceUnread(a_sFile, QStringLiteral("is not a regular file"));
        return {};
    }
    QFile file(a_sFile);
    if (!file.open(QIODevice::ReadOnly)) {
        traceUnread(a_sFile, file.errorString());
        return {};
    }
    QByteArray text = file.read(s_iMaxBytes + 1);
    if (text.size() > s_iMaxBytes) {
        traceUnread(a_sFile, tooLarge(qMax<qint64>(file.size(), text.size())));
        return {};
    }
    return text;
}

/// Returns the settings of a text and creates them on first use. Null, with an error
/// text, when this fails. The caller holds the mutex.
SettingsStore* storeOf(Centre& a_centre, const QByteArray& a_text, QString* a_pReason)
{
    const auto it = a_centre.stores.find(a_text);
    if (it != a_centre.stores.end()) {
        return it->second.get();
    }
    std::optional<SettingsValues> values = SettingsValues();
    if (!a_text.isEmpty()) {
        values = parseSettings(a_text, a_pReason);
    }
    if (!values) {
        return nullptr;
    }
    return a_centre.stores.emplace(a_text, std::make_unique<SettingsStore>(std::move(*values)))
        .first->second.get();
}

} // namespace

QString CfgCenter::GetMachineId()
{
    QString sUniqueId = QString::fromUtf8(QSysInfo::machineUniqueId());
    if (!sUniqueId.isEmpty()) {
        return sUniqueId;
    }
    QString sHostName = QSysInfo::machineHostName();
    return sHostName.isEmpty() ? QStringLiteral("localhost") : sHostName;
}

ICfg* CfgCenter::CreateCfg(const QString& a_sName, int /*a_iView*/, const QString& /*a_sText*/)
{
    Centre& all = centre();
    const std::lock_guard lock(all.mutex);
    const QString sFile = settingsFile(all.folder, a_sName);
    QString sReason;
    SettingsStore* pStore = storeOf(all, readText(sFile), &sReason);
    if (pStore == nullptr) {
        traceUnread(sFile, sReason);
        pStore = storeOf(all, {}, &sReason);
    }
    return pStore->group({});
}

void CfgCenter::SetFolder(const QString& a_sFolder)
{
    Centre& all = centre();
    const std::lock_guard lock(all.mutex);
    all.folder = a_sFolder;
}
