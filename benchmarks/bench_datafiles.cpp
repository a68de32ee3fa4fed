#include "comparison.h"

#include "simulationdata/signalshapefile.h"
#include "simulationdata/symboldatafile.h"

#include <QDataStream>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <vector>

using namespace Simulation;

namespace {

/// A data file with a valid header and arbitrary data.
class ScratchFile
{
public:
    ScratchFile(const QByteArray& a_header, qsizetype a_iBytes)
        : m_sPath(m_folder.filePath(QStringLiteral("data")))
    {
        QFile file(m_sPath);
        const bool bWritten = file.open(QIODevice::WriteOnly) && file.write(a_header) == a_header.size() &&
                              file.write(QByteArray(a_iBytes, 'x')) == a_iBytes;
        if (!bWritten) {
            qFatal("Cannot write the scratch file");
        }
    }

    [[nodiscard]] const QString& path() const { return m_sPath; }

private:
    QTemporaryDir m_folder;
    QString m_sPath;
};

template<typename... Fields>
QByteArray headerOf(const char* a_szMagic, const Fields&... a_fields)
{
    QByteArray header(a_szMagic);
    QDataStream stream(&header, QIODevice::Append);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    (stream << ... << a_fields);
    return header;
}

/// Reads the bytes after the header with the C library, piece by piece. Returns their
/// number.
std::size_t readBare(const QString& a_sPath, qsizetype a_iHeaderBytes, std::vector<char>& a_piece)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pFile(std::fopen(qPrintable(a_sPath), "rb"),
                                                                &std::fclose);
    std::fseek(pFile.get(), static_cast<long>(a_iHeaderBytes), SEEK_SET);
    std::size_t uiBytes = 0;
    while (const std::size_t uiRead = std::fread(a_piece.data(), 1, a_piece.size(), pFile.get())) {
        uiBytes += uiRead;
        benchmark::DoNotOptimize(a_piece.data());
    }
    return uiBytes;
}

/// Reads all spectra of a file in order; the argument is the number of points per
/// spectrum.
void readSpectra(benchmark::State& a_state)
{
    constexpr quint32 uiRecordMs = 100;
    constexpr qsizetype iAbout = qsizetype{32} * 1024 * 1024;
    const auto uiPoints = static_cast<quint32>(a_state.range(0));
    const qsizetype iRecordBytes = 16 + qsizetype{4} * uiPoints;
    const auto uiRecords = static_cast<quint32>(iAbout / iRecordBytes);
    const qsizetype iBytes = uiRecords * iRecordBytes;
    const QByteArray header =
        headerOf("T&K-SSF", quint32{2}, quint32{10'000}, 1.0F, quint64{uiRecords}, quint32{10}, uiPoints);
    const ScratchFile file(header, iBytes);

    std::vector<char> record(static_cast<std::size_t>(iRecordBytes));
    compare(
        a_state, iBytes,
        [&] {
            if (readBare(file.path(), header.size(), record) != static_cast<std::size_t>(iBytes)) {
                a_state.SkipWithError("bytes are missing");
            }
        },
        [&] {
            SignalShapeFile shape(file.path());
            if (!shape.open() || shape.missingBytes() != 0) {
                a_state.SkipWithError("not whole");
                return;
            }
            shape.setPackageDuration(shape.duration());
            for (quint32 i = 0; i < uiRecords; ++i) {
                shape.readSpectrum(i * uiRecordMs);
                benchmark::DoNotOptimize(shape.spectrum().data());
            }
        });
}
BENCHMARK(readSpectra)
    ->Arg(256)
    ->Arg(512)
    ->Arg(8192)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0);

/// Reads all symbols of a file in order, one second per call; the argument is the symbol
/// rate (1/s).
void readSymbols(benchmark::State& a_state)
{
    constexpr quint32 uiSpanMs = 1000;
    constexpr quint32 uiBytes = 32 * 1024 * 1024;
    const auto uiRate = static_cast<quint32>(a_state.range(0));
    const QByteArray header = headerOf("T&K-SDF", quint32{0}, quint64{0}, quint64{0}, quint8{2}, quint8{0},
                                       static_cast<float>(uiRate), quint64{uiBytes});
    const ScratchFile file(header, uiBytes);

    std::vector<char> piece(uiRate);
    compare(
        a_state, uiBytes,
        [&] {
            if (readBare(file.path(), header.size(), piece) != uiBytes) {
                a_state.SkipWithError("bytes are missing");
            }
        },
        [&] {
            SymbolDataFile symbols(file.path());
            std::size_t uiRead = 0;
            if (symbols.open()) {
                for (quint32 i = 0; i < uiBytes / uiRate; ++i) {
                    uiRead += symbols.readSymbols(i * uiSpanMs, uiSpanMs).size();
                }
            }
            if (uiRead != uiBytes) {
                a_state.SkipWithError("symbols are missing");
            }
        });
}
BENCHMARK(readSymbols)->Arg(2048)->Arg(65536)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
