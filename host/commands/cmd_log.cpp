#include <ostream>

#include "host/command.h"
#include "host/log_level.h"
#include "host/log_sink.h"

namespace host {
namespace {

void CheckLog(const Words& arguments) {
  if (!arguments.empty()) {
    ParseLogLevel(arguments[0]);
  }
}

void RunLog(Session& session, const Words& arguments) {
  if (!arguments.empty()) {
    SetLogLevel(ParseLogLevel(arguments[0]));
    return;
  }
  session.out << "log level: " << (LogLevel() == kLogOff ? "off" : std::to_string(LogLevel())) << '\n';
}

}  // namespace

std::vector<Command> LogCommands() {
  return {
      {"log", "[LEVEL]", "show or set the lowest level that is written to the log",
       "0 writes everything; 1 leaves out the details for debugging; 2 leaves starts and what keeps a "
       "service from\n"
       "starting; off writes nothing. What a call in the console caused is always shown with its answer.\n",
       0, 1, Completes::kNothing, CheckLog, RunLog},
  };
}

}  // namespace host
