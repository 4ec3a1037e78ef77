#ifndef HOST_CONSOLE_COMPLETION_H_
#define HOST_CONSOLE_COMPLETION_H_

#include <string>
#include <vector>

#include "host/commands/session.h"

namespace host {

/// Returns the candidates for the last word of `line`, in byte order: commands for the first word, then the
/// kind of names that the command takes (`Completes`). Completes the first argument; for `time` the operation
/// after "call"; a file as any argument. Omits names that need quotes or hold bytes outside printable ASCII.
/// Threads: as for the commands, the main thread.
std::vector<std::string> Complete(const Session& session, const std::string& line);

}  // namespace host

#endif  // HOST_CONSOLE_COMPLETION_H_
