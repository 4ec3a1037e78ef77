// Classifies and converts the texts of columns. No state; views refer to the argument. Any thread may
// call.

#include "tools/almcfg/check/cell_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace almcfg {
namespace {

/// Whether the character looks blank and a load keeps it at the edge of a column. A TAB cannot be there.
bool IsEdgeBlank(char c) { return c == ' ' || c == '\v' || c == '\f' || c == '\r'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether the text has a letter and no digit.
bool IsWord(std::string_view text) {
  const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  return std::any_of(text.begin(), text.end(), isLetter) && std::none_of(text.begin(), text.end(), IsDigit);
}

template <class Cells>
bool IsHeadingOf(const Cells& cells) {
  return cells.size() == NS_ASCII::kAlarmColumns && IsWord(cells[3]) && IsWord(cells[4]) &&
         std::none_of(cells.begin(), cells.end(), [](std::string_view cell) { return IsDecimal(cell); });
}

/// The quoted cell that `rest` starts with, its quotation marks included; empty when the closing mark is
/// missing.
std::string_view QuotedStart(std::string_view rest) {
  for (std::size_t at = 1; at < rest.size(); ++at) {
    if (rest[at] == '"') {
      if (at + 1 < rest.size() && rest[at + 1] == '"') {
        ++at;
      } else {
        return rest.substr(0, at + 1);
      }
    }
  }
  return {};
}

std::vector<std::string> SplitCells(std::string_view line, char separator) {
  std::vector<std::string> cells;
  for (std::string_view rest = line;;) {
    const bool isQuoted = !rest.empty() && rest.front() == '"';
    const std::string_view cell = isQuoted ? QuotedStart(rest) : rest.substr(0, rest.find(separator));
    const std::optional<std::string> inner = Unquoted(cell);
    if (cell.empty() || (!inner && cell.find('"') != std::string_view::npos) || (inner && inner->empty())) {
      return {};
    }
    cells.push_back(inner ? *inner : std::string(cell));
    rest.remove_prefix(cell.size());
    if (rest.empty()) {
      return cells;
    }
    if (rest.front() != separator) {
      return {};
    }
    rest.remove_prefix(1);
  }
}

}  // namespace

std::vector<std::string> SplitAll(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t from = 0; from <= text.size();) {
    const std::size_t to = std::min(text.find(separator, from), text.size());
    parts.emplace_back(text.substr(from, to - from));
    from = to + 1;
  }
  return parts;
}

std::string_view TrimEdges(std::string_view text) {
  while (!text.empty() && IsEdgeBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsEdgeBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

bool IsDecimal(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    text.remove_prefix(1);
  }
  return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

std::optional<std::string> Unquoted(std::string_view cell) {
  if (cell.size() < 2 || cell.front() != '"' || QuotedStart(cell).size() != cell.size()) {
    return std::nullopt;
  }
  std::string inner;
  for (std::size_t at = 1; at + 1 < cell.size(); ++at) {
    inner += cell[at];
    at += cell[at] == '"' ? 1 : 0;
  }
  return inner;
}

std::vector<std::string> SplitDelimited(std::string_view line) {
  if (line.find('\t') != std::string_view::npos) {
    return {};
  }
  for (const char separator : {',', ';'}) {
    std::vector<std::string> cells = SplitCells(line, separator);
    if (cells.size() == NS_ASCII::kAlarmColumns) {
      return cells;
    }
  }
  return {};
}

bool IsHeading(const std::vector<std::string>& cells) { return IsHeadingOf(cells); }
bool IsHeading(const NS_ASCII::PartList& columns) { return IsHeadingOf(columns); }

std::string MeantNumber(std::string_view text) {
  std::string_view digits = TrimEdges(text);
  if (!IsDecimal(digits)) {
    return {};
  }
  digits.remove_prefix(digits.front() == '+' ? 1 : 0);
  std::int32_t number = 0;
  const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), number).ec;
  return error == std::errc() ? std::to_string(number) : std::string();
}

}  // namespace almcfg
