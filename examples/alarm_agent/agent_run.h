#ifndef EXAMPLES_ALARM_AGENT_AGENT_RUN_H_
#define EXAMPLES_ALARM_AGENT_AGENT_RUN_H_

#include <string>

#include "ascii_util/ascii_util_interface.h"
#include "examples/alarm_agent/agent_options.h"
#include "examples/alarm_agent/feed_line.h"
#include "examples/alarm_agent/feed_reader.h"
#include "examples/alarm_agent/message_composer.h"
#include "examples/alarm_agent/message_writer.h"
#include "examples/alarm_agent/ordered_pool.h"

namespace alarm_agent {

/// Reports one line in ACE's log, under the agent's name. Any thread.
void Report(const std::string& text);

/// Turns one feed into messages: reader, composer and writer, and the threads that drive them.
///
/// Ownership: owns its files and threads; borrows the interface, which must outlive it.
/// Threads: one owner. The destructor returns when all threads have ended.
class AgentRun {
 public:
  /// Opens the files and starts the threads. Throws `SetupError`, or `std::system_error` when the system
  /// refuses a thread.
  AgentRun(const AgentOptions& options, NS_ASCII::AsciiUtilInterface& util);
  ~AgentRun();
  AgentRun(const AgentRun&) = delete;
  AgentRun& operator=(const AgentRun&) = delete;

  /// Lets the threads read what the feed still holds and waits until its messages are written.
  /// True when no message was lost.
  bool Finish();

 private:
  bool TakeLine(FeedLine& line);
  [[nodiscard]] std::string MessageFor(const FeedLine& line) const;
  void Deliver(const std::string& message);

  FeedReader reader_;
  MessageWriter writer_;
  const MessageComposer composer_;
  OrderedPool pool_;  ///< last, because its threads use all of the above
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_AGENT_RUN_H_
