#include "tools/almcfg/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <iostream>
#include <map>
#include <memory>

#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

constexpr std::size_t kKeyParts = 4;
constexpr const char* kFileHelp = "AlarmConfig.csv files; - is standard input";
constexpr const char* kExitHelp = "Exit status: 0 clean, 1 findings, 2 could not run.";

using Formats = std::map<std::string, Format>;

/// Names and values for CLI11, in the order of the alphabet.
const Formats kCheckFormats{{"json", Format::kJson}, {"sarif", Format::kSarif}, {"text", Format::kText}};
const Formats kShowFormats{{"html", Format::kHtml}, {"json", Format::kJson}, {"tsv", Format::kTsv}};
const Formats kAnswerFormats{{"json", Format::kJson}, {"text", Format::kText}};
const std::map<std::string, Color> kColors{
    {"always", Color::kAlways}, {"auto", Color::kAuto}, {"never", Color::kNever}};

/// CLI11's help in the words of the manual page.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter() {
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
  }

  std::string make_option_usage(const CLI::Option* option) const override {
    return make_option_name(option, true);
  }
};

/// The names of `choices` for a help line: "json|text".
template <class Choices>
std::string NamesOf(const Choices& choices) {
  std::string names;
  for (const auto& [name, value] : choices) {
    names += (names.empty() ? "" : "|") + name;
  }
  return names;
}

/// An option with a fixed set of names.
template <class Value>
void AddChoice(CLI::App& app, const std::string& name, Value& value,
               const std::map<std::string, Value>& choices, const std::string& help) {
  app.add_option_function<std::string>(
         name,
         [&value, &choices, name](const std::string& text) {
           const auto found = choices.find(text);
           if (found == choices.end()) {
             throw CLI::ValidationError(name, Quoted(text) + " is none of " + NamesOf(choices));
           }
           value = found->second;
         },
         help)
      ->type_name(NamesOf(choices));
}

void AddCommon(CLI::App& app, Options& options, const Formats& formats, const std::string& formatHelp) {
  AddChoice(app, "--format", options.format, formats, formatHelp);
  AddChoice(app, "--color", options.color, kColors, "Colors in text; auto: on a terminal (default)");
}

/// For the help alone: files and keys are taken before CLI11 sees them.
void AddArgument(CLI::App& app, const std::string& name, const std::string& help) {
  app.add_option(name, help)->type_name("");
}

/// Whether the argument is meant as an option; "-" is standard input, "--" ends the options, and a "-" before
/// a digit starts a number.
bool IsOption(const std::string& argument) {
  const bool isNumber = argument.size() > 1 && argument[1] >= '0' && argument[1] <= '9';
  return argument.size() > 1 && argument[0] == '-' && argument != "--" && !isNumber;
}

/// The option that the argument names; it may have its value behind a "=". None when there is no such option.
const CLI::Option* OptionOf(const CLI::App& app, const std::string& argument) {
  return app.get_option_no_throw(argument.substr(0, argument.find('=')));
}

/// Says what is wrong about arguments that start with an option which is none of the program's own.
[[noreturn]] void RefuseOptionBeforeCommand(const CLI::App& app, const std::string& option,
                                            const std::string& commands) {
  for (const CLI::App* const command : app.get_subcommands({})) {
    if (OptionOf(*command, option) != nullptr) {
      throw CLI::ValidationError(
          "COMMAND", Quoted(option) + " belongs behind it; one of " + commands + " is needed first");
    }
  }
  throw CLI::ValidationError("COMMAND",
                             "one of " + commands + " is needed; there is no option " + Quoted(option));
}

/// The command that the arguments start with, or none when they start with an option of the program's own, as
/// for help. Throws when they do neither.
const CLI::App* CommandOf(const CLI::App& app, const std::vector<std::string>& arguments) {
  std::string names;
  for (const CLI::App* const command : app.get_subcommands({})) {
    names += (names.empty() ? "" : "|") + command->get_name();
    if (!arguments.empty() && arguments.front() == command->get_name()) {
      return command;
    }
  }
  if (arguments.empty()) {
    throw CLI::ValidationError("COMMAND", "one of " + names + " is needed");
  }
  const std::string& first = arguments.front();
  if (!IsOption(first)) {
    throw CLI::ValidationError("COMMAND", Quoted(first) + " is none of " + names);
  }
  if (OptionOf(app, first) == nullptr) {
    RefuseOptionBeforeCommand(app, first, names);
  }
  return nullptr;
}

/// Whether the value of the option is the next argument. Throws when there is no such option, or no value.
bool TakesNext(const CLI::App& command, const std::string& argument, bool isLast) {
  const CLI::Option* const option = OptionOf(command, argument);
  if (option == nullptr) {
    throw CLI::ValidationError(
        command.get_name(),
        "it has no option " + Quoted(argument) + "; a file or key that starts with \"-\" goes behind \"--\"");
  }
  if (option->get_items_expected_min() == 0) {
    return false;
  }
  const std::size_t equals = argument.find('=');
  if (equals == std::string::npos ? isLast : equals + 1 == argument.size()) {
    throw CLI::ValidationError(option->get_name(), "one of " + option->get_type_name() + " is needed");
  }
  return equals == std::string::npos;
}

/// Takes off the files and keys and returns them as they stand: what is no option, and everything behind a
/// "--". CLI11 never sees them, since it gives some of them a meaning of its own: "++", or a text in
/// brackets, which it takes for a list.
std::vector<std::string> TakePlainArguments(const CLI::App& command, std::vector<std::string>& arguments) {
  const auto end = arguments.end();
  std::vector<std::string> plain;
  std::vector<std::string> rest{arguments.front()};
  for (auto argument = arguments.begin() + 1; argument != end; ++argument) {
    if (*argument == "--") {
      plain.insert(plain.end(), argument + 1, end);
      break;
    }
    if (!IsOption(*argument)) {
      plain.push_back(*argument);
      continue;
    }
    rest.push_back(*argument);
    if (TakesNext(command, *argument, argument + 1 == end)) {
      rest.push_back(*++argument);
    }
  }
  arguments = std::move(rest);
  return plain;
}

/// The last four of what was given to `lookup` are the key.
void TakeKey(Options& options) {
  if (options.files.size() <= kKeyParts) {
    throw CLI::ValidationError("lookup", "it needs FILE... KEY1 KEY2 KEY3 NUMBER");
  }
  const std::string number = options.files.back();
  const char* const end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, options.number);
  if (error != std::errc() || stop != end) {
    throw CLI::ValidationError(
        "NUMBER", Quoted(number) + " is not a 32-bit decimal integer, which is what callers ask with");
  }
  const auto keys = options.files.end() - kKeyParts;
  options.key1 = keys[0];
  options.key2 = keys[1];
  options.key3 = keys[2];
  options.files.erase(keys, options.files.end());
}

/// What can only be said once all arguments are known.
void Complete(Options& options) {
  if (options.command == Command::kLookup) {
    TakeKey(options);
  }
  if (options.command == Command::kDiff && options.files.size() != 2) {
    throw CLI::ValidationError("diff", "it needs two files, RUNNING and NEW");
  }
  if (options.files.empty()) {
    throw CLI::ValidationError("FILE", "at least one is needed");
  }
  if (std::count(options.files.begin(), options.files.end(), "") > 0) {
    throw CLI::ValidationError("FILE", "a name is empty");
  }
  if (std::count(options.files.begin(), options.files.end(), "-") > 1) {
    throw CLI::ValidationError("FILE", "standard input (-) can be read only once");
  }
}

CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& help) {
  return app.add_subcommand(name, help)->group("Commands");
}

void AddCheck(CLI::App& app, Options& options) {
  CLI::App* const check = AddCommand(app, "check", "Report everything that is wrong or odd about each file");
  check->add_flag("--strict", options.strict, "Warnings count as findings too");
  AddCommon(*check, options, kCheckFormats, "How to report (default: text)");
  AddArgument(*check, "FILE...", kFileHelp);
  check->footer(kExitHelp);
  check->callback([&options] { options.command = Command::kCheck; });
}

void AddShow(CLI::App& app, Options& options) {
  CLI::App* const show =
      AddCommand(app, "show", "Show the table in force after loading the files in this order");
  show->add_flag("--sort", options.sorted, "In the table's order, not in the files'");
  AddCommon(*show, options, kShowFormats, "How to show it (default: tsv)");
  AddArgument(*show, "FILE...", kFileHelp);
  show->footer("Exit status: 0 shown, 1 shown, but a line never lets a load end, 2 could not run.");
  show->callback([&options] { options.command = Command::kShow; });
}

void AddLookup(CLI::App& app, Options& options) {
  CLI::App* const lookup =
      AddCommand(app, "lookup", "Say what GetAlmCfgValue answers for a key, and which line serves it");
  AddCommon(*lookup, options, kAnswerFormats, "How to answer (default: text)");
  AddArgument(*lookup, "FILE...", kFileHelp);
  AddArgument(*lookup, "KEY1", "Column 1, or one of its alternatives");
  AddArgument(*lookup, "KEY2", "Column 2, or one of its alternatives");
  AddArgument(*lookup, "KEY3", "Column 3");
  AddArgument(*lookup, "NUMBER", "Column 4");
  lookup->footer(
      "A key that starts with \"-\" goes behind \"--\": almcfg lookup FILE -- KEY1 KEY2 KEY3 NUMBER\n"
      "Exit status: 0 a line serves the key with an integer, 1 it does not, 2 could not run.");
  lookup->callback([&options] { options.command = Command::kLookup; });
}

void AddDiff(CLI::App& app, Options& options) {
  CLI::App* const diff =
      AddCommand(app, "diff", "Say what a reload changes in a running process, and what a restart");
  AddCommon(*diff, options, kAnswerFormats, "How to report (default: text)");
  AddArgument(*diff, "RUNNING", "What the process has loaded; - is standard input");
  AddArgument(*diff, "NEW", "What it will load; - is standard input");
  diff->footer("Exit status: 0 no difference, 1 differences, 2 could not run.");
  diff->callback([&options] { options.command = Command::kDiff; });
}

}  // namespace

Parsed ParseArguments(std::vector<std::string> arguments) {
  Options options;
  CLI::App app{"Checks AlarmConfig.csv files and answers what they do before a process loads them.",
               "almcfg"};
  app.formatter(std::make_shared<HelpFormatter>());
  app.require_subcommand(1);
  app.set_version_flag("--version", "almcfg " ALMCFG_VERSION);
  app.footer(std::string("almcfg COMMAND --help describes a command. ") + kExitHelp);
  AddCheck(app, options);
  AddShow(app, options);
  AddLookup(app, options);
  AddDiff(app, options);
  try {
    if (const CLI::App* const command = CommandOf(app, arguments)) {
      options.files = TakePlainArguments(*command, arguments);
    }
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes them from the end.
    app.parse(std::move(arguments));
    Complete(options);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      return {std::nullopt, app.exit(error)};
    }
    std::cerr << "almcfg: " << Printable(error.what()) << "\nalmcfg --help describes the commands\n";
    return {std::nullopt, kCouldNotRun};
  }
  return {options, kClean};
}

}  // namespace almcfg
