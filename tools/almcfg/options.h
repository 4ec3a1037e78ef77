#ifndef TOOLS_ALMCFG_OPTIONS_H_
#define TOOLS_ALMCFG_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

namespace almcfg {

enum class Command { kCheck, kShow, kLookup, kDiff };
enum class Format { kText, kTsv, kJson, kSarif, kHtml };
enum class Color { kAuto, kAlways, kNever };

/// What a user asked for.
struct Options {
  Command command = Command::kCheck;
  Format format = Format::kText;  ///< one that the command has
  Color color = Color::kAuto;
  bool strict = false;             ///< check: warnings count
  bool sorted = false;             ///< show: in the table's order
  std::vector<std::string> files;  ///< "-" at most once
  std::string key1;                ///< lookup
  std::string key2;
  std::string key3;
  int number = 0;
};

/// The program's exit codes.
enum ExitCode { kClean = 0, kFindings = 1, kCouldNotRun = 2 };

/// What to do, or what to exit with when the command line said it all: after help (written to standard
/// output), or after a mistake (described on standard error).
struct Parsed {
  std::optional<Options> options;
  int exitCode = kClean;
};

/// Reads the arguments, the program's name left out.
Parsed ParseArguments(std::vector<std::string> arguments);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_OPTIONS_H_
