#ifndef TOOLS_ALMCFG_COMMANDS_H_
#define TOOLS_ALMCFG_COMMANDS_H_

#include <iosfwd>

#include "tools/almcfg/options.h"
#include "tools/almcfg/write/report.h"

/// The commands of almcfg, called by `main` with parsed options. Each command is implemented in a file
/// `cmd_NAME.cpp` in the folder of its topic: check, query or repair.
namespace almcfg {

class Progress;

/// Where a command writes. Streams and progress are borrowed.
struct Outputs {
  std::ostream& out;  ///< the answer
  std::ostream& err;  ///< problems, counts of findings, and what was repaired
  Progress& progress;
  TextStyle style;          ///< of `out`
  bool isTerminal = false;  ///< `out` is a terminal: escape control characters
};

/// The commands; each returns an `ExitCode`. Call them on one thread.
int RunCheck(const Options& options, const Outputs& outputs);
int RunFix(const Options& options, const Outputs& outputs);
int RunShow(const Options& options, const Outputs& outputs);
int RunLookup(const Options& options, const Outputs& outputs);
int RunDiff(const Options& options, const Outputs& outputs);
int RunCoverage(const Options& options, const Outputs& outputs);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_COMMANDS_H_
