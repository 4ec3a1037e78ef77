#ifndef EXAMPLES_ALARM_AGENT_ALARM_H_
#define EXAMPLES_ALARM_AGENT_ALARM_H_

#include <optional>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

namespace alarm_agent {

/// One alarm of the feed, taken apart.
///
/// The feed's text is comma-separated key=value pairs in any order; unknown keys are ignored:
///   ID         what the element calls the alarm
///   KIND       COM, EQU, ENV, PRO or QOS
///   EQUIPMENT  type of the element, as in the alarm configuration
///   CAUSE      short name of the cause, as in the alarm configuration
///   NUMBER     the specific problem, an integer of at most nine characters
///   AFFECTED   a list, items separated by "|"
///   PATH       where the element stands, from the outside in, separated by "-"
///   COUNT      how often, optional
///   TEXT       free text without a comma, optional
struct Alarm {
  std::string id;
  std::string kind;  ///< in upper case, like the next two
  std::string equipment;
  std::string cause;
  int number = 0;
  std::vector<std::string> affected;  ///< none of them empty, at least one; so is `path`
  std::vector<std::string> path;
  int count = 1;     ///< above 1 when the alarm came several times
  std::string text;  ///< in upper case
};

/// Takes `text` apart with the interface's help. None when it is no alarm; `problem` (out) then says why.
std::optional<Alarm> ReadAlarm(NS_ASCII::AsciiUtilInterface& util, const std::string& text,
                               std::string& problem);

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_ALARM_H_
