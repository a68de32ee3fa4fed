#ifndef SIMULATIONTOOL_FORWARDINGPACKAGES_H
#define SIMULATIONTOOL_FORWARDINGPACKAGES_H

#include "simulationdata/isignalpackageprovider.h"

#include <memory>

namespace SimulationTool {

/// Forwards every question to another provider of packages. A derived class
/// overrides what it observes.
///
/// It must not be asked before it has that provider.
class ForwardingPackages : public Simulation::ISignalPackageProvider
{
public:
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

protected:
    /// The provider is not owned and must live as long as this object is asked.
    explicit ForwardingPackages(Simulation::ISignalPackageProvider* a_pProvider = nullptr)
        : m_pProvider(a_pProvider)
    {}

    void setProvider(Simulation::ISignalPackageProvider* a_pProvider) { m_pProvider = a_pProvider; }

private:
    Simulation::ISignalPackageProvider* m_pProvider;
};

} // namespace SimulationTool

#endif
