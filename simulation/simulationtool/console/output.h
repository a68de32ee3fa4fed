#ifndef SIMULATIONTOOL_OUTPUT_H
#define SIMULATIONTOOL_OUTPUT_H

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cstdint>

namespace SimulationTool {

/// The program's standard output: buffered, UTF-8, and watched. A reader that
/// goes away or a full disk is noticed at the next full buffer or at finish();
/// what is written after that is dropped.
class Output
{
public:
    Output();

    /// Text with its own line ends. It must be fit for a terminal already.
    void write(const QString& a_sText);
    /// False once something could not be written: stop then.
    [[nodiscard]] bool isOk() const { return m_bOk; }
    /// Writes what is still buffered. False, with errorString(), when that or
    /// anything before failed.
    [[nodiscard]] bool finish();
    [[nodiscard]] QString errorString() const;

private:
    void writeBuffer();

    QFile m_file;
    QByteArray m_buffer; ///< UTF-8 that is not written yet
    bool m_bOk;
};

/// Writes one line to standard error: the program's name and the message, made
/// harmless.
void complain(const QString& a_sMessage);

/// Writes one line to the log of a program that runs for long, which is standard
/// error: the present time (see timeStamp()) and the message, made harmless.
void writeLog(const QString& a_sMessage);

/// A time (us since 1970-01-01 UTC) as local time with its offset from UTC, to the
/// millisecond: "2026-11-23T12:00:01.123+01:00"; "Z" is the offset of UTC itself.
[[nodiscard]] QString timeStamp(std::uint64_t a_uiMicroseconds);

/// Makes sure that the program ends quietly when whoever reads its output has
/// seen enough, and that no file which is opened later takes the place of a
/// closed standard stream. To be called first of all.
void prepareStandardStreams();

} // namespace SimulationTool

#endif
