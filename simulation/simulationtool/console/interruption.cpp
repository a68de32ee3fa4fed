#include "interruption.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace SimulationTool {

namespace {

volatile std::sig_atomic_t s_iSignal = 0;
int s_wakingPipe[] = {-1, -1}; ///< read end, write end; open until the process ends

void noteSignal(int a_iSignal)
{
    s_iSignal = a_iSignal;
    const int iError = errno;
    // A failed write to a full pipe is harmless: the pipe is already readable.
    [[maybe_unused]] const auto iWritten = ::write(s_wakingPipe[1], "", 1);
    errno = iError;
}

} // namespace

void catchInterruptions()
{
    if (s_wakingPipe[0] < 0) {
        static_cast<void>(::pipe2(s_wakingPipe, O_CLOEXEC | O_NONBLOCK));
    }
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    for (const int iSignal : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) {
        // Keeps the handler for SIGPIPE: the toolkit may write to a closed pipe
        // several times before it reports the error.
        action.sa_flags = static_cast<int>(iSignal == SIGPIPE ? SA_RESTART : SA_RESTART | SA_RESETHAND);
        struct sigaction former = {};
        // A signal that the parent process ignores, as nohup does, stays ignored.
        if (sigaction(iSignal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN) {
            static_cast<void>(sigaction(iSignal, &action, nullptr));
        }
    }
}

void ignoreClosedPipes()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

bool isInterrupted()
{
    return s_iSignal != 0;
}

int interruptionDescriptor()
{
    return s_wakingPipe[0];
}

void acceptInterruption()
{
    s_iSignal = 0;
}

void endIfInterrupted()
{
    if (isInterrupted()) {
        static_cast<void>(std::signal(s_iSignal, SIG_DFL));
        static_cast<void>(std::raise(s_iSignal));
    }
}

} // namespace SimulationTool
