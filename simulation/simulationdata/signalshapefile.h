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

/// Reads a signal shape file, "Signal.ssf": power spectra of a signal, taken at a
/// fixed rate. The recorded sequence repeats for the duration of the signal package.
/// After that duration the signal starts again. Set the package duration before
/// reading the first spectrum.
///
/// Any thread may call; every operation locks. Only the vector that spectrum()
/// returns is not protected: open() and readSpectrum() on another thread may change
/// the vector while it is read. They may also change the levels between two calls.
/// In a new object the file is closed and all values are 0.
///
/// The values of the header stay after close(). A failed open() sets them to 0.
class SIMULATIONDATA_EXPORT SignalShapeFile
{
public:
    /// Does not open the file.
    explicit SignalShapeFile(const QString& a_sPath);
    ~SignalShapeFile();
    SignalShapeFile(const SignalShapeFile&) = delete;
    SignalShapeFile& operator=(const SignalShapeFile&) = delete;

    /// Opens the file and reads its header. A file that is open already is opened
    /// again. The spectrum and its levels are 0 until a spectrum is read. On failure,
    /// returns false after one trace; the file is then closed and the spectrum empty.
    ///
    /// A file without a usable record is opened with one trace. In such a file the
    /// number of records, the number of points or the rate is 0, or a record lasts
    /// less than a millisecond.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    /// The version of the file format: 2 after a successful open().
    [[nodiscard]] std::uint32_t version() const;
    /// Bandwidth of the signal (Hz).
    [[nodiscard]] std::uint32_t bandwidth() const;
    /// The base power as stored in the file; may be any float, also infinite or not a
    /// number.
    [[nodiscard]] float basePower() const;
    /// Number of records according to the header; the file may hold fewer.
    [[nodiscard]] std::uint64_t recordCount() const;
    [[nodiscard]] std::uint32_t recordsPerSecond() const;
    [[nodiscard]] std::uint32_t pointsPerSpectrum() const;

    /// Length of the recorded sequence (ms): the length of a record in whole
    /// milliseconds times the number of records, modulo 2^32.
    [[nodiscard]] std::uint32_t duration() const;

    /// How many bytes the file lacked at open() compared with its header. 0 when the
    /// file is complete, negative when it had more bytes. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Sets the period (ms) after which the signal starts again with the first
    /// record. The initial value is 0, with which readSpectrum() has no effect.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// Loads the spectrum for a time (ms since the start of the package). A time
    /// within the loaded record needs no file access. Has no effect while the file
    /// is closed or the package duration is 0, or when the file has no usable record.
    ///
    /// When the file ends within the record, the values in the file are loaded and
    /// the others stay unchanged. Of several such reads in a row, only the first is
    /// traced.
    void readSpectrum(std::uint32_t a_uiTime);

    /// The loaded spectrum, pointsPerSpectrum() values. The reference is valid as
    /// long as the object exists.
    [[nodiscard]] const std::vector<float>& spectrum() const { return m_spectrum; }

    /// The smaller of the record's two levels. The name does not match, but it is
    /// part of the interface.
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
    std::uint64_t m_uiCurrentPos = 0; ///< offset of the loaded record; 0 = none
    std::uint32_t m_uiPackageDuration = 0;
    std::int64_t m_iMissingBytes = 0;
    bool m_bTruncated = false; ///< whether the last read was too short
    QString m_sError;
    mutable std::mutex m_mutex;
};

} // namespace Simulation

#endif
