// The command log: show or set the lowest level that is written to the log. Main thread only.

#include <ostream>

#include "host/base/problem.h"
#include "host/commands/command.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

Action ParseLog(const Words& words) {
  if (words.size() == 1) {
    return [](Session& session) {
      session.out << "log level: " << (LogLevel() == kLogOff ? "off" : std::to_string(LogLevel())) << '\n';
    };
  }
  return [level = AtWord(1, [&] { return ParseLogLevel(words[1]); })](Session&) { SetLogLevel(level); };
}

}  // namespace

std::vector<Command> LogCommands() {
  return {
      {"log", "[LEVEL]", "show or set the lowest level that is written to the log",
       "0 writes everything; 1 leaves out the details for debugging; 2 writes only starts of services and\n"
       "their failures; off writes no record. ACE's own messages are written at every level, and the\n"
       "console shows the records of a call at every level.\n",
       0, 1, Completes::kNothing, ParseLog},
  };
}

}  // namespace host
