#include "packageuse.h"

#include "console/loglimit.h"
#include "console/valuetexts.h"

namespace SimulationTool {

namespace {

constexpr qsizetype s_iNamedIds = 3;

} // namespace

PackageUse::PackageUse(Simulation::ISignalPackageProvider& a_provider)
    : ForwardingPackages(&a_provider)
{}

void PackageUse::clear()
{
    m_ids.clear();
    m_unknown.clear();
}

QString PackageUse::warning()
{
    if (m_unknown.isEmpty()) {
        return {};
    }
    QStringList named;
    for (const QString& sId : m_unknown.mid(0, s_iNamedIds)) {
        named.append(LogLimit::part(sId));
    }
    const qsizetype iMore = m_unknown.size() - named.size();
    const QString sFate = defaultSignalPackage() != nullptr
                              ? QStringLiteral("replaced by the default package")
                              : QStringLiteral("unknown and without a signal");
    return QStringLiteral("%1 of %2 %3: %4%5")
        .arg(QString::number(m_unknown.size()), counted(static_cast<quint64>(m_ids.size()), "package"), sFate,
             named.join(QStringLiteral(", ")),
             iMore > 0 ? QStringLiteral(" and %1 more").arg(iMore) : QString());
}

std::shared_ptr<Simulation::SignalPackage> PackageUse::signalPackage(const QString& a_sId)
{
    // An emission without a package id uses the default package.
    if (!a_sId.isEmpty() && !m_ids.contains(a_sId)) {
        m_ids.insert(a_sId);
        if (!validSignalPackageId(a_sId)) {
            m_unknown.append(a_sId);
        }
    }
    return ForwardingPackages::signalPackage(a_sId);
}

} // namespace SimulationTool
