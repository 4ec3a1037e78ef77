#ifndef EXAMPLES_ALARM_AGENT_FEED_LINE_H_
#define EXAMPLES_ALARM_AGENT_FEED_LINE_H_

#include <cstdint>
#include <string>

namespace alarm_agent {

/// One line of the feed, a plain value. A well-formed feed has one alarm per line.
struct FeedLine {
  std::uint64_t number = 0;  ///< counted from 1
  std::string text;          ///< without its line feed
  bool isWhole = true;       ///< false when the line was too long; `text` is then its beginning
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_FEED_LINE_H_
