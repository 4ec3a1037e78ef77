#ifndef TESTS_LITERAL_RULES_H_
#define TESTS_LITERAL_RULES_H_

#include <cstdint>
#include <istream>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A reference implementation of the library's operations: the rules, step by step, as simple as possible.
/// Tests, fuzz targets and benchmarks compare with it. It shares no code with the library, and only standard
/// types.
///
/// Everything here is slow on purpose and simple enough to be checked by reading. Keep it so.
namespace literal {

// --- Trim, case conversion, numbers

std::string TrimLeft(const std::string& text);
std::string TrimRight(const std::string& text);
std::string Trim(const std::string& text);
std::string StrToUpper(std::string text);
std::string StrToLower(std::string text);
std::string Num2Str(int number);

// --- The interface's operations

using ListMap = std::map<std::string, std::vector<std::string>>;

bool Str2Num(const std::string& text, int& value, int base);
/// Upper case, with every character converted to a signed char.
std::string ToUpper(const std::string& text);
bool IsContain(const std::string& sub, const std::string& text);
bool SplitFirst(const std::string& source, std::string& head, std::string& tail,
                const std::string& delimiters);
bool IsKeyValueAboveOne(const std::string& key, const std::string& text);
std::string GetKeyValue(const std::string& key, const std::string& text);
std::int64_t ParseListMap(ListMap& map, const std::string& text);
std::int64_t GetMapList(const ListMap& map, const std::string& name, std::vector<std::string>& items);
/// Never returns for an empty separator.
std::int64_t SplitStr(const std::string& text, const std::string& separator,
                      std::vector<std::string>& pieces);
void ParseListEntry(const std::string& entry, std::string& name, std::vector<std::string>& items);

// --- Percent encoding

/// Replaces the pattern until the text no longer contains it, searching from the start each time.
void ReplaceAll(std::string& text, const std::string& pattern, const std::string& replacement);
/// Encodes a text that is already in ISO-8859-1.
std::string EncodeLatin1(const std::string& text);
std::string GetURLDecoding(std::string text);
std::string SetURLDecoding(const std::string& text);
/// Reads one escape text (the text after a '%', two characters at most) into `value` as a stream does.
void ExtractHex(const std::string& escape, int& value);

// --- The alarm configuration

/// One entry, in the order in which it is declared: column 4 before column 3.
struct Record {
  std::string key1;
  std::string key2;
  std::string numKey;
  std::string key3;
  std::string value;
};

/// Descending order by key1, key2, key3, numKey; the value is ignored.
struct ComesBefore {
  bool operator()(const Record& a, const Record& b) const;
};

/// A message about a bad text: its line number and the text.
struct Complaint {
  int line;
  std::string text;
};

class AlarmConfig {
 public:
  /// Reads to the end of the file; never returns when a line is too long.
  int LoadConfig(std::istream& file);
  /// Processes one line as read.
  void TakeLine(const char* buffer);
  void InsertRecord(const Record& record);
  int GetValue(const Record& key, std::string& value) const;

  int Split(const std::string& text, std::list<std::string>& fields, const std::string& separators);
  int ListToRecord(const std::list<std::string>& fields, Record& record, const std::string& line);
  static void ExpandField(const std::list<std::string>& alternatives, Record& record,
                          std::vector<Record>& records, unsigned mode);
  void AddLine(std::list<std::string>& fields, std::vector<Record>& first, std::vector<Record>& second,
               const std::string& line);

  std::map<Record, std::string, ComesBefore> valueMap;
  std::set<std::string> key3Set;
  std::vector<Complaint> complaints;
};

}  // namespace literal

#endif  // TESTS_LITERAL_RULES_H_
