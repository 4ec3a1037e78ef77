#ifndef EXAMPLES_ALARM_AGENT_MESSAGE_COMPOSER_H_
#define EXAMPLES_ALARM_AGENT_MESSAGE_COMPOSER_H_

#include <string>

#include "ascii_util/ascii_util_interface.h"
#include "examples/alarm_agent/alarm.h"
#include "examples/alarm_agent/feed_line.h"

namespace alarm_agent {

/// Makes the text message for a line of the feed:
///
///   2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at North/BTS0217: ABIS LINK DOWN, 3 times [TRX1, TRX2] LINK
///
/// The severity is the configured value for kind, equipment, cause and number. 0, and so every alarm that is
/// not configured, reads INDETERMINATE. An alarm whose text holds "CEASED" reads CLEARED. With the
/// operator-specific translation switched on, the severity is written as the operator's priority, P0 to P5. A
/// value N outside 0 to 5 is written as "SEVERITY=N", one that is not a number as "SEVERITY?". A line that is not
/// an alarm yields a message with its number and the reason.
///
/// Ownership: borrows the interface, which must outlive it.
/// Threads: any thread at any time; no state is kept between calls.
class MessageComposer {
 public:
  /// `link` is the start of every link.
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
