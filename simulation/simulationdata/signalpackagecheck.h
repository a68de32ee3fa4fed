#ifndef SIMULATIONDATA_SIGNALPACKAGECHECK_H
#define SIMULATIONDATA_SIGNALPACKAGECHECK_H

#include "simulationdata/simulationdata_export.h"

#include <QList>
#include <QString>

#include <cstdint>

namespace Simulation {

class ResultDataFile;
class SignalPackage;
class SignalShapeFile;
class SymbolDataFile;
class WaveFileReader;

/// What is wrong with one file of a signal package, or with the package as a whole. A
/// default object means that nothing is wrong.
struct SignalPackageProblem
{
    QString file; ///< name in the package's folder, "Signal.ssf"; empty = the whole package
    QString text; ///< what follows the name in a sentence: "truncated by 7 bytes"; empty = no problem
    bool isUnusable = false; ///< whether the file cannot be read at all
};

/// Checks the files of a signal package. Static operations only; any thread may call.
/// Paths may be those that the getters of DataStoreFactory return.
class SIMULATIONDATA_EXPORT SignalPackageCheck
{
public:
    SignalPackageCheck() = delete;

    /// The problems of the package in a folder: a descriptor that cannot be read, data
    /// files that the descriptor describes but the folder lacks, data files that are
    /// truncated or cannot be read, and a signal shape without a duration. Reads the
    /// descriptor and the headers of the data files. Refused files are also traced.
    [[nodiscard]] static QList<SignalPackageProblem> damage(const QString& a_sFolder);

    /// The data files that differ from what the descriptor says about them: its CRC-32
    /// in decimal digits, and its duration, which may be 1 ms off. Values that the
    /// descriptor does not state, or states as 0, are not compared. Reads every data
    /// file with a checksum as a whole. A file that damage() lists is left out.
    [[nodiscard]] static QList<SignalPackageProblem> contradictions(const QString& a_sFolder);

    /// The reason why no package was read from a descriptor file; empty when the package
    /// has an id.
    [[nodiscard]] static QString descriptorError(const SignalPackage& a_package, const QString& a_sFile);

    /// The reason why the spectra of a package cannot be played although they are
    /// readable: they repeat over the package's duration, which is 0. Empty when they
    /// can.
    [[nodiscard]] static QString durationError(const SignalPackage& a_package);

    /// The text for a number of bytes that a header declares but the file lacks; the
    /// number is negative when the file has more bytes. Empty for 0.
    [[nodiscard]] static QString sizeError(std::int64_t a_iMissingBytes);

    /// The problem of one data file, without its name. Call after the reader's open(),
    /// successful or not.
    [[nodiscard]] static SignalPackageProblem problemOf(const SignalShapeFile& a_reader);
    [[nodiscard]] static SignalPackageProblem problemOf(const SymbolDataFile& a_reader);
    [[nodiscard]] static SignalPackageProblem problemOf(const ResultDataFile& a_reader);
    [[nodiscard]] static SignalPackageProblem problemOf(const WaveFileReader& a_reader);
};

} // namespace Simulation

#endif
