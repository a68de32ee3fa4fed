#ifndef SIMULATIONDATA_RESULTDATAFILE_H
#define SIMULATIONDATA_RESULTDATAFILE_H

#include "simulationdata/simulationdata_export.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>

namespace Simulation {

/// Reads a result data file, "Signal.rdf". The file holds result items of two bytes
/// each, at a constant rate. The stream repeats over its own length.
///
/// Any thread may call; every operation locks. In a new object the file is closed
/// and all values are 0. The values of the header stay after close(). A failed
/// open() sets them to 0.
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

    /// Opens the file and reads its header. A file that is open already is opened
    /// again. On failure, returns false after one trace, and the file is closed. A
    /// file that is cut short, or whose length() is 0, is opened with one trace.
    [[nodiscard]] bool open();
    void close();
    [[nodiscard]] bool isOpen() const;

    /// Why the last open() failed, in English; empty after a success.
    [[nodiscard]] QString errorString() const;

    [[nodiscard]] ResultDataType resultDataType() const;

    /// The number of items that can be read. This is the count in the header, or the
    /// number of items in the file at open() when that is smaller.
    [[nodiscard]] std::uint64_t itemCount() const;

    /// Items per second as stored in the file; may be any float, also infinite or
    /// not a number.
    [[nodiscard]] float itemRate() const;

    /// Length of the stream (whole ms), calculated in single precision; at most
    /// 0xFFFFFFFF. The length is 0 without items, with a rate that is not positive
    /// and finite, and when the stream lasts less than a millisecond.
    [[nodiscard]] std::uint32_t length() const;

    /// How many bytes the file lacked at open() compared with its header. 0 when the
    /// file is complete, negative when it had more bytes. Saturates.
    [[nodiscard]] std::int64_t missingBytes() const;

    /// Has no effect: the stream repeats over its own length.
    void setPackageDuration(std::uint32_t a_uiDuration);

    /// Returns the bytes of the items in [start, start + duration) (ms), as stored
    /// in the file. A span that runs past the end continues at the first item. Empty
    /// while the file is closed and when length() is 0. Also empty, after one trace,
    /// when the result exceeds Limits::DataBytes. When the file has shrunk since
    /// open(), the result has fewer items, after one trace.
    [[nodiscard]] QByteArray readResultData(std::uint32_t a_uiStart, std::uint32_t a_uiDuration);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Simulation

#endif
