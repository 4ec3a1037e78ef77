// almcfg coverage: compares recorded queries with the table in force, and reports queries that no line serves
// and lines that no query asked for. Owns the table and the calls. One thread.

#include <algorithm>
#include <cstdint>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "framework/platform_util.h"
#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/query/calls.h"
#include "tools/almcfg/query/load_files.h"
#include "tools/almcfg/query/nearest.h"
#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/place_json.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

constexpr std::size_t kNeighbours = 2;
constexpr std::size_t kMostAsked = 10;

/// A query and its answer.
struct AnsweredQuery {
  const Query* query = nullptr;
  std::uint64_t count = 0;
  std::string number;  ///< as text, the form in which the table stores it
  Place place;         ///< the line that serves it; none when no line does
  std::string value;   ///< the value in that line
  std::vector<Neighbour> nearest;

  [[nodiscard]] NS_ASCII::AlarmKey Key() const { return {query->key1, query->key2, query->key3, number}; }
};

/// A line with keys that no query asked for.
struct UnaskedLine {
  Place place;
  std::vector<std::string> alternatives;  ///< columns 1 and 2 of each such key; empty: no key was asked for
};

struct Coverage {
  std::vector<AnsweredQuery> served;  ///< with an integer; each list with the most frequent first
  std::vector<AnsweredQuery> notServed;
  std::vector<AnsweredQuery> noInteger;
  std::vector<UnaskedLine> unasked;
  std::size_t lines = 0;  ///< lines that serve a key
  Place endlessLine;
};

std::uint64_t CallsOf(const std::vector<AnsweredQuery>& queries) {
  std::uint64_t calls = 0;
  for (const AnsweredQuery& asked : queries) {
    calls += asked.count;
  }
  return calls;
}

void SortQueries(const LoadedTable& table, const Calls& calls, Coverage& coverage) {
  for (const auto& [query, count] : calls.counts) {
    AnsweredQuery asked{&query, count, NSTE_util::Trim(NSTE_util::Num2Str(query.number)), {}, {}, {}};
    const std::optional<Entry> entry = table.Find(asked.Key());
    if (!entry) {
      coverage.notServed.push_back(std::move(asked));
      continue;
    }
    asked.place = entry->place;
    asked.value = std::string(entry->value);
    (AnswerFor(entry->value).result == 0 ? coverage.served : coverage.noInteger).push_back(std::move(asked));
  }
  for (std::vector<AnsweredQuery>* const list :
       {&coverage.served, &coverage.notServed, &coverage.noInteger}) {
    std::stable_sort(list->begin(), list->end(),
                     [](const AnsweredQuery& a, const AnsweredQuery& b) { return a.count > b.count; });
  }
}

void FindNearestOf(const LoadedTable& table, std::vector<AnsweredQuery>& notServed) {
  std::vector<NS_ASCII::AlarmKey> wanted;
  wanted.reserve(notServed.size());
  for (const AnsweredQuery& asked : notServed) {
    wanted.push_back(asked.Key());
  }
  std::vector<std::vector<Neighbour>> nearest = FindNearest(table, wanted, kNeighbours);
  for (std::size_t i = 0; i < notServed.size(); ++i) {
    notServed[i].nearest = std::move(nearest[i]);
  }
}

/// The keys in force are visited line by line, so a line is complete when the next one begins.
void FindUnasked(const LoadedTable& table, Coverage& coverage) {
  std::set<std::tuple<std::string_view, std::string_view, std::string_view, std::string_view>> keys;
  for (const std::vector<AnsweredQuery>* const list : {&coverage.served, &coverage.noInteger}) {
    for (const AnsweredQuery& asked : *list) {
      keys.emplace(asked.query->key1, asked.query->key2, asked.query->key3, asked.number);
    }
  }
  UnaskedLine line;
  bool isAsked = false;
  const auto end = [&] {
    if (!line.alternatives.empty()) {
      coverage.unasked.push_back({line.place, isAsked ? line.alternatives : std::vector<std::string>()});
    }
  };
  table.ForEach([&](const Entry& entry) {
    if (!(entry.place == line.place)) {
      end();
      line = {entry.place, {}};
      isAsked = false;
      ++coverage.lines;
    }
    if (keys.count({entry.key.key1, entry.key.key2, entry.key.key3, entry.key.numKey}) != 0) {
      isAsked = true;
    } else {
      line.alternatives.push_back(Quoted(entry.key.key1) + ", " + Quoted(entry.key.key2));
    }
  });
  end();
}

void WriteNotServed(std::ostream& out, const std::vector<AnsweredQuery>& queries) {
  for (const AnsweredQuery& asked : queries) {
    out << "  " << Grouped(asked.count) << "  " << Shown(asked.Key()) << '\n';
    for (const Neighbour& neighbour : asked.nearest) {
      out << "      near: " << Shown(neighbour.place) << ": " << neighbour.difference << '\n';
    }
  }
}

void WriteServed(std::ostream& out, const std::vector<AnsweredQuery>& queries, std::size_t most) {
  for (std::size_t at = 0; at < std::min(queries.size(), most); ++at) {
    const AnsweredQuery& asked = queries[at];
    out << "  " << Grouped(asked.count) << "  " << Shown(asked.Key()) << ": " << Quoted(asked.value) << " in "
        << Shown(asked.place) << '\n';
  }
}

void WriteUnasked(std::ostream& out, const std::vector<UnaskedLine>& lines) {
  for (const UnaskedLine& line : lines) {
    out << "  " << Shown(line.place) << ": " << LineExcerpt(TextOf(line.place)) << '\n';
    for (const std::string& alternative : line.alternatives) {
      out << "      only: " << alternative << '\n';
    }
  }
}

void WriteText(std::ostream& out, const Calls& calls, const Coverage& coverage) {
  const std::uint64_t total =
      CallsOf(coverage.served) + CallsOf(coverage.notServed) + CallsOf(coverage.noInteger);
  out << "calls:       " << Grouped(total) << " of GetAlmCfgValue, " << Grouped(calls.counts.size())
      << " different queries\n"
      << "served:      " << Grouped(CallsOf(coverage.served)) << '\n'
      << "not served:  " << Grouped(CallsOf(coverage.notServed)) << "; the caller gets a successful 0\n"
      << "no integer:  " << Grouped(CallsOf(coverage.noInteger)) << "; the caller's variable is unchanged\n"
      << "lines:       " << Grouped(coverage.lines) << ", of which " << Grouped(coverage.unasked.size())
      << " have keys that were never asked for\n";
  if (coverage.endlessLine) {
    out << "load:        NEVER ENDS at " << Shown(coverage.endlessLine) << '\n';
  }
  if (calls.every != 1) {
    out << "sample:      one call in " << Grouped(static_cast<std::uint64_t>(calls.every))
        << " was recorded\n";
  }
  if (calls.dropped != 0) {
    out << "dropped:     " << Grouped(calls.dropped)
        << " calls are not in the recording, those of other operations included\n";
  }
  const auto heading = [&out](bool isNeeded, const char* text) {
    if (isNeeded) {
      out << '\n' << text << '\n';
    }
  };
  heading(!coverage.notServed.empty(), "Queries that no line serves");
  WriteNotServed(out, coverage.notServed);
  heading(!coverage.noInteger.empty(), "Queries whose value is not an integer");
  WriteServed(out, coverage.noInteger, coverage.noInteger.size());
  heading(!coverage.unasked.empty(), "Lines and alternatives that were never asked for");
  WriteUnasked(out, coverage.unasked);
  heading(!coverage.served.empty(), "Most frequent queries");
  WriteServed(out, coverage.served, kMostAsked);
}

Json ToJson(const AnsweredQuery& asked) {
  Json json;
  SetText(json, "key1", asked.query->key1);
  SetText(json, "key2", asked.query->key2);
  SetText(json, "key3", asked.query->key3);
  SetText(json, "number", asked.number);
  json["count"] = asked.count;
  if (asked.place) {
    SetText(json, "file", asked.place.text->Name());
    json["line"] = asked.place.line;
    SetText(json, "value", asked.value);
    return json;
  }
  json["nearest"] = Json::array();
  for (const Neighbour& neighbour : asked.nearest) {
    Json near = almcfg::ToJson(neighbour.place);
    near["difference"] = neighbour.difference;
    json["nearest"].push_back(std::move(near));
  }
  return json;
}

Json ToJson(const std::vector<AnsweredQuery>& queries) {
  Json list = Json::array();
  for (const AnsweredQuery& asked : queries) {
    list.push_back(ToJson(asked));
  }
  return list;
}

void WriteJson(std::ostream& out, const Calls& calls, const Coverage& coverage) {
  Json json;
  json["calls"] = CallsOf(coverage.served) + CallsOf(coverage.notServed) + CallsOf(coverage.noInteger);
  json["queries"] = calls.counts.size();
  json["every"] = calls.every;
  json["dropped"] = calls.dropped;
  json["lines"] = coverage.lines;
  json["notServed"] = ToJson(coverage.notServed);
  json["noInteger"] = ToJson(coverage.noInteger);
  json["unasked"] = Json::array();
  for (const UnaskedLine& line : coverage.unasked) {
    Json entry = almcfg::ToJson(line.place);
    SetText(entry, "text", TextOf(line.place));
    entry["alternatives"] = line.alternatives;
    json["unasked"].push_back(std::move(entry));
  }
  json["served"] = ToJson(coverage.served);
  json["endlessLine"] = ToJson(coverage.endlessLine);
  out << Dump(json) << '\n';
}

}  // namespace

int RunCoverage(const Options& options, const Outputs& outputs) {
  const std::optional<LoadedTable> table = LoadFiles(options.files, options, outputs);
  Calls calls;
  if (!table || !ReadCalls(options, outputs, calls)) {
    return kCouldNotRun;
  }
  Coverage coverage;
  SortQueries(*table, calls, coverage);
  FindNearestOf(*table, coverage.notServed);
  FindUnasked(*table, coverage);
  coverage.endlessLine = table->EndlessLine();
  outputs.progress.Hide();
  (options.format == Format::kJson ? WriteJson : WriteText)(outputs.out, calls, coverage);
  const bool isClean = !coverage.endlessLine && (!options.strict || coverage.notServed.empty());
  return isClean ? kClean : kFindings;
}

}  // namespace almcfg
