#ifndef HOST_OPTIONS_H_
#define HOST_OPTIONS_H_

#include <string>
#include <variant>
#include <vector>

#include "host/commands/command.h"

namespace host {

/// The parsed command line of the program. Plain value.
struct Options {
  std::string configDir;  ///< empty: taken from the environment variable
  std::string svcConf;
  std::vector<std::string> bundles;
  std::string logFile;
  int logLevel = 0;
  bool echo = false;
  bool keepGoing = false;
  Action command;
};

/// Parses the command line, the command included, without running it. Returns the options, or the text to
/// print for --help or --version. Throws `UsageError` with a one-line message for an invalid option or
/// command. Threads: the program's main thread.
std::variant<Options, std::string> ParseOptions(int argc, const char* const* argv);

}  // namespace host

#endif  // HOST_OPTIONS_H_
