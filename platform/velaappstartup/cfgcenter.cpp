#include "velaappstartup/cfgcenter.h"

#include <QSysInfo>

QString CfgCenter::GetMachineId()
{
    QString sUniqueId = QString::fromUtf8(QSysInfo::machineUniqueId());
    if (!sUniqueId.isEmpty()) {
        return sUniqueId;
    }
    QString sHostName = QSysInfo::machineHostName();
    return sHostName.isEmpty() ? QStringLiteral("localhost") : sHostName;
}
