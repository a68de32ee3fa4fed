#ifndef SIMULATIONDATA_SYMBOLDATAFILE_H
#define SIMULATIONDATA_SYMBOLDATAFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace Simulation {

/// Reads a symbol data file, "Signal.sdf". The file holds the symbols of a digital
/// signal, one byte each, at a constant rate. The stream repeats over its own
/// length.
///
/// Any thread may call; every operation locks. In a new object the file is closed
/// and all values are 0. The values of the header stay after close(). A failed
/// open() sets them to 0.
class SIMULATIONDATA_EXPORT SymbolDataFile
{
public:
    /// Does not open the file.
    explicit SymbolDataFile(const QString& a_sPath);
    ~SymbolDataFile();
    SymbolDataFile(const SymbolDataFile&) = delete;
    SymbolDataFile& operator=(const SymbolDataFile&) = delete;

    /// Opens the file and reads its header. A file that is open already is opened
    /// again. On failure, returns false after one trace, and the file is closed. A
    /// file that is cut short, or whose length() is 0, is opened with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    /// Always empty: the file does not contain the name of its modulation.
    [[nodiscard]] QString modulation() const;

    /// Number of distinct symbol values.
    [[nodiscard]] std::uint8_t symbolValency() const;

    /// The number of symbols that can be read. This is the count in the header, or
    /// the number of symbols in the file at open() when that is smaller.
    [[nodiscard]] std::uint64_t symbolCount() const;

    /// Symbols per second as stored in the file; may be any float, also infinite or
    /// not a number.
    [[nodiscard]] float symbolRate() const;
    /// Has no effect: the rate in the file applies.
    void setSymbolRate(std::uint32_t a_uiRate);

    /// Length of the stream (whole ms), calculated in single precision; at most
    /// 0xFFFFFFFF. The length is 0 without symbols, with a rate that is not positive
    /// and finite, and when the stream lasts less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file lacked at open() compared with its header. 0 when the
    /// file is complete, negative when it had more bytes. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Has no effect: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// Returns the symbols in [start, start + duration) (ms). A span that runs past
    /// the end continues at the first symbol. Empty while the file is closed and
    /// when length() is 0. Also empty, after one trace, when the result exceeds
    /// Limits::DataBytes. When the file has shrunk since open(), the result has
    /// fewer symbols, after one trace.
    [[nodiscard]] std::vector<std::uint8_t> readSymbols(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
