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

/// Reads RIFF/WAVE files: the format, ranges of samples, and the cue points
/// with their labels. Files of PCM samples (format tag 1) and extensible files
/// (tag 65534) of PCM or floating-point samples.
///
/// A reader belongs to one thread at a time. Before the first successful open()
/// and after close() it describes an empty file: no frames, a format of zeros,
/// no cue points.
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
        std::uint32_t position = 0; ///< sample offset of the entry: frames from the start of the data
        QString label;              ///< empty when the file has none for this id
    };

    /// Nothing is read before open().
    explicit WaveFileReader(const QString& a_sPath);
    WaveFileReader(const WaveFileReader&) = delete;
    WaveFileReader& operator=(const WaveFileReader&) = delete;
    ~WaveFileReader();

    /// Reads everything but the samples; an open file is closed first and read
    /// afresh. False after one trace, with the reason in errorString(); the
    /// reader is closed then. A data chunk that ends behind the file's end is
    /// cut there, see missingBytes().
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after success.
    [[nodiscard]] QString errorString() const;

    /// Whole sample frames in the file.
    [[nodiscard]] std::uint32_t length() const;
    [[nodiscard]] const Format& format() const { return m_format; }

    /// In ascending order of their ids, each id once.
    [[nodiscard]] const QList<CuePoint>& cuePoints() const { return m_cuePoints; }

    /// How many bytes fewer the file holds than its data chunk claims; 0 when
    /// it is whole.
    [[nodiscard]] std::int64_t missingBytes() const { return m_iMissingBytes; }

    /// Reads `a_uiCount` frames from frame `a_uiStart` on: frames times channels
    /// values, the channels of a frame side by side. Where the range runs past
    /// the end, the start is taken modulo length() once; a range that runs past
    /// it then still, an empty range, and one of more than Limits::DataBytes
    /// fail.
    ///
    /// False after one trace, and then the vector is empty. A vector that is
    /// used again is not allocated again.
    ///
    /// This form reads 16-bit PCM.
    [[nodiscard]] bool readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                   std::vector<std::int16_t>& a_samples);

    /// The same for 8-bit PCM, where 128 is silence.
    [[nodiscard]] bool readSamples(std::uint64_t a_uiStart, std::uint64_t a_uiCount,
                                   std::vector<std::uint8_t>& a_samples);

    /// The same for 32-bit floating-point samples, which are given as they are
    /// (also infinite ones and those that are no number), and for 16-bit and
    /// 8-bit PCM, scaled to [-1, 1).
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
    bool m_bFloat = false; ///< the samples are floating-point numbers
    std::int64_t m_iDataOffset = 0;
    std::int64_t m_iDataSize = 0; ///< bytes that the file really holds
    std::int64_t m_iMissingBytes = 0;
    QList<CuePoint> m_cuePoints;
};

} // namespace Simulation

#endif
