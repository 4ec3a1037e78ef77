#ifndef HOST_SCRIPT_H_
#define HOST_SCRIPT_H_

#include <iosfwd>
#include <string>

#include "host/session.h"

namespace host {

/// Runs one command line; nothing happens for an empty one. Throws as `RunCommand` does, and `LineError` for
/// a line that is none.
void RunLine(Session& session, const std::string& line);

/// Runs commands, one a line, until the end, `quit` or the first one that goes wrong; for that one throws
/// `Failure` with "NAME:LINE:COLUMN: message", where the column is that of the command, or of the character
/// that is wrong. `name` stands for the input in messages. A line may be of any length. With `session.echo`
/// every line is printed first, commands behind "> ", so that the output reads as a record.
void RunScript(Session& session, std::istream& input, const std::string& name);

/// The same with a file, "-" for standard input. Throws `Failure` when it cannot be opened.
void RunScriptFile(Session& session, const std::string& file);

}  // namespace host

#endif  // HOST_SCRIPT_H_
