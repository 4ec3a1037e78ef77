#ifndef TOOLS_ALMCFG_READ_LOADED_TABLE_H_
#define TOOLS_ALMCFG_READ_LOADED_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "src/alarmconfig/almgrammar.h"
#include "tools/almcfg/read/source_text.h"

/// The table that loading the files makes, with the line that each key comes from. The other folders ask it
/// which line serves a key and which lines repeat one. It owns the files' texts; what it returns are views.
namespace almcfg {

class Progress;

/// Where a record comes from.
struct Place {
  const SourceText* text = nullptr;
  LineNumber line = 0;

  explicit operator bool() const { return text != nullptr; }
};

inline bool operator==(const Place& a, const Place& b) { return a.text == b.text && a.line == b.line; }

/// The text of the line.
inline std::string_view TextOf(Place place) { return place.text->LineAt(place.line).text; }

/// "FILE:LINE", safe to print.
std::string Shown(Place place);

/// The four columns in quotes, for a message.
std::string Shown(const NS_ASCII::AlarmKey& key);

/// The records of one line; views into it.
using Record = NS_ASCII::AlarmRecordView;
using Records = std::vector<Record>;

/// One key in force. Views into the line that serves it.
struct Entry {
  NS_ASCII::AlarmKey key;
  std::string_view value;
  Place place;
};

/// A record whose key was set before. Records of a line are counted from 0.
struct Repeat {
  Place place;
  std::size_t record = 0;
  Place earlier;  ///< the previous line that set the key; may be the same line
  std::size_t earlierRecord = 0;
};

/// The table that a process would have after loading one or more files in order: for each key the line that
/// set it last. A load reads nothing after the first over-long line and never returns; the table has the
/// lines before it, and the first 1,022 bytes of that line.
///
/// The index is a sorted list of key hashes and line numbers, eight bytes a record; keys are compared in the
/// lines themselves. Measured side by side with a million records, a `std::unordered_multimap` from hash to line
/// took 44 bytes a record, more than the lines, and five times as long to build; lookups took the same time.
///
/// Ownership: owns the files' texts; places and entries are valid until the table, or the object it is moved
/// to, is destroyed. Threads: any number may read at the same time.
class LoadedTable {
 public:
  /// Throws `ReadError` when all files together have more lines than can be counted.
  LoadedTable(std::vector<SourceText> texts, Progress& progress);
  LoadedTable(LoadedTable&&) = default;
  LoadedTable& operator=(LoadedTable&&) = default;
  LoadedTable(const LoadedTable&) = delete;
  LoadedTable& operator=(const LoadedTable&) = delete;
  ~LoadedTable() = default;

  [[nodiscard]] std::size_t FileCount() const { return texts_.size(); }

  /// The file that was loaded as number `index`, from 0. The texts lie one after the other in memory.
  [[nodiscard]] const SourceText& Text(std::size_t index) const { return texts_[index]; }

  /// How many keys are in force.
  [[nodiscard]] std::size_t RecordCount() const { return index_.size() - repeats_.size(); }

  /// The line at which the load never ends, if there is one.
  [[nodiscard]] Place EndlessLine() const { return endless_; }

  /// Whether the load reads the line.
  [[nodiscard]] bool IsReached(Place place) const { return IdOf(place) <= reached_; }

  /// The key with its value; none when it is not in force.
  [[nodiscard]] std::optional<Entry> Find(const NS_ASCII::AlarmKey& key) const;

  /// Every line that sets the key, in order, each once; the last one serves it.
  [[nodiscard]] std::vector<Entry> FindAll(const NS_ASCII::AlarmKey& key) const;

  /// Visits the keys in force in the order of the lines that serve them.
  void ForEach(const std::function<void(const Entry&)>& visit) const;

  /// Visits the keys in force in the order of the bundle's table.
  void ForEachInTableOrder(const std::function<void(const Entry&)>& visit) const;

  /// The repeated keys of a line, in the order of its records.
  [[nodiscard]] std::vector<Repeat> RepeatsOf(Place place) const;

 private:
  /// The number of a line among those of all files, from 1.
  using LineId = std::uint32_t;

  struct RecordId {
    LineId line;
    std::uint8_t record;  // A line has at most 25.
  };
  struct RepeatedId {
    LineId line;
    LineId earlierLine;
    std::uint8_t record;
    std::uint8_t earlierRecord;
  };

  [[nodiscard]] LineId IdOf(Place place) const;
  [[nodiscard]] Place PlaceOf(LineId id) const;
  [[nodiscard]] Line LineOf(LineId id) const;
  bool ListRecordsOf(LineId id, Records& records) const;
  void IndexLines(Progress& progress);
  void FindRepeats();
  void FindRepeatsAmong(std::size_t first, std::size_t last);
  [[nodiscard]] std::pair<std::size_t, std::size_t> RangeOf(std::uint32_t hash) const;

  std::vector<SourceText> texts_;
  std::vector<LineId> ends_;           // For each text, the number of its last line among all.
  std::vector<std::uint64_t> index_;   // Of each record, hash << 32 | line, sorted.
  std::vector<std::uint32_t> starts_;  // For each upper half of a hash, where its records start in the index.
  std::vector<RepeatedId> repeats_;    // Sorted by line and record.
  Place endless_;
  LineId reached_ = 0;  // The last line that the load reads.
};

/// The texts of a key, by which keys are ordered and compared.
inline auto AsTuple(const NS_ASCII::AlarmKey& key) {
  return std::tie(key.key1, key.key2, key.key3, key.numKey);
}

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_READ_LOADED_TABLE_H_
