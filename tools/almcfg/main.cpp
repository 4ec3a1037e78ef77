// The program almcfg: parses the command line, sets up the outputs, runs the command, and returns its exit
// code. Reports a failed write and exhausted memory in one line. The program has one thread.

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "tools/almcfg/commands.h"
#include "tools/almcfg/options.h"
#include "tools/almcfg/write/progress.h"

namespace {

using namespace almcfg;

bool WantsColor(Color wish, bool isTerminal) {
  if (wish != Color::kAuto) {
    return wish == Color::kAlways;
  }
  const char* const noColor = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return isTerminal && (noColor == nullptr || *noColor == '\0') && terminal != nullptr &&
         std::string(terminal) != "dumb";
}

TextStyle StyleFor(Color wish, bool isTerminal) {
  TextStyle style;
  style.color = WantsColor(wish, isTerminal);
  winsize size{};
  if (isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) {
    style.width = size.ws_col;
  }
  return style;
}

int RunCommand(const Options& options, const Outputs& outputs) {
  switch (options.command) {
    case Command::kFix:
      return RunFix(options, outputs);
    case Command::kShow:
      return RunShow(options, outputs);
    case Command::kLookup:
      return RunLookup(options, outputs);
    case Command::kDiff:
      return RunDiff(options, outputs);
    case Command::kCoverage:
      return RunCoverage(options, outputs);
    default:
      return RunCheck(options, outputs);
  }
}

int Run(const Options& options) {
  const bool isTerminal = isatty(STDOUT_FILENO) != 0;
  // JSON and SARIF are written in pieces of lines, which a line of progress would erase.
  const bool mayErase = isTerminal && (options.format == Format::kJson || options.format == Format::kSarif);
  Progress progress(isatty(STDERR_FILENO) != 0 && !mayErase);
  const Outputs outputs{std::cout, std::cerr, progress, StyleFor(options.color, isTerminal), isTerminal};
  return RunCommand(options, outputs);
}

int Main(const std::vector<std::string>& arguments) {
  std::ios::sync_with_stdio(false);
  // A failed write throws at once, while errno still has its reason.
  std::cout.exceptions(std::ios::badbit);
  const Parsed parsed = ParseArguments(arguments);
  const int exitCode = parsed.options ? Run(*parsed.options) : parsed.exitCode;
  std::cout.flush();
  return exitCode;
}

}  // namespace

int main(int argc, char* argv[]) {
  try {
    return Main(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::ios::failure&) {
    const int error = errno;
    std::cout.exceptions(
        std::ios::goodbit);  // Writing to std::cerr flushes std::cout, which would throw again.
    std::cerr << "almcfg: standard output could not be written: " << std::strerror(error) << '\n';
  } catch (const std::bad_alloc&) {
    std::cerr << "almcfg: out of memory\n";
  } catch (const std::exception& error) {
    std::cerr << "almcfg: " << error.what() << '\n';
  }
  return almcfg::kCouldNotRun;
}
