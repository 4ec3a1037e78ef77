#include "tools/almcfg/bad_line.h"

#include <algorithm>
#include <string>

#include "src/almconfig.h"
#include "tools/almcfg/line_parts.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

using NS_ASCII::kAlarmColumns;
using NS_ASCII::kMostAlarmParts;

// The line number in the bundle's message about an empty part, kEmptyFieldLine there; both must be the same.
// The message about a sixth part has another.
constexpr int kEmptyPartMessage = 195;

constexpr std::string_view kLinePattern = "KEY1<TAB>KEY2<TAB>KEY3<TAB>NUMBER<TAB>VALUE";

bool IsInteger(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    text.remove_prefix(1);
  }
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

std::string Needs(std::string_view what) {
  return std::string(what) + "; a line is " + std::string(kLinePattern);
}

/// A separator that someone may have meant instead of the TAB.
struct Suspect {
  std::string_view characters;
  const char* looks;
};

/// The pieces between any of the suspect's characters and TABs; runs count as one for blanks only.
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

/// Prose has many words too; what looks like a line ends in a number or has exactly five pieces.
bool LooksSeparatedBy(const Suspect& suspect, std::string_view text) {
  if (text.find_first_of(suspect.characters) == std::string_view::npos) {
    return false;
  }
  const std::vector<std::string_view> pieces = PiecesWith(suspect, text);
  return pieces.size() == kAlarmColumns ||
         (pieces.size() > kAlarmColumns && IsInteger(NS_ASCII::TrimView(pieces.back())));
}

std::optional<Finding> FindWrongSeparator(const Part& trimmed) {
  static constexpr Suspect kSuspects[] = {{",", "looks comma-separated"},
                                          {";", "looks semicolon-separated"},
                                          {" ", "has blanks where TABs are meant"}};
  for (const Suspect& suspect : kSuspects) {
    if (!LooksSeparatedBy(suspect, trimmed.text)) {
      continue;
    }
    const std::size_t at = trimmed.text.find_first_of(suspect.characters);
    const std::size_t behind = trimmed.text.find_first_not_of(suspect.characters, at);
    return Finding{Code::kWrongSeparator,
                   1,
                   trimmed.at + at + 1,
                   std::min(behind, trimmed.text.size()) - at,
                   std::string("the line ") + suspect.looks + ": it is dropped without a message",
                   Needs("separate the columns by one TAB each"),
                   0};
  }
  return std::nullopt;
}

/// Four columns that would have been five, had the TAB beside the empty one not been trimmed away.
std::optional<Finding> FindEmptyEdge(std::string_view line, const Part& trimmed, std::size_t columns) {
  const bool lacksOne = columns + 1 == kAlarmColumns;
  const std::size_t leading = line.substr(0, trimmed.at).find('\t');
  const std::size_t end = trimmed.at + trimmed.text.size();
  const std::size_t trailing = line.find('\t', end);
  if (!lacksOne || (leading == std::string_view::npos && trailing == std::string_view::npos)) {
    return std::nullopt;
  }
  const bool isLast = trailing != std::string_view::npos;
  return Finding{Code::kEmptyEdgeColumn,
                 1,
                 (isLast ? trailing : leading) + 1,
                 1,
                 std::string("column ") + (isLast ? "5" : "1") +
                     " is empty, so its TAB is trimmed away and 4 columns are left: the line is dropped "
                     "without a message",
                 isLast ? "write a value behind the last TAB" : "write a key before the first TAB",
                 0};
}

std::string CrHint(const Part& trimmed, std::string hint) {
  return trimmed.text.find('\r') == std::string_view::npos
             ? hint
             : "the line has a CR inside: end lines with LF or CR LF, not with CR alone";
}

Finding ExplainColumns(const Part& trimmed, bool isEmptyPart) {
  const std::vector<Part> columns = PartsOf(trimmed, '\t');
  if (!isEmptyPart) {
    const Part& sixth = columns[kMostAlarmParts];
    const std::size_t end = trimmed.at + trimmed.text.size();
    return {Code::kTooManyColumns,
            1,
            sixth.at + 1,
            end - sixth.at,
            "the line has " + Counted(columns.size(), "column") + ", five are allowed: it is not loaded",
            CrHint(trimmed, "remove what is marked, or give it a line of its own"),
            0};
  }
  const auto isEmpty = [](const Part& part) { return part.text.empty(); };
  const auto empty = std::find_if(columns.begin(), columns.end(), isEmpty);
  const auto filled =
      columns.size() - static_cast<std::size_t>(std::count_if(columns.begin(), columns.end(), isEmpty));
  return {Code::kEmptyColumn,
          1,
          empty->at + 1,
          1,
          "column " + std::to_string(empty - columns.begin() + 1) + " is empty: the line is not loaded",
          filled == kAlarmColumns ? "write one TAB between two columns; several do not count as one"
                                  : "write something between the two TABs; no column may be empty",
          0};
}

Finding ExplainAlternatives(const Part& column, std::size_t number, bool isEmptyPart) {
  const std::string name = "column " + std::to_string(number);
  const std::vector<Part> alternatives = PartsOf(column, '/');
  if (!isEmptyPart) {
    const Part& sixth = alternatives[kMostAlarmParts];
    return {Code::kTooManyAlternatives,
            1,
            sixth.at + 1,
            column.at + column.text.size() - sixth.at,
            name + " has " + Counted(alternatives.size(), "alternative") +
                ", five are allowed: the line is not loaded",
            "move what is marked to a second line with the same other columns",
            0};
  }
  const auto empty = std::find_if(alternatives.begin(), alternatives.end(),
                                  [](const Part& part) { return part.text.empty(); });
  return {Code::kEmptyAlternative,
          1,
          empty->at + 1,
          1,
          name + " has an empty alternative: the line is not loaded",
          "remove the \"/\" too many",
          0};
}

}  // namespace

std::optional<Finding> ExplainDropped(std::string_view line) {
  const Part trimmed = Trimmed(line);
  if (trimmed.text.empty()) {
    return std::nullopt;
  }
  const std::size_t columns = PartsOf(trimmed, '\t').size();
  if (auto edge = FindEmptyEdge(line, trimmed, columns)) {
    return edge;
  }
  if (auto separator = FindWrongSeparator(trimmed)) {
    return separator;
  }
  return Finding{
      Code::kTooFewColumns,
      1,
      trimmed.at + 1,
      trimmed.text.size(),
      "the line has " + Counted(columns, "column") + ", five are needed: it is dropped without a message",
      CrHint(trimmed, Needs("add what is missing, or start the line with \"#\"")),
      0};
}

Finding ExplainLogged(std::string_view line, const LoggedMessage& message) {
  const Part trimmed = Trimmed(line);
  const bool isEmptyPart = message.line == kEmptyPartMessage;
  // The bundle names the text that it was splitting: the whole line or one of the first two columns.
  if (message.text == trimmed.text) {
    return ExplainColumns(trimmed, isEmptyPart);
  }
  const std::vector<Part> columns = PartsOf(trimmed, '\t');
  const std::size_t index = columns[0].text == message.text ? 0 : 1;
  return ExplainAlternatives(columns[index], index + 1, isEmptyPart);
}

}  // namespace almcfg
