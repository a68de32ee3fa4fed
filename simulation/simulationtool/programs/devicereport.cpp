#include "devicereport.h"

#include "console/valuetexts.h"

#include <QRegularExpression>
#include <QStringList>

namespace SimulationTool {

namespace {

const QString s_sDivider = QStringLiteral("; ");
const QString s_sPlays = QStringLiteral("plays from ");
const QString s_sNotStarted = QStringLiteral("not started: ");
const QString s_sDeployed = QStringLiteral("deployed: ");
const QString s_sNotDeployed = QStringLiteral("not deployed: ");
const QString s_sWarning = QStringLiteral("warning: ");
const QString s_sScenario = QStringLiteral("scenario \"");

} // namespace

QString DeviceReport::message() const
{
    QStringList parts{event, scenario};
    parts.append(warning.isEmpty() ? QString() : s_sWarning + warning);
    parts.removeAll(QString());
    return parts.join(s_sDivider);
}

QString DeviceReport::plays(std::uint32_t a_uiTime)
{
    return s_sPlays + QStringLiteral("%1 ms").arg(a_uiTime);
}

QString DeviceReport::notStarted(const QString& a_sReason)
{
    return s_sNotStarted + a_sReason;
}

QString DeviceReport::deployed(const QString& a_sWhere)
{
    return s_sDeployed + a_sWhere;
}

QString DeviceReport::notDeployed(const QString& a_sReason)
{
    return s_sNotDeployed + a_sReason;
}

QString DeviceReport::scenarioText(const QString& a_sName, qsizetype a_iEmitters)
{
    return s_sScenario + a_sName + QStringLiteral("\", ") +
           counted(static_cast<quint64>(a_iEmitters), "emitter");
}

OrderOutcome startOutcome(const QString& a_sMessage, std::uint32_t a_uiTime)
{
    // The message may continue with the time until the start.
    if (a_sMessage.startsWith(DeviceReport::plays(a_uiTime))) {
        return OrderOutcome::Done;
    }
    return a_sMessage.startsWith(s_sNotStarted) ? OrderOutcome::Refused : OrderOutcome::Unknown;
}

OrderOutcome deployOutcome(const QString& a_sMessage)
{
    if (a_sMessage.startsWith(s_sDeployed)) {
        return OrderOutcome::Done;
    }
    return a_sMessage.startsWith(s_sNotDeployed) ? OrderOutcome::Refused : OrderOutcome::Unknown;
}

bool reportsPlay(const QString& a_sMessage)
{
    return a_sMessage.startsWith(s_sPlays);
}

QString eventOf(const QString& a_sMessage)
{
    const bool bNone = a_sMessage.startsWith(s_sScenario) || a_sMessage.startsWith(s_sWarning);
    return bNone ? QString() : a_sMessage.section(s_sDivider, 0, 0);
}

QString warningOf(const QString& a_sMessage)
{
    const QString sBehind = s_sDivider + a_sMessage;
    const qsizetype iBegin = sBehind.lastIndexOf(s_sDivider + s_sWarning);
    return iBegin < 0 ? QString() : sBehind.mid(iBegin + s_sDivider.size() + s_sWarning.size());
}

QString scenarioNameOf(const QString& a_sMessage)
{
    static const QRegularExpression s_scenario(QStringLiteral("(?:^|; )scenario \"(.*)\", \\d+ emitter"));
    return s_scenario.match(a_sMessage).captured(1);
}

} // namespace SimulationTool
