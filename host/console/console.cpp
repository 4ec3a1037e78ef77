#include "host/console.h"

#include <unistd.h>

#include <iostream>

#include "host/completion.h"
#include "host/line_editor.h"
#include "host/script.h"
#include "host/state_dir.h"
#include "host/text_escape.h"

namespace host {
namespace {

void RunInteractively(Session& session) {
  LineEditor editor("bundle_host> ", HistoryFile(),
                    [&session](const std::string& line) { return Complete(session, line); });
  session.out << "'help' lists the commands, Tab completes, Ctrl-D leaves.\n" << std::flush;
  while (!session.leave) {
    const std::optional<std::string> line = editor.Read();
    if (!line) {
      return;
    }
    try {
      RunLine(session, *line);
    } catch (const std::exception& problem) {
      session.out.flush();
      std::cerr << OneLine(problem.what()) << '\n';
    }
    session.out.flush();
  }
}

}  // namespace

void RunConsole(Session& session) {
  session.headings = true;
  if (isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
    RunInteractively(session);
  } else {
    RunScriptFile(session, "-");
  }
}

}  // namespace host
