#ifndef HOST_COMMANDS_INTERRUPT_H_
#define HOST_COMMANDS_INTERRUPT_H_

#include "host/base/problem.h"

/// Handles SIGINT, SIGTERM and SIGHUP. The handler stores the first signal: the running command ends at its
/// next step, bundles are unloaded in reverse order, and the program exits with 128 plus the signal's number.
/// After a SIGINT, a SIGTERM or SIGHUP is stored instead. Any other second signal ends the process at once,
/// because a bundle's own code cannot be interrupted.
///
/// State: of the process. Threads: signals may arrive on any; only the main thread calls the functions.
namespace host {

/// Installs the handlers, except for signals that are ignored, as under nohup.
void CatchStopSignals();

/// The stored signal; 0 when there is none.
int StopSignal();

/// Clears a stored SIGINT, so that the console continues. Returns false when another signal is stored.
bool ForgetInterrupt();

/// Waits until a read of `descriptor` would not block; returns false when a signal is stored.
bool WaitForInput(int descriptor);

/// Thrown by a command that was stopped by a signal.
class Interrupted : public Failure {
 public:
  /// `place` precedes the message.
  explicit Interrupted(const std::string& place = {});
};

/// Throws `Interrupted` when a signal is stored. Long commands call it between their steps.
void ThrowIfInterrupted();

}  // namespace host

#endif  // HOST_COMMANDS_INTERRUPT_H_
