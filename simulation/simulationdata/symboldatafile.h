#ifndef SIMULATIONDATA_SYMBOLDATAFILE_H
#define SIMULATIONDATA_SYMBOLDATAFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace Simulation {

/// Reads a symbol data file, "Signal.sdf": the symbols of a digital signal, a
/// byte each, at a constant rate. The stream repeats over its own length.
///
/// One object may be shared by threads: every operation locks. A new object is
/// closed and all its values are 0. The values of the header stay after
/// close(); a failed open() sets them to 0.
class SIMULATIONDATA_EXPORT SymbolDataFile
{
public:
    /// Nothing is opened or read yet.
    explicit SymbolDataFile(const QString& a_sPath);
    ~SymbolDataFile();
    SymbolDataFile(const SymbolDataFile&) = delete;
    SymbolDataFile& operator=(const SymbolDataFile&) = delete;

    /// Opens the file, anew if it is open, and reads its header. False after one
    /// trace, with the file closed. A file that is cut short, or whose
    /// length() is 0, opens with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    /// Always empty: the file does not name its modulation.
    [[nodiscard]] QString modulation() const;

    /// Number of distinct symbol values.
    [[nodiscard]] std::uint8_t symbolValency() const;

    /// Symbols that can be read: what the header claims, or what the file held
    /// at open() if that is less.
    [[nodiscard]] std::uint64_t symbolCount() const;

    /// Symbols per second as the file has it, not checked to be a number.
    [[nodiscard]] float symbolRate() const;
    /// Changes nothing: the rate in the file holds.
    void setSymbolRate(std::uint32_t a_uiRate);

    /// Length of the stream (whole ms), rounded to single precision; at most
    /// 0xFFFFFFFF, 0 when there is nothing to read: no symbol, no rate that
    /// is positive and finite, or less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file had fewer at open() than its header claims: 0
    /// when it is whole, negative when it had more. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Changes nothing: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// The symbols of [start, start + duration) (ms). A span that runs past the
    /// end goes on from the first symbol. Empty while the file is closed, when
    /// length() is 0, and, after one trace, when the answer would take more than
    /// Limits::DataBytes. Fewer, after one trace, when the file has shrunk since.
    [[nodiscard]] std::vector<std::uint8_t> readSymbols(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
