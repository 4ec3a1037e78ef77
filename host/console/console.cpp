// The command console: reads lines from the terminal with editing, history and completion, or runs a pipe
// like a command file. The session is borrowed. Main thread only.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "host/base/text_escape.h"
#include "host/commands/command.h"
#include "host/commands/interrupt.h"
#include "host/commands/script.h"
#include "host/console/completion.h"
#include "host/console/line_editor.h"

namespace host {
namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// The path of the history: "bundle_host/history" in $XDG_STATE_HOME or ~/.local/state. Creates missing
/// directories. Empty when there is no such directory.
std::string HistoryFile() {
  std::filesystem::path directory = Environment("XDG_STATE_HOME");
  if (!directory.is_absolute()) {
    const std::filesystem::path home = Environment("HOME");
    if (!home.is_absolute()) {
      return {};
    }
    directory = home / ".local" / "state";
  }
  directory /= "bundle_host";
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  return error ? "" : (directory / "history").string();
}

void RunInteractively(Session& session) {
  LineEditor editor("bundle_host> ", HistoryFile(),
                    [&session](const std::string& line) { return Complete(session, line); });
  session.out << "'help' lists the commands, Tab completes, Ctrl-D exits.\n" << std::flush;
  while (!session.quitRequested && ForgetInterrupt()) {
    const std::optional<std::string> line = editor.Read();
    if (!line) {
      return;
    }
    try {
      RunLine(session, *line);
    } catch (const std::exception& problem) {
      std::cerr << OneLine(problem.what()) << '\n';
    }
    session.out.flush();
  }
}

void RunConsole(Session& session) {
  if (session.hasConsole) {
    throw Failure("console: a console is running already");
  }
  const Temporarily running(session.hasConsole, true);
  if (isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
    RunInteractively(session);
  } else {
    RunScript(session, "-");
  }
}

Action ParseConsole(const Words& /*words*/) { return RunConsole; }

}  // namespace

std::vector<Command> ConsoleCommands() {
  return {
      {"console", "", "read commands from the terminal, or from a pipe",
       "A terminal has history and completion; a command that fails is reported and the console continues.\n"
       "When standard input or output is not a terminal, commands are read as by \"run -\".\n",
       0, 0, Completes::kNothing, ParseConsole},
  };
}

}  // namespace host
