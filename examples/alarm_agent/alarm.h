#ifndef EXAMPLES_ALARM_AGENT_ALARM_H_
#define EXAMPLES_ALARM_AGENT_ALARM_H_

#include <optional>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

namespace alarm_agent {

/// One parsed alarm.
///
/// The feed's text is comma-separated key=value pairs in any order; unknown keys are ignored:
///   ID         the alarm's identifier, chosen by the element
///   KIND       COM, EQU, ENV, PRO or QOS
///   EQUIPMENT  type of the element, as in the alarm configuration
///   CAUSE      short name of the cause, as in the alarm configuration
///   NUMBER     the specific problem, an integer of at most nine characters
///   AFFECTED   a list, items separated by "|"
///   PATH       the element's location, outermost first, separated by "-"
///   COUNT      how often, optional
///   TEXT       free text without a comma, optional
struct Alarm {
  std::string id;
  std::string kind;  ///< in upper case, like the next two
  std::string equipment;
  std::string cause;
  int number = 0;
  std::vector<std::string> affected;  ///< at least one, none empty; the same for `path`
  std::vector<std::string> path;
  int count = 1;     ///< how often the alarm was raised
  std::string text;  ///< in upper case
};

/// Parses `text` with the interface. Returns nothing when it is not an alarm; `problem` (out) is then the
/// reason. Threads: any.
std::optional<Alarm> ReadAlarm(NS_ASCII::AsciiUtilInterface& util, const std::string& text,
                               std::string& problem);

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_ALARM_H_
