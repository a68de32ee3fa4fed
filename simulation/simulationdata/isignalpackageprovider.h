#ifndef SIMULATIONDATA_ISIGNALPACKAGEPROVIDER_H
#define SIMULATIONDATA_ISIGNALPACKAGEPROVIDER_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <memory>

namespace Simulation {

class AudioFile;
class ResultDataFile;
class SignalPackage;
class SignalShapeFile;
class SymbolDataFile;

/// Gives scenario documents access to signal packages and their data files. A
/// document does not own its provider, and the provider must outlive the document.
/// The provider is called on the document's thread. It must not change a document
/// that is being read.
///
/// The order of the operations is part of the binary interface and must not change.
class SIMULATIONDATA_EXPORT ISignalPackageProvider
{
public:
    virtual ~ISignalPackageProvider() = default;

    /// Whether the provider knows the id.
    virtual bool validSignalPackageId(const QString& a_sId) = 0;

    /// The package with that id, or the default package when the id is unknown. Null
    /// only when the id is unknown and there is no default package.
    virtual std::shared_ptr<SignalPackage> signalPackage(const QString& a_sId) = 0;

    /// The package that is used for unknown ids; null when the provider has none.
    virtual std::shared_ptr<SignalPackage> defaultSignalPackage() = 0;

    /// The readers of the package's data files, null when the package has no such
    /// file. The provider owns the readers: callers do not delete them.
    virtual SignalShapeFile* signalShapeFile(std::shared_ptr<SignalPackage> a_pPackage) = 0;
    virtual AudioFile* audioFile(std::shared_ptr<SignalPackage> a_pPackage) = 0;
    virtual SymbolDataFile* symbolDataFile(std::shared_ptr<SignalPackage> a_pPackage) = 0;
    virtual ResultDataFile* resultDataFile(std::shared_ptr<SignalPackage> a_pPackage) = 0;
};

} // namespace Simulation

#endif
