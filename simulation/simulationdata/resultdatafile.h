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
/// Any thread may call; every operation locks. A new object is closed and all its
/// values are 0. The values of the header stay after close(); a failed open() sets
/// them to 0.
class SIMULATIONDATA_EXPORT ResultDataFile
{
public:
    /// The layout of the items. The values are those in the file.
    enum ResultDataType : std::uint8_t {
        DT_CBR = 0, ///< constant rate
    };

    /// Does not open the file.
    explicit ResultDataFile(const QString& a_sPath);
    ~ResultDataFile();
    ResultDataFile(const ResultDataFile&) = delete;
    ResultDataFile& operator=(const ResultDataFile&) = delete;

    /// Opens the file, again if it is open already, and reads its header. False
    /// after one trace, with the file closed. A file that is cut short, or whose
    /// length() is 0, opens with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    [[nodiscard]] ResultDataType resultDataType() const;

    /// The number of items that can be read: the header's count, or the number in
    /// the file at open() if that is smaller.
    [[nodiscard]] std::uint64_t itemCount() const;

    /// Items per second as stored in the file; may be any float, also infinite or
    /// not a number.
    [[nodiscard]] float itemRate() const;

    /// Length of the stream (whole ms), calculated in single precision; at most
    /// 0xFFFFFFFF. 0 when there is nothing to read: no items, a rate that is not
    /// positive and finite, or less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file lacked at open() compared with its header: 0 when it
    /// is complete, negative when it had more. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Has no effect: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// The bytes of the items of [start, start + duration) (ms), as stored in the
    /// file. A span that runs past the end continues at the first item. Empty while
    /// the file is closed, when length() is 0 and, after one trace, when the result
    /// exceeds Limits::DataBytes. Fewer items, after one trace, when the file has
    /// shrunk since open().
    [[nodiscard]] QByteArray readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
