#include "output.h"

#include "progress.h"
#include "terminaltext.h"

#include "kpbase/replacedfile.h"
#include "kpbase/velaos.h"

#include <QByteArray>
#include <QDateTime>

#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iBufferBytes = qsizetype{16} * 1024;

void writeErrorLine(const QString& a_sBegin, const QString& a_sMessage)
{
    const QByteArray line = (a_sBegin + terminalText(a_sMessage) + u'\n').toUtf8();
    // No channel is left to report an error of this write.
    withoutProgress([&] {
        static_cast<void>(std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr));
    });
}

} // namespace

Output::Output()
    // Unbuffered, because the file's own buffer would hide the error text of a failed
    // write.
    : m_bOk(m_file.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered))
{}

void Output::write(const QString& a_sText)
{
    withoutProgress([&] {
        if (m_bOk) {
            m_buffer += a_sText.toUtf8();
            if (m_buffer.size() >= s_iBufferBytes) {
                writeBuffer();
            }
        }
    });
}

void Output::writeBuffer()
{
    m_bOk = writeAll(m_file, m_buffer.constData(), m_buffer.size());
    m_buffer.clear();
}

bool Output::finish()
{
    withoutProgress([&] {
        if (m_bOk) {
            writeBuffer();
        }
    });
    return m_bOk;
}

QString Output::errorString() const
{
    return m_file.errorString();
}

void complain(const QString& a_sMessage)
{
    writeErrorLine(QStringLiteral("simulationtool: "), a_sMessage);
}

void writeLog(const QString& a_sMessage)
{
    writeErrorLine(timeStamp(VelaOS::Get().timestamp()) + u' ', a_sMessage);
}

QString timeStamp(std::uint64_t a_uiMicroseconds)
{
    constexpr std::uint64_t uiMicroseconds = 1000; // in a millisecond
    const QDateTime local =
        QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(a_uiMicroseconds / uiMicroseconds));
    // The toolkit writes the offset only for a time with a fixed offset, not for a local
    // time.
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

void prepareStandardStreams()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    // A closed standard output is opened for reading only, so that writing to it fails.
    constexpr int s_iModes[] = {O_RDONLY, O_RDONLY, O_WRONLY};
    for (int iStream = STDIN_FILENO; iStream <= STDERR_FILENO; ++iStream) {
        if (::fcntl(iStream, F_GETFD) < 0 && ::open("/dev/null", s_iModes[iStream]) != iStream) {
            return;
        }
    }
}

} // namespace SimulationTool
