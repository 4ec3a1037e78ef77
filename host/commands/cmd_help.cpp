// The commands help and quit. Main thread only.

#include <ostream>

#include "host/base/problem.h"
#include "host/commands/command.h"

namespace host {
namespace {

Action ParseHelp(const Words& words) {
  if (words.size() == 1) {
    return [](Session& session) { PrintCommands(session.out); };
  }
  const auto find = [&]() -> const Command& { return FindCommand(words[1]); };
  return [&command = AtWord(1, find)](Session& session) {
    session.out << Usage(command) << "\n  " << command.summary << '\n' << command.details;
  };
}

Action ParseQuit(const Words& /*words*/) {
  return [](Session& session) { session.quitRequested = true; };
}

}  // namespace

std::vector<Command> HelpCommands() {
  return {
      {"help", "[COMMAND]", "list the commands, or explain one", "", 0, 1, Completes::kCommands, ParseHelp},
      {"quit", "", "unload all bundles in reverse order and exit", "", 0, 0, Completes::kNothing, ParseQuit},
  };
}

}  // namespace host
