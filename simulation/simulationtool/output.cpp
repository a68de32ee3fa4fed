#include "output.h"

#include "terminaltext.h"

#include "kpbase/replacedfile.h"

#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iBufferBytes = qsizetype{16} * 1024;

} // namespace

Output::Output()
    // The buffer of the file would hide the reason of a failed write.
    : m_bOk(m_file.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered))
{}

void Output::write(const QString& a_sText)
{
    if (m_bOk) {
        m_buffer += a_sText.toUtf8();
        if (m_buffer.size() >= s_iBufferBytes) {
            writeBuffer();
        }
    }
}

void Output::writeBuffer()
{
    m_bOk = writeAll(m_file, m_buffer.constData(), m_buffer.size());
    m_buffer.clear();
}

bool Output::finish()
{
    if (m_bOk) {
        writeBuffer();
    }
    return m_bOk;
}

QString Output::errorString() const
{
    return m_file.errorString();
}

void complain(const QString& a_sMessage)
{
    const QByteArray line = "simulationtool: " + terminalText(a_sMessage).toUtf8() + '\n';
    // There is nobody left to tell when this fails.
    static_cast<void>(std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr));
}

void prepareStandardStreams()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    // Standard output is opened for reading: what is written there must fail.
    constexpr int s_iModes[] = {O_RDONLY, O_RDONLY, O_WRONLY};
    for (int iStream = STDIN_FILENO; iStream <= STDERR_FILENO; ++iStream) {
        if (::fcntl(iStream, F_GETFD) < 0 && ::open("/dev/null", s_iModes[iStream]) != iStream) {
            return;
        }
    }
}

} // namespace SimulationTool
