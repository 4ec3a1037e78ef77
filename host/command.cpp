#include "host/command.h"

#include <iterator>

#include "host/problem.h"
#include "host/suggest.h"

namespace host {
namespace {

bool IsCallForHelp(const Words& words) { return words.size() == 2 && words[1] == "--help"; }

std::string CountText(const Command& command) {
  const std::string least = std::to_string(command.least);
  if (command.least == command.most) {
    return least + (command.least == 1 ? " argument" : " arguments");
  }
  const std::string most = command.most == kAnyNumber ? " or more" : " to " + std::to_string(command.most);
  return least + most + " arguments";
}

}  // namespace

const std::vector<Command>& Commands() {
  static const std::vector<Command> table = [] {
    std::vector<Command> all;
    for (const auto group :
         {LookCommands, LoadCommands, CallCommands, ItemCommands, LogCommands, HelpCommands}) {
      std::vector<Command> rows = group();
      std::move(rows.begin(), rows.end(), std::back_inserter(all));
    }
    return all;
  }();
  return table;
}

std::vector<std::string> CommandNames() {
  std::vector<std::string> names;
  for (const Command& command : Commands()) {
    names.push_back(command.name);
  }
  return names;
}

std::string Usage(const Command& command) {
  return command.arguments.empty() ? command.name : command.name + " " + command.arguments;
}

const Command& FindCommand(const std::string& name) {
  for (const Command& command : Commands()) {
    if (command.name == name) {
      return command;
    }
  }
  throw UsageError("no command '" + name + "'" + DidYouMean(name, CommandNames(), "; 'help' lists them"));
}

void CheckCommand(const Words& words) {
  const Command& command = FindCommand(words.at(0));
  if (IsCallForHelp(words)) {
    return;
  }
  const Words arguments(words.begin() + 1, words.end());
  if (arguments.size() < command.least || arguments.size() > command.most) {
    throw UsageError(command.name + " takes " + CountText(command) + ", not " +
                     std::to_string(arguments.size()) + ": " + Usage(command));
  }
  if (command.check != nullptr) {
    command.check(arguments);
  }
}

void RunCommand(Session& session, const Words& words) {
  CheckCommand(words);
  if (IsCallForHelp(words)) {
    FindCommand("help").run(session, {words[0]});
    return;
  }
  try {
    FindCommand(words[0]).run(session, Words(words.begin() + 1, words.end()));
  } catch (const UsageError&) {
    throw;
  } catch (const Failure&) {
    throw;
  } catch (...) {
    throw Failure(words[0] + ": an exception came out: " + CurrentExceptionText());
  }
}

}  // namespace host
