// Loads files and indexes their keys. The table owns the texts. One thread loads; then any number may
// read.

#include "tools/almcfg/read/loaded_table.h"

#include <algorithm>
#include <limits>
#include <map>
#include <numeric>
#include <string>

#include "src/alarmconfig/almtable.h"
#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

using NS_ASCII::AlarmKey;
using NS_ASCII::LineOutcome;
using NS_ASCII::ParsedLine;

constexpr LineNumber kProgressLines = 4096;
constexpr unsigned kLineBits = 32;
constexpr unsigned kStartBits = 16;

std::uint32_t HashOf(const AlarmKey& key) {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
  std::uint64_t hash = 0;
  for (const std::string_view text : {key.key1, key.key2, key.key3, key.numKey}) {
    hash = (hash ^ std::hash<std::string_view>()(text)) * kOdd;
    hash ^= hash >> 29;
  }
  return static_cast<std::uint32_t>(hash >> kLineBits);
}

bool IsSameKey(const AlarmKey& a, const AlarmKey& b) { return AsTuple(a) == AsTuple(b); }

struct KeyLess {
  bool operator()(const AlarmKey& a, const AlarmKey& b) const { return AsTuple(a) < AsTuple(b); }
};

}  // namespace

std::string Shown(Place place) { return Printable(place.text->Name()) + ':' + std::to_string(place.line); }

std::string Shown(const AlarmKey& key) {
  return Quoted(key.key1) + ", " + Quoted(key.key2) + ", " + Quoted(key.key3) + ", " + Quoted(key.numKey);
}

LoadedTable::LoadedTable(std::vector<SourceText> texts, Progress& progress) : texts_(std::move(texts)) {
  std::uint64_t lines = 0;
  for (const SourceText& text : texts_) {
    lines += text.LineCount();
    if (lines > std::numeric_limits<LineId>::max()) {
      throw ReadError("All files together have more lines than can be counted", Obstacle::kTooManyLines);
    }
    ends_.push_back(static_cast<LineId>(lines));
  }
  IndexLines(progress);
  std::sort(index_.begin(), index_.end());
  starts_.resize((std::size_t{1} << kStartBits) + 1);
  for (const std::uint64_t entry : index_) {
    ++starts_[(entry >> (64 - kStartBits)) + 1];
  }
  std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
  FindRepeats();
}

void LoadedTable::IndexLines(Progress& progress) {
  Records records;
  index_.reserve(ends_.empty() ? 0 : ends_.back());  // Most lines have one record.
  for (const SourceText& text : texts_) {
    for (LineNumber number = 1; number <= text.LineCount() && !endless_; ++number) {
      ++reached_;
      if (ListRecordsOf(reached_, records)) {
        for (const Record& record : records) {
          index_.push_back(std::uint64_t{HashOf(record)} << kLineBits | reached_);
        }
      }
      if (text.LineAt(number).IsOverlong()) {
        endless_ = {&text, number};
      }
      if (number % kProgressLines == 0) {
        progress.Show(text.Name(), "parsed", number);
      }
    }
  }
}

void LoadedTable::FindRepeats() {
  const auto hashAt = [this](std::size_t i) { return index_[i] >> kLineBits; };
  for (std::size_t first = 0; first < index_.size();) {
    std::size_t last = first + 1;
    while (last < index_.size() && hashAt(last) == hashAt(first)) {
      ++last;
    }
    if (last - first > 1) {
      FindRepeatsAmong(first, last);
    }
    first = last;
  }
  std::sort(repeats_.begin(), repeats_.end(), [](const RepeatedId& a, const RepeatedId& b) {
    return std::tie(a.line, a.record) < std::tie(b.line, b.record);
  });
}

/// Records with equal hashes may still have different keys.
void LoadedTable::FindRepeatsAmong(std::size_t first, std::size_t last) {
  const auto hash = static_cast<std::uint32_t>(index_[first] >> kLineBits);
  std::map<AlarmKey, RecordId, KeyLess> latest;
  Records records;
  LineId before = 0;
  for (std::size_t i = first; i < last; ++i) {
    const auto line = static_cast<LineId>(index_[i]);
    if (line == before) {
      continue;  // All records of the line have been taken.
    }
    before = line;
    ListRecordsOf(line, records);
    for (std::size_t record = 0; record < records.size(); ++record) {
      const RecordId id{line, static_cast<std::uint8_t>(record)};
      if (HashOf(records[record]) != hash) {
        continue;
      }
      const auto [known, isNew] = latest.try_emplace(records[record], id);
      if (!isNew) {
        repeats_.push_back({id.line, known->second.line, id.record, known->second.record});
        known->second = id;
      }
    }
  }
}

std::optional<Entry> LoadedTable::Find(const AlarmKey& key) const {
  auto [first, last] = RangeOf(HashOf(key));
  for (Records records; last != first; --last) {
    const auto line = static_cast<LineId>(index_[last - 1]);
    ListRecordsOf(line, records);
    for (const Record& record : records) {
      if (IsSameKey(record, key)) {
        return Entry{record, record.value, PlaceOf(line)};
      }
    }
  }
  return std::nullopt;
}

std::vector<Entry> LoadedTable::FindAll(const AlarmKey& key) const {
  std::vector<Entry> found;
  Records records;
  for (auto [first, last] = RangeOf(HashOf(key)); first != last; ++first) {
    const Place place = PlaceOf(static_cast<LineId>(index_[first]));
    ListRecordsOf(static_cast<LineId>(index_[first]), records);
    const auto record = std::find_if(records.begin(), records.end(),
                                     [&key](const Record& each) { return IsSameKey(each, key); });
    const bool isKnown = !found.empty() && found.back().place == place;
    if (record != records.end() && !isKnown) {
      found.push_back({{record->key1, record->key2, record->key3, record->numKey}, record->value, place});
    }
  }
  return found;
}

void LoadedTable::ForEach(const std::function<void(const Entry&)>& visit) const {
  std::vector<RecordId> replaced;
  for (const RepeatedId& repeat : repeats_) {
    replaced.push_back({repeat.earlierLine, repeat.earlierRecord});
  }
  std::sort(replaced.begin(), replaced.end(), [](const RecordId& a, const RecordId& b) {
    return std::tie(a.line, a.record) < std::tie(b.line, b.record);
  });
  auto next = replaced.begin();
  Records records;
  for (LineId line = 1; line <= reached_; ++line) {
    if (!ListRecordsOf(line, records)) {
      continue;
    }
    const Place place = PlaceOf(line);
    for (std::size_t record = 0; record < records.size(); ++record) {
      if (next != replaced.end() && next->line == line && next->record == record) {
        ++next;
      } else {
        visit({records[record], records[record].value, place});
      }
    }
  }
}

void LoadedTable::ForEachInTableOrder(const std::function<void(const Entry&)>& visit) const {
  NS_ASCII::AlarmTable table;
  ForEach([&table](const Entry& entry) { table.Insert(entry.key, entry.value); });
  table.ForEach([&](const AlarmKey& key, std::string_view /*value*/) { visit(*Find(key)); });
}

std::vector<Repeat> LoadedTable::RepeatsOf(Place place) const {
  std::vector<Repeat> found;
  const LineId line = IdOf(place);
  auto repeat = std::lower_bound(repeats_.begin(), repeats_.end(), line,
                                 [](const RepeatedId& each, LineId id) { return each.line < id; });
  for (; repeat != repeats_.end() && repeat->line == line; ++repeat) {
    found.push_back({place, repeat->record, PlaceOf(repeat->earlierLine), repeat->earlierRecord});
  }
  return found;
}

LoadedTable::LineId LoadedTable::IdOf(Place place) const {
  const auto index = static_cast<std::size_t>(place.text - texts_.data());
  return (index == 0 ? 0 : ends_[index - 1]) + place.line;
}

Place LoadedTable::PlaceOf(LineId id) const {
  const auto index =
      static_cast<std::size_t>(std::lower_bound(ends_.begin(), ends_.end(), id) - ends_.begin());
  return {&texts_[index], id - (index == 0 ? 0 : ends_[index - 1])};
}

Line LoadedTable::LineOf(LineId id) const {
  const Place place = PlaceOf(id);
  return place.text->LineAt(place.line);
}

/// Returns false, and no records, for a line that is not accepted.
bool LoadedTable::ListRecordsOf(LineId id, Records& records) const {
  records.clear();
  const ParsedLine parsed = NS_ASCII::ParseLine(LineOf(id).Loaded());
  if (parsed.outcome == LineOutcome::kAccepted) {
    NS_ASCII::ListRecords(parsed, records);
  }
  return !records.empty();
}

std::pair<std::size_t, std::size_t> LoadedTable::RangeOf(std::uint32_t hash) const {
  const std::uint64_t start = std::uint64_t{hash} << kLineBits;
  const std::size_t part = hash >> (kLineBits - kStartBits);
  const auto begin = index_.begin() + starts_[part];
  const auto end = index_.begin() + starts_[part + 1];
  const auto first = std::lower_bound(begin, end, start);
  const auto last = std::upper_bound(first, end, start | std::numeric_limits<LineId>::max());
  return {static_cast<std::size_t>(first - index_.begin()), static_cast<std::size_t>(last - index_.begin())};
}

}  // namespace almcfg
