#ifndef SIMULATIONDATA_SIGNALSHAPEFILE_H
#define SIMULATIONDATA_SIGNALSHAPEFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

class QFile;

namespace Simulation {

class RecordBuffer;

/// Reads a signal shape file, "Signal.ssf": power spectra of a signal, taken at
/// a fixed rate. The recorded sequence repeats over the duration of the signal
/// package, which must be set before the first spectrum is read.
///
/// One object may be shared by threads: every operation locks. Only the vector
/// behind spectrum() is not guarded: open() and readSpectrum() on another
/// thread change it under a reader's eyes, as they change the levels between
/// two calls. A new object is closed and all its values are 0.
///
/// The values of the header stay after close(); a failed open() sets them to 0.
class SIMULATIONDATA_EXPORT SignalShapeFile
{
public:
    /// Nothing is opened or read yet.
    explicit SignalShapeFile(const QString& a_sPath);
    ~SignalShapeFile();
    SignalShapeFile(const SignalShapeFile&) = delete;
    SignalShapeFile& operator=(const SignalShapeFile&) = delete;

    /// Opens the file, anew if it is open, and reads its header. The spectrum
    /// and its levels are 0 until one is read. False after one trace: the file
    /// is closed and the spectrum empty. A file that has no record for any time
    /// (a count or the rate is 0, or a record takes less than a millisecond)
    /// opens with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    /// 2 once the file was opened.
    [[nodiscard]] std::uint32_t version() const;
    /// (Hz)
    [[nodiscard]] std::uint32_t bandwidth() const;
    /// As the file has it, not checked to be a number.
    [[nodiscard]] float basePower() const;
    /// Records as the header counts them; the file may hold fewer.
    [[nodiscard]] std::uint64_t recordCount() const;
    [[nodiscard]] std::uint32_t recordsPerSecond() const;
    [[nodiscard]] std::uint32_t pointsPerSpectrum() const;

    /// Length of the recorded sequence (ms): whole milliseconds of a record
    /// times the records. Wraps round at 32 bits.
    [[nodiscard]] std::uint32_t duration() const;

    /// How many bytes the file had fewer at open() than its header claims: 0
    /// when it is whole, negative when it had more. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// The period (ms) after which the signal starts again from the first
    /// record. 0, which it is at first, lets readSpectrum() do nothing.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// Loads the spectrum for a time (ms since the start of the package). A time
    /// within the loaded record costs no file access. Does nothing while the
    /// file is closed or the package duration is 0, and when the file has no
    /// record for any time.
    /// Where the file ends too early, what it holds replaces the old values,
    /// the others stay; the first of such reads in a row is traced.
    void readSpectrum(std::uint32_t a_uiTime);

    /// The loaded spectrum, pointsPerSpectrum() values. The reference is valid
    /// as long as the object.
    [[nodiscard]] const std::vector<float>& spectrum() const { return m_spectrum; }

    /// The smaller of the record's two levels, despite the name, which is part
    /// of the interface.
    [[nodiscard]] float maxLevelInSpectrum() const;
    /// The larger of the record's two levels.
    [[nodiscard]] float signalLevelInSpectrum() const;

private:
    void reset();
    [[nodiscard]] bool readGlobalHeader();
    [[nodiscard]] bool checkSpectrumSize(std::uint64_t a_uiFileSize);
    [[nodiscard]] bool hasRecords() const;
    [[nodiscard]] std::uint64_t posInFile(std::uint32_t a_uiTime) const;
    [[nodiscard]] bool readRecord(std::uint64_t a_uiPos);
    void takeLevels(const char* a_pRecord);

    template<typename Value>
    [[nodiscard]] Value locked(const Value& a_value) const
    {
        const std::lock_guard lock(m_mutex);
        return a_value;
    }

    std::unique_ptr<QFile> m_pFile;
    std::unique_ptr<RecordBuffer> m_pRecords;
    std::uint64_t m_uiRecordCount = 0;
    std::uint32_t m_uiRecordsPerSecond = 0;
    std::uint32_t m_uiRecordDuration = 0; ///< (ms)
    std::uint32_t m_uiPointsPerSpectrum = 0;
    std::uint32_t m_uiRecordSize = 0; ///< (bytes)
    std::uint32_t m_uiVersion = 0;
    std::uint32_t m_uiBandwidth = 0;
    float m_fBasePower = 0.0F;
    std::vector<float> m_spectrum;
    float m_fMaxLevel = 0.0F;
    float m_fSignalLevel = 0.0F;
    std::uint64_t m_uiCurrentPos = 0; ///< 0: no record is loaded
    std::uint32_t m_uiPackageDuration = 0;
    std::int64_t m_iMissingBytes = 0;
    bool m_bTruncated = false; ///< the last read was too short
    QString m_sError;
    mutable std::mutex m_mutex;
};

} // namespace Simulation

#endif
