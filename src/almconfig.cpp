#include "src/almconfig.h"

#include <sys/stat.h>

#include <array>
#include <fstream>
#include <string>

#include "src/logmsg.h"
#include "src/strfunctions.h"

namespace NS_ASCII {
namespace {

constexpr const char* kTag = "almconfig";
constexpr int kLevel = 1;

// The conversion is written backwards and stays so: whoever watches the log knows the message by this text.
constexpr const char* kBadLineFormat = "almconfig.cfg file error. line=s%";
constexpr int kWrongFieldCountLine = 148;
constexpr int kEmptyFieldLine = 195;  // The checker knows it as kEmptyPartMessage; both must be the same.
constexpr int kTooManyFieldsLine = 203;

constexpr std::size_t kLineBufferBytes = 1024;
constexpr std::streamsize kReadCount = 1023;  // NUL included, so a line has at most 1,022 characters

void LogBadLine(int line, std::string_view text) {
  LogFormatted(kTag, line, kLevel, kBadLineFormat, std::string(text).c_str());
}

AlarmKey KeyOf(const AlarmConfigRecord& record) {
  return {record.key1, record.key2, record.key3, record.numKey};
}

// The grammar, once for strings and once for views: `Fields` is a FieldList or a FieldViews, `Record` an
// AlarmConfigRecord or an AlarmRecordView. What each does is said at the operation of that name.

template <class Fields>
int SplitInto(Fields& fields, std::string_view text, std::string_view separators) {
  std::string_view rest = text;
  for (std::size_t parts = 1; !rest.empty(); ++parts) {
    const std::size_t end =
        separators.size() == 1 ? rest.find(separators.front()) : rest.find_first_of(separators);
    const std::string_view field = rest.substr(0, end);
    if (field.empty()) {
      LogBadLine(kEmptyFieldLine, text);
      return -1;
    }
    fields.emplace_back(field);
    if (parts > kMostAlarmParts) {
      LogBadLine(kTooManyFieldsLine, text);
      return -1;
    }
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return 0;
}

template <class Fields, class Record>
int FillRecord(const Fields& fields, Record& record, std::string_view line) {
  if (fields.size() != kAlarmColumns) {
    LogBadLine(kWrongFieldCountLine, line);
    return -1;
  }
  record.key1 = fields[0];
  record.key2 = fields[1];
  record.key3 = fields[2];
  record.numKey = fields[3];
  record.value = fields[4];
  return 0;
}

template <class Fields, class Record>
void Expand(const Fields& alternatives, Record& record, std::vector<Record>& records, unsigned mode) {
  for (const auto& alternative : alternatives) {
    if (mode == 1) {
      record.key1 = alternative;
    } else if (mode == 2) {
      record.key2 = alternative;
    }
    records.push_back(record);
  }
}

/// Appends to the two expansions. Returns false when a column is bad.
template <class Fields, class Record>
bool ExpandLine(Fields& fields, std::vector<Record>& byKey1, std::vector<Record>& all,
                std::string_view line) {
  Record record;
  if (FillRecord(fields, record, line) != 0) {
    return false;
  }
  fields.clear();
  if (SplitInto(fields, record.key1, "/") != 0) {
    return false;
  }
  Expand(fields, record, byKey1, 1);
  for (Record& perKey1 : byKey1) {
    fields.clear();
    if (SplitInto(fields, perKey1.key2, "/") != 0) {
      return false;
    }
    Expand(fields, perKey1, all, 2);
  }
  return true;
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
  LineWork work;
  std::array<char, kLineBufferBytes> line;
  // Only the end of the file ends the loop, whatever else befalls the stream.
  while (!file.eof()) {
    file.getline(line.data(), kReadCount, file.widen('\n'));
    TakeLine(line.data(), work);
  }
  return 0;
}

LineFate Alarm_Config_Param::TakeLine(const char* text, LineWork& work) {
  if (text[0] == '#' || text[0] == '\0') {
    return LineFate::kSkipped;
  }
  work.byKey1.clear();
  work.all.clear();
  work.fields.clear();
  const std::string_view line = TrimView(text);
  if (SplitInto(work.fields, line, "\t") != 0) {
    return LineFate::kLogged;
  }
  if (work.fields.size() != kAlarmColumns) {
    return LineFate::kDropped;
  }
  if (!ExpandLine(work.fields, work.byKey1, work.all, line)) {
    return LineFate::kLogged;
  }
  // All of a line's records have the same value and third column.
  valueMap.InsertAll(work.all, work.all.front().value);
  key3Set.Intern(work.all.front().key3);
  return LineFate::kStored;
}

void Alarm_Config_Param::InsertRecord(const AlarmConfigRecord& record) {
  valueMap.Insert(KeyOf(record), record.value);
  key3Set.Intern(record.key3);
}

int Alarm_Config_Param::GetValue(const AlarmConfigRecord& key, std::string& value) const {
  return GetValue(KeyOf(key), value);
}

int Alarm_Config_Param::GetValue(const AlarmKey& key, std::string& value) const {
  return valueMap.Find(key, value) ? 0 : -1;
}

int Alarm_Config_Param::Split(const std::string& text, FieldList& fields, const std::string& separators) {
  return IsElementOf(text, fields) || IsElementOf(separators, fields)
             ? SplitInto(fields, std::string(text), std::string(separators))
             : SplitInto(fields, text, separators);
}

int Alarm_Config_Param::ListToRecord(const FieldList& fields, AlarmConfigRecord& record,
                                     const std::string& line) {
  return FillRecord(fields, record, line);
}

void Alarm_Config_Param::ExpandField(const FieldList& alternatives, AlarmConfigRecord& record,
                                     std::vector<AlarmConfigRecord>& records, unsigned mode) {
  Expand(alternatives, record, records, mode);
}

void Alarm_Config_Param::AddLine(FieldList& fields, std::vector<AlarmConfigRecord>& byKey1,
                                 std::vector<AlarmConfigRecord>& all, const std::string& line) {
  if (ExpandLine(fields, byKey1, all, line)) {
    for (const AlarmConfigRecord& expanded : all) {
      InsertRecord(expanded);
    }
  }
}

}  // namespace NS_ASCII
