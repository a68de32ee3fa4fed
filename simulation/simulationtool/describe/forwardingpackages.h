#ifndef SIMULATIONTOOL_FORWARDINGPACKAGES_H
#define SIMULATIONTOOL_FORWARDINGPACKAGES_H

#include "simulationdata/isignalpackageprovider.h"

#include <memory>

namespace SimulationTool {

/// Forwards all calls to another provider. A derived class overrides the calls that
/// it observes. The provider must be set before the first call. Used on the
/// provider's thread.
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
    /// The provider is not owned and must outlive all calls.
    explicit ForwardingPackages(Simulation::ISignalPackageProvider* a_pProvider = nullptr)
        : m_pProvider(a_pProvider)
    {}

    void setProvider(Simulation::ISignalPackageProvider* a_pProvider) { m_pProvider = a_pProvider; }

private:
    Simulation::ISignalPackageProvider* m_pProvider;
};

} // namespace SimulationTool

#endif
