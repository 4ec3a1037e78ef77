// Parses the command line. No state, the result is a copy. Main thread only.

#include "tools/almcfg/options.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string_view>

#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

constexpr std::size_t kKeyParts = 4;
constexpr std::size_t kHelpColumn = 29;
constexpr const char* kFileHelp = "AlarmConfig.csv files; - is standard input";

/// A mistake on the command line. The message is one line, safe to print.
class Mistake : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct OptionSpec {
  std::string name;   ///< with its dashes
  std::string value;  ///< "a|b" is a choice; empty for a flag
  std::string help;
  std::function<void(Options&, const std::string&)> apply;
};

struct Argument {
  std::string name;
  std::string help;
};

struct CommandSpec {
  Command command;
  std::string name;
  std::string help;
  std::vector<Argument> arguments;
  std::vector<OptionSpec> options;
  std::string exitHelp;
};

const Rule& RuleNamed(const std::string& option, const std::string& name) {
  const Rule* const rule = FindRule(name);
  if (rule == nullptr) {
    throw Mistake(option + ": " + Quoted(name) + " is not a code; almcfg check --help lists them");
  }
  return *rule;
}

OptionSpec FormatOption(const std::string& names, const std::string& help) {
  return {"--format", names, help, [](Options& options, const std::string& name) {
            static const std::map<std::string, Format> kFormats{{"html", Format::kHtml},
                                                                {"json", Format::kJson},
                                                                {"sarif", Format::kSarif},
                                                                {"text", Format::kText},
                                                                {"tsv", Format::kTsv}};
            options.format = kFormats.at(name);
          }};
}

OptionSpec ColorOption() {
  return {"--color", "always|auto|never", "Colors in text; auto: on a terminal (default)",
          [](Options& options, const std::string& name) {
            options.color = name == "always" ? Color::kAlways : name == "auto" ? Color::kAuto : Color::kNever;
          }};
}

OptionSpec Flag(const std::string& name, const std::string& help, bool Options::*member) {
  return {name, "", help, [member](Options& options, const std::string&) { options.*member = true; }};
}

OptionSpec StdinNameOption() {
  return {"--stdin-name", "NAME", "The name of standard input in messages",
          [](Options& options, const std::string& name) { options.stdinName = name; }};
}

OptionSpec CallsOption(const std::string& help) {
  return {"--calls", "RECORDING", help,
          [](Options& options, const std::string& path) { options.calls = path; }};
}

OptionSpec SelectOption(const std::string& help) {
  return {"--select", "CODE,...", help, [](Options& options, const std::string& names) {
            options.codes.fill(false);
            for (const std::string& name : SplitAll(names, ',')) {
              options.codes[static_cast<std::size_t>(RuleNamed("--select", name).code)] = true;
            }
          }};
}

OptionSpec IgnoreOption(const std::string& help) {
  return {"--ignore", "CODE,...", help, [](Options& options, const std::string& names) {
            for (const std::string& name : SplitAll(names, ',')) {
              options.codes[static_cast<std::size_t>(RuleNamed("--ignore", name).code)] = false;
            }
          }};
}

/// The number when the whole text is an integer that fits; none otherwise.
template <class Number>
std::optional<Number> ParseNumber(const std::string& text) {
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end ? std::optional<Number>(number) : std::nullopt;
}

std::vector<OptionSpec> CheckOptions() {
  return {
      Flag("--strict", "Warnings also give exit code 1", &Options::strict),
      SelectOption("Report only these codes"),
      IgnoreOption("Do not report these codes"),
      {"--max-findings", "N", "Print N findings and count the rest",
       [](Options& options, const std::string& text) {
         const auto number = ParseNumber<std::size_t>(text);
         if (!number) {
           throw Mistake("--max-findings: " + Quoted(text) + " is not a count");
         }
         options.maxFindings = *number;
       }},
      Flag("--quiet", "Print findings only, no totals", &Options::quiet),
      {"--explain", "CODE", "Describe a finding, with an example, and exit",
       [](Options& options, const std::string& name) { options.explain = &RuleNamed("--explain", name); }},
      StdinNameOption(),
      FormatOption("json|sarif|text", "How to report (default: text)"),
      ColorOption()};
}

std::vector<OptionSpec> FixOptions() {
  return {Flag("--unsafe", "Also repairs that may change answers or choose a line", &Options::unsafe),
          Flag("--in-place", "Replace each file atomically", &Options::inPlace),
          Flag("--backup", "With --in-place: keep the old file as FILE.bak", &Options::backup),
          Flag("--diff", "Write a unified diff instead of the repaired file", &Options::unifiedDiff),
          SelectOption("Repair only these codes"),
          IgnoreOption("Do not repair these codes"),
          Flag("--quiet", "Do not report what was repaired", &Options::quiet),
          StdinNameOption(),
          ColorOption()};
}

const std::vector<CommandSpec>& Commands() {
  static const std::vector<CommandSpec> kCommands{
      {Command::kCheck,
       "check",
       "Report everything that is wrong or odd about each file",
       {{"FILE...", kFileHelp}},
       CheckOptions(),
       "0 no errors (with --strict: nor warnings), 1 findings, 2 could not run"},
      {Command::kFix,
       "fix",
       "Repair what can be repaired and write the file to standard output",
       {{"FILE...", kFileHelp}},
       FixOptions(),
       "0 no errors left, 1 errors left, or with --diff something to repair, 2 could not run"},
      {Command::kShow,
       "show",
       "Show the table in force after loading the files in this order",
       {{"FILE...", kFileHelp}},
       {Flag("--sort", "In the table's order, not in the files'", &Options::sorted),
        CallsOption("With --format html: how often each key was asked for"), StdinNameOption(),
        FormatOption("html|json|tsv", "How to show it (default: tsv)"), ColorOption()},
       "0 shown, 1 shown, but the load never ends at a line, 2 could not run"},
      {Command::kLookup,
       "lookup",
       "Say what GetAlmCfgValue answers for a key, and which line serves it",
       {{"FILE...", kFileHelp},
        {"KEY1", "Column 1, or one of its alternatives"},
        {"KEY2", "Column 2, or one of its alternatives"},
        {"KEY3", "Column 3"},
        {"NUMBER", "Column 4"}},
       {StdinNameOption(), FormatOption("json|text", "How to answer (default: text)"), ColorOption()},
       "0 a line serves the key with an integer, 1 it does not, 2 could not run"},
      {Command::kDiff,
       "diff",
       "Say what a reload and a restart change in a running process",
       {{"RUNNING", "What the process has loaded; - is standard input"},
        {"NEW", "What it will load; - is standard input"}},
       {StdinNameOption(), FormatOption("json|text", "How to report (default: text)"), ColorOption()},
       "0 no answer changes, 1 differences, 2 could not run"},
      {Command::kCoverage,
       "coverage",
       "Compare what callers asked for with the table in force",
       {{"FILE...", kFileHelp}},
       {CallsOption("Recorded calls, or lines of KEY1, KEY2, KEY3, NUMBER, COUNT; - is standard input"),
        Flag("--strict", "Queries that no line serves give exit code 1", &Options::strict), StdinNameOption(),
        FormatOption("json|text", "How to report (default: text)"), ColorOption()},
       "0 reported, 1 the load never ends or, with --strict, no line serves a query, 2 could not run"}};
  return kCommands;
}

std::string CommandNames() {
  std::string names;
  for (const CommandSpec& spec : Commands()) {
    names += (names.empty() ? "" : "|") + spec.name;
  }
  return names;
}

void WriteHelpLine(const std::string& name, const std::string& help) {
  const std::size_t gap = name.size() + 2 < kHelpColumn ? kHelpColumn - name.size() - 2 : 2;
  std::cout << "  " << name << std::string(gap, ' ') << help << '\n';
}

void WriteHelp() {
  std::cout
      << "Checks AlarmConfig.csv files, repairs them, and says what they do before a process loads them.\n\n"
         "Usage: almcfg [OPTIONS] COMMAND\n\nOptions:\n";
  WriteHelpLine("-h, --help", "Describe the program, or the command that it follows");
  WriteHelpLine("--version", "Print the version");
  std::cout << "\nCommands:\n";
  for (const CommandSpec& spec : Commands()) {
    WriteHelpLine(spec.name, spec.help);
  }
  std::cout << "\nalmcfg COMMAND --help describes a command.\n";
}

void WriteHelp(const CommandSpec& spec) {
  std::cout << spec.help << "\n\nUsage: almcfg " << spec.name << " [OPTIONS]";
  for (const Argument& argument : spec.arguments) {
    std::cout << ' ' << argument.name;
  }
  std::cout << "\n\nArguments:\n";
  for (const Argument& argument : spec.arguments) {
    WriteHelpLine(argument.name, argument.help);
  }
  std::cout << "\nOptions:\n";
  WriteHelpLine("-h, --help", "Describe the command");
  for (const OptionSpec& option : spec.options) {
    WriteHelpLine(option.name + (option.value.empty() ? "" : ' ' + option.value), option.help);
  }
  if (spec.command == Command::kCheck) {
    std::cout << "\nCodes:\n";
    for (const Rule& rule : Rules()) {
      WriteHelpLine(rule.name, rule.summary);
    }
  }
  std::cout << "\nGive a file or key that starts with \"-\" after \"--\", unless it is a number.\nExit code: "
            << spec.exitHelp << ".\n";
}

/// "-" is standard input, "--" ends the options, and "-" before a digit starts a number.
bool IsOption(const std::string& argument) {
  const bool isNumber = argument.size() > 1 && argument[1] >= '0' && argument[1] <= '9';
  return argument.size() > 1 && argument[0] == '-' && argument != "--" && !isNumber;
}

const OptionSpec& OptionNamed(const CommandSpec& spec, const std::string& argument) {
  const std::string name = argument.substr(0, argument.find('='));
  const auto option = std::find_if(spec.options.begin(), spec.options.end(),
                                   [&name](const OptionSpec& each) { return each.name == name; });
  if (option == spec.options.end()) {
    throw Mistake(spec.name + ": no option " + Quoted(argument) +
                  "; a file or key that starts with \"-\" goes after \"--\"");
  }
  return *option;
}

void ApplyOption(const OptionSpec& option, const std::optional<std::string>& value, Options& options) {
  if (option.value.empty() && value) {
    throw Mistake(option.name + ": it takes no value, but was given " + Quoted(*value));
  }
  const bool isChoice = option.value.find('|') != std::string::npos;
  if (!option.value.empty() && (!value || value->empty())) {
    throw Mistake(option.name + ": " + (isChoice ? "one of " + option.value : option.value) + " is needed");
  }
  if (isChoice) {
    const std::vector<std::string> choices = SplitAll(option.value, '|');
    if (std::count(choices.begin(), choices.end(), *value) == 0) {
      throw Mistake(option.name + ": " + Quoted(*value) + " is none of " + option.value);
    }
  }
  option.apply(options, value.value_or(""));
}

/// Separates options from files and keys, which are taken literally.
void ApplyArguments(const CommandSpec& spec, const std::vector<std::string>& arguments, Options& options) {
  for (auto argument = arguments.begin() + 1; argument != arguments.end(); ++argument) {
    if (*argument == "--") {
      options.files.insert(options.files.end(), argument + 1, arguments.end());
      return;
    }
    if (!IsOption(*argument)) {
      options.files.push_back(*argument);
      continue;
    }
    const OptionSpec& option = OptionNamed(spec, *argument);
    const std::size_t equals = argument->find('=');
    std::optional<std::string> value;
    if (equals != std::string::npos) {
      value = argument->substr(equals + 1);
    } else if (!option.value.empty() && argument + 1 != arguments.end()) {
      value = *++argument;
    }
    ApplyOption(option, value, options);
  }
}

/// The last four arguments of `lookup` are the key.
void TakeKey(Options& options) {
  if (options.files.size() <= kKeyParts) {
    throw Mistake("lookup: FILE... KEY1 KEY2 KEY3 NUMBER are needed");
  }
  const std::string number = options.files.back();
  const auto parsed = ParseNumber<int>(number);
  if (!parsed) {
    throw Mistake("NUMBER: " + Quoted(number) + " is not a 32-bit decimal integer, which callers ask with");
  }
  options.number = *parsed;
  const auto keys = options.files.end() - kKeyParts;
  options.key1 = keys[0];
  options.key2 = keys[1];
  options.key3 = keys[2];
  options.files.erase(keys, options.files.end());
}

void RequireFiles(const Options& options) {
  if (options.files.empty()) {
    throw Mistake("FILE: at least one is needed; - is standard input");
  }
  if (std::count(options.files.begin(), options.files.end(), "") > 0) {
    throw Mistake("FILE: a name is empty");
  }
  if (std::count(options.files.begin(), options.files.end(), "-") + (options.calls == "-" ? 1 : 0) > 1) {
    throw Mistake("FILE: standard input (-) can be read only once");
  }
}

void RequireFixOptions(const Options& options) {
  if (options.inPlace && options.unifiedDiff) {
    throw Mistake("fix: --in-place and --diff exclude each other");
  }
  if (options.backup && !options.inPlace) {
    throw Mistake("fix: --backup needs --in-place");
  }
  if (options.inPlace && std::count(options.files.begin(), options.files.end(), "-") > 0) {
    throw Mistake("fix: standard input (-) cannot be replaced; leave --in-place out");
  }
  if (options.files.size() > 1 && !options.inPlace && !options.unifiedDiff) {
    throw Mistake("fix: several files need --in-place or --diff");
  }
}

/// Checks that need all arguments.
void Complete(Options& options) {
  if (options.explain != nullptr) {
    return;
  }
  if (options.command == Command::kLookup) {
    TakeKey(options);
  }
  if (options.command == Command::kDiff && options.files.size() != 2) {
    throw Mistake("diff: two files are needed, RUNNING and NEW");
  }
  RequireFiles(options);
  if (options.command == Command::kCoverage && options.calls.empty()) {
    throw Mistake("coverage: --calls RECORDING is needed; it holds what callers asked for");
  }
  if (options.command == Command::kShow && !options.calls.empty() && options.format != Format::kHtml) {
    throw Mistake("show: --calls needs --format html; almcfg coverage reports as text or JSON");
  }
  if (options.command == Command::kFix) {
    RequireFixOptions(options);
  }
}

const CommandSpec& CommandNamed(const std::vector<std::string>& arguments) {
  if (arguments.empty()) {
    throw Mistake("one of " + CommandNames() + " is needed");
  }
  const std::string& name = arguments.front();
  for (const CommandSpec& spec : Commands()) {
    if (spec.name == name) {
      return spec;
    }
  }
  if (IsOption(name)) {
    throw Mistake("no option " + Quoted(name) + " before the command, one of " + CommandNames());
  }
  throw Mistake(Quoted(name) + " is none of " + CommandNames());
}

bool IsHelp(const std::string& argument) { return argument == "-h" || argument == "--help"; }

}  // namespace

Parsed ParseArguments(const std::vector<std::string>& arguments) {
  try {
    if (!arguments.empty() && IsHelp(arguments.front())) {
      WriteHelp();
      return {};
    }
    if (!arguments.empty() && arguments.front() == "--version") {
      std::cout << "almcfg " ALMCFG_VERSION "\n";
      return {};
    }
    const CommandSpec& spec = CommandNamed(arguments);
    const auto optionsEnd = std::find(arguments.begin(), arguments.end(), "--");
    if (std::any_of(arguments.begin(), optionsEnd, IsHelp)) {
      WriteHelp(spec);
      return {};
    }
    Options options;
    options.command = spec.command;
    ApplyArguments(spec, arguments, options);
    Complete(options);
    return {options, kClean};
  } catch (const Mistake& mistake) {
    std::cerr << "almcfg: " << mistake.what() << "\nalmcfg --help describes the commands\n";
    return {std::nullopt, kCouldNotRun};
  }
}

}  // namespace almcfg
