#ifndef SIMULATIONTOOL_PACKAGEUSE_H
#define SIMULATIONTOOL_PACKAGEUSE_H

#include "simulationdata/isignalpackageprovider.h"

#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>

namespace SimulationTool {

/// Hands the packages of another provider on, and notes which ids a scenario asked
/// for and which of them that provider does not know: after loading, the emissions
/// themselves only name the packages that replaced those.
class PackageUse : public Simulation::ISignalPackageProvider
{
public:
    /// The provider is not owned and must live longer.
    explicit PackageUse(Simulation::ISignalPackageProvider& a_provider);

    /// Begins with another scenario.
    void clear();

    /// What a user must know of the packages: which were replaced, by number and
    /// id. Empty when all are known.
    [[nodiscard]] QString warning();

    bool validSignalPackageId(const QString& a_sId) override;
    std::shared_ptr<Simulation::SignalPackage> signalPackage(const QString& a_sId) override;
    std::shared_ptr<Simulation::SignalPackage> defaultSignalPackage() override;
    Simulation::SignalShapeFile*
    signalShapeFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage) override;
    Simulation::AudioFile* audioFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage) override;
    Simulation::SymbolDataFile*
    symbolDataFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage) override;
    Simulation::ResultDataFile*
    resultDataFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage) override;

private:
    Simulation::ISignalPackageProvider& m_provider;
    QSet<QString> m_ids; ///< that were asked for
    QStringList m_unknown;
};

} // namespace SimulationTool

#endif
