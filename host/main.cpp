#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <iostream>
#include <memory>
#include <system_error>

#include "host/command.h"
#include "host/config_dir.h"
#include "host/config_items.h"
#include "host/console.h"
#include "host/log_service.h"
#include "host/log_sink.h"
#include "host/options.h"
#include "host/problem.h"
#include "host/script.h"
#include "host/standard_streams.h"
#include "host/svc_conf.h"
#include "host/text_escape.h"

namespace {

using host::Failure;
using host::Options;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// One line on standard error for each item of `file` that no bundle can read.
void TellUnreadableItems(const std::string& file) {
  for (const auto& [name, value] : host::ListItems()) {
    if (!host::ParseInt(value)) {
      std::string problem = file;
      problem.append(": ").append(name).append(": '").append(value);
      problem += "' is no integer from -2147483648 to 2147483647; the item counts as missing";
      std::cerr << "bundle_host: " << host::OneLine(problem) << '\n';
    }
  }
}

void SetUpConfiguration(const Options& options) {
  if (!options.configDir.empty()) {
    host::SetConfigDir(options.configDir);
  }
  const std::string directory = NS_BUNDLEMGR1::GetCfgDirPath();
  if (directory.empty()) {
    return;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> opened(opendir(directory.c_str()), closedir);
  if (opened == nullptr) {
    throw Failure("configuration directory " + directory + ": " + std::generic_category().message(errno));
  }
  const std::string items = directory + host::kItemsFile;
  // Only what is not there at all counts as missing; a link that leads nowhere is a mistake.
  if (struct stat status{}; lstat(items.c_str(), &status) != 0 && errno == ENOENT) {
    return;
  }
  if (const std::string problem = host::LoadItems(items); !problem.empty()) {
    throw Failure(problem);
  }
  TellUnreadableItems(items);
}

void RunProgramCommand(host::Session& session, const host::Words& command) {
  if (command[0] == "run") {
    RunScriptFile(session, command[1]);
  } else if (command[0] == "console") {
    RunConsole(session);
  } else {
    RunCommand(session, command);
  }
}

int Run(const Options& options) {
  const host::LogOutput output(options.logFile);
  if (!output.OpenProblem().empty()) {
    throw Failure(output.OpenProblem());
  }
  host::SetLogLevel(options.logLevel);
  SetUpConfiguration(options);
  const host::LogService logService;
  host::Loader loader;
  if (!options.svcConf.empty()) {
    ProcessSvcConf(loader, options.svcConf);
  }
  for (const std::string& bundle : options.bundles) {
    loader.Load(bundle, {});
  }
  host::Session session{loader, std::cout};
  session.echo = options.echo;
  RunProgramCommand(session, options.command);
  std::cout.flush();
  const bool isWell = loader.UnloadAll();
  return isWell && output.IsComplete() ? 0 : kFailed;
}

int Report(const std::exception& problem, int exitCode) {
  std::cout.flush();
  std::cerr << "bundle_host: " << host::OneLine(problem.what()) << '\n';
  return exitCode;
}

}  // namespace

int main(int argc, char* argv[]) {
  host::HoldStandardStreams();
  try {
    const auto parsed = host::ParseOptions(argc, argv);
    int exitCode = 0;
    if (const auto* const text = std::get_if<std::string>(&parsed)) {
      std::cout << *text;
    } else {
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
