#include "tools/almcfg/loaded_files.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "tools/almcfg/progress.h"

namespace almcfg {
namespace {

using NS_ASCII::AlarmKey;
using NS_ASCII::LineFate;

constexpr LineNumber kProgressLines = 4096;

bool HasKey(const Records& records, const AlarmKey& key) {
  return std::any_of(records.begin(), records.end(),
                     [&key](const auto& record) { return IsSameKey(record, key); });
}

}  // namespace

LoadedFiles::LoadedFiles(LineObserver& observer, Progress& progress, NS_ASCII::Alarm_Config_Param* table)
    : observer_(observer),
      progress_(progress),
      grammar_(table),
      index_([this](LineId line, const AlarmKey& key) { return HasKey(RecordsOfId(line), key); }) {}

void LoadedFiles::Load(SourceText text) {
  const LineId before = ends_.empty() ? 0 : ends_.back();
  if (text.lineCount() > std::numeric_limits<LineId>::max() - before) {
    throw ReadError("All files together have more lines than can be counted", Obstacle::kTooManyLines);
  }
  texts_.push_back(std::move(text));
  const SourceText& kept = texts_.back();
  ends_.push_back(before + kept.lineCount());
  for (LineNumber number = 1; number <= kept.lineCount(); ++number) {
    TakeLine(kept, number);
    if (number % kProgressLines == 0) {
      progress_.Show(kept.name(), "checked", number);
    }
  }
  observer_.OnEnd(kept);
}

void LoadedFiles::TakeLine(const SourceText& text, LineNumber number) {
  const Place place{&text, number};
  const Line line = text.line(number);
  const bool isReached = !endless_;
  // What no load reaches must not get into the table.
  Grammar& grammar = isReached ? grammar_ : probe_;
  probed_ = isReached ? probed_ : 0;
  const LineFate fate = grammar.Take(line);
  earlier_.clear();
  if (isReached) {
    loaded_ = IdOf(place);
    if (fate == LineFate::kStored) {
      for (const auto& record : grammar.records()) {
        earlier_.push_back(PlaceOf(index_.Put(record, loaded_)));
      }
    }
    if (line.IsOverlong()) {
      endless_ = place;
    }
  }
  observer_.OnLine(*this, {place, line, fate, isReached, grammar.message(), grammar.records(), earlier_});
}

Place LoadedFiles::ServedBy(const AlarmKey& key) const { return PlaceOf(index_.Find(key)); }

void LoadedFiles::ForEachLine(const std::function<void(Place, const Records&)>& visit) const {
  Grammar grammar;
  LineId loadedBefore = 0;
  for (const SourceText& text : texts_) {
    const LineNumber last = std::min(text.lineCount(), loaded_ - loadedBefore);
    for (LineNumber number = 1; number <= last; ++number) {
      if (grammar.Take(text.line(number)) == LineFate::kStored) {
        visit({&text, number}, grammar.records());
      }
    }
    loadedBefore += last;
  }
}

const Records& LoadedFiles::RecordsOf(Place place) const { return RecordsOfId(IdOf(place)); }

LoadedFiles::LineId LoadedFiles::IdOf(Place place) const {
  const auto which = std::find_if(texts_.begin(), texts_.end(),
                                  [&place](const SourceText& text) { return &text == place.text; });
  const auto index = static_cast<std::size_t>(which - texts_.begin());
  return (index == 0 ? 0 : ends_[index - 1]) + place.line;
}

Place LoadedFiles::PlaceOf(LineId id) const {
  if (id == 0) {
    return {};
  }
  const auto which =
      static_cast<std::size_t>(std::lower_bound(ends_.begin(), ends_.end(), id) - ends_.begin());
  return {&texts_[which], id - (which == 0 ? 0 : ends_[which - 1])};
}

const Records& LoadedFiles::RecordsOfId(LineId id) const {
  if (const Place place = PlaceOf(id); place && id != probed_) {
    probe_.Take(place.text->line(place.line));
    probed_ = id;
  }
  return probe_.records();
}

}  // namespace almcfg
