#ifndef HOST_CONSOLE_STATE_DIR_H_
#define HOST_CONSOLE_STATE_DIR_H_

#include <string>

namespace host {

/// The path of the console's history: "bundle_host/history" in $XDG_STATE_HOME or ~/.local/state. Creates
/// missing directories. Empty when there is no such directory. Threads: any, while no thread changes the
/// environment.
std::string HistoryFile();

}  // namespace host

#endif  // HOST_CONSOLE_STATE_DIR_H_
