#include "outputfile.h"

#include "interruption.h"
#include "output.h"

#include <QFileInfo>

namespace SimulationTool {

OutputFile::OutputFile(const QString& a_sFile)
    : m_file(a_sFile)
{}

bool OutputFile::open()
{
    const QFileInfo target(m_file.fileName());
    if (target.exists() && !target.isFile()) {
        m_sRefusal = target.isDir() ? QStringLiteral("is a folder") : QStringLiteral("is not a regular file");
        return false;
    }
    return m_file.open(QIODevice::WriteOnly);
}

bool OutputFile::write(const QByteArray& a_data)
{
    return m_file.write(a_data) == a_data.size();
}

bool OutputFile::commit()
{
    // A full device is seen only when the buffers are flushed.
    return m_file.flush() && m_file.commit();
}

QString OutputFile::errorString() const
{
    return m_sRefusal.isEmpty() ? m_file.errorString() : m_sRefusal;
}

ExitCode replaceFile(const QString& a_sFile, const QByteArray& a_data)
{
    catchInterruptions(); // the file that is to take the place must not stay behind
    OutputFile file(a_sFile);
    const bool bWritten = file.open() && file.write(a_data);
    if (bWritten && isInterrupted()) {
        return ExitCode::Unusable;
    }
    if (bWritten && file.commit()) {
        return ExitCode::Ok;
    }
    complain(QStringLiteral("%1: %2").arg(a_sFile, file.errorString()));
    return ExitCode::Unusable;
}

bool isSameFile(const QString& a_sFirst, const QString& a_sSecond)
{
    const QString sFirst = a_sFirst.isEmpty() ? QString() : QFileInfo(a_sFirst).canonicalFilePath();
    return !sFirst.isEmpty() && sFirst == QFileInfo(a_sSecond).canonicalFilePath();
}

} // namespace SimulationTool
