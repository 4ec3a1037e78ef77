#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "tools/almcfg/commands.h"
#include "tools/almcfg/options.h"
#include "tools/almcfg/progress.h"

namespace {

using namespace almcfg;

bool WantsColor(Color wish) {
  if (wish != Color::kAuto) {
    return wish == Color::kAlways;
  }
  const char* const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr && terminal != nullptr &&
         std::string(terminal) != "dumb";
}

int RunCommand(const Options& options, const Outputs& outputs) {
  switch (options.command) {
    case Command::kShow:
      return RunShow(options, outputs);
    case Command::kLookup:
      return RunLookup(options, outputs);
    case Command::kDiff:
      return RunDiff(options, outputs);
    default:
      return RunCheck(options, outputs);
  }
}

int Run(const Options& options) {
  Progress progress(isatty(STDERR_FILENO) != 0);
  const Outputs outputs{std::cout, std::cerr, progress, WantsColor(options.color),
                        isatty(STDOUT_FILENO) != 0};
  const int exitCode = RunCommand(options, outputs);
  progress.Hide();
  return exitCode;
}

int Main(std::vector<std::string> arguments) {
  std::ios::sync_with_stdio(false);
  const Parsed parsed = ParseArguments(std::move(arguments));
  const int exitCode = parsed.options ? Run(*parsed.options) : parsed.exitCode;
  if (!std::cout.flush()) {
    std::cerr << "almcfg: the output could not be written\n";
    return kCouldNotRun;
  }
  return exitCode;
}

}  // namespace

int main(int argc, char* argv[]) {
  try {
    return Main(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::bad_alloc&) {
    std::cerr << "almcfg: out of memory\n";
  } catch (const std::exception& error) {
    std::cerr << "almcfg: " << error.what() << '\n';
  }
  return almcfg::kCouldNotRun;
}
