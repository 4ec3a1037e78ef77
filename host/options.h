#ifndef HOST_OPTIONS_H_
#define HOST_OPTIONS_H_

#include <string>
#include <variant>
#include <vector>

#include "host/words.h"

namespace host {

/// The program's command line, taken apart.
struct Options {
  std::string configDir;  ///< empty: the environment decides
  std::string svcConf;
  std::vector<std::string> bundles;
  std::string logFile;
  int logLevel = 0;
  bool echo = false;
  Words command;  ///< `run`, `console` or a command with its arguments; never empty
};

/// The options, or the text that --help or --version asks for. Throws `UsageError` with one line when
/// something is wrong, also for a command that is.
std::variant<Options, std::string> ParseOptions(int argc, const char* const* argv);

}  // namespace host

#endif  // HOST_OPTIONS_H_
