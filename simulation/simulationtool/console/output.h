#ifndef SIMULATIONTOOL_OUTPUT_H
#define SIMULATIONTOOL_OUTPUT_H

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>

namespace SimulationTool {

/// The program's standard output: UTF-8, buffered (16 KiB). A closed pipe or a full
/// disk is detected at the next full buffer or in finish(); text written after that
/// is dropped.
class Output
{
public:
    Output();

    /// Writes a text with its own line ends. The text must already be safe for a
    /// terminal (see terminaltext.h).
    void write(const QString& a_sText);
    /// False after a failed write; the caller should stop then.
    [[nodiscard]] bool isOk() const { return m_bOk; }
    /// Writes the buffered rest. False, with errorString(), when this or any earlier
    /// write failed.
    [[nodiscard]] bool finish();
    [[nodiscard]] QString errorString() const;

private:
    void writeBuffer();

    QFile m_file;
    QByteArray m_buffer; ///< UTF-8, not yet written
    bool m_bOk;
};

/// Writes one line to standard error: the program's name and the message. Characters
/// that can control a terminal are spelled out.
void complain(const QString& a_sMessage);

/// Writes one line to the log of a long-running program, which is standard error: the
/// present time (see timeStamp()) and the message, as complain() does.
void writeLog(const QString& a_sMessage);

/// A time (us since 1970-01-01 UTC) as local time with its offset from UTC, to the
/// millisecond: "2026-11-23T12:00:01.123+01:00". The offset of UTC itself is "Z".
[[nodiscard]] QString timeStamp(std::uint64_t a_uiMicroseconds);

/// Lets the program end silently when the reader of its output closes the pipe. Opens
/// closed standard streams on /dev/null, so that no file opened later gets their
/// descriptors. Call before anything else.
void prepareStandardStreams();

} // namespace SimulationTool

#endif
