#include "recordedpackage.h"

#include "audioresampler.h"
#include "console/interruption.h"
#include "console/progress.h"
#include "recording.h"
#include "spectrumanalyser.h"

#include "simulationdata/signalpackagefolder.h"
#include "simulationdata/signalshapewriter.h"
#include "simulationdata/wavefilewriter.h"

#include "kpbase/replacedfile.h"

#include <atomic>

namespace SimulationTool {

namespace {

using Simulation::SignalPackageFolder;

constexpr std::uint32_t s_uiMsPerSecond = 1'000;
constexpr std::uint64_t s_uiPercent = 100;

/// The power of the value 1 in the spectra: that of a sine of full scale.
constexpr float s_fBasePower = 1.0F;

/// The spectra and the audio of one package while they are written.
class RecordedFiles
{
public:
    explicit RecordedFiles(const RecordedPackage& a_package)
        : m_shape(SignalPackageFolder::signalShapeFilePath(a_package.folder))
        , m_audio(SignalPackageFolder::audioFilePath(a_package.folder))
        , m_bAudio(a_package.audio)
        , m_layout(a_package.layout)
        , m_analyser(m_layout,
                     [this](std::span<const float> a_spectrum) {
                         return m_shape.write(Simulation::SignalShapeWriter::record(a_spectrum));
                     })
        , m_resampler(m_bAudio ? m_layout.frames : 0, m_bAudio ? m_layout.rate : AudioResampler::s_uiRate,
                      [this](std::span<const std::int16_t> a_samples) {
                          return m_audio.write(Simulation::WaveFileWriter::samples(a_samples));
                      })
    {}

    [[nodiscard]] bool open();
    [[nodiscard]] bool add(const std::vector<Sample>& a_block)
    {
        return m_analyser.add(a_block) && (!m_bAudio || m_resampler.add(a_block));
    }
    [[nodiscard]] bool commit()
    {
        return m_shape.commit() && (!m_bAudio || (m_resampler.finish() && m_audio.commit()));
    }
    [[nodiscard]] QString errorString() const
    {
        return m_shape.errorString().isEmpty() ? QStringLiteral("Signal.wav: ") + m_audio.errorString()
                                               : QStringLiteral("Signal.ssf: ") + m_shape.errorString();
    }

private:
    ReplacedFile m_shape;
    ReplacedFile m_audio;
    bool m_bAudio;
    SpectrumLayout m_layout;
    SpectrumAnalyser m_analyser;
    AudioResampler m_resampler;
};

bool RecordedFiles::open()
{
    const QByteArray shapeHeader =
        Simulation::SignalShapeWriter::header({m_layout.bandwidth, s_fBasePower, m_layout.records,
                                               s_uiMsPerSecond / m_layout.step, m_layout.points});
    if (!m_shape.open() || !m_shape.write(shapeHeader)) {
        return false;
    }
    if (!m_bAudio) {
        return true;
    }
    const std::uint64_t uiSamples = AudioResampler::outputFrames(m_layout.frames, m_layout.rate);
    return m_audio.open() && m_audio.write(Simulation::WaveFileWriter::header(
                                 static_cast<std::uint32_t>(uiSamples), AudioResampler::s_uiRate));
}

} // namespace

bool writeRecordedFiles(Recording& a_recording, const RecordedPackage& a_package, QString& a_sError)
{
    const SpectrumLayout& layout = a_package.layout;
    if (a_package.audio && AudioResampler::outputFrames(layout.frames, layout.rate) >
                               Simulation::WaveFileWriter::s_uiMaxSamples) {
        a_sError = a_package.recordingName +
                   QStringLiteral(": lasts more than 18.6 hours, which the audio of a package cannot: give a "
                                  "shorter recording");
        return false;
    }
    std::atomic<std::uint64_t> done = 0;
    const Progress progress(QStringLiteral("analysing ") + a_package.recordingName,
                            [&] { return QStringLiteral("%1 %").arg(done * s_uiPercent / layout.frames); });
    RecordedFiles files(a_package);
    bool bOk = files.open();
    std::vector<Sample> block;
    while (bOk && done < layout.frames) {
        if (isInterrupted()) {
            return false;
        }
        if (!a_recording.readBlock(block)) {
            a_sError = a_package.recordingName + QStringLiteral(": ") + a_recording.errorString();
            return false;
        }
        bOk = files.add(block);
        done += block.size();
    }
    if (isInterrupted()) {
        return false;
    }
    if (!bOk || !files.commit()) {
        a_sError = a_package.packageName + QStringLiteral(": ") + files.errorString();
        return false;
    }
    return true;
}

} // namespace SimulationTool
