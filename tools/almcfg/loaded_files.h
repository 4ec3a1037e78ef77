#ifndef TOOLS_ALMCFG_LOADED_FILES_H_
#define TOOLS_ALMCFG_LOADED_FILES_H_

#include <cstddef>
#include <deque>
#include <functional>
#include <string_view>
#include <vector>

#include "src/almconfig.h"
#include "tools/almcfg/grammar.h"
#include "tools/almcfg/key_index.h"
#include "tools/almcfg/source_text.h"

namespace almcfg {

class LoadedFiles;
class Progress;

/// Where a record comes from.
struct Place {
  const SourceText* text = nullptr;
  LineNumber line = 0;

  explicit operator bool() const { return text != nullptr; }
};

inline bool operator==(const Place& a, const Place& b) { return a.text == b.text && a.line == b.line; }

/// A line as a load has just taken it. Everything is borrowed, for the time of the call.
struct TakenLine {
  Place place;
  Line line;
  NS_ASCII::LineFate fate;
  bool isReached;                     ///< false behind a line that no load gets past
  const LoggedMessage& message;       ///< after `kLogged`
  const Records& records;             ///< after `kStored`
  const std::vector<Place>& earlier;  ///< for each record of a reached line, who set its key before
};

/// Sees every line while it is loaded.
class LineObserver {
 public:
  virtual ~LineObserver() = default;
  virtual void OnLine(const LoadedFiles& files, const TakenLine& taken) = 0;
  virtual void OnEnd(const SourceText& text) = 0;
};

/// One or more files as a process has them after loading one after the other, each record with its place.
///
/// A line that no load gets past ends it all: its start is still loaded, but nothing behind it is, nor is any
/// later file; such lines are only shown to the observer.
///
/// Ownership: keeps the files' texts. The table, the observer and the progress line are borrowed and must
/// outlive it; places are valid as long as this object.
/// Threads: one.
class LoadedFiles {
 public:
  /// The number of a line among those of all files, from 1.
  using LineId = KeyIndex::LineId;

  /// Records go to `table`; without one they are only counted and indexed.
  LoadedFiles(LineObserver& observer, Progress& progress, NS_ASCII::Alarm_Config_Param* table = nullptr);
  LoadedFiles(const LoadedFiles&) = delete;
  LoadedFiles& operator=(const LoadedFiles&) = delete;

  /// Loads a file. Throws `ReadError` when all files together have more lines than can be counted.
  void Load(SourceText text);

  /// The line that last set the key; none when the key is not in force.
  [[nodiscard]] Place ServedBy(const NS_ASCII::AlarmKey& key) const;

  /// The file that was loaded as number `index`, from 0.
  [[nodiscard]] const SourceText& text(std::size_t index) const { return texts_[index]; }

  /// How many keys are in force.
  [[nodiscard]] std::size_t recordCount() const { return index_.size(); }

  /// The line that no load gets past, if there is one.
  [[nodiscard]] Place endlessLine() const { return endless_; }

  /// Visits every stored line in order with what it stands for, whether a later line replaced it or not.
  void ForEachLine(const std::function<void(Place, const Records&)>& visit) const;

  [[nodiscard]] LineId IdOf(Place place) const;

  /// What a stored line stands for. Valid until the next call.
  const Records& RecordsOf(Place place) const;

 private:
  [[nodiscard]] Place PlaceOf(LineId id) const;
  const Records& RecordsOfId(LineId id) const;
  void TakeLine(const SourceText& text, LineNumber number);

  LineObserver& observer_;
  Progress& progress_;
  Grammar grammar_;  // into the table
  KeyIndex index_;
  std::deque<SourceText> texts_;
  std::vector<LineId> ends_;  // For each text, the number of its last line among all.
  Place endless_;
  LineId loaded_ = 0;  // The last line that was loaded.
  std::vector<Place> earlier_;

  // Asked again what a line stands for; the last answer is kept.
  mutable Grammar probe_;
  mutable LineId probed_ = 0;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_LOADED_FILES_H_
