// The program bundle_host: sets up the platform, loads the bundles that the options name, runs one command,
// unloads the bundles in reverse order, and turns exceptions into an exit code. `Run` owns the platform, the
// loader and the session. Main thread only.

#include <fcntl.h>
#include <unistd.h>

#include <iostream>

#include "host/base/problem.h"
#include "host/base/text_escape.h"
#include "host/commands/interrupt.h"
#include "host/loader/library_trial.h"
#include "host/loader/svc_conf.h"
#include "host/options.h"
#include "host/platform/bundle_platform.h"

namespace {

using host::Failure;
using host::Options;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr int kSignalled = 128;

/// Opens those of the descriptors 0 to 2 that are closed at the start of the process, so that no file opened
/// later becomes its standard input, output or error. Reading and writing these descriptors still fails.
/// To be called before any file is opened and any thread started.
void HoldStandardStreams() {
  // In ascending order: `open` returns the lowest free descriptor.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The opposite direction makes every read or write of the descriptor fail.
      static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}

int Run(const Options& options) {
  const host::Platform platform({options.configDir, options.logFile, options.logLevel});
  for (const std::string& warning : platform.Warnings()) {
    std::cerr << "bundle_host: " << host::OneLine(warning) << '\n';
  }
  host::Loader loader;
  if (!options.svcConf.empty()) {
    ProcessSvcConf(loader, options.svcConf);
  }
  for (const std::string& bundle : options.bundles) {
    host::ThrowIfInterrupted();
    loader.Load(bundle, {});
  }
  host::ThrowIfInterrupted();
  host::Session session(loader, std::cout);
  session.echo = options.echo;
  session.keepGoing = options.keepGoing;
  options.command(session);
  std::cout.flush();
  const bool ok = loader.UnloadAll();
  host::ThrowIfInterrupted();
  return ok && platform.LogIsComplete() ? 0 : kFailed;
}

/// Prints the problem. Returns `exitCode`, or 128 plus the signal's number after a stop signal.
int Report(const std::exception& problem, int exitCode) {
  std::cerr << "bundle_host: " << host::OneLine(problem.what()) << '\n';  // Flushes std::cout first.
  return host::StopSignal() == 0 ? exitCode : kSignalled + host::StopSignal();
}

}  // namespace

int main(int argc, char* argv[]) {
  HoldStandardStreams();
  host::RunLibraryTrial(argc, argv);
  try {
    const auto parsed = host::ParseOptions(argc, argv);
    int exitCode = 0;
    if (const auto* const text = std::get_if<std::string>(&parsed)) {
      std::cout << *text;
    } else {
      host::CatchStopSignals();
      exitCode = Run(std::get<Options>(parsed));
    }
    std::cout.flush();
    if (!std::cout) {
      throw Failure("standard output cannot be written");
    }
    return exitCode;
  } catch (const host::UsageError& problem) {
    return Report(problem, kWrongUsage);
  } catch (const std::exception& problem) {
    return Report(problem, kFailed);
  }
}
