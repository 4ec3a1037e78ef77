#ifndef EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_
#define EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_

#include <string>

namespace alarm_agent {

/// A mistyped number must not start thousands of threads.
inline constexpr int kMaxWorkers = 64;

/// The arguments of the agent's service configurator directive.
struct AgentOptions {
  std::string feed;                                ///< --feed FILE; empty: standard input
  std::string out;                                 ///< --out FILE, appended to; empty: standard output
  int workers = 1;                                 ///< --workers N, 1 to kMaxWorkers
  std::string link = "https://noc.example/alarm";  ///< --link BASE, the start of every link
};

/// Parses the arguments. The first is already an option: the service configurator passes no program name.
/// Throws `SetupError` for an unknown option, a missing or empty value, an option given twice, and a worker
/// count out of range.
AgentOptions ParseOptions(int argc, const char* const argv[]);

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_AGENT_OPTIONS_H_
