// Explains rejected lines. No state, findings are copies; any thread may call.

#include "tools/almcfg/check/explain_rejected.h"

#include <algorithm>
#include <string>
#include <vector>

#include "src/text/strfunctions.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

using NS_ASCII::kAlarmColumns;
using NS_ASCII::LineOutcome;
using NS_ASCII::ParsedLine;
using NS_ASCII::Rejection;
using NS_ASCII::RejectReason;
using NS_ASCII::SplitText;

constexpr std::string_view kLinePattern = "KEY1<TAB>KEY2<TAB>KEY3<TAB>NUMBER<TAB>VALUE";

std::string Needs(std::string_view what) {
  return std::string(what) + "; a line is " + std::string(kLinePattern);
}

/// A character that the author may have used instead of the TAB.
struct Suspect {
  std::string_view characters;
  const char* looks;
};

/// The pieces between the suspected separators and TABs; a run of blanks is one separator.
std::vector<std::string_view> PiecesWith(const Suspect& suspect, std::string_view text) {
  const std::string separators = std::string(suspect.characters) + '\t';
  std::vector<std::string_view> pieces;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t to = std::min(text.find_first_of(separators, from), text.size());
    if (to != from || suspect.characters != " ") {
      pieces.push_back(text.substr(from, to - from));
    }
    from = to + 1;
  }
  return pieces;
}

/// Distinguishes a record from prose, which has many words too: a record ends in a number or has exactly five
/// pieces.
bool LooksSeparatedBy(const Suspect& suspect, std::string_view text) {
  if (text.find_first_of(suspect.characters) == std::string_view::npos) {
    return false;
  }
  const std::vector<std::string_view> pieces = PiecesWith(suspect, text);
  return pieces.size() == kAlarmColumns || SplitDelimited(text).size() == kAlarmColumns ||
         (pieces.size() > kAlarmColumns && IsDecimal(NS_ASCII::TrimView(pieces.back())));
}

std::optional<Finding> FindWrongSeparator(std::string_view trimmed, std::size_t offset) {
  static constexpr Suspect kSuspects[] = {{",", "looks comma-separated"},
                                          {";", "looks semicolon-separated"},
                                          {" ", "has blanks where TABs are meant"}};
  for (const Suspect& suspect : kSuspects) {
    if (!LooksSeparatedBy(suspect, trimmed)) {
      continue;
    }
    const std::size_t at = trimmed.find_first_of(suspect.characters);
    const std::size_t after = std::min(trimmed.find_first_not_of(suspect.characters, at), trimmed.size());
    return Finding{Code::kWrongSeparator,
                   1,
                   offset + at + 1,
                   after - at,
                   std::string("the line ") + suspect.looks + ": it is dropped without a message",
                   Needs("separate the columns by one TAB each"),
                   0};
  }
  return std::nullopt;
}

/// Whether the line has four columns because the TAB next to an empty first or last column was trimmed away.
std::optional<Finding> FindEmptyEdge(std::string_view line, std::string_view trimmed, std::size_t columns) {
  const std::size_t offset = OffsetIn(line, trimmed);
  const std::size_t leading = line.substr(0, offset).find('\t');
  const std::size_t trailing = line.find('\t', offset + trimmed.size());
  constexpr std::size_t kNone = std::string_view::npos;
  if (columns + 1 != kAlarmColumns || (leading == kNone && trailing == kNone)) {
    return std::nullopt;
  }
  const bool isLast = trailing != kNone;
  return Finding{Code::kEmptyEdgeColumn,
                 1,
                 (isLast ? trailing : leading) + 1,
                 1,
                 std::string("column ") + (isLast ? "5" : "1") +
                     " is empty, so its TAB is trimmed away and 4 columns are left: the line is dropped "
                     "without a message",
                 isLast ? "write a value after the last TAB" : "write a key before the first TAB",
                 0};
}

std::string CrHint(std::string_view text, std::string hint) {
  return text.find('\r') == std::string_view::npos
             ? hint
             : "the line has a CR inside: end lines with LF or CR LF, not with CR alone";
}

}  // namespace

Finding Heading(std::string_view line, std::string_view trimmed, const std::string& consequence) {
  return {Code::kHeaderLine,
          1,
          OffsetIn(line, trimmed) + 1,
          trimmed.size(),
          "columns 4 and 5 are words, so this looks like a heading: " + consequence,
          "make it a comment: start the line with \"#\"",
          0};
}

namespace {

Finding ExplainTooFewColumns(std::string_view line, const ParsedLine& parsed, std::string_view trimmed) {
  const std::size_t offset = OffsetIn(line, trimmed);
  const std::size_t columns = parsed.columns.size();
  if (auto edge = FindEmptyEdge(line, trimmed, columns)) {
    return *edge;
  }
  if (IsHeading(SplitDelimited(trimmed))) {
    return Heading(line, trimmed, "it is dropped");
  }
  if (auto separator = FindWrongSeparator(trimmed, offset)) {
    return *separator;
  }
  return {Code::kTooFewColumns,
          1,
          offset + 1,
          trimmed.size(),
          "the line has " + Counted(columns, "column") + ", five are needed: it is dropped without a message",
          CrHint(trimmed, Needs("add what is missing, or start the line with \"#\"")),
          0};
}

std::size_t CountOf(std::string_view text, char c) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
}

Finding ExplainColumns(const Rejection& rejection) {
  const std::string_view text = rejection.text;
  const std::size_t columns = CountOf(text, '\t') + 1;
  if (rejection.reason == RejectReason::kSixthPart) {
    return {Code::kTooManyColumns,
            1,
            rejection.offset + 1,
            0,
            "the line has " + Counted(columns, "column") + ", five are allowed: it is not loaded",
            CrHint(text, "remove what is marked, or give it a line of its own"),
            0};
  }
  std::size_t empty = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    empty += text[i] == '\t' && (i == 0 || text[i - 1] == '\t') ? 1 : 0;
  }
  return {Code::kEmptyColumn,
          1,
          rejection.offset + 1,
          1,
          "column " + std::to_string(rejection.partIndex + 1) + " is empty: the line is not loaded",
          columns - empty == kAlarmColumns ? "write one TAB between two columns; several do not count as one"
                                           : "write something between the two TABs; no column may be empty",
          0};
}

Finding ExplainAlternatives(const Rejection& rejection) {
  const std::string name = rejection.split == SplitText::kColumn1 ? "column 1" : "column 2";
  if (rejection.reason == RejectReason::kEmptyPart) {
    return {Code::kEmptyAlternative,
            1,
            rejection.offset + 1,
            1,
            name + " has an empty alternative: the line is not loaded",
            "remove the extra \"/\"",
            0};
  }
  const std::size_t alternatives = CountOf(rejection.text, '/') + (rejection.text.back() == '/' ? 0 : 1);
  return {
      Code::kTooManyAlternatives,
      1,
      rejection.offset + 1,
      0,
      name + " has " + Counted(alternatives, "alternative") + ", five are allowed: the line is not loaded",
      "move what is marked to a second line with the same other columns",
      0};
}

Finding ExplainRejection(std::string_view line, const Rejection& rejection) {
  Finding finding =
      rejection.split == SplitText::kLine ? ExplainColumns(rejection) : ExplainAlternatives(rejection);
  if (finding.length == 0) {
    // Marks everything from the sixth part to the end of the text.
    finding.length = OffsetIn(line, rejection.text) + rejection.text.size() - rejection.offset;
  }
  return finding;
}

}  // namespace

std::optional<Finding> ExplainRejected(std::string_view line, const ParsedLine& parsed) {
  if (parsed.outcome == LineOutcome::kRejected) {
    return ExplainRejection(line, parsed.rejection);
  }
  const std::string_view trimmed = NS_ASCII::TrimView(line);
  if (parsed.outcome == LineOutcome::kTooFewColumns && !trimmed.empty()) {
    return ExplainTooFewColumns(line, parsed, trimmed);
  }
  return std::nullopt;
}

}  // namespace almcfg
