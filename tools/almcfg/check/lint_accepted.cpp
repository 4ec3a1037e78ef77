// Finds what is odd about accepted lines. No state, findings are copies; any thread may call.

#include "tools/almcfg/check/lint_accepted.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

#include "src/text/c_strtol.h"
#include "src/text/strfunctions.h"
#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/check/explain_rejected.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

using NS_ASCII::ParsedLine;
using NS_ASCII::PartList;
using Limits = std::numeric_limits<std::int32_t>;

constexpr std::size_t kManyRecords = 16;
constexpr const char* kColumnNames[] = {"column 1", "column 2", "column 3", "column 4", "column 5"};

/// Makes the findings about one line.
class Linter {
 public:
  Linter(std::string_view line, const ParsedLine& parsed, std::vector<Finding>& findings)
      : line_(line), parsed_(parsed), findings_(findings) {}

  void Lint() {
    FindOuterBlanks();
    LintAlternatives(0, parsed_.key1s);
    LintAlternatives(1, parsed_.key2s);
    CountRecords();
    LintColumn3();
    if (IsHeading(parsed_.columns)) {
      findings_.push_back(Heading(line_, NS_ASCII::TrimView(line_), "it is loaded as a record"));
      return;
    }
    LintNumber();
    LintValue();
  }

 private:
  void Add(Code code, std::string_view part, std::string message, std::string hint) {
    findings_.push_back(
        {code, 1, OffsetIn(line_, part) + 1, part.size(), std::move(message), std::move(hint), 0});
  }

  void FindOuterBlanks() {
    const std::string_view trimmed = NS_ASCII::TrimView(line_);
    std::string_view before = line_.substr(0, OffsetIn(line_, trimmed));
    std::string_view after = line_.substr(before.size() + trimmed.size());
    // Line ends are counted for the whole file.
    after.remove_suffix(!after.empty() && after.back() == '\r' ? 1 : 0);
    // Blanks before a "#" are reported as an indented comment.
    const bool isLeading = !before.empty() && trimmed.front() != '#';
    if (isLeading || !after.empty()) {
      Add(Code::kOuterBlank, isLeading ? before : after,
          std::string("the line ") + (isLeading ? "starts" : "ends") + " with blanks, which are trimmed away",
          "remove them");
    }
  }

  void LintAlternatives(std::size_t index, const PartList& alternatives) {
    const std::string_view column = parsed_.columns[index];
    for (const std::string_view alternative : alternatives) {
      const auto name = [index] { return "an alternative of " + std::string(kColumnNames[index]); };
      LintEdges(alternative, name);
      FindControlCharacter(alternative, name);
    }
    if (!FindQuotes(index, column)) {
      for (const std::string_view alternative : alternatives) {
        FindQuotes(index, alternative);
      }
    }
    if (column.back() == '/') {
      Add(Code::kTrailingSlash, column.substr(column.size() - 1),
          std::string(kColumnNames[index]) + " ends with \"/\", which is ignored", "remove the \"/\"");
    }
  }

  bool FindQuotes(std::size_t index, std::string_view cell) {
    const bool isQuoted = Unquoted(cell).has_value();
    if (isQuoted) {
      Add(Code::kQuotedCell, cell,
          std::string(kColumnNames[index]) + " is in quotation marks, which belong to its text",
          "remove the quotes");
    }
    return isQuoted;
  }

  /// `name` returns the name of the part; it is called only when there is a finding.
  template <class Name>
  void LintEdges(std::string_view part, const Name& name,
                 const char* hint = "remove the blank, unless callers ask with it") {
    const std::string_view inner = TrimEdges(part);
    const bool isLeading = inner.empty() || inner.data() != part.data();
    if (inner.size() == part.size()) {
      return;
    }
    const std::string_view blanks = inner.empty() ? part
                                    : isLeading   ? part.substr(0, OffsetIn(part, inner))
                                                  : part.substr(inner.size());
    Add(Code::kEdgeBlank, blanks,
        name() + (isLeading ? " starts" : " ends") + " with a blank, which belongs to it: " + Quoted(part),
        hint);
  }

  /// A control character at the edge of the part that counts as a blank is reported as a blank instead.
  template <class Name>
  void FindControlCharacter(std::string_view part, const Name& name) {
    const std::string_view inner = TrimEdges(part);
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    const auto* const found = std::find_if(inner.begin(), inner.end(), isControl);
    if (found != inner.end()) {
      Add(Code::kControlCharacter, inner.substr(static_cast<std::size_t>(found - inner.begin()), 1),
          name() + " has a control character, which belongs to it: " + Quoted(part), "remove it");
    }
  }

  void LintColumn3() {
    const std::string_view column = parsed_.columns[2];
    const auto name = [] { return std::string(kColumnNames[2]); };
    LintEdges(column, name);
    FindControlCharacter(column, name);
    FindQuotes(2, column);
    if (const std::size_t slash = column.find('/'); slash != std::string_view::npos) {
      Add(Code::kSlashInColumn3, column.substr(slash, 1),
          "column 3 has a \"/\", which belongs to its text: it has no alternatives",
          "write a line for each text if alternatives are meant");
    }
  }

  void CountRecords() {
    const std::size_t records = parsed_.key1s.size() * parsed_.key2s.size();
    if (records >= kManyRecords) {
      const std::size_t start = OffsetIn(line_, parsed_.columns[0]);
      const std::size_t end = OffsetIn(line_, parsed_.columns[1]) + parsed_.columns[1].size();
      Add(Code::kManyRecords, line_.substr(start, end - start),
          "the alternatives of columns 1 and 2 combine to " + std::to_string(records) + " records",
          "check that every combination is meant; \"/\" always separates alternatives");
    }
  }

  void LintNumber() {
    const std::string_view column = parsed_.columns[3];
    const std::string meant = MeantNumber(column);
    if (meant == column && !meant.empty()) {
      return;
    }
    if (FindQuotes(3, column)) {
      return;
    }
    std::string hint = "write a decimal integer from -2147483648 to 2147483647";
    if (!meant.empty()) {
      hint = "write " + meant;
    } else if (!MeantNumber(parsed_.columns[2]).empty()) {
      hint = "columns 3 and 4 look swapped: column 4 is the number";
    }
    Add(Code::kNumberNeverMatches, column,
        "column 4 is " + Quoted(column) +
            ": no query ever finds the line, and its callers get a successful 0",
        hint);
  }

  void LintValue() {
    const std::string_view column = parsed_.columns[4];
    std::int32_t number = 0;
    const char* const end = column.data() + column.size();
    if (const auto read = std::from_chars(column.data(), end, number);
        read.ec == std::errc() && read.ptr == end) {
      return;
    }
    LintEdges(
        column, [] { return std::string(kColumnNames[4]); }, "remove the blank");
    if (FindQuotes(4, column)) {
      return;
    }
    const Answer answer = AnswerFor(column);
    if (answer.result != 0) {
      Add(Code::kValueNotInteger, column,
          "column 5 is " + Quoted(column) + ", not a decimal integer: a query that finds the line fails",
          "write a decimal integer and nothing after it");
      return;
    }
    errno = 0;
    const std::int64_t exact = c_strtol(std::string(column).c_str(), nullptr, 10);
    if (errno == ERANGE || exact < Limits::min() || exact > Limits::max()) {
      Add(Code::kValueWraps, column,
          "column 5 does not fit into 32 bits: callers get " + std::to_string(answer.value),
          "write an integer from -2147483648 to 2147483647");
    }
  }

  std::string_view line_;
  const ParsedLine& parsed_;
  std::vector<Finding>& findings_;
};

}  // namespace

void LintAccepted(std::string_view line, const ParsedLine& parsed, std::vector<Finding>& findings) {
  Linter(line, parsed, findings).Lint();
}

}  // namespace almcfg
