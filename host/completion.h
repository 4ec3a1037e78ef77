#ifndef HOST_COMPLETION_H_
#define HOST_COMPLETION_H_

#include <string>
#include <vector>

#include "host/session.h"

namespace host {

/// What the last word of `line` could become, in byte order: a command's name at the start; behind it what
/// the command takes: commands, operations, loaded bundles, configuration items, files. The first argument is
/// completed; for `time` the operation behind "call"; a file in any place. Names that would have to stand
/// between quotes, and those that no terminal should be sent, are left out.
std::vector<std::string> Complete(const Session& session, const std::string& line);

}  // namespace host

#endif  // HOST_COMPLETION_H_
