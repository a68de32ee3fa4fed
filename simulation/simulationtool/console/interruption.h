#ifndef SIMULATIONTOOL_INTERRUPTION_H
#define SIMULATIONTOOL_INTERRUPTION_H

namespace SimulationTool {

/// Commands that leave something behind when the process is killed ask for the
/// usual signals to be noted instead, stop when one came, and clean up. The
/// second signal of a kind kills at once, but for that of a closed pipe.

/// From now on the signals by which users, terminals and closed pipes end
/// programs are only noted.
void catchInterruptions();

/// From now on a closed pipe ends nothing: writing there fails instead. For
/// programs that outlive the readers of their logs. Before catchInterruptions().
void ignoreClosedPipes();

/// Whether such a signal came.
[[nodiscard]] bool isInterrupted();

/// Becomes and stays readable when such a signal comes, for event loops: a noted
/// signal does not wake them. -1 before catchInterruptions().
[[nodiscard]] int interruptionDescriptor();

/// Forgets the signal: it was the ordinary end of a command that has no other.
void acceptInterruption();

/// Ends the process by the signal that came, so that its parent sees what it
/// expects. Returns when there was none.
void endIfInterrupted();

} // namespace SimulationTool

#endif
