#ifndef SIMULATIONTOOL_RECORDING_H
#define SIMULATIONTOOL_RECORDING_H

#include <QString>

#include <complex>
#include <cstdint>
#include <memory>
#include <vector>

namespace SimulationTool {

/// One frame of a recording: I and Q as the real and imaginary part. The imaginary part
/// of a real recording is 0. The amplitude 1 is full scale.
using Sample = std::complex<float>;

/// The number format of raw I/Q samples. All are little-endian, I before Q.
enum class IqFormat {
    Signed16,  ///< -32768 to 32767; 32768 is full scale
    Float32,   ///< 1 is full scale
    Unsigned8, ///< 0 to 255; the zero level is 127.5, and full scale is 127.5 away from it
};

/// A recording that is read once from its start to its end, in blocks. Every value that
/// it returns is finite. Belongs to one thread.
class Recording
{
public:
    Recording() = default;
    virtual ~Recording() = default;
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Reads and checks the header, or the size of a file without one. Returns false with
    /// errorString() for anything but a whole recording with at least one frame.
    [[nodiscard]] virtual bool open() = 0;
    /// The number of frames; valid after open().
    [[nodiscard]] virtual std::uint64_t frames() const = 0;
    /// Frames per second; valid after open().
    [[nodiscard]] virtual std::uint32_t rate() const = 0;
    /// Whether the frames are real numbers, not I/Q pairs.
    [[nodiscard]] virtual bool isReal() const = 0;

    /// Replaces the block by the next frames, at most 65,536. An empty block is the end.
    /// Returns false with errorString() when the file cannot be read, or when a value is
    /// not a number or far beyond full scale.
    [[nodiscard]] bool readBlock(std::vector<Sample>& a_block);

    /// What is wrong and what to do; without the name of the file.
    [[nodiscard]] QString errorString() const { return m_sError; }

protected:
    /// Fills the block, whose size is the number of frames, from a frame on. Returns false
    /// after fail().
    [[nodiscard]] virtual bool readFrames(std::uint64_t a_uiFirst, std::vector<Sample>& a_block) = 0;
    /// The largest block that readFrames() reads at once (frames).
    [[nodiscard]] virtual std::uint64_t blockFrames() const;
    /// Sets the error text and returns false.
    bool fail(const QString& a_sReason);

private:
    [[nodiscard]] bool checkValues(const std::vector<Sample>& a_block);

    std::uint64_t m_uiNext = 0;
    QString m_sError;
};

/// A WAVE file of 8-bit or 16-bit PCM or 32-bit floating-point samples. Its channels are
/// averaged to one.
[[nodiscard]] std::unique_ptr<Recording> waveRecording(const QString& a_sFile);

/// A file of raw interleaved I/Q samples at `a_uiRate` frames per second.
[[nodiscard]] std::unique_ptr<Recording> iqRecording(const QString& a_sFile, IqFormat a_eFormat,
                                                     std::uint32_t a_uiRate);

} // namespace SimulationTool

#endif
