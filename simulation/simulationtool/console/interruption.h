#ifndef SIMULATIONTOOL_INTERRUPTION_H
#define SIMULATIONTOOL_INTERRUPTION_H

namespace SimulationTool {

/// Interruption by signals. A command that must clean up notes SIGHUP, SIGINT,
/// SIGTERM and SIGPIPE instead of being killed by them, stops at the next check, and
/// cleans up. The second signal of a kind kills the process at once, except SIGPIPE.

/// From now on SIGHUP, SIGINT, SIGTERM and SIGPIPE are noted instead of ending the
/// process. A signal that the process ignores stays ignored.
void catchInterruptions();

/// From now on a write to a closed pipe fails instead of ending the process. For
/// programs that outlive the readers of their logs. Call before catchInterruptions().
void ignoreClosedPipes();

/// Whether one of the signals of catchInterruptions() was received.
[[nodiscard]] bool isInterrupted();

/// A file descriptor that becomes readable when a signal is received, and stays
/// readable. Event loops wait for it, because a noted signal alone does not wake them.
/// -1 before catchInterruptions().
[[nodiscard]] int interruptionDescriptor();

/// Forgets the received signal, for commands whose normal end is an interruption.
void acceptInterruption();

/// Ends the process by the received signal, so that its parent sees the expected wait
/// status. Returns when no signal was received.
void endIfInterrupted();

} // namespace SimulationTool

#endif
