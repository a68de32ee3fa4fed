#include "commondataxml_p.h"

#include "kpbase/velaos.h"
#include "simulationdata/xml/xmltext_p.h"
#include "velaappstartup/cfgcenter.h"

#include <QStringList>

namespace Simulation {

namespace {

constexpr qsizetype s_iNamedIds = 3;
constexpr qsizetype s_iShownCharacters = 40; ///< of each id in the error text
constexpr std::uint64_t s_uiMicrosecondsPerSecond = 1'000'000;

} // namespace

QString createPersistentId(const QString& a_sName)
{
    const std::uint64_t uiSeconds = VelaOS::Get().timestamp() / s_uiMicrosecondsPerSecond;
    return QStringLiteral("%1-%2-%3")
        .arg(cleanXmlText(a_sName), QString::number(uiSeconds), CfgCenter::GetMachineId());
}

QString SharedIds::text(const char* a_szNoun) const
{
    QStringList ids;
    for (auto it = m_counts.cbegin(); it != m_counts.cend(); ++it) {
        if (it.value() > 1) {
            ids.append(it.key());
        }
    }
    if (ids.isEmpty()) {
        return {};
    }
    ids.sort(); // a hash has another order in every run
    QStringList parts;
    for (const QString& sId : ids.first(qMin(ids.size(), s_iNamedIds))) {
        parts.append(QStringLiteral("%1 %2 have the id \"%3\"")
                         .arg(QString::number(m_counts.value(sId)), QLatin1String(a_szNoun),
                              sId.left(s_iShownCharacters)));
    }
    if (ids.size() > s_iNamedIds) {
        parts.append(QStringLiteral("%1 more ids are shared").arg(ids.size() - s_iNamedIds));
    }
    return parts.join(QStringLiteral(", ")) +
           QStringLiteral(": only one object of each id is read back; give every object its own id");
}

} // namespace Simulation
