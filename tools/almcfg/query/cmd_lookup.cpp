// almcfg lookup: reports what `GetAlmCfgValue` returns for a key, the line that serves it and the lines that
// it replaced, or the nearest keys. Owns the table. One thread.

#include <cstdint>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include "framework/platform_util.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"
#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/query/load_files.h"
#include "tools/almcfg/query/nearest.h"
#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/place_json.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

constexpr std::size_t kNeighbours = 5;

/// The report about one key.
struct Found {
  NS_ASCII::AlarmConfigRecord wanted;
  Answer answer;
  std::vector<Entry> settings;  ///< the lines that set the key, the one that serves it last
  std::vector<Neighbour> nearest;
  Place endlessLine;

  [[nodiscard]] NS_ASCII::AlarmKey Key() const {
    return {wanted.key1, wanted.key2, wanted.key3, wanted.numKey};
  }
  [[nodiscard]] bool IsServed() const { return !settings.empty(); }
};

/// Calls the bundle's operation, which reads the table of this process; `record`, if given, is inserted
/// first.
Answer Ask(const Options& options, const NS_ASCII::AlarmConfigRecord* record) {
  if (record != nullptr) {
    NS_ASCII::Alarm_Config_Param::Instance()->InsertRecord(*record);
  }
  Answer answer;
  answer.result = NS_ASCII::AsciiUtilInterfaceImpl().GetAlmCfgValue(answer.value, options.key1, options.key2,
                                                                    options.key3, options.number);
  return answer;
}

Found Find(const Options& options, const LoadedTable& table) {
  Found found;
  found.wanted = {
      options.key1, options.key2, NSTE_util::Trim(NSTE_util::Num2Str(options.number)), options.key3, {}};
  found.settings = table.FindAll(found.Key());
  found.endlessLine = table.EndlessLine();
  if (found.IsServed()) {
    found.wanted.value = found.settings.back().value;
    found.answer = Ask(options, &found.wanted);
  } else {
    found.answer = Ask(options, nullptr);
    found.nearest = std::move(FindNearest(table, {found.Key()}, kNeighbours).front());
  }
  return found;
}

void WriteServed(std::ostream& out, const Found& found) {
  const Entry& serving = found.settings.back();
  if (found.answer.result == 0) {
    out << "answer:    result 0, value " << found.answer.value << '\n';
  } else {
    out << "answer:    result " << found.answer.result
        << ", and the caller's value is unchanged: " << Quoted(serving.value)
        << " is not a decimal integer\n";
  }
  out << "served by: " << Shown(serving.place) << ": " << LineExcerpt(TextOf(serving.place)) << '\n';
  for (auto setting = found.settings.rbegin() + 1; setting != found.settings.rend(); ++setting) {
    out << "replaced:  " << Shown(setting->place) << ": value " << Quoted(setting->value) << '\n';
  }
}

void WriteMissing(std::ostream& out, const Found& found) {
  out << "answer:    result " << found.answer.result << ", value " << found.answer.value
      << ": NO LINE serves this key; the caller gets a successful 0\n";
  for (const Neighbour& neighbour : found.nearest) {
    out << "near:      " << Shown(neighbour.place) << ": " << neighbour.difference << "\n             "
        << LineExcerpt(TextOf(neighbour.place)) << '\n';
  }
}

Json ToJson(const Entry& setting) {
  Json json = almcfg::ToJson(setting.place);
  SetText(json, "value", setting.value);
  SetText(json, "text", TextOf(setting.place));
  return json;
}

Json ToJson(const Neighbour& neighbour) {
  Json json = almcfg::ToJson(neighbour.place);
  json["difference"] = neighbour.difference;
  SetText(json, "text", TextOf(neighbour.place));
  return json;
}

void WriteJson(std::ostream& out, const Found& found) {
  Json json;
  SetText(json, "key1", found.wanted.key1);
  SetText(json, "key2", found.wanted.key2);
  SetText(json, "key3", found.wanted.key3);
  SetText(json, "number", found.wanted.numKey);
  json["result"] = found.answer.result;
  json["value"] = found.answer.result == 0 ? Json(found.answer.value) : Json(nullptr);
  json["servedBy"] = found.IsServed() ? ToJson(found.settings.back()) : Json(nullptr);
  json["replaced"] = Json::array();
  for (auto setting = found.settings.rbegin(); setting != found.settings.rend(); ++setting) {
    if (setting != found.settings.rbegin()) {
      json["replaced"].push_back(ToJson(*setting));
    }
  }
  json["nearest"] = Json::array();
  for (const Neighbour& neighbour : found.nearest) {
    json["nearest"].push_back(ToJson(neighbour));
  }
  json["endlessLine"] = ToJson(found.endlessLine);
  out << Dump(json) << '\n';
}

void WriteText(std::ostream& out, const Found& found) {
  out << "key:       " << Shown(found.Key()) << '\n';
  (found.IsServed() ? WriteServed : WriteMissing)(out, found);
  if (found.endlessLine) {
    out << "load:      NEVER ENDS at " << Shown(found.endlessLine)
        << ": the answer is that of a process that hangs in it\n";
  }
}

}  // namespace

int RunLookup(const Options& options, const Outputs& outputs) {
  const std::optional<LoadedTable> table = LoadFiles(options.files, options, outputs);
  if (!table) {
    return kCouldNotRun;
  }
  const Found found = Find(options, *table);
  outputs.progress.Hide();
  (options.format == Format::kJson ? WriteJson : WriteText)(outputs.out, found);
  return found.IsServed() && found.answer.result == 0 && !found.endlessLine ? kClean : kFindings;
}

}  // namespace almcfg
