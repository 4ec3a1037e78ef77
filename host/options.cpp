// Parses the program's command line and prints its help. No state, the result is a copy. Main thread only.

#include "host/options.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <sstream>

#include "host/base/problem.h"
#include "host/platform/config_items.h"
#include "host/platform/log_sink.h"

#ifndef BUNDLE_HOST_VERSION
#error "define BUNDLE_HOST_VERSION, as host/CMakeLists.txt does"
#endif

namespace host {
namespace {

std::string Footer() {
  std::ostringstream text;
  text << "Commands, also for files and the console:\n";
  PrintCommands(text);
  text << "\n'bundle_host help COMMAND' describes one of these. Words of a line are separated by "
          "blanks;\n"
       << "between '...' or \"...\" every byte is literal; # at the start of a word begins a comment.\n"
       << "Exit code: 0 done, 1 failed, 2 wrong usage, 128+N ended by signal N. The environment variable "
       << kConfigDirVariable << "\nnames the configuration directory when --config-dir does not.\n";
  return text.str();
}

/// Replaces CLI11's usage line, which lacks the command.
class HelpFormat : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
    return "Usage: bundle_host [OPTION]... COMMAND [ARGUMENT]...\n";
  }

  /// Shows one value per option; CLI11 would mark a repeatable option with "...".
  std::string make_option_opts(const CLI::Option* option) const override {
    const std::string type = option->get_type_name();
    return option->get_type_size() == 0 || type.empty() ? "" : ' ' + type;
  }
};

/// The check of options whose value is a name: returns the problem, or an empty text.
std::string RefuseEmptyName(const std::string& name) { return name.empty() ? "the name is empty" : ""; }

Action ParseProgramCommand(const Words& words) {
  if (words.empty()) {
    throw UsageError("a command is missing; --help lists them");
  }
  if (words[0].size() > 1 && words[0][0] == '-') {
    throw UsageError("no option '" + words[0] + "'; --help lists them");
  }
  return ParseCommand(words);
}

}  // namespace

std::variant<Options, std::string> ParseOptions(int argc, const char* const* argv) {
  Options options;
  std::string level = "0";
  CLI::App app("Loads bundles with ACE's service configurator, and calls and inspects them.", "bundle_host");
  app.formatter(std::make_shared<HelpFormat>());
  app.set_version_flag("--version", "bundle_host " BUNDLE_HOST_VERSION);
  app.set_help_flag("-h,--help", "Show this and exit");
  app.add_option("-c,--config-dir", options.configDir, "The configuration directory")
      ->type_name("DIR")
      ->check(RefuseEmptyName);
  app.add_option("-f,--svc-conf", options.svcConf, "Directives of ACE's service configurator to process")
      ->type_name("FILE")
      ->check(RefuseEmptyName);
  app.add_option("-b,--bundle", options.bundles, "A bundle to load, after the directives; repeat for more")
      ->type_name("LIBRARY")
      ->allow_extra_args(false);
  app.add_option("--log-file", options.logFile,
                 "Append the log to FILE instead of writing it to standard error")
      ->type_name("FILE")
      ->check(RefuseEmptyName);
  app.add_option("--log-level", level, "The lowest level to log: 0 (everything), 1, 2 or off")
      ->type_name("LEVEL");
  app.add_flag("--echo", options.echo, "Print each line of a command file before its output");
  app.add_flag("--keep-going", options.keepGoing,
               "Run a command file to its end, and count the commands that fail");
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
  try {
    options.logLevel = ParseLogLevel(level);
  } catch (const UsageError& error) {
    throw UsageError(std::string("--log-level: ") + error.what());
  }
  options.command = ParseProgramCommand(app.remaining());
  return options;
}

}  // namespace host
