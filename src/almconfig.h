#ifndef SRC_ALMCONFIG_H_
#define SRC_ALMCONFIG_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "src/almtable.h"
#include "src/almtextpool.h"

namespace NS_ASCII {

/// One alarm configuration entry. The fields are declared in the order below, column 4 before column 3;
/// callers that fill one by position depend on it.
struct AlarmConfigRecord {
  std::string key1;    ///< column 1, one of its alternatives
  std::string key2;    ///< column 2, one of its alternatives
  std::string numKey;  ///< column 4
  std::string key3;    ///< column 3
  std::string value;   ///< column 5
};

/// An entry whose fields look into a line that somebody else keeps.
struct AlarmRecordView : AlarmKey {
  std::string_view value;
};

/// The fields of one text, in order.
using FieldList = std::vector<std::string>;
using FieldViews = std::vector<std::string_view>;

/// The columns that a line has, no fewer and no more.
inline constexpr std::size_t kAlarmColumns = 5;

/// The parts that a line or a column is split into at most.
inline constexpr std::size_t kMostAlarmParts = 5;

/// What became of one line of the file.
enum class LineFate {
  kSkipped,  ///< a comment or an empty line
  kDropped,  ///< too few columns; nobody is told
  kLogged,   ///< bad in some part; a message says so
  kStored,   ///< every combination it stands for is in the table
};

/// The process-wide alarm configuration and the grammar of the file that fills it.
///
/// The file `AlarmConfig.csv`: plain 8-bit text in lines of at most 1,022 characters, a CR before the LF
/// included. A line that starts with "#", or is empty, is skipped. Any other line is trimmed at both ends and
/// split at its TABs (a comma means nothing) into exactly five columns, none of them empty; columns 1 and 2
/// hold up to five alternatives separated by "/", and the line stands for every combination of them. Lines
/// with fewer columns are dropped without a word, lines with an empty or a sixth part with a message.
///
/// Invariants: records are only ever added or given a new value, never removed; a line that is bad in any
/// part adds nothing at all.
///
/// Threads: one thread at a time loads or inserts. Any thread may call `GetValue` at any time, also during a
/// load, and `Instance`.
/// Errors: bad content is logged or dropped, never thrown. Exhausted memory throws `std::bad_alloc`; what the
/// logger throws reaches the caller.
/// Binary contract: the virtual table has the one slot of `LoadConfig`, so the destructor is not virtual.
class Alarm_Config_Param {  // NOLINT(cppcoreguidelines-virtual-class-destructor)
 public:
  /// What one load works with, made once and used for every line. It looks into the line that was taken last.
  struct LineWork {
    FieldViews fields;
    std::vector<AlarmRecordView> byKey1;  ///< the line's record, once for each alternative of column 1
    std::vector<AlarmRecordView> all;     ///< the full expansion
  };

  /// A configuration of its own, for tests and tools; the library uses `Instance`.
  Alarm_Config_Param() = default;
  Alarm_Config_Param(const Alarm_Config_Param&) = delete;
  Alarm_Config_Param& operator=(const Alarm_Config_Param&) = delete;

  /// The one configuration of the process, made on first use, destroyed at unload or exit.
  static Alarm_Config_Param* Instance();

  /// Slot 1, the only one. Reads the file `path` (NUL-terminated) into the table, on top of what is there.
  /// Always 0; a file that cannot be opened, a directory among them, changes and logs nothing.
  /// Ends only at the end of the file: a line of 1,023 characters or more, and a read that fails, leave the
  /// stream failed before that, so the load never returns. Callers rely on the line limit being kept.
  virtual int LoadConfig(const char* path);

  /// Handles one line as read, without its LF (NUL-terminated; what stands behind the first NUL is no part of
  /// it): skips, drops, logs or stores it, and says which. After kStored, and only then, `work.all` holds
  /// what the line stands for.
  LineFate TakeLine(const char* text, LineWork& work);

  /// Adds the record, or gives the entry with equal keys its value; remembers its third column.
  void InsertRecord(const AlarmConfigRecord& record);

  /// Copies the value for `key` (whose own `value` does not matter) to `value` and returns 0; returns -1 and
  /// leaves `value` alone when there is none.
  int GetValue(const AlarmConfigRecord& key, std::string& value) const;

  /// The same for a key that looks at the caller's texts.
  int GetValue(const AlarmKey& key, std::string& value) const;

  /// The four operations below are the grammar over strings of their own, kept for those who know it by them;
  /// `TakeLine`, which is all that a load calls, runs the same code over views into the line.

  /// Appends the parts of `text` between characters of `separators` to `fields`. A separator at the very end
  /// makes no empty part. Returns -1 with a message when a part is empty or a sixth one turns up, having
  /// appended what came before (the sixth included); else 0.
  int Split(const std::string& text, FieldList& fields, const std::string& separators);

  /// Fills `record` from five fields and returns 0; logs `line`, leaves `record` alone and returns -1 for any
  /// other number of fields.
  int ListToRecord(const FieldList& fields, AlarmConfigRecord& record, const std::string& line);

  /// Appends to `records` one copy of `record` for each alternative, put in key1 (`mode` 1) or key2 (`mode`
  /// 2; any other mode puts it nowhere). `record`, which must not be one of `records`, is left holding the
  /// last one.
  void ExpandField(const FieldList& alternatives, AlarmConfigRecord& record,
                   std::vector<AlarmConfigRecord>& records, unsigned mode);

  /// Stores every combination of the five columns in `fields` (which it uses up): appends to the two
  /// expansions, then inserts the second one in order, with what it held before. They must not be one and the
  /// same. Inserts nothing when a column is bad. `line` is for the message.
  void AddLine(FieldList& fields, std::vector<AlarmConfigRecord>& byKey1, std::vector<AlarmConfigRecord>& all,
               const std::string& line);

  /// For tools and tests.
  [[nodiscard]] const AlarmTable& values() const { return valueMap; }
  [[nodiscard]] const AlarmTextPool& thirdColumns() const { return key3Set; }

 private:
  AlarmTable valueMap;
  AlarmTextPool key3Set;  // Filled with the table, but no operation asks it.
};

}  // namespace NS_ASCII

#endif  // SRC_ALMCONFIG_H_
