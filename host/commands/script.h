#ifndef HOST_COMMANDS_SCRIPT_H_
#define HOST_COMMANDS_SCRIPT_H_

#include <string>

#include "host/base/words.h"
#include "host/commands/session.h"

namespace host {

/// Runs the command that consists of the words of `prefix` and of `line`; does nothing when `line` has no
/// words. Throws as `ParseCommand` and its action do, and `LineError` for a malformed line or a wrong
/// argument. Stores the output and the problem in `session` for `expect` and `expect-error`.
void RunLine(Session& session, const std::string& line, const Words& prefix = {});

/// Runs the commands of a file ("-" for standard input), one per line, until the end or `quit`. Throws
/// `Failure` when the file cannot be opened or read. Threads: as for the commands, the main thread.
///
/// At the first command that fails, unless `expect-error` follows it, throws `Failure` with
/// "FILE:LINE:COLUMN: message"; the column is that of the command, or of the wrong word or character. With
/// `session.keepGoing` these messages go to standard error, and the `Failure` at the end has their number.
/// With `session.echo` every line is printed first, commands after "> ". A signal ends it with `Interrupted`.
void RunScript(Session& session, const std::string& file, const Words& prefix = {});

}  // namespace host

#endif  // HOST_COMMANDS_SCRIPT_H_
