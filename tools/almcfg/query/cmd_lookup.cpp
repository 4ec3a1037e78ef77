#include <cstdint>
#include <optional>
#include <ostream>
#include <vector>

#include "framework/platform_util.h"
#include "src/asciiutilifimpl.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/desk_load.h"
#include "tools/almcfg/json_text.h"
#include "tools/almcfg/nearest.h"
#include "tools/almcfg/progress.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

constexpr std::size_t kNeighbours = 5;

struct Setting {
  Place place;
  std::string_view value;
};

/// Everything there is to say about one key.
struct Answer {
  NS_ASCII::AlarmConfigRecord wanted;
  std::int64_t result = 0;
  std::int64_t value = 0;
  std::vector<Setting> settings;  ///< the lines that set the key, the one that serves it last
  std::vector<Neighbour> nearest;

  [[nodiscard]] NS_ASCII::AlarmKey Key() const {
    return {wanted.key1, wanted.key2, wanted.key3, wanted.numKey};
  }
  [[nodiscard]] bool IsServed() const { return !settings.empty(); }
};

Answer Ask(const Options& options, const DeskLoad& load) {
  Answer answer;
  answer.wanted = {
      options.key1, options.key2, NSTE_util::Trim(NSTE_util::Num2Str(options.number)), options.key3, {}};
  answer.result = NS_ASCII::AsciiUtilInterfaceImpl().GetAlmCfgValue(answer.value, options.key1, options.key2,
                                                                    options.key3, options.number);
  const NS_ASCII::AlarmKey key = answer.Key();
  load.files().ForEachLine([&](Place place, const Records& records) {
    for (const auto& record : records) {
      if (IsSameKey(record, key)) {
        answer.settings.push_back({place, record.value});
        return;
      }
    }
  });
  if (!answer.IsServed()) {
    answer.nearest = FindNearest(load, key, kNeighbours);
  }
  return answer;
}

std::string_view LineAt(Place place) { return place.text->line(place.line).text; }

void WriteServed(std::ostream& out, const Answer& answer) {
  const Setting& serving = answer.settings.back();
  if (answer.result == 0) {
    out << "answer:    result 0, value " << answer.value << '\n';
  } else {
    out << "answer:    result " << answer.result
        << ", and the caller's value is left as it was: " << Quoted(serving.value)
        << " is not a decimal integer\n";
  }
  out << "served by: " << Shown(serving.place) << ": " << LineExcerpt(LineAt(serving.place)) << '\n';
  for (auto setting = answer.settings.rbegin() + 1; setting != answer.settings.rend(); ++setting) {
    out << "replaced:  " << Shown(setting->place) << ": value " << Quoted(setting->value) << '\n';
  }
}

void WriteMissing(std::ostream& out, const Answer& answer) {
  out << "answer:    result " << answer.result << ", value " << answer.value
      << ": NO LINE serves this key; the caller gets a successful 0\n";
  for (const Neighbour& neighbour : answer.nearest) {
    out << "near:      " << Shown(neighbour.place) << ": " << neighbour.difference << "\n             "
        << LineExcerpt(LineAt(neighbour.place)) << '\n';
  }
}

Json ToJson(const Setting& setting) {
  Json json;
  SetText(json, "file", setting.place.text->name());
  json["line"] = setting.place.line;
  SetText(json, "value", setting.value);
  SetText(json, "text", LineAt(setting.place));
  return json;
}

Json ToJson(const Neighbour& neighbour) {
  Json json;
  SetText(json, "file", neighbour.place.text->name());
  json["line"] = neighbour.place.line;
  json["difference"] = neighbour.difference;
  SetText(json, "text", LineAt(neighbour.place));
  return json;
}

void WriteJson(std::ostream& out, const Answer& answer) {
  Json json;
  SetText(json, "key1", answer.wanted.key1);
  SetText(json, "key2", answer.wanted.key2);
  SetText(json, "key3", answer.wanted.key3);
  SetText(json, "number", answer.wanted.numKey);
  json["result"] = answer.result;
  json["value"] = answer.result == 0 ? Json(answer.value) : Json(nullptr);
  json["servedBy"] = answer.IsServed() ? ToJson(answer.settings.back()) : Json(nullptr);
  json["replaced"] = Json::array();
  for (auto setting = answer.settings.rbegin(); setting != answer.settings.rend(); ++setting) {
    if (setting != answer.settings.rbegin()) {
      json["replaced"].push_back(ToJson(*setting));
    }
  }
  json["nearest"] = Json::array();
  for (const Neighbour& neighbour : answer.nearest) {
    json["nearest"].push_back(ToJson(neighbour));
  }
  out << Dump(json) << '\n';
}

void WriteText(std::ostream& out, const Answer& answer) {
  out << "key:       " << Shown(answer.Key()) << '\n';
  (answer.IsServed() ? WriteServed : WriteMissing)(out, answer);
}

}  // namespace

int RunLookup(const Options& options, const Outputs& outputs) {
  // The operation looks at the table of the process.
  DeskLoad load(*NS_ASCII::Alarm_Config_Param::Instance(), outputs);
  if (!load.Load(options.files)) {
    return kCouldNotRun;
  }
  const Answer answer = Ask(options, load);
  outputs.progress.Hide();
  (options.format == Format::kJson ? WriteJson : WriteText)(outputs.out, answer);
  return answer.IsServed() && answer.result == 0 ? kClean : kFindings;
}

}  // namespace almcfg
