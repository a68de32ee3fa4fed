#include "progress.h"

#include "terminaltext.h"

#include <QByteArray>

#include <chrono>

#include <sys/ioctl.h>
#include <unistd.h>

namespace SimulationTool {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds s_quiet(1000);  ///< before the line is shown
constexpr milliseconds s_renewal(200); ///< between two updates of the line
constexpr int s_iUsualColumns = 80;

std::mutex s_terminal; ///< guards the two flags and the line on the terminal
bool s_bShown = false;
bool s_bTaken = false; ///< a Progress object uses the terminal

void writeTerminal(const QByteArray& a_text)
{
    // A failed write is ignored: the progress line is only informative.
    [[maybe_unused]] const auto iWritten =
        ::write(STDERR_FILENO, a_text.constData(), static_cast<std::size_t>(a_text.size()));
}

/// The caller holds s_terminal.
void erase()
{
    if (s_bShown) {
        writeTerminal("\r\033[K");
        s_bShown = false;
    }
}

/// One column less than the terminal, because a full line could wrap.
qsizetype terminalColumns()
{
    winsize size{};
    const bool bKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    return (bKnown ? size.ws_col : s_iUsualColumns) - 1;
}

bool takeTerminal()
{
    const std::lock_guard lock(s_terminal);
    const bool bFree = !s_bTaken && ::isatty(STDERR_FILENO) == 1;
    s_bTaken = s_bTaken || bFree;
    return bFree;
}

} // namespace

Progress::Progress(const QString& a_sWork, const std::function<QString()>& a_detail)
    : m_detail(a_detail)
    , m_sWork(a_sWork)
{
    if (takeTerminal()) {
        m_thread = std::thread([this] { run(); });
    }
}

Progress::~Progress()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_bEnd = true;
    }
    m_ended.notify_one();
    m_thread.join();
    const std::lock_guard lock(s_terminal);
    erase();
    s_bTaken = false;
}

void Progress::setWork(const QString& a_sWork)
{
    const std::lock_guard lock(m_mutex);
    m_sWork = a_sWork;
}

void Progress::run()
{
    const auto begin = steady_clock::now();
    milliseconds wait = s_quiet;
    std::unique_lock lock(m_mutex);
    while (!m_ended.wait_for(lock, wait, [this] { return m_bEnd; })) {
        wait = s_renewal;
        const QString sDetail = m_detail ? m_detail() : QString();
        const auto iSeconds =
            std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - begin).count();
        const QString sLine =
            QStringLiteral("%1%2, %3 s")
                .arg(terminalText(m_sWork),
                     sDetail.isEmpty() ? sDetail : QStringLiteral(": ") + terminalText(sDetail),
                     QString::number(iSeconds));
        const std::lock_guard terminal(s_terminal);
        writeTerminal("\r" + shortened(sLine, terminalColumns()).toUtf8() + "\033[K");
        s_bShown = true;
    }
}

void withoutProgress(const std::function<void()>& a_write)
{
    const std::lock_guard lock(s_terminal);
    erase();
    a_write();
}

} // namespace SimulationTool
