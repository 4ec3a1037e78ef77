// Loads `AlarmConfig.csv` into the table and answers queries from it. The process-wide configuration owns the
// table. One thread at a time loads; any thread queries, also during a load.

#include "src/alarmconfig/almconfig.h"

#include <sys/stat.h>

#include <array>
#include <fstream>
#include <string>

#include "src/alarmconfig/almgrammar.h"
#include "src/log/logmsg.h"

namespace NS_ASCII {
namespace {

constexpr std::size_t kLineBufferBytes = 1024;
constexpr std::streamsize kReadCount = 1023;  // NUL included, so a line has at most 1,022 bytes

void LogRejected(RejectReason reason, std::string_view text) {
  LogFormatted(reason == RejectReason::kEmptyPart ? messages::kEmptyField : messages::kTooManyFields,
               std::string(text).c_str());
}

AlarmKey KeyOf(const AlarmConfigRecord& record) {
  return {record.key1, record.key2, record.key3, record.numKey};
}

/// A directory can be opened like a file but never read to its end.
bool IsDirectory(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

Alarm_Config_Param* Alarm_Config_Param::Instance() {
  static Alarm_Config_Param instance;
  return &instance;
}

int Alarm_Config_Param::LoadConfig(const char* path) {
  std::ifstream file;
  if (!IsDirectory(path)) {
    file.open(path);
  }
  if (!file.is_open()) {
    return 0;
  }
  std::vector<AlarmRecordView> records;
  std::array<char, kLineBufferBytes> line;
  // Required: only the end of the file ends the loop. On a line that is too long getline sets failbit; then
  // it reads nothing more, so the end never comes.
  while (!file.eof()) {
    file.getline(line.data(), kReadCount, file.widen('\n'));
    LoadLine(line.data(), records);
  }
  return 0;
}

void Alarm_Config_Param::LoadLine(std::string_view lineAsRead, std::vector<AlarmRecordView>& records) {
  const ParsedLine line = ParseLine(lineAsRead);
  if (line.outcome == LineOutcome::kRejected) {
    LogRejected(line.rejection.reason, line.rejection.text);
  } else if (line.outcome == LineOutcome::kAccepted) {
    ListRecords(line, records);
    // All records of a line have the same value and third column.
    valueMap.InsertAll(records, records.front().value);
    key3Set.Intern(records.front().key3);
  }
}

void Alarm_Config_Param::InsertRecord(const AlarmConfigRecord& record) {
  valueMap.Insert(KeyOf(record), record.value);
  key3Set.Intern(record.key3);
}

int Alarm_Config_Param::GetValue(const AlarmConfigRecord& key, std::string& value) const {
  const std::optional<std::string_view> found = FindValue(KeyOf(key));
  if (!found) {
    return -1;
  }
  value = *found;
  return 0;
}

int Alarm_Config_Param::Split(const std::string& text, FieldList& fields, const std::string& separators) {
  // `text` may be an element of `fields`, which grows below.
  const std::string copy = text;  // NOLINT(performance-unnecessary-copy-initialization)
  PartList parts;
  const std::optional<BadPart> bad = SplitParts(copy, separators, parts);
  fields.insert(fields.end(), parts.begin(), parts.end());
  if (bad) {
    LogRejected(bad->reason, copy);
    return -1;
  }
  return 0;
}

int Alarm_Config_Param::ListToRecord(const FieldList& fields, AlarmConfigRecord& record,
                                     const std::string& line) {
  if (fields.size() != kAlarmColumns) {
    LogFormatted(messages::kWrongFieldCount, line.c_str());
    return -1;
  }
  record = {fields[0], fields[1], fields[3], fields[2], fields[4]};
  return 0;
}

void Alarm_Config_Param::ExpandField(const FieldList& alternatives, AlarmConfigRecord& record,
                                     std::vector<AlarmConfigRecord>& records, unsigned mode) {
  for (const std::string& alternative : alternatives) {
    if (mode == 1) {
      record.key1 = alternative;
    } else if (mode == 2) {
      record.key2 = alternative;
    }
    records.push_back(record);
  }
}

void Alarm_Config_Param::AddLine(FieldList& fields, std::vector<AlarmConfigRecord>& byKey1,
                                 std::vector<AlarmConfigRecord>& all, const std::string& line) {
  AlarmConfigRecord record;
  if (ListToRecord(fields, record, line) != 0) {
    return;
  }
  fields.clear();
  if (Split(record.key1, fields, "/") != 0) {
    return;
  }
  ExpandField(fields, record, byKey1, 1);
  for (AlarmConfigRecord& perKey1 : byKey1) {
    fields.clear();
    if (Split(perKey1.key2, fields, "/") != 0) {
      return;
    }
    ExpandField(fields, perKey1, all, 2);
  }
  for (const AlarmConfigRecord& expanded : all) {
    InsertRecord(expanded);
  }
}

}  // namespace NS_ASCII
