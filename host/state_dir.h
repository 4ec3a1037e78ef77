#ifndef HOST_STATE_DIR_H_
#define HOST_STATE_DIR_H_

#include <string>

namespace host {

/// Where the console keeps its history: "bundle_host/history" in the user's state directory, that is
/// $XDG_STATE_HOME or ~/.local/state. The directories are made when they are missing. Empty when there is no
/// such place.
std::string HistoryFile();

}  // namespace host

#endif  // HOST_STATE_DIR_H_
