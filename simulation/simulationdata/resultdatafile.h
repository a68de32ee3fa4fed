#ifndef SIMULATIONDATA_RESULTDATAFILE_H
#define SIMULATIONDATA_RESULTDATAFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace Simulation {

/// Reads a result data file, "Signal.rdf": result items of two bytes each, at a
/// constant rate. The stream repeats over its own length.
///
/// One object may be shared by threads: every operation locks. A new object is
/// closed and all its values are 0. The values of the header stay after
/// close(); a failed open() sets them to 0.
class SIMULATIONDATA_EXPORT ResultDataFile
{
public:
    /// How the items are laid out; the values are those of the file.
    enum ResultDataType : std::uint8_t {
        DT_CBR = 0, ///< constant rate
    };

    /// Nothing is opened or read yet.
    explicit ResultDataFile(const QString& a_sPath);
    ~ResultDataFile();
    ResultDataFile(const ResultDataFile&) = delete;
    ResultDataFile& operator=(const ResultDataFile&) = delete;

    /// Opens the file, anew if it is open, and reads its header. False after one
    /// trace, with the file closed. A file that is cut short, or whose
    /// length() is 0, opens with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    [[nodiscard]] ResultDataType resultDataType() const;

    /// Items that can be read: what the header claims, or what the file held at
    /// open() if that is less.
    [[nodiscard]] std::uint64_t itemCount() const;

    /// Items per second as the file has it, not checked to be a number.
    [[nodiscard]] float itemRate() const;

    /// Length of the stream (whole ms), rounded to single precision; at most
    /// 0xFFFFFFFF, 0 when there is nothing to read: no item, no rate that
    /// is positive and finite, or less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file had fewer at open() than its header claims: 0
    /// when it is whole, negative when it had more. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Changes nothing: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// The bytes of the items of [start, start + duration) (ms), as the file has
    /// them. A span that runs past the end goes on from the first item. Empty
    /// while the file is closed, when length() is 0, and, after one trace, when
    /// the answer would take more than Limits::DataBytes. Fewer items, after one
    /// trace, when the file has shrunk since.
    [[nodiscard]] QByteArray readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
