// Joins the groups of commands into one table, and parses command lines. The table is made on first use and
// never changes. Main thread only.

#include "host/commands/command.h"

#include <algorithm>
#include <iterator>
#include <ostream>

#include "host/base/problem.h"
#include "host/base/suggest.h"
#include "host/commands/interrupt.h"

namespace host {
namespace {

std::string CountText(const Command& command) {
  const std::string fewest = std::to_string(command.minArguments);
  if (command.minArguments == command.maxArguments) {
    return fewest + (command.minArguments == 1 ? " argument" : " arguments");
  }
  const bool isOpen = command.maxArguments == kAnyNumber;
  return fewest + (isOpen ? " or more" : " to " + std::to_string(command.maxArguments)) + " arguments";
}

/// Wraps the action: exceptions from bundles become `Failure`, and a stop signal during it `Interrupted`.
Action Guarded(const std::string& name, Action action) {
  return [name, action = std::move(action)](Session& session) {
    try {
      action(session);
      ThrowIfInterrupted();
    } catch (const Problem&) {
      throw;
    } catch (...) {
      throw Failure(name + ": unexpected exception: " + CurrentExceptionText());
    }
  };
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> table = [] {
    std::vector<Command> all;
    for (const auto group : {ListCommands, LoadCommands, CallCommands, ReplayCommands, ItemCommands,
                             LogCommands, RunCommands, ConsoleCommands, HelpCommands}) {
      std::vector<Command> rows = group();
      std::move(rows.begin(), rows.end(), std::back_inserter(all));
    }
    return all;
  }();
  return table;
}

std::string Usage(const Command& command) {
  return command.arguments.empty() ? command.name : command.name + " " + command.arguments;
}

const Command& FindCommand(const std::string& name) {
  if (const Command* const command = FindNamed(Commands(), name)) {
    return *command;
  }
  throw UsageError("no command '" + name + "'" +
                   DidYouMean(name, NamesOf(Commands()), "; 'help' lists them"));
}

const LoadedBundle& FindBundle(const Session& session, const std::string& name, std::size_t word) {
  return AtWord(word, [&]() -> const LoadedBundle& { return session.loader.Find(name); });
}

Action ParseCommand(const Words& words) {
  const Command& command = FindCommand(words.at(0));
  if (words.size() == 2 && words[1] == "--help") {
    return FindCommand("help").parse({"help", command.name});
  }
  const std::size_t count = words.size() - 1;
  if (count < command.minArguments || count > command.maxArguments) {
    throw UsageError(command.name + " takes " + CountText(command) + ", not " + std::to_string(count) + ": " +
                     Usage(command));
  }
  return Guarded(command.name, command.parse(words));
}

void PrintCommands(std::ostream& out) {
  // A longer usage has a line of its own, so that summaries fit 80 columns.
  constexpr std::size_t kWidth = 17;
  for (const Command& command : Commands()) {
    const std::string usage = Usage(command);
    const bool fits = usage.size() <= kWidth;
    out << "  " << usage << (fits ? "" : "\n  ") << std::string(kWidth + 2 - (fits ? usage.size() : 0), ' ')
        << command.summary << '\n';
  }
}

}  // namespace host
