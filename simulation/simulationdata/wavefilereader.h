#ifndef SIMULATIONDATA_WAVEFILEREADER_H
#define SIMULATIONDATA_WAVEFILEREADER_H

#include "simulationdata/simulationdata_export.h"

#include <QFile>
#include <QList>
#include <QString>

#include <cstdint>
#include <vector>

namespace Simulation {

struct WaveContents;

/// Reads the format, ranges of samples, and the cue points with their labels from a
/// RIFF/WAVE file. Supports PCM samples (format tag 1), and extensible files (tag
/// 65534) of PCM or floating-point samples.
///
/// A reader may be used by one thread at a time. Before the first successful open()
/// and after close() it describes an empty file: no frames, a format of zeros, no
/// cue points.
class SIMULATIONDATA_EXPORT WaveFileReader
{
public:
    struct Format
    {
        std::uint16_t channels = 0;
        std::uint32_t sampleRate = 0;    ///< frames per second
        std::uint16_t blockAlign = 0;    ///< bytes per sample frame
        std::uint16_t bitsPerSample = 0; ///< per channel
    };

    struct CuePoint
    {
        std::uint32_t id = 0;
        std::uint32_t position = 0; ///< frames from the start of the data
        QString label;              ///< empty when the file has no label for this id
    };

    /// Does not open the file.
    explicit WaveFileReader(const QString& a_sPath);
    WaveFileReader(const WaveFileReader&) = delete;
    WaveFileReader& operator=(const WaveFileReader&) = delete;
    ~WaveFileReader();

    /// Reads everything except the samples. An open file is closed first. On failure
    /// writes one trace and returns false. The reader is then closed, and
    /// errorString() has the error text. A data chunk that ends after the end of the
    /// file is truncated there, see missingBytes().
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after success.
    [[nodiscard]] QString errorString() const;

    /// Number of complete sample frames in the file.
    [[nodiscard]] std::uint32_t length() const;
    [[nodiscard]] const Format& format() const { return m_format; }

    /// The cue points in ascending order of their ids. Each id occurs once.
    [[nodiscard]] const QList<CuePoint>& cuePoints() const { return m_cuePoints; }

    /// How many bytes the file lacks compared with the size of its data chunk. 0
    /// when the file is complete.
    [[nodiscard]] std::int64_t missingBytes() const { return m_iMissingBytes; }

    /// Reads `a_uiCount` frames from frame `a_uiStart` on. The result contains
    /// frames times channels values; the channels of a frame are adjacent. When the
    /// range runs past the end, the start is first taken modulo length(). Reading
    /// fails when the range then still runs past the end, is empty, or exceeds
    /// Limits::DataBytes.
    ///
    /// On failure returns false after one trace, and the vector is empty. The memory
    /// of the passed vector is reused.
    ///
    /// This overload reads 16-bit PCM.
    [[nodiscard]] bool readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                   std::vector<std::int16_t>& a_samples);

    /// Works like the first overload, but reads 8-bit PCM. The value 128 is silence.
    [[nodiscard]] bool readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                   std::vector<std::uint8_t>& a_samples);

    /// Works like the first overload, but returns floats. 32-bit floating-point
    /// samples are returned unchanged, also infinite ones and NaN. 16-bit and 8-bit
    /// PCM samples are scaled to [-1, 1): sample / 32768 and (sample - 128) / 128.
    [[nodiscard]] bool readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                   std::vector<float>& a_samples);

private:
    struct Range;

    void take(const WaveContents& a_contents);
    [[nodiscard]] bool findRange(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                 std::uint64_t a_uiValueBytes, Range* a_pRange, QString* a_pReason) const;
    template<typename Value>
    [[nodiscard]] bool readRange(std::uint64_t a_uiStart, std::uint64_t a_uiCount, bool a_bFits,
                                 std::vector<Value>& a_samples);
    [[nodiscard]] bool isPcm(std::uint16_t a_uiBits) const;

    QFile m_file;
    QString m_sError;
    Format m_format;
    bool m_bFloat = false; ///< whether the samples are floating-point numbers
    std::int64_t m_iDataOffset = 0;
    std::int64_t m_iDataSize = 0; ///< bytes that the file really contains
    std::int64_t m_iMissingBytes = 0;
    QList<CuePoint> m_cuePoints;
};

} // namespace Simulation

#endif
