#include <algorithm>
#include <iomanip>
#include <ostream>

#include "host/command.h"

namespace host {
namespace {

void CheckHelp(const Words& arguments) {
  if (!arguments.empty()) {
    FindCommand(arguments[0]);
  }
}

void RunHelp(Session& session, const Words& arguments) {
  if (!arguments.empty()) {
    const Command& command = FindCommand(arguments[0]);
    session.out << Usage(command) << "\n  " << command.summary << '\n' << command.details;
    return;
  }
  std::size_t width = 0;
  for (const Command& command : Commands()) {
    width = std::max(width, Usage(command).size());
  }
  for (const Command& command : Commands()) {
    session.out << "  " << std::left << std::setw(static_cast<int>(width) + 2) << Usage(command)
                << command.summary << '\n';
  }
}

void RunQuit(Session& session, const Words& /*arguments*/) { session.leave = true; }

}  // namespace

std::vector<Command> HelpCommands() {
  return {
      {"help", "[COMMAND]", "list the commands, or explain one", "", 0, 1, Completes::kCommands, CheckHelp,
       RunHelp},
      {"quit", "", "unload everything, the last one loaded first, and leave", "", 0, 0, Completes::kNothing,
       nullptr, RunQuit},
  };
}

}  // namespace host
