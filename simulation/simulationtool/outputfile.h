#ifndef SIMULATIONTOOL_OUTPUTFILE_H
#define SIMULATIONTOOL_OUTPUTFILE_H

#include "exitcode.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

namespace SimulationTool {

/// A file that a command writes: replaced whole by commit() or, when anything
/// fails or commit() is not reached, left as it was.
class OutputFile
{
public:
    explicit OutputFile(const QString& a_sFile);

    /// False, with errorString(), when the place cannot be written. What is
    /// there already must be a regular file: a device is not to be replaced.
    [[nodiscard]] bool open();
    /// False when the bytes, or earlier ones, could not be written.
    [[nodiscard]] bool write(const QByteArray& a_data);
    [[nodiscard]] bool commit();
    [[nodiscard]] QString errorString() const;

private:
    QSaveFile m_file;
    QString m_sRefusal;
};

/// Replaces the file by the bytes; says why when that fails. What an interrupted
/// command writes is not to take the place: Unusable, and nothing is said.
[[nodiscard]] ExitCode replaceFile(const QString& a_sFile, const QByteArray& a_data);

/// Whether two names, of which the first may be empty or of no file yet, lead to
/// one file.
[[nodiscard]] bool isSameFile(const QString& a_sFirst, const QString& a_sSecond);

} // namespace SimulationTool

#endif
