#ifndef SRC_ALARMCONFIG_ALMCONFIG_H_
#define SRC_ALARMCONFIG_ALMCONFIG_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almrecord.h"
#include "src/alarmconfig/almtable.h"
#include "src/alarmconfig/almtextpool.h"

namespace NS_ASCII {

/// The fields of one text, in order.
using FieldList = std::vector<std::string>;

/// The process-wide alarm configuration: the records of the lines of `AlarmConfig.csv` (see `almgrammar.h`).
/// Lines have at most 1,022 bytes, a CR before the LF included. A line with too few columns is ignored
/// without a message; for a line with an empty or a sixth part a message is logged.
///
/// Invariants: records are added or get a new value, and are never removed; a line with an empty or a sixth
/// part adds nothing.
///
/// Threads: one thread at a time loads or inserts. Any thread may call `Instance`, `GetValue` and `FindValue`
/// at any time, also during a load.
/// Errors: bad content is logged or ignored, never thrown. Exhausted memory throws `std::bad_alloc`;
/// exceptions of the logger reach the caller.
/// Binary contract: the virtual table has the one slot of `LoadConfig`, so the destructor is not virtual.
class Alarm_Config_Param {  // NOLINT(cppcoreguidelines-virtual-class-destructor)
 public:
  /// A separate configuration, for tests; the library and `almcfg` use `Instance`.
  Alarm_Config_Param() = default;
  Alarm_Config_Param(const Alarm_Config_Param&) = delete;
  Alarm_Config_Param& operator=(const Alarm_Config_Param&) = delete;

  /// The one configuration of the process, created on first use, destroyed at unload or exit.
  static Alarm_Config_Param* Instance();

  /// Slot 1, the only one. Adds the records of the file `path` (NUL-terminated) to the table. Returns 0; a
  /// file that cannot be opened, or is a directory, changes and logs nothing.
  /// Required: the load ends only at the end of the file. After a line of 1,023 bytes or more, or a failed
  /// read, the stream never reaches it and the call never returns.
  virtual int LoadConfig(const char* path);

  /// Adds the record, or sets the value of the entry with an equal key; adds column 3 to the set of third
  /// columns.
  void InsertRecord(const AlarmConfigRecord& record);

  /// Copies the value for `key`, whose own `value` is ignored, to `value` and returns 0; returns -1, `value`
  /// unchanged, when there is no such entry.
  int GetValue(const AlarmConfigRecord& key, std::string& value) const;

  /// The value for `key`, a text that stays valid as long as the configuration; nothing when there is none.
  [[nodiscard]] std::optional<std::string_view> FindValue(const AlarmKey& key) const {
    return valueMap.Find(key);
  }

  // Required: these four operations are part of the class's interface. Loading does not use them; a load and
  // `Split` share `SplitParts`.

  /// Appends the parts of `text` between characters of `separators` to `fields` and returns 0; a separator at
  /// the very end is ignored. At an empty or a sixth part it logs `text` and returns -1; the parts before it,
  /// and the sixth one, have then been appended.
  int Split(const std::string& text, FieldList& fields, const std::string& separators);

  /// Fills `record` from five fields and returns 0. For any other number of fields it logs `line` and returns
  /// -1, `record` unchanged.
  int ListToRecord(const FieldList& fields, AlarmConfigRecord& record, const std::string& line);

  /// For each alternative, stores it in `record.key1` (`mode` 1) or `record.key2` (`mode` 2), or nowhere (any
  /// other mode), and appends a copy of `record` to `records`. `record` must not be an element of `records`.
  void ExpandField(const FieldList& alternatives, AlarmConfigRecord& record,
                   std::vector<AlarmConfigRecord>& records, unsigned mode);

  /// Inserts the records of a line whose columns are `fields`: appends one record for each alternative of
  /// column 1 to `byKey1` and one for each combination to `all`, two different vectors, then inserts all
  /// elements of `all` in order. Inserts nothing when there are not five columns, or when column 1 or 2 has
  /// an empty or a sixth alternative. `fields` is overwritten; `line` is for the message.
  void AddLine(FieldList& fields, std::vector<AlarmConfigRecord>& byKey1, std::vector<AlarmConfigRecord>& all,
               const std::string& line);

  /// For tools and tests.
  [[nodiscard]] const AlarmTable& Values() const { return valueMap; }
  [[nodiscard]] const AlarmTextPool& ThirdColumns() const { return key3Set; }

 private:
  /// Inserts or logs one line as read. `records` is a scratch buffer.
  void LoadLine(std::string_view lineAsRead, std::vector<AlarmRecordView>& records);

  AlarmTable valueMap;
  AlarmTextPool key3Set;  // Required: filled, although no operation reads it.
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMCONFIG_H_
