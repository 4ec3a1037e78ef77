// Parses the arguments of the agent's directive. No state, the result is a copy; any thread may call.

#include "examples/alarm_agent/agent_options.h"

#include <charconv>
#include <set>
#include <string_view>

#include "examples/alarm_agent/setup_error.h"

namespace alarm_agent {
namespace {

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

int ParseWorkers(std::string_view text) {
  int workers = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, workers);
  if (error != std::errc() || stop != end || workers < 1 || workers > kMaxWorkers) {
    throw SetupError("--workers " + Quoted(text) + " is not a number from 1 to " +
                     std::to_string(kMaxWorkers));
  }
  return workers;
}

void Apply(std::string_view option, std::string_view value, AgentOptions& options) {
  if (option == "--feed") {
    options.feed = value;
  } else if (option == "--out") {
    options.out = value;
  } else if (option == "--link") {
    options.link = value;
  } else if (option == "--workers") {
    options.workers = ParseWorkers(value);
  } else {
    throw SetupError("unknown argument " + Quoted(option) +
                     "; there are --feed FILE, --out FILE, --workers N and --link BASE");
  }
}

}  // namespace

AgentOptions ParseOptions(int argc, const char* const argv[]) {
  AgentOptions options;
  std::set<std::string_view> seen;
  for (int i = 0; i < argc; i += 2) {
    const std::string_view option = argv[i];
    const std::string_view value = i + 1 < argc ? argv[i + 1] : "";
    if (!seen.insert(option).second) {
      throw SetupError(std::string(option) + " is given twice");
    }
    Apply(option, value, options);
    if (value.empty()) {
      throw SetupError(std::string(option) + " needs a value");
    }
  }
  return options;
}

}  // namespace alarm_agent
