// Repairs one line, step by step. No state, the results are copies. One thread at a time.

#include "tools/almcfg/repair/repair_line.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "src/alarmconfig/almgrammar.h"
#include "src/text/strfunctions.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

using NS_ASCII::LineOutcome;

constexpr std::size_t kMostLines = 10'000;  // that replace one line

using Texts = std::vector<std::string>;

bool IsAccepted(std::string_view line) { return NS_ASCII::ParseLine(line).outcome == LineOutcome::kAccepted; }

/// Appends lines for all combinations of the alternatives, each short enough; `columns` holds columns 3 to 5.
/// False when a single combination is too long, or there would be more than `kMostLines` lines.
bool AppendShortLines(const Texts& key1s, const Texts& key2s, Texts& columns, Texts& lines) {
  columns[0] = Join(key1s, '/');
  columns[1] = Join(key2s, '/');
  std::string line = Join(columns, '\t');
  if (line.size() <= kLongestLine) {
    lines.push_back(std::move(line));
    return lines.size() <= kMostLines;
  }
  const bool splitsFirst = key1s.size() > 1;
  const Texts& whole = splitsFirst ? key1s : key2s;
  const auto middle = whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2);
  const auto append = [&](const Texts& part) {
    return splitsFirst ? AppendShortLines(part, key2s, columns, lines)
                       : AppendShortLines(key1s, part, columns, lines);
  };
  return whole.size() > 1 && append({whole.begin(), middle}) && append({middle, whole.end()});
}

/// The texts in groups of as many as a column may have.
std::vector<Texts> GroupsOf(const Texts& texts) {
  std::vector<Texts> groups;
  for (const std::string& text : texts) {
    if (groups.empty() || groups.back().size() == NS_ASCII::kMaxParts) {
      groups.emplace_back();
    }
    groups.back().push_back(text);
  }
  return groups;
}

/// The lines for all combinations of the alternatives, each short enough and with at most five of them;
/// `columns` holds columns 3 to 5. None when a single combination is too long, or there would be more than
/// `kMostLines` lines.
std::optional<Texts> SplitAlternatives(const Texts& key1s, const Texts& key2s, Texts columns) {
  const std::vector<Texts> groups1 = GroupsOf(key1s);
  const std::vector<Texts> groups2 = GroupsOf(key2s);
  if (groups1.size() * groups2.size() > kMostLines) {
    return std::nullopt;
  }
  Texts lines;
  for (const Texts& group1 : groups1) {
    for (const Texts& group2 : groups2) {
      if (!AppendShortLines(group1, group2, columns, lines)) {
        return std::nullopt;
      }
    }
  }
  return lines;
}

/// Repairs one line step by step.
class LineRepairer {
 public:
  LineRepairer(std::string_view line, const RepairRules& rules, const KeepsAnswers& keepsAnswers,
               std::vector<Finding>& repairs)
      : text_(line),
        origins_(line.size() + 1),
        rules_(rules),
        keepsAnswers_(keepsAnswers),
        repairs_(repairs) {
    std::iota(origins_.begin(), origins_.end(), std::size_t{0});
  }

  Texts Repair(bool isFirst) {
    if (text_.find('\0') != std::string::npos) {
      return {text_};
    }
    RemoveMark(isFirst);
    RemoveCr();
    TrimUnlessColumnsAreEmpty();
    CommentOutOrSeparate();
    if (IsAccepted(text_)) {
      RepairColumns();
    }
    return Split();
  }

 private:
  /// Records a repair and makes it. `column` is counted from 0.
  void Set(Code code, std::size_t column, std::string message, std::string text) {
    repairs_.push_back({code, 1, origins_[column] + 1, 1, std::move(message), "", 0});
    std::vector<std::size_t> origins;
    std::size_t at = 0;
    for (const char c : text) {
      const std::size_t found = text_.find(c, at);
      at = found == std::string::npos ? at : found;
      origins.push_back(origins_[at]);
      at += found == std::string::npos ? 0 : 1;
    }
    origins.push_back(origins_.back());
    origins_ = std::move(origins);
    text_ = std::move(text);
  }

  [[nodiscard]] std::string Trimmed() const { return std::string(NS_ASCII::TrimView(text_)); }

  void RemoveMark(bool isFirst) {
    // Without the mark, a loaded line that continues with "#" would become a comment.
    const auto mayRemoveMark = [this] {
      return text_[kUtf8Mark.size()] != '#' || !IsAccepted(text_) || rules_.unsafe;
    };
    const auto isMarked = [this] { return text_.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0; };
    while (isFirst && rules_.Allows(Code::kByteOrderMark) && isMarked() && mayRemoveMark()) {
      Set(Code::kByteOrderMark, 0, "removed the byte order mark", text_.substr(kUtf8Mark.size()));
    }
  }

  void RemoveCr() {
    if (rules_.Allows(Code::kCrLineEnds) && !text_.empty() && text_.back() == '\r') {
      const std::size_t size = text_.find_last_not_of('\r') + 1;
      Set(Code::kCrLineEnds, size, "removed the CR at the end of the line", text_.substr(0, size));
    }
  }

  /// Keeps the TAB next to an empty first or last column: it shows where a text is missing.
  void TrimUnlessColumnsAreEmpty() {
    const std::string trimmed = Trimmed();
    const bool isComment = !text_.empty() && text_.front() == '#';
    const bool isTrimmable = isComment || trimmed.empty() || IsAccepted(text_);
    // Without the blanks before it, a "#" would make a comment.
    const bool keepsStart = !trimmed.empty() && trimmed.front() == '#';
    const std::string wanted = keepsStart ? text_.substr(0, text_.find_last_not_of(" \t\r") + 1) : trimmed;
    if (isTrimmable && wanted != text_ && rules_.Allows(Code::kOuterBlank)) {
      const bool isLeading = wanted.empty() || text_.front() != wanted.front();
      Set(Code::kOuterBlank, isLeading ? 0 : wanted.size(), "removed the blanks at the ends of the line",
          wanted);
    }
  }

  void CommentOutOrSeparate() {
    const std::string trimmed = Trimmed();
    if (text_.empty() || text_.front() == '#' || trimmed.empty()) {
      return;
    }
    const bool isAccepted = IsAccepted(text_);
    const bool hasHash = trimmed.front() == '#';
    const Texts cells = isAccepted ? SplitAll(trimmed, '\t') : hasHash ? Texts() : SplitDelimited(trimmed);
    if (IsHeading(cells)) {
      if (rules_.Allows(Code::kHeaderLine)) {
        Set(Code::kHeaderLine, 0, "made the heading a comment", (hasHash ? "" : "#") + trimmed);
      }
    } else if (hasHash) {
      if (rules_.Allows(Code::kIndentedComment) && (!isAccepted || rules_.unsafe)) {
        Set(Code::kIndentedComment, 0, "removed the blanks before \"#\"", trimmed);
      }
    } else if (!isAccepted && !cells.empty() && rules_.Allows(Code::kWrongSeparator)) {
      const std::string separated(NS_ASCII::TrimView(Join(cells, '\t')));
      if (IsAccepted(separated) ? KeepsAnswers(separated) : SplitLines(separated).has_value()) {
        Set(Code::kWrongSeparator, 0, "separated the columns by TABs", separated);
      }
    }
  }

  [[nodiscard]] bool KeepsAnswers(std::string_view line) const {
    return rules_.unsafe || keepsAnswers_(line);
  }

  /// Blanks at the ends of the line that had to stay (see `TrimUnlessColumnsAreEmpty`) do not belong to a
  /// column. Repeats the steps, because one repair may make another one possible.
  void RepairColumns() {
    const std::string trimmed = Trimmed();
    start_ = text_.substr(0, OffsetIn(text_, NS_ASCII::TrimView(text_)));
    const std::string end = text_.substr(start_.size() + trimmed.size());
    text_ = trimmed;
    origins_.erase(origins_.begin(), origins_.begin() + static_cast<std::ptrdiff_t>(start_.size()));
    for (std::string last; last != text_;) {
      last = text_;
      RepairCells(Code::kQuotedCell, "removed the quotation marks of ",
                  [](std::string_view cell, std::size_t /*index*/) {
                    return Unquoted(cell).value_or(std::string(cell));
                  });
      RemoveTrailingSlashes();
      RepairCells(Code::kEdgeBlank, "removed the blanks at the edge of ",
                  [](std::string_view cell, std::size_t /*index*/) { return std::string(TrimEdges(cell)); });
      RepairCells(Code::kNumberNeverMatches, "wrote the plain number in ",
                  [](std::string_view cell, std::size_t index) {
                    const std::string meant = index == 3 ? MeantNumber(cell) : std::string();
                    return meant.empty() ? std::string(cell) : meant;
                  });
    }
    text_ = start_ + text_ + end;
  }

  /// Changes each column with `change`, and then each alternative of columns 1 and 2, as far as the line
  /// stays accepted.
  template <class Change>
  void RepairCells(Code code, const std::string& what, const Change& change) {
    for (std::size_t index = 0; rules_.Allows(code) && index < NS_ASCII::kAlarmColumns; ++index) {
      Texts columns = SplitAll(text_, '\t');
      // Blanks that were inside quotation marks may get to the ends of the line, where a load trims them.
      const auto line = [&columns] { return std::string(NS_ASCII::TrimView(Join(columns, '\t'))); };
      const auto set = [&](std::string cell) {
        std::swap(columns[index], cell);
        const bool isChanged = columns[index] != cell;
        if (isChanged && !(IsAccepted(start_ + line()) && KeepsAnswers(start_ + line()))) {
          columns[index] = std::move(cell);
        }
      };
      set(change(columns[index], index));
      const std::size_t count = index < 2 ? SplitAll(columns[index], '/').size() : 0;
      for (std::size_t i = 0; i < count; ++i) {
        Texts alternatives = SplitAll(columns[index], '/');
        alternatives[i] = change(alternatives[i], index);
        set(Join(alternatives, '/'));
      }
      if (line() != text_) {
        Set(code, OffsetOf(SplitAll(text_, '\t'), index), what + "column " + std::to_string(index + 1),
            line());
      }
    }
  }

  static std::size_t OffsetOf(const Texts& columns, std::size_t index) {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < index; ++i) {
      offset += columns[i].size() + 1;
    }
    return offset;
  }

  void RemoveTrailingSlashes() {
    for (std::size_t index = 0; rules_.Allows(Code::kTrailingSlash) && index < 2; ++index) {
      Texts columns = SplitAll(text_, '\t');
      if (columns[index].back() == '/') {
        columns[index].pop_back();
        Set(Code::kTrailingSlash, OffsetOf(columns, index + 1) - 1,
            "removed the \"/\" at the end of column " + std::to_string(index + 1), Join(columns, '\t'));
      }
    }
  }

  /// Splits a line that is too long or has too many alternatives.
  Texts Split() {
    const std::optional<Texts> lines = SplitLines(text_);
    if (!lines) {
      return {text_};
    }
    repairs_.push_back(
        {SplitReason(text_), 1, 1, 1, "split the line into " + Counted(lines->size(), "line"), "", 0});
    const std::size_t known = repairs_.size();
    Texts repaired;
    for (const std::string& line : *lines) {
      const Texts some = LineRepairer(line, rules_, keepsAnswers_, repairs_).Repair(false);
      repaired.insert(repaired.end(), some.begin(), some.end());
    }
    // A column of a new line says nothing about the original line.
    std::for_each(repairs_.begin() + static_cast<std::ptrdiff_t>(known), repairs_.end(),
                  [](Finding& repair) { repair.column = 1; });
    return repaired;
  }

  static Code SplitReason(const std::string& text) {
    return text.size() > kLongestLine ? Code::kOverlongLine : Code::kTooManyAlternatives;
  }

  /// The lines that replace a line that is too long or has too many alternatives; none for other lines, and
  /// when one of them would not be accepted.
  [[nodiscard]] std::optional<Texts> SplitLines(const std::string& text) const {
    const Texts columns = SplitAll(NS_ASCII::TrimView(text), '\t');
    if (text.front() == '#' || columns.size() != NS_ASCII::kAlarmColumns ||
        !rules_.Allows(SplitReason(text)) || (text.size() <= kLongestLine && IsAccepted(text))) {
      return std::nullopt;
    }
    auto lines = SplitAlternatives(AlternativesOf(columns[0]), AlternativesOf(columns[1]), columns);
    const bool isSplit =
        lines && std::all_of(lines->begin(), lines->end(), [](const auto& line) { return IsAccepted(line); });
    return isSplit ? lines : std::nullopt;
  }

  static Texts AlternativesOf(const std::string& column) {
    const bool hasSlash = !column.empty() && column.back() == '/';
    return SplitAll(std::string_view(column).substr(0, column.size() - (hasSlash ? 1 : 0)), '/');
  }

  std::string text_;
  // Where each byte of `text_`, and its end, was in the original line.
  std::vector<std::size_t> origins_;
  // While columns are repaired, the blanks before them that stay; `text_` is then trimmed.
  std::string start_;
  const RepairRules& rules_;
  const almcfg::KeepsAnswers& keepsAnswers_;
  std::vector<Finding>& repairs_;
};

}  // namespace

std::vector<std::string> RepairLine(std::string_view line, bool isFirst, const RepairRules& rules,
                                    const KeepsAnswers& keepsAnswers, std::vector<Finding>& repairs) {
  return LineRepairer(line, rules, keepsAnswers, repairs).Repair(isFirst);
}

std::string Join(const std::vector<std::string>& parts, char separator) {
  std::string text;
  for (const std::string& part : parts) {
    text += (&part == parts.data() ? "" : std::string(1, separator)) + part;
  }
  return text;
}

}  // namespace almcfg
