#ifndef TOOLS_ALMCFG_COMMANDS_H_
#define TOOLS_ALMCFG_COMMANDS_H_

#include <iosfwd>

#include "tools/almcfg/options.h"

namespace almcfg {

class Progress;

/// Where a command writes. All borrowed.
struct Outputs {
  std::ostream& out;  ///< the answer
  std::ostream& err;  ///< what went wrong
  Progress& progress;
  bool color = false;       ///< of `out`
  bool isTerminal = false;  ///< `out` is one, so nothing raw may go there
};

/// The commands; each returns an `ExitCode`.
/// Threads: the program has one, and nothing that it is made of is for more.
int RunCheck(const Options& options, const Outputs& outputs);
int RunShow(const Options& options, const Outputs& outputs);
int RunLookup(const Options& options, const Outputs& outputs);
int RunDiff(const Options& options, const Outputs& outputs);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_COMMANDS_H_
