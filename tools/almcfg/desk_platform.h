#ifndef TOOLS_ALMCFG_DESK_PLATFORM_H_
#define TOOLS_ALMCFG_DESK_PLATFORM_H_

#include <string>
#include <vector>

/// The platform that the bundle's code meets at an operator's desk: no bundles, no configuration, and a log
/// that is kept instead of written. It defines every symbol that framework/ declares, so that the bundle's
/// own objects link into the checker and its decisions are the ones of production.
///
/// Threads: one. The log is the process's.
namespace almcfg {

/// A message that the bundle logged.
struct LoggedMessage {
  int line = 0;      ///< the source line it names, which tells the messages apart
  std::string text;  ///< the value that was passed with it
};

/// What the bundle has logged since somebody last cleared this.
std::vector<LoggedMessage>& BundleLog();

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_DESK_PLATFORM_H_
