#include "persistentid_p.h"

#include "kpbase/velaos.h"
#include "velaappstartup/cfgcenter.h"
#include "xmltext_p.h"

namespace Simulation {

namespace {

constexpr std::uint64_t s_uiMicrosecondsPerSecond = 1'000'000;

} // namespace

QString createPersistentId(const QString& a_sName)
{
    const std::uint64_t uiSeconds = VelaOS::Get().timestamp() / s_uiMicrosecondsPerSecond;
    return QStringLiteral("%1-%2-%3")
        .arg(cleanXmlText(a_sName), QString::number(uiSeconds), CfgCenter::GetMachineId());
}

} // namespace Simulation
