#ifndef SIMULATIONDATA_UNRESOLVEDSIGNALPACKAGEPROVIDER_H
#define SIMULATIONDATA_UNRESOLVEDSIGNALPACKAGEPROVIDER_H

#include "simulationdata/isignalpackageprovider.h"
#include "simulationdata/simulationdata_export.h"

#include <QHash>
#include <QString>

#include <memory>

namespace Simulation {

/// The provider for documents that are loaded without a repository. For this provider
/// no id is valid, and there are neither a default package nor data files. The provider
/// keeps one package per requested id, so that saving a loaded document writes the same
/// ids. May be used by one thread at a time.
class SIMULATIONDATA_EXPORT UnresolvedSignalPackageProvider : public ISignalPackageProvider
{
public:
    /// Always false.
    bool validSignalPackageId(const QString& a_sId) override;

    /// Returns a package that has this id and is otherwise empty. Returns the same
    /// package for the same id, and null for an empty id.
    std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) override;

    /// Always null: this provider has neither a default package nor data files.
    std::shared_ptr<SignalPackage> defaultSignalPackage() override;
    SignalShapeFile* signalShapeFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    AudioFile* audioFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    SymbolDataFile* symbolDataFile(std::shared_ptr<SignalPackage> a_pPackage) override;
    ResultDataFile* resultDataFile(std::shared_ptr<SignalPackage> a_pPackage) override;

private:
    QHash<QString, std::shared_ptr<SignalPackage>> m_packages; ///< by id
};

} // namespace Simulation

#endif
