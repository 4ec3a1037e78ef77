#ifndef TOOLS_ALMCFG_OPTIONS_H_
#define TOOLS_ALMCFG_OPTIONS_H_

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tools/almcfg/check/finding.h"

/// The command line of almcfg. Parses the arguments into `Options`, answers --help and --version, and reports
/// mistakes in one line. Called once, on the main thread; options are plain values.
namespace almcfg {

enum class Command { kCheck, kFix, kShow, kLookup, kDiff, kCoverage };
enum class Format { kText, kTsv, kJson, kSarif, kHtml };
enum class Color { kAuto, kAlways, kNever };

/// The parsed command line.
struct Options {
  Command command = Command::kCheck;
  Format format = Format::kText;  ///< kText: the command's default; else one that the command supports
  Color color = Color::kAuto;
  bool strict = false;         ///< check: warnings count; coverage: queries that no line serves count
  bool quiet = false;          ///< check, fix: no totals, no reports of repairs
  bool sorted = false;         ///< show: in the table's order
  bool unsafe = false;         ///< fix: also repairs that change keys and answers
  bool inPlace = false;        ///< fix: replace the files
  bool backup = false;         ///< fix: keep the replaced files
  bool unifiedDiff = false;    ///< fix: write a diff
  CodeSet codes = AllCodes();  ///< check: report these; fix: repair these
  std::size_t maxFindings = std::numeric_limits<std::size_t>::max();
  const Rule* explain = nullptr;      ///< check: describe this rule
  std::string stdinName = "<stdin>";  ///< what standard input is called
  std::vector<std::string> files;     ///< "-" at most once
  std::string calls;                  ///< coverage, show: the file with the queries
  std::string key1;                   ///< lookup
  std::string key2;
  std::string key3;
  int number = 0;

  /// What a file is called in messages.
  [[nodiscard]] const std::string& NameOf(const std::string& path) const {
    return path == "-" ? stdinName : path;
  }

  static CodeSet AllCodes() {
    CodeSet all;
    all.fill(true);
    return all;
  }
};

/// The program's exit codes.
enum ExitCode { kClean = 0, kFindings = 1, kCouldNotRun = 2 };

/// The options of a command; or, after --help, --version or a mistake, only an exit code. Help has then been
/// written to standard output, the mistake to standard error.
struct Parsed {
  std::optional<Options> options;
  int exitCode = kClean;
};

/// Parses the arguments, without the program's name.
Parsed ParseArguments(const std::vector<std::string>& arguments);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_OPTIONS_H_
