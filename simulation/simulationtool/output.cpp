#include "output.h"

#include "terminaltext.h"

#include <QByteArray>

#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace SimulationTool {

Output::Output()
    : m_stream(&m_file)
{
    m_stream.setEncoding(QStringConverter::Utf8);
    if (!m_file.open(STDOUT_FILENO, QIODevice::WriteOnly)) {
        m_stream.setStatus(QTextStream::WriteFailed);
    }
}

void Output::write(const QString& a_sText)
{
    if (isOk()) {
        m_stream << a_sText;
    }
}

bool Output::isOk() const
{
    return m_stream.status() == QTextStream::Ok && m_file.error() == QFileDevice::NoError;
}

bool Output::finish()
{
    if (isOk()) {
        m_stream.flush();
        if (!m_file.flush()) {
            m_stream.setStatus(QTextStream::WriteFailed);
        }
    }
    return isOk();
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
