#ifndef EXAMPLES_ALARM_AGENT_MESSAGE_COMPOSER_H_
#define EXAMPLES_ALARM_AGENT_MESSAGE_COMPOSER_H_

#include <string>

#include "ascii_util/ascii_util_interface.h"
#include "examples/alarm_agent/alarm.h"
#include "examples/alarm_agent/feed_line.h"

namespace alarm_agent {

/// Makes the text message for a line of the feed:
///
///   2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at NORTH/BSC07/BTS0217: ABIS LINK DOWN, 3 times [TRX1, TRX2]
///   LINK
///
/// The severity is what the alarm configuration has for kind, equipment, cause and number; 0, and so what is
/// not configured, reads INDETERMINATE. A text with "CEASED" in it is the end of an alarm, CLEARED whatever
/// is configured. With the operator-specific translation switched on, the severity is written as the
/// operator's priority, P0 to P5. A line that is no alarm gives a message that says so, with the line's
/// number.
///
/// Ownership: borrows the interface, which must outlive it.
/// Threads: keeps nothing between calls; any number of threads may compose at the same time.
/// The message depends on the line and on what the interface answers, and on nothing else.
class MessageComposer {
 public:
  /// `link` is what the links start with.
  MessageComposer(NS_ASCII::AsciiUtilInterface& util, std::string link);

  /// One line of text, without a line end; control characters have become '?'.
  [[nodiscard]] std::string Compose(const FeedLine& line) const;

 private:
  [[nodiscard]] std::string ComposeAlarm(const Alarm& alarm) const;
  [[nodiscard]] std::string ComposeMalformed(const FeedLine& line, const std::string& problem) const;
  [[nodiscard]] std::string Severity(const Alarm& alarm) const;
  [[nodiscard]] std::string Link(const Alarm& alarm) const;

  NS_ASCII::AsciiUtilInterface& util_;
  const std::string link_;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_MESSAGE_COMPOSER_H_
