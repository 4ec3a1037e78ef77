// The reference implementation: each rule in the plainest form, without code of the library. Correctness
// comes before speed.

#include "tests/literal_rules.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "src/text/c_strtol.h"

namespace literal {
namespace {

const char* const kBlanks = " \t\n\r";

/// The value of a key in a text of pairs, shared by the two operations that look one up.
std::string SearchValue(const std::string& key, const std::string& text) {
  std::string result;
  if (key.c_str()[0] == '\0') {
    return result;
  }
  std::string k;
  std::string v;
  const std::string copy = text;
  std::size_t pos = 0;
  for (;;) {
    const std::size_t comma = copy.find(',', pos);
    if (comma == std::string::npos) {
      break;
    }
    const std::string piece = Trim(copy.substr(pos, comma - pos));
    SplitFirst(piece, k, v, "=");
    if (std::strcmp(k.c_str(), key.c_str()) == 0) {
      result = v;
      break;
    }
    pos = comma + 1;
  }
  if (result.c_str()[0] != '\0') {
    return result;
  }
  const std::string rest = Trim(copy.substr(pos));
  SplitFirst(rest, k, v, "=");
  if (std::strcmp(k.c_str(), key.c_str()) == 0) {
    result = v;
  }
  return result;
}

}  // namespace

// --- Trim, case conversion, numbers

std::string TrimLeft(const std::string& text) {
  std::string copy = text;
  if (copy.empty()) {
    return copy;
  }
  const std::size_t first = copy.find_first_not_of(kBlanks);
  if (first == std::string::npos) {
    return "";
  }
  copy.erase(0, first);
  return copy;
}

std::string TrimRight(const std::string& text) {
  std::string copy = text;
  if (copy.empty()) {
    return copy;
  }
  const std::size_t last = copy.find_last_not_of(kBlanks);
  if (last == std::string::npos) {
    return "";
  }
  copy.erase(last + 1);
  return copy;
}

std::string Trim(const std::string& text) {
  std::string copy = text;
  if (copy.empty()) {
    return "";
  }
  copy = TrimLeft(copy);
  copy = TrimRight(copy);
  return copy;
}

std::string StrToUpper(std::string text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int byte = static_cast<unsigned char>(text[i]);
    result.push_back(static_cast<char>(std::toupper(byte)));
  }
  return result;
}

std::string StrToLower(std::string text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int byte = static_cast<unsigned char>(text[i]);
    result.push_back(static_cast<char>(std::tolower(byte)));
  }
  return result;
}

std::string Num2Str(int number) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%d", number);
  return buffer;
}

// --- The interface's operations

bool Str2Num(const std::string& text, int& value, int base) {
  const char* const start = text.c_str();
  char* end = const_cast<char*>(start);
  const long number = c_strtol(start, &end, base);
  value = static_cast<int>(static_cast<std::uint32_t>(static_cast<unsigned long>(number) & 0xFFFFFFFFU));
  const std::string rest = end;
  return rest == "";
}

std::string ToUpper(const std::string& text) {
  std::string copy = text;
  for (std::size_t i = 0; i < copy.size(); ++i) {
    const int character = static_cast<signed char>(copy[i]);
    if (std::islower(character)) {
      copy[i] = static_cast<char>(std::toupper(character));
    }
  }
  return copy;
}

bool IsContain(const std::string& sub, const std::string& text) {
  if (sub.c_str()[0] == '\0') {
    return false;
  }
  for (std::size_t at = 0; at + sub.size() <= text.size(); ++at) {
    if (text.compare(at, sub.size(), sub) == 0) {
      return true;
    }
  }
  return false;
}

bool SplitFirst(const std::string& source, std::string& head, std::string& tail,
                const std::string& delimiters) {
  const std::size_t at = source.find_first_of(delimiters);
  if (at == std::string::npos) {
    return false;
  }
  head = source.substr(0, at);
  const std::size_t start = at + delimiters.length();
  tail = source.substr(start);
  return true;
}

bool IsKeyValueAboveOne(const std::string& key, const std::string& text) {
  const std::string value = SearchValue(key, text);
  if (value.c_str()[0] == '\0') {
    return false;
  }
  int number = 0;
  Str2Num(value, number, 10);
  return number > 1;
}

std::string GetKeyValue(const std::string& key, const std::string& text) { return SearchValue(key, text); }

std::int64_t SplitStr(const std::string& text, const std::string& separator,
                      std::vector<std::string>& pieces) {
  const std::string copy = text;
  std::size_t pos = 0;
  for (;;) {
    const std::size_t found = copy.find(separator, pos);
    if (found == std::string::npos) {
      break;
    }
    pieces.push_back(Trim(copy.substr(pos, found - pos)));
    pos = found + separator.length();
  }
  pieces.push_back(Trim(copy.substr(pos)));
  return 0;
}

void ParseListEntry(const std::string& entry, std::string& name, std::vector<std::string>& items) {
  std::string value;
  SplitFirst(entry, name, value, "=");
  std::string separator = "|";
  if (std::strcmp(name.c_str(), "PATH") == 0) {
    separator = "-";
  }
  SplitStr(value, separator, items);
}

std::int64_t ParseListMap(ListMap& map, const std::string& text) {
  map.clear();
  std::vector<std::string> entries;
  SplitStr(text, ",", entries);
  for (const std::string& entry : entries) {
    std::string name;
    std::vector<std::string> items;
    ParseListEntry(entry, name, items);
    if (map.count(name) == 0) {
      map[name] = items;
    }
  }
  return 0;
}

std::int64_t GetMapList(const ListMap& map, const std::string& name, std::vector<std::string>& items) {
  if (map.count(name) == 0) {
    return 1;
  }
  if (map.at(name).empty()) {
    return 1;
  }
  items = map.at(name);
  return 0;
}

// --- Percent encoding

void ReplaceAll(std::string& text, const std::string& pattern, const std::string& replacement) {
  while (text.find(pattern) != std::string::npos) {
    text.replace(text.find(pattern), pattern.length(), replacement);
  }
}

std::string EncodeLatin1(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned byte = static_cast<unsigned char>(text[i]);
    if ((byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
        byte == '-' || byte == '.' || byte == '_' || byte == '*') {
      result += text[i];
    } else if (byte == ' ') {
      result += '+';
    } else {
      char digits[3];
      std::snprintf(digits, sizeof digits, "%x", byte);
      result += '%';
      result += digits;
    }
  }
  ReplaceAll(result, "%d%a", "%0d%0a");
  ReplaceAll(result, "%a%", "%0d%0a%");
  if (result.size() >= 2 && result.substr(result.size() - 2) == "%a") {
    result.replace(result.size() - 2, 2, "%0d%0a");
  }
  return result;
}

void ExtractHex(const std::string& escape, int& value) {
  std::stringstream stream(escape);
  stream >> std::hex >> value;
}

std::string GetURLDecoding(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '+') {
      text[i] = ' ';
    }
  }
  std::string result;
  std::istringstream stream(text);
  std::string piece;
  std::getline(stream, piece, '%');
  result += piece;
  int value = 0;
  for (;;) {
    std::getline(stream, piece, '%');
    if (stream.fail()) {
      return result;
    }
    ExtractHex(piece.substr(0, 2), value);
    result += static_cast<char>(static_cast<unsigned>(value) & 0xFFU);
    if (piece.size() > 1) {
      result += piece.substr(2);
    }
  }
}

std::string SetURLDecoding(const std::string& text) {
  if (text.find('%') == std::string::npos) {
    return text;
  }
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      result += "%25";
    } else {
      result += text[i];
    }
  }
  return result;
}

// --- The alarm configuration

bool ComesBefore::operator()(const Record& a, const Record& b) const {
  if (a.key1 != b.key1) {
    return a.key1 > b.key1;
  }
  if (a.key2 != b.key2) {
    return a.key2 > b.key2;
  }
  if (a.key3 != b.key3) {
    return a.key3 > b.key3;
  }
  return a.numKey > b.numKey;
}

int AlarmConfig::LoadConfig(std::istream& file) {
  char buffer[1024];
  while (!file.eof()) {
    file.getline(buffer, 1023, file.widen('\n'));
    TakeLine(buffer);
  }
  return 0;
}

void AlarmConfig::TakeLine(const char* buffer) {
  std::vector<Record> first;
  std::vector<Record> second;
  std::list<std::string> fields;
  if (buffer[0] == '#' || buffer[0] == '\0') {
    return;
  }
  const std::string line = Trim(std::string(buffer));
  if (Split(line, fields, "\t") == 0 && fields.size() == 5) {
    AddLine(fields, first, second, line);
  }
}

void AlarmConfig::InsertRecord(const Record& record) {
  valueMap[record] = record.value;
  key3Set.insert(record.key3);
}

int AlarmConfig::GetValue(const Record& key, std::string& value) const {
  const auto entry = valueMap.find(key);
  if (entry == valueMap.end()) {
    return -1;
  }
  value = entry->second;
  return 0;
}

int AlarmConfig::Split(const std::string& text, std::list<std::string>& fields,
                       const std::string& separators) {
  std::string working = text;
  if (working.empty()) {
    return 0;
  }
  int allowance = 6;
  do {
    const std::size_t at = working.find_first_of(separators);
    std::string field;
    if (at != std::string::npos) {
      field = working.substr(0, at);
      working = working.substr(at + 1);
    } else {
      field = working;
      working = "";
    }
    if (field.empty()) {
      complaints.push_back({195, text});
      return -1;
    }
    fields.push_back(field);
    --allowance;
    if (allowance == 0) {
      complaints.push_back({203, text});
      return -1;
    }
  } while (!working.empty());
  return 0;
}

int AlarmConfig::ListToRecord(const std::list<std::string>& fields, Record& record, const std::string& line) {
  if (fields.size() != 5) {
    complaints.push_back({148, line});
    return -1;
  }
  auto field = fields.begin();
  const std::string t1 = *field++;
  const std::string t2 = *field++;
  const std::string t3 = *field++;
  const std::string t4 = *field++;
  const std::string t5 = *field++;
  record.value = t5;
  record.numKey = t4;
  record.key3 = t3;
  record.key2 = t2;
  record.key1 = t1;
  return 0;
}

void AlarmConfig::ExpandField(const std::list<std::string>& alternatives, Record& record,
                              std::vector<Record>& records, unsigned mode) {
  for (const std::string& alternative : alternatives) {
    if (mode == 1) {
      record.key1 = alternative;
    }
    if (mode == 2) {
      record.key2 = alternative;
    }
    records.push_back(record);
  }
}

void AlarmConfig::AddLine(std::list<std::string>& fields, std::vector<Record>& first,
                          std::vector<Record>& second, const std::string& line) {
  Record record;
  if (ListToRecord(fields, record, line) == -1) {
    return;
  }
  fields.clear();
  if (Split(record.key1, fields, "/") == -1) {
    return;
  }
  Record copy = record;
  ExpandField(fields, copy, first, 1);
  for (std::size_t i = 0; i < first.size(); ++i) {
    fields.clear();
    if (Split(first[i].key2, fields, "/") == -1) {
      return;
    }
    ExpandField(fields, first[i], second, 2);
  }
  for (std::size_t i = 0; i < second.size(); ++i) {
    InsertRecord(second[i]);
  }
}

}  // namespace literal
