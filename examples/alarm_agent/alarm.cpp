// Parses the text of an alarm by calls of a borrowed interface. No state, the result is a copy; any thread may
// call.

#include "examples/alarm_agent/alarm.h"

#include <algorithm>
#include <stdexcept>

#include "ascii_util/text_functions.h"

namespace alarm_agent {
namespace {

using NS_ASCII::AsciiUtilInterface;
using NS_ASCII::ListMap;

// Str2Num cuts longer numbers to 32 bits without an error.
constexpr std::size_t kLongestNumber = 9;

/// Thrown while parsing, caught by ReadAlarm.
class Malformed : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string OptionalField(AsciiUtilInterface& util, const std::string& key, const std::string& text) {
  const std::string value = util.GetKeyValue(key, text);
  // The result for an empty value is the rest of the text with its commas; no other value has a comma.
  return value.find(',') == std::string::npos ? NS_ASCII::Trim(value) : "";
}

std::string Field(AsciiUtilInterface& util, const std::string& key, const std::string& text) {
  std::string value = OptionalField(util, key, text);
  if (value.empty()) {
    throw Malformed(key + " is missing or empty");
  }
  return value;
}

int NumberField(AsciiUtilInterface& util, const std::string& text) {
  const std::string value = Field(util, "NUMBER", text);
  int number = 0;
  if (value.size() > kLongestNumber || !util.Str2Num(value, number, 10)) {
    throw Malformed("NUMBER is \"" + value + "\", not an integer of at most nine characters");
  }
  return number;
}

/// The number that COUNT starts with.
int CountField(AsciiUtilInterface& util, const std::string& text) {
  int count = 1;
  if (util.IsKeyValueAboveOne("COUNT", text)) {
    static_cast<void>(util.Str2Num(OptionalField(util, "COUNT", text), count, 10));
  }
  return count;
}

std::vector<std::string> ListField(AsciiUtilInterface& util, const std::string& name, const ListMap& lists) {
  std::vector<std::string> items;
  if (util.GetMapList(lists, name, items) != 0) {
    throw Malformed(name + " is missing");
  }
  if (std::find(items.begin(), items.end(), "") != items.end()) {
    throw Malformed(name + " has an empty item");
  }
  return items;
}

ListMap Lists(AsciiUtilInterface& util, const std::string& text) {
  ListMap lists;
  util.ParseListMap(lists, text);
  // A part without "=" is listed under the empty name.
  if (lists.count("") != 0) {
    throw Malformed("not every part is KEY=VALUE");
  }
  return lists;
}

}  // namespace

std::optional<Alarm> ReadAlarm(AsciiUtilInterface& util, const std::string& text, std::string& problem) {
  try {
    const ListMap lists = Lists(util, text);
    Alarm alarm;
    alarm.id = Field(util, "ID", text);
    alarm.kind = util.ToUpper(Field(util, "KIND", text));
    alarm.equipment = util.ToUpper(Field(util, "EQUIPMENT", text));
    alarm.cause = util.ToUpper(Field(util, "CAUSE", text));
    alarm.number = NumberField(util, text);
    alarm.affected = ListField(util, "AFFECTED", lists);
    alarm.path = ListField(util, "PATH", lists);
    alarm.count = CountField(util, text);
    alarm.text = util.ToUpper(OptionalField(util, "TEXT", text));
    return alarm;
  } catch (const Malformed& malformed) {
    problem = malformed.what();
    return std::nullopt;
  }
}

}  // namespace alarm_agent
