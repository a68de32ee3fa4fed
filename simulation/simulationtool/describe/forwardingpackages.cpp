#include "forwardingpackages.h"

#include <utility>

namespace SimulationTool {

bool ForwardingPackages::validSignalPackageId(const QString& a_sId)
{
    return m_pProvider->validSignalPackageId(a_sId);
}

std::shared_ptr<Simulation::SignalPackage> ForwardingPackages::signalPackage(const QString& a_sId)
{
    return m_pProvider->signalPackage(a_sId);
}

std::shared_ptr<Simulation::SignalPackage> ForwardingPackages::defaultSignalPackage()
{
    return m_pProvider->defaultSignalPackage();
}

Simulation::SignalShapeFile*
ForwardingPackages::signalShapeFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage)
{
    return m_pProvider->signalShapeFile(std::move(a_pPackage));
}

Simulation::AudioFile* ForwardingPackages::audioFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage)
{
    return m_pProvider->audioFile(std::move(a_pPackage));
}

Simulation::SymbolDataFile*
ForwardingPackages::symbolDataFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage)
{
    return m_pProvider->symbolDataFile(std::move(a_pPackage));
}

Simulation::ResultDataFile*
ForwardingPackages::resultDataFile(std::shared_ptr<Simulation::SignalPackage> a_pPackage)
{
    return m_pProvider->resultDataFile(std::move(a_pPackage));
}

} // namespace SimulationTool
