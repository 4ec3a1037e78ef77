// Composes the text message for a line of the feed. The interface is borrowed, messages are copies. No state
// between calls; any thread may call.

#include "examples/alarm_agent/message_composer.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "ascii_util/text_functions.h"
#include "examples/alarm_agent/feed_reader.h"

namespace alarm_agent {
namespace {

/// A severity in plain words and as the operator's priority.
struct SeverityName {
  const char* word;
  const char* priority;
};

constexpr std::array<SeverityName, 6> kSeverities = {{{"INDETERMINATE", "P5"},
                                                      {"CRITICAL", "P1"},
                                                      {"MAJOR", "P2"},
                                                      {"MINOR", "P3"},
                                                      {"WARNING", "P4"},
                                                      {"CLEARED", "P0"}}};
constexpr std::int64_t kCleared = 5;

std::string Joined(const std::vector<std::string>& items, const char* separator) {
  std::string text;
  for (const std::string& item : items) {
    text += (text.empty() ? "" : separator) + item;
  }
  return text;
}

std::string WithoutControls(std::string text) {
  for (char& c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7f) c = '?';
  }
  return text;
}

}  // namespace

MessageComposer::MessageComposer(NS_ASCII::AsciiUtilInterface& util, std::string link)
    : util_(util), link_(std::move(link)) {}

std::string MessageComposer::Compose(const FeedLine& line) const {
  std::string problem = "longer than " + std::to_string(FeedReader::kMaxLine) + " bytes";
  const std::optional<Alarm> alarm =
      line.isWhole ? ReadAlarm(util_, line.text, problem) : std::optional<Alarm>();
  return WithoutControls(alarm ? ComposeAlarm(*alarm) : ComposeMalformed(line, problem));
}

std::string MessageComposer::ComposeAlarm(const Alarm& alarm) const {
  std::string message = util_.GetTimeStamp() + ' ' + Severity(alarm) + ' ' + alarm.kind + ' ' +
                        alarm.equipment + ' ' + alarm.cause + '/' + NS_ASCII::Num2Str(alarm.number) + " at " +
                        Joined(alarm.path, "/");
  message += alarm.text.empty() ? "" : ": " + alarm.text;
  message += alarm.count > 1 ? ", " + NS_ASCII::Num2Str(alarm.count) + " times" : "";
  return message + " [" + Joined(alarm.affected, ", ") + "] " + Link(alarm);
}

std::string MessageComposer::ComposeMalformed(const FeedLine& line, const std::string& problem) const {
  const std::string complaint =
      "line " + std::to_string(line.number) + " of the feed is not an alarm: " + problem;
  util_.WriteDbgLog(complaint);
  return util_.GetTimeStamp() + " MALFORMED " + complaint;
}

std::string MessageComposer::Severity(const Alarm& alarm) const {
  std::int64_t severity = 0;
  const bool isConfigured =
      util_.GetAlmCfgValue(severity, alarm.kind, alarm.equipment, alarm.cause, alarm.number) == 0;
  if (util_.IsContain("CEASED", alarm.text)) {
    severity = kCleared;
  } else if (!isConfigured) {
    return "SEVERITY?";  // The configured value is not a number.
  }
  if (severity < 0 || severity >= static_cast<std::int64_t>(kSeverities.size())) {
    return "SEVERITY=" + std::to_string(severity);
  }
  const SeverityName& name = kSeverities[static_cast<std::size_t>(severity)];
  return util_.IsTransQueltEnabled() ? name.priority : name.word;
}

std::string MessageComposer::Link(const Alarm& alarm) const {
  return link_ + "?id=" + NS_ASCII::GetURLEncoding(alarm.id) +
         "&at=" + NS_ASCII::GetURLEncoding(Joined(alarm.path, "/"));
}

}  // namespace alarm_agent
