#include "unresolvedsignalpackageprovider.h"

#include "simulationdata/signalpackage.h"

namespace Simulation {

bool UnresolvedSignalPackageProvider::validSignalPackageId(const QString& /*a_sId*/)
{
    return false;
}

std::shared_ptr<SignalPackage> UnresolvedSignalPackageProvider::signalPackage(const QString& a_sId)
{
    if (a_sId.isEmpty()) {
        return nullptr;
    }
    std::shared_ptr<SignalPackage>& pPackage = m_packages[a_sId];
    if (!pPackage) {
        pPackage = std::make_shared<SignalPackage>();
        pPackage->setId(a_sId);
    }
    return pPackage;
}

std::shared_ptr<SignalPackage> UnresolvedSignalPackageProvider::defaultSignalPackage()
{
    return nullptr;
}

SignalShapeFile*
UnresolvedSignalPackageProvider::signalShapeFile(std::shared_ptr<SignalPackage> /*a_pPackage*/)
{
    return nullptr;
}

AudioFile* UnresolvedSignalPackageProvider::audioFile(std::shared_ptr<SignalPackage> /*a_pPackage*/)
{
    return nullptr;
}

SymbolDataFile* UnresolvedSignalPackageProvider::symbolDataFile(std::shared_ptr<SignalPackage> /*a_pPackage*/)
{
    return nullptr;
}

ResultDataFile* UnresolvedSignalPackageProvider::resultDataFile(std::shared_ptr<SignalPackage> /*a_pPackage*/)
{
    return nullptr;
}

} // namespace Simulation
