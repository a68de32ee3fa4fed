#include "velaappstartup/cfgcenter.h"

#include <QSysInfo>

QString CfgCenter::GetMachineId()
{
    const QString sUniqueId = QString::fromUtf8(QSysInfo::machineUniqueId());
    if (!sUniqueId.isEmpty()) {
        return sUniqueId;
    }
    const QString sHostName = QSysInfo::machineHostName();
    return sHostName.isEmpty() ? QStringLiteral("localhost") : sHostName;
}
