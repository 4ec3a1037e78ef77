#include "host/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <sstream>

#include "host/command.h"
#include "host/config_dir.h"
#include "host/log_level.h"
#include "host/problem.h"
#include "host/suggest.h"

#ifndef BUNDLE_HOST_VERSION
#error "the build says which version this is"
#endif

namespace host {
namespace {

std::string Footer() {
  std::ostringstream text;
  text << "Commands:\n"
       << "  run FILE                                 run commands from a file, one a line; - is standard "
          "input\n"
       << "  console                                  read commands from the terminal, or from a pipe\n"
       << "or one of these, which a file and the console take too:\n";
  Loader none;
  Session session{none, text};
  FindCommand("help").run(session, {});
  text
      << "\n'bundle_host help COMMAND' tells more about one of these. Words of a line are separated by "
         "blanks;\n"
      << "between '...' or \"...\" every byte stands for itself; # at the start of a word begins a comment.\n"
      << "Exit code: 0 done, 1 failed, 2 wrong usage. The environment variable " << kConfigDirVariable
      << "\nnames the configuration directory when --config-dir does not.\n";
  return text.str();
}

/// Help as the program means it: CLI11's own usage line does not know of the commands.
class HelpFormat : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: bundle_host [OPTION]... COMMAND [ARGUMENT]...\n";
  }

  /// An option takes one value, also where it may be repeated.
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string type = option->get_type_name();
    return option->get_type_size() == 0 || type.empty() ? "" : ' ' + type;
  }
};

/// For options that name something.
std::string RefuseEmptyName(const std::string& name) { return name.empty() ? "the name is empty" : ""; }

/// The two commands that are the program's own have no help but the program's.
bool IsCallForHelp(const Words& command) {
  return command.size() == 2 && (command[0] == "run" || command[0] == "console") && command[1] == "--help";
}

/// What the program takes besides the commands.
void CheckProgramCommand(const Words& command) {
  if (command.empty()) {
    throw UsageError("a command is missing; --help lists them");
  }
  if (command[0].size() > 1 && command[0][0] == '-') {
    throw UsageError("no option '" + command[0] + "'; --help lists them");
  }
  const std::size_t arguments = command.size() - 1;
  if (command[0] == "run" && arguments != 1) {
    throw UsageError("run takes 1 argument, not " + std::to_string(arguments) +
                     ": run FILE, or run - for standard input");
  }
  if (command[0] == "console" && arguments != 0) {
    throw UsageError("console takes no arguments, not " + std::to_string(arguments));
  }
  if (command[0] != "run" && command[0] != "console") {
    std::vector<std::string> names = CommandNames();
    names.insert(names.end(), {"run", "console"});
    if (std::find(names.begin(), names.end(), command[0]) == names.end()) {
      throw UsageError("no command '" + command[0] + "'" +
                       DidYouMean(command[0], names, "; --help lists them"));
    }
    CheckCommand(command);
  }
}

}  // namespace

std::variant<Options, std::string> ParseOptions(int argc, const char* const* argv) {
  Options options;
  std::string level = "0";
  CLI::App app("Loads bundles with ACE's service configurator, and calls and inspects them.", "bundle_host");
  app.formatter(std::make_shared<HelpFormat>());
  app.set_version_flag("--version", "bundle_host " BUNDLE_HOST_VERSION);
  app.set_help_flag("-h,--help", "Show this and leave");
  app.add_option("-c,--config-dir", options.configDir, "The configuration directory")
      ->type_name("DIR")
      ->check(RefuseEmptyName);
  app.add_option("-f,--svc-conf", options.svcConf, "Directives of ACE's service configurator to process")
      ->type_name("FILE")
      ->check(RefuseEmptyName);
  app.add_option("-b,--bundle", options.bundles, "A bundle to load, behind the directives; repeat for more")
      ->type_name("LIBRARY")
      ->allow_extra_args(false);
  app.add_option("--log-file", options.logFile,
                 "Append the log to FILE instead of writing it to standard error")
      ->type_name("FILE")
      ->check(RefuseEmptyName);
  app.add_option("--log-level", level, "The lowest level to log: 0 (everything), 1, 2 or off")
      ->type_name("LEVEL");
  app.add_flag("--echo", options.echo, "Print the lines of a command file before what they do");
  app.prefix_command();
  app.footer(Footer());
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return app.help();
  } catch (const CLI::CallForVersion&) {
    return "bundle_host " BUNDLE_HOST_VERSION "\n";
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  options.command = app.remaining();
  if (IsCallForHelp(options.command)) {
    return app.help();
  }
  try {
    options.logLevel = ParseLogLevel(level);
  } catch (const UsageError& error) {
    throw UsageError(std::string("--log-level: ") + error.what());
  }
  CheckProgramCommand(options.command);
  return options;
}

}  // namespace host
