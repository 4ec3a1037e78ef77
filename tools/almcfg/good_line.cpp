#include "tools/almcfg/good_line.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "framework/platform_util.h"
#include "src/asciiutilifimpl.h"
#include "tools/almcfg/line_parts.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

using Columns = std::array<Part, 5>;
using Limits = std::numeric_limits<std::int32_t>;

constexpr std::size_t kManyRecords = 16;
constexpr std::string_view kEdgeBlanks = " \v\f\r";

Columns ColumnsOf(std::string_view line) {
  Columns columns;
  std::size_t count = 0;
  ForEachPart(Trimmed(line), '\t', [&](const Part& part) {
    if (count < columns.size()) {
      columns[count++] = part;
    }
  });
  return columns;
}

Finding Mark(Code code, const Part& part, std::string message, std::string hint) {
  return {code, 1, part.at + 1, part.text.size(), std::move(message), std::move(hint), 0};
}

/// Whether all of the text is an integer that fits.
bool IsInt32(std::string_view text, std::int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

/// What somebody who wrote `text` in column 4 probably meant; empty when there is no telling.
std::string MeantNumber(std::string_view text) {
  std::string_view digits = text.substr(std::min(text.find_first_not_of(kEdgeBlanks), text.size()));
  digits = digits.substr(0, digits.find_last_not_of(kEdgeBlanks) + 1);
  if (!digits.empty() && digits.front() == '+') {
    digits.remove_prefix(1);
  }
  std::int32_t number = 0;
  return IsInt32(digits, number) ? NSTE_util::Num2Str(number) : std::string();
}

void CheckNumber(const Columns& columns, std::vector<Finding>& findings) {
  const Part& column = columns[3];
  std::int32_t number = 0;
  if (IsInt32(column.text, number) && NSTE_util::Trim(NSTE_util::Num2Str(number)) == column.text) {
    return;
  }
  const std::string meant = MeantNumber(column.text);
  std::string hint = "write a decimal integer from -2147483648 to 2147483647";
  if (!meant.empty()) {
    hint = "write " + meant;
  } else if (IsInt32(columns[2].text, number)) {
    hint = "columns 3 and 4 look exchanged: column 4 is the number";
  }
  findings.push_back(Mark(Code::kNumberNeverMatches, column,
                          "column 4 is " + Quoted(column.text) +
                              ": no query ever finds the line, and its callers get a successful 0",
                          hint));
}

void CheckValue(const Part& column, std::vector<Finding>& findings) {
  std::int32_t number = 0;
  if (IsInt32(column.text, number)) {
    return;
  }
  const std::string value(column.text);
  if (!NS_ASCII::AsciiUtilInterfaceImpl().Str2Num(value, number, 10)) {
    findings.push_back(
        Mark(Code::kValueNotInteger, column,
             "column 5 is " + Quoted(value) + ", not a decimal integer: a query that finds the line fails",
             "write a decimal integer and nothing behind it"));
    return;
  }
  errno = 0;
  const std::int64_t exact = std::strtoll(value.c_str(), nullptr, 10);
  if (errno == ERANGE || exact < Limits::min() || exact > Limits::max()) {
    findings.push_back(Mark(Code::kValueWraps, column,
                            "column 5 does not fit into 32 bits: callers get " + std::to_string(number),
                            "write an integer from -2147483648 to 2147483647"));
  }
}

bool IsEdgeBlank(char c) { return kEdgeBlanks.find(c) != std::string_view::npos; }

/// `name` says which part it is, and is only called for a finding.
template <class Name>
void CheckEdges(const Part& part, const Name& name, std::vector<Finding>& findings) {
  if (part.text.empty() || !(IsEdgeBlank(part.text.front()) || IsEdgeBlank(part.text.back()))) {
    return;
  }
  const std::size_t first = part.text.find_first_not_of(kEdgeBlanks);
  const std::size_t last = part.text.find_last_not_of(kEdgeBlanks);
  const bool isLeading = first != 0;
  Part blanks{part.at, part.text.substr(0, first)};
  if (!isLeading) {
    blanks = {part.at + last + 1, part.text.substr(last + 1)};
  }
  findings.push_back(Mark(
      Code::kEdgeBlank, blanks,
      name() + (isLeading ? " starts" : " ends") + " with a blank, which belongs to it: " + Quoted(part.text),
      "remove the blank, unless callers ask with it"));
}

void CheckAlternatives(const Part& column, const char* name, std::vector<Finding>& findings) {
  ForEachPart(column, '/', [&](const Part& part) {
    CheckEdges(
        part, [&] { return "an alternative of " + std::string(name); }, findings);
  });
  if (column.text.back() == '/') {
    findings.push_back(Mark(Code::kTrailingSlash,
                            {column.at + column.text.size() - 1, column.text.substr(0, 1)},
                            std::string(name) + " ends with \"/\", which is ignored", "remove the \"/\""));
  }
}

void CheckRecordCount(const Columns& columns, const Records& records, std::vector<Finding>& findings) {
  if (records.size() < kManyRecords) {
    return;
  }
  const Part both{columns[0].at, std::string_view(columns[0].text.data(),
                                                  columns[0].text.size() + 1 + columns[1].text.size())};
  findings.push_back(
      Mark(Code::kManyRecords, both,
           "the alternatives of columns 1 and 2 multiply to " + std::to_string(records.size()) + " records",
           "check that every combination is meant; \"/\" always separates alternatives"));
}

}  // namespace

void FindOddities(std::string_view line, const Records& records, std::vector<Finding>& findings) {
  const Columns columns = ColumnsOf(line);
  CheckAlternatives(columns[0], "column 1", findings);
  CheckAlternatives(columns[1], "column 2", findings);
  CheckRecordCount(columns, records, findings);
  CheckEdges(
      columns[2], [] { return std::string("column 3"); }, findings);
  CheckNumber(columns, findings);
  CheckEdges(
      columns[4], [] { return std::string("column 5"); }, findings);
  CheckValue(columns[4], findings);
}

}  // namespace almcfg
