#ifndef EXAMPLES_ALARM_AGENT_SETUP_ERROR_H_
#define EXAMPLES_ALARM_AGENT_SETUP_ERROR_H_

#include <stdexcept>

namespace alarm_agent {

/// Thrown when the agent cannot start. The message says what is wrong and what to do. It repeats arguments
/// unchanged, so it is one line if they are. The service object catches it, on the framework's thread.
class SetupError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_SETUP_ERROR_H_
