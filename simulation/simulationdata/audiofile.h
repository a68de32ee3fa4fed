#ifndef SIMULATIONDATA_AUDIOFILE_H
#define SIMULATIONDATA_AUDIOFILE_H

#include "simulationdata/simulationdata_export.h"
#include "simulationdata/wavefilereader.h"

#include <QMutex>
#include <QString>

#include <cstdint>
#include <vector>

namespace Simulation {

/// The audio signal of a signal package. The file is a wave file of one channel at
/// 32,000 frames per second with 16-bit or 8-bit PCM samples. The signal repeats
/// over the length of the recording.
///
/// Any thread may call. Every operation holds the file's lock, so calls wait for
/// each other. Before a successful open() the file has no samples.
class SIMULATIONDATA_EXPORT AudioFile
{
public:
    /// Does not open the file.
    explicit AudioFile(const QString& a_sPath);
    AudioFile(const AudioFile&) = delete;
    AudioFile& operator=(const AudioFile&) = delete;
    ~AudioFile() = default;

    /// Opens the file and reads its header. A file that is open already is opened
    /// again. On failure, returns false after one trace; the file is then closed, and
    /// errorString() has the error text.
    [[nodiscard]] bool open();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after success.
    [[nodiscard]] QString errorString() const;

    /// Length of the recording (ms, rounded down).
    [[nodiscard]] std::uint32_t length() const;

    /// Duration of the signal package (ms); 0 when it was never set. The value is
    /// stored for callers and has no effect here.
    [[nodiscard]] std::uint32_t packageDuration() const;
    void setPackageDuration(unsigned int a_uiDuration);

    /// Returns `a_uiCount` samples from frame `a_uiStart` on (a frame lasts 1/32
    /// ms). Positions past the end of the recording continue at its start, as often
    /// as necessary. 8-bit samples are widened to 16 bits.
    ///
    /// Returns an empty vector when `a_uiCount` is 0. Also returns an empty vector,
    /// after one trace, when the file has no samples or cannot be read, or when the
    /// samples exceed Limits::DataBytes.
    [[nodiscard]] std::vector<std::int16_t> readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount);

private:
    [[nodiscard]] QString errorText(std::uint64_t a_uiCount) const;
    [[nodiscard]] bool readOnce(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                std::vector<std::int16_t>& a_samples);

    mutable QMutex m_mutex;
    QString m_sPath;
    QString m_sError;
    WaveFileReader m_reader;
    std::uint32_t m_uiPackageDuration = 0;
};

} // namespace Simulation

#endif
