#ifndef SIMULATIONDATA_SYMBOLDATAFILE_H
#define SIMULATIONDATA_SYMBOLDATAFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace Simulation {

/// Reads a symbol data file, "Signal.sdf": the symbols of a digital signal, one
/// byte each, at a constant rate. The stream repeats over its own length.
///
/// Any thread may call; every operation locks. A new object is closed and all its
/// values are 0. The values of the header stay after close(); a failed open() sets
/// them to 0.
class SIMULATIONDATA_EXPORT SymbolDataFile
{
public:
    /// Does not open the file.
    explicit SymbolDataFile(const QString& a_sPath);
    ~SymbolDataFile();
    SymbolDataFile(const SymbolDataFile&) = delete;
    SymbolDataFile& operator=(const SymbolDataFile&) = delete;

    /// Opens the file, again if it is open already, and reads its header. False
    /// after one trace, with the file closed. A file that is cut short, or whose
    /// length() is 0, opens with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    /// Always empty: the file does not contain the name of its modulation.
    [[nodiscard]] QString modulation() const;

    /// Number of distinct symbol values.
    [[nodiscard]] std::uint8_t symbolValency() const;

    /// The number of symbols that can be read: the header's count, or the number in
    /// the file at open() if that is smaller.
    [[nodiscard]] std::uint64_t symbolCount() const;

    /// Symbols per second as stored in the file; may be any float, also infinite or
    /// not a number.
    [[nodiscard]] float symbolRate() const;
    /// Has no effect: the rate in the file applies.
    void setSymbolRate(std::uint32_t a_uiRate);

    /// Length of the stream (whole ms), calculated in single precision; at most
    /// 0xFFFFFFFF. 0 when there is nothing to read: no symbols, a rate that is not
    /// positive and finite, or less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file lacked at open() compared with its header: 0 when it
    /// is complete, negative when it had more. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Has no effect: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// The symbols of [start, start + duration) (ms). A span that runs past the end
    /// continues at the first symbol. Empty while the file is closed, when length()
    /// is 0 and, after one trace, when the result exceeds Limits::DataBytes. Fewer
    /// symbols, after one trace, when the file has shrunk since open().
    [[nodiscard]] std::vector<std::uint8_t> readSymbols(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
