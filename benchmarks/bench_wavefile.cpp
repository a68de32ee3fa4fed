#include "comparison.h"

#include "simulationdata/pdwfile.h"
#include "simulationdata/wavefilereader.h"

#include <QFile>
#include <QTemporaryDir>
#include <sndfile.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

using namespace Simulation;

struct CPackedPDW
{
    std::array<char, PDWFile::s_uiRecordBytes> bytes{};
};

namespace {

constexpr int s_iFramesPerBlock = 32'000;
constexpr int s_iWaveBlocks = 1'000;
constexpr int s_iSampleRate = 32'000;
constexpr int s_iPulseBlocks = 2'000;
constexpr std::size_t s_uiPulseBlockBytes =
    std::size_t{PDWFile::s_uiRecordsPerBlock} * PDWFile::s_uiRecordBytes;

bool writeWave(const QByteArray& a_path)
{
    SF_INFO info{};
    info.samplerate = s_iSampleRate;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* pFile = sf_open(a_path.constData(), SFM_WRITE, &info);
    std::vector<short> block(s_iFramesPerBlock);
    bool bWhole = pFile != nullptr;
    for (int i = 0; bWhole && i < s_iWaveBlocks; ++i) {
        for (std::size_t j = 0; j < block.size(); ++j) {
            block[j] = static_cast<short>(j * 31 + static_cast<std::size_t>(i));
        }
        bWhole = sf_writef_short(pFile, block.data(), s_iFramesPerBlock) == s_iFramesPerBlock;
    }
    return bWhole && sf_close(pFile) == 0;
}

std::int64_t readBare(const QByteArray& a_path, std::vector<short>& a_block)
{
    SF_INFO info{};
    SNDFILE* pFile = sf_open(a_path.constData(), SFM_READ, &info);
    std::int64_t iFrames = 0;
    sf_count_t iRead = s_iFramesPerBlock;
    while (iRead == s_iFramesPerBlock) {
        iRead = sf_readf_short(pFile, a_block.data(), s_iFramesPerBlock);
        iFrames += iRead;
        benchmark::DoNotOptimize(a_block.data());
    }
    sf_close(pFile);
    return iFrames;
}

std::int64_t readOurs(const QByteArray& a_path, std::vector<std::int16_t>& a_block)
{
    WaveFileReader reader(QFile::decodeName(a_path));
    std::int64_t iFrames = 0;
    for (std::uint64_t uiStart = 0; reader.isOpen() || reader.open(); uiStart += s_iFramesPerBlock) {
        if (uiStart >= reader.length() || !reader.readSamples(uiStart, s_iFramesPerBlock, a_block)) {
            break;
        }
        iFrames += s_iFramesPerBlock;
        benchmark::DoNotOptimize(a_block.data());
    }
    return iFrames;
}

void readSamples(benchmark::State& a_state)
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("Signal.wav")));
    std::vector<std::int16_t> block(s_iFramesPerBlock);
    constexpr std::int64_t iFrames = std::int64_t{s_iFramesPerBlock} * s_iWaveBlocks;
    if (!writeWave(path) || readBare(path, block) != iFrames || readOurs(path, block) != iFrames) {
        a_state.SkipWithError("The wave file cannot be written, or is not read whole");
        return;
    }
    compare(
        a_state, iFrames * std::int64_t{sizeof(std::int16_t)},
        [&] { benchmark::DoNotOptimize(readBare(path, block)); },
        [&] { benchmark::DoNotOptimize(readOurs(path, block)); });
}
BENCHMARK(readSamples)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

/// Writes prepared blocks with the C library.
void writeBare(const QByteArray& a_path, const std::vector<char>& a_header, const std::vector<char>& a_block)
{
    std::FILE* pFile = std::fopen(a_path.constData(), "wb");
    for (int i = 0; i < s_iPulseBlocks; ++i) {
        std::fwrite(a_header.data(), 1, a_header.size(), pFile);
        std::fwrite(a_block.data(), 1, a_block.size(), pFile);
    }
    std::fclose(pFile);
}

void writeOurs(const QByteArray& a_path, const CPackedPDW& a_pulse)
{
    PDWFile file(QFile::decodeName(a_path), true, true);
    const int iPulses = s_iPulseBlocks * static_cast<int>(PDWFile::s_uiRecordsPerBlock);
    for (int i = 0; i < iPulses; ++i) {
        file.addPDW(&a_pulse);
    }
}

void writePulseWords(benchmark::State& a_state)
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("pulses.pdw")));
    const std::vector<char> header(PDWFile::s_uiHeaderBytes, 'h');
    const std::vector<char> block(s_uiPulseBlockBytes, 'p');
    CPackedPDW pulse;
    pulse.bytes.fill('p');
    constexpr std::size_t uiBytes = (s_uiPulseBlockBytes + PDWFile::s_uiHeaderBytes) * s_iPulseBlocks;
    writeOurs(path, pulse);
    if (QFile(QFile::decodeName(path)).size() != static_cast<qint64>(uiBytes)) {
        a_state.SkipWithError("The pulse word file is not whole");
        return;
    }
    compare(
        a_state, static_cast<std::int64_t>(uiBytes), [&] { writeBare(path, header, block); },
        [&] { writeOurs(path, pulse); });
}
BENCHMARK(writePulseWords)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

} // namespace
