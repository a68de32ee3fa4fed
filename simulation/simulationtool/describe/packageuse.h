#ifndef SIMULATIONTOOL_PACKAGEUSE_H
#define SIMULATIONTOOL_PACKAGEUSE_H

#include "forwardingpackages.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace SimulationTool {

/// Forwards to another provider. Records the ids that a scenario requested, and those
/// of them that the provider does not know. The loaded emissions name only the
/// replacement packages, not the unknown ids. Used on the provider's thread.
class PackageUse : public ForwardingPackages
{
public:
    /// The provider is not owned and must outlive this object.
    explicit PackageUse(Simulation::ISignalPackageProvider& a_provider);

    /// Forgets the recorded ids, before another scenario is loaded.
    void clear();

    /// A warning for the user: the number and ids of the unknown packages, and whether the
    /// default package replaces them. Empty when all are known.
    [[nodiscard]] QString warning();

    std::shared_ptr<Simulation::SignalPackage> signalPackage(const QString& a_sId) override;

private:
    QSet<QString> m_ids; ///< requested ids
    QStringList m_unknown;
};

} // namespace SimulationTool

#endif
