// Repairs the lines of a file and compares the answers with those of the original. The result is a copy.
// One thread at a time.

#include "tools/almcfg/repair/repair_text.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/check/checker.h"
#include "tools/almcfg/read/loaded_table.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

using Texts = std::vector<std::string>;

/// A line of the repaired file, without its LF, and the original line that it comes from.
struct OutputLine {
  std::string text;
  LineNumber origin;
};

std::vector<std::string_view> CutLines(std::string_view content) {
  std::vector<std::string_view> lines;
  while (!content.empty()) {
    const std::size_t feed = content.find('\n');
    const std::size_t size = feed == std::string_view::npos ? content.size() : feed + 1;
    lines.push_back(content.substr(0, size));
    content.remove_prefix(size);
  }
  return lines;
}

LoadedTable LoadBytes(std::string_view content) {
  Progress silent(false);
  std::vector<SourceText> texts;
  texts.push_back(SourceText::FromBytes("", content));
  return {std::move(texts), silent};
}

/// What decides whether a safe repair may add keys: the table of the original file, and the keys of later
/// lines that were repaired.
class Answers {
 public:
  explicit Answers(std::string_view content) : before_(LoadBytes(content)) {}

  /// Whether every key of `line` for which queries got an integer keeps it when `line` replaces line `number`
  /// of the file.
  [[nodiscard]] bool AreKeptBy(std::string_view line, LineNumber number) const {
    const Records records = RecordsOf(line);
    return std::all_of(records.begin(), records.end(), [&](const Record& record) {
      const std::optional<Entry> entry = before_.Find(record);
      if (!entry || entry->place.line >= number || repairedLater_.count(KeyText(record)) != 0) {
        return true;  // The key is new, or a later line sets it and wins.
      }
      if (MeantNumber(record.numKey) != record.numKey) {
        return true;  // No query asks for the key.
      }
      const Answer answer = AnswerFor(entry->value);
      return answer.result != 0 || answer == AnswerFor(record.value);
    });
  }

  /// Remembers the keys that the repaired line adds. They replace those of earlier lines, which are repaired
  /// after it.
  void TakeRepaired(std::string_view line, LineNumber number) {
    for (const Record& record : RecordsOf(line)) {
      const std::optional<Entry> entry = before_.Find(record);
      if (!entry || entry->place.line < number) {
        repairedLater_.insert(KeyText(record));
      }
    }
  }

 private:
  static Records RecordsOf(std::string_view line) {
    Records records;
    const NS_ASCII::ParsedLine parsed = NS_ASCII::ParseLine(line);
    if (parsed.outcome == NS_ASCII::LineOutcome::kAccepted) {
      NS_ASCII::ListRecords(parsed, records);
    }
    return records;
  }

  /// Columns hold no TAB, so different keys have different texts.
  static std::string KeyText(const Record& record) {
    std::string text(record.key1);
    for (const std::string_view column : {record.key2, record.key3, record.numKey}) {
      text.append(1, '\t').append(column);
    }
    return text;
  }

  LoadedTable before_;
  std::set<std::string> repairedLater_;
};

class TextRepairer {
 public:
  TextRepairer(std::string_view content, const RepairRules& rules) : content_(content), rules_(rules) {}

  RepairedText Repair() {
    const std::vector<std::string_view> lines = CutLines(content_);
    RepairEachLine(lines);
    RemoveExactRepeats();
    while (rules_.unsafe && RemoveReplacedRecords()) {
      RemoveExactRepeats();
    }
    RepairedText result;
    result.original.assign(lines.begin(), lines.end());
    result.repaired.resize(lines.size());
    const bool endsLastLine = EndsLastLine(lines);
    for (std::size_t i = 0; i < output_.size(); ++i) {
      const bool isLast = i + 1 == output_.size();
      result.repaired[output_[i].origin - 1].push_back(output_[i].text +
                                                       (isLast && !endsLastLine ? "" : "\n"));
    }
    std::stable_sort(repairs_.begin(), repairs_.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    result.repairs = std::move(repairs_);
    return result;
  }

 private:
  /// From the last line to the first, because a repair may depend on the later lines.
  void RepairEachLine(const std::vector<std::string_view>& lines) {
    Answers answers(content_);
    LineNumber crLines = 0;
    for (auto number = static_cast<LineNumber>(lines.size()); number != 0; --number) {
      std::string_view line = lines[number - 1];
      line.remove_suffix(line.back() == '\n' ? 1 : 0);
      const auto keeps = [&](std::string_view repaired) { return answers.AreKeptBy(repaired, number); };
      std::vector<Finding> repairs;
      Texts texts = RepairLine(line, number == 1, rules_, keeps, repairs);
      std::for_each(texts.rbegin(), texts.rend(), [&](std::string& text) {
        if (!repairs.empty()) {
          answers.TakeRepaired(text, number);
        }
        output_.push_back({std::move(text), number});
      });
      for (auto repair = repairs.rbegin(); repair != repairs.rend(); ++repair) {
        repair->line = number;
        crLines += repair->code == Code::kCrLineEnds ? 1 : 0;
        repairs_.push_back(std::move(*repair));
      }
    }
    std::reverse(output_.begin(), output_.end());
    std::reverse(repairs_.begin(), repairs_.end());
    ReportLineEndsOnce(crLines);
  }

  void ReportLineEndsOnce(LineNumber crLines) {
    const auto isAboutCr = [](const Finding& repair) { return repair.code == Code::kCrLineEnds; };
    const auto first = std::find_if(repairs_.begin(), repairs_.end(), isAboutCr);
    if (first != repairs_.end()) {
      first->message = "removed the CR at the end of " + Counted(crLines, "line");
      repairs_.erase(std::remove_if(first + 1, repairs_.end(), isAboutCr), repairs_.end());
    }
  }

  [[nodiscard]] LoadedTable LoadOutput() const {
    std::string text;
    for (const OutputLine& line : output_) {
      text += line.text + '\n';
    }
    return LoadBytes(text);
  }

  void Note(Code code, const OutputLine& line, std::string message) {
    repairs_.push_back({code, line.origin, 1, 1, std::move(message), "", 0});
  }

  void RemoveExactRepeats() {
    if (!rules_.Allows(Code::kRepeatedLine)) {
      return;
    }
    const LoadedTable table = LoadOutput();
    std::vector<OutputLine> kept;
    for (LineNumber number = 1; number <= output_.size(); ++number) {
      OutputLine& line = output_[number - 1];
      const Place place{&table.Text(0), number};
      if (table.IsReached(place) && IsExactRepeat(table, place)) {
        const LineNumber earlier = output_[table.RepeatsOf(place).front().earlier.line - 1].origin;
        Note(Code::kRepeatedLine, line, "removed the repeat of line " + Grouped(earlier));
      } else {
        kept.push_back(std::move(line));
      }
    }
    output_ = std::move(kept);
  }

  /// Removes from earlier lines the keys that a later line sets again. Repairs what is left of those lines,
  /// because fewer alternatives may allow more repairs. Returns whether anything was removed.
  bool RemoveReplacedRecords() {
    const std::size_t repairsBefore = repairs_.size();
    const LoadedTable table = LoadOutput();
    std::vector<std::set<std::size_t>> replaced(output_.size());
    for (LineNumber number = 1; number <= output_.size(); ++number) {
      for (const Repeat& repeat : table.RepeatsOf({&table.Text(0), number})) {
        if (rules_.Allows(CodeFor(repeat, table.Text(0)))) {
          replaced[repeat.earlier.line - 1].insert(repeat.earlierRecord);
          Note(CodeFor(repeat, table.Text(0)), output_[repeat.earlier.line - 1],
               "removed a key that line " + Grouped(output_[number - 1].origin) + " sets again");
        }
      }
    }
    std::vector<OutputLine> kept;
    for (std::size_t i = 0; i < output_.size(); ++i) {
      if (replaced[i].empty()) {
        kept.push_back(std::move(output_[i]));
        continue;
      }
      for (const std::string& rest : LinesWithout(replaced[i], output_[i].text)) {
        std::vector<Finding> repairs;
        for (std::string& text : RepairLine(rest, false, rules_, nullptr, repairs)) {
          kept.push_back({std::move(text), output_[i].origin});
        }
        for (const Finding& repair : repairs) {
          Note(repair.code, output_[i], repair.message);
        }
      }
    }
    output_ = std::move(kept);
    return repairs_.size() != repairsBefore;
  }

  static Code CodeFor(const Repeat& repeat, const SourceText& text) {
    const auto valueAt = [&text](LineNumber number) {
      return NS_ASCII::ParseLine(text.LineAt(number).Loaded()).columns[4];
    };
    return valueAt(repeat.place.line) == valueAt(repeat.earlier.line) ? Code::kDuplicateKey
                                                                      : Code::kValueReplaced;
  }

  /// Lines for the records that are not `removed`: alternatives of column 1 that keep the same alternatives
  /// of column 2 share a line.
  static Texts LinesWithout(const std::set<std::size_t>& removed, const std::string& line) {
    const NS_ASCII::ParsedLine parsed = NS_ASCII::ParseLine(line);
    std::vector<std::pair<std::string, std::string>> sides;
    std::size_t record = 0;
    for (const std::string_view key1 : parsed.key1s) {
      std::string key2s;
      for (const std::string_view key2 : parsed.key2s) {
        if (removed.count(record++) == 0) {
          key2s += (key2s.empty() ? "" : "/") + std::string(key2);
        }
      }
      const auto same = std::find_if(sides.begin(), sides.end(),
                                     [&key2s](const auto& side) { return side.second == key2s; });
      if (same != sides.end()) {
        same->first += '/' + std::string(key1);
      } else if (!key2s.empty()) {
        sides.emplace_back(key1, key2s);
      }
    }
    Texts lines;
    for (const auto& [key1s, key2s] : sides) {
      std::string& half = lines.emplace_back(key1s);
      for (const std::string_view column :
           {std::string_view(key2s), parsed.columns[2], parsed.columns[3], parsed.columns[4]}) {
        half.append(1, '\t').append(column);
      }
    }
    return lines;
  }

  /// Whether the repaired file ends with a line feed.
  bool EndsLastLine(const std::vector<std::string_view>& lines) {
    if (lines.empty() || lines.back().back() == '\n') {
      return true;
    }
    if (!rules_.Allows(Code::kNoFinalLineFeed)) {
      return false;
    }
    const auto number = static_cast<LineNumber>(lines.size());
    repairs_.push_back({Code::kNoFinalLineFeed, number, lines.back().size() + 1, 1,
                        "ended the last line with a line feed", "", 0});
    return true;
  }

  std::string_view content_;
  const RepairRules& rules_;
  std::vector<OutputLine> output_;
  std::vector<Finding> repairs_;
};

}  // namespace

std::string RepairedText::Text() const {
  std::string text;
  for (const Texts& lines : repaired) {
    for (const std::string& line : lines) {
      text += line;
    }
  }
  return text;
}

RepairedText RepairText(std::string_view content, const RepairRules& rules) {
  return TextRepairer(content, rules).Repair();
}

}  // namespace almcfg
