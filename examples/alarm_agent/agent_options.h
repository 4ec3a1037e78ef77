#ifndef EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_
#define EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_

#include <string>

namespace alarm_agent {

/// More threads than this never help, and a slip of the keyboard shall not start thousands.
inline constexpr int kMaxWorkers = 64;

/// What the agent is told in the arguments of its service configurator directive.
struct AgentOptions {
  std::string feed;                                ///< --feed FILE; empty: standard input
  std::string out;                                 ///< --out FILE, appended to; empty: standard output
  int workers = 1;                                 ///< --workers N, 1 to kMaxWorkers
  std::string link = "https://noc.example/alarm";  ///< --link BASE, what the links in the messages start with
};

/// Reads the arguments, of which the first is already an option: the service configurator passes no program
/// name. Throws `SetupError` for an unknown option, a missing or empty value, an option given twice, a worker
/// count that is out of range.
AgentOptions ParseOptions(int argc, const char* const argv[]);

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_
