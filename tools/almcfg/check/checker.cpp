// Checks the lines of one file. Table, text and sink are borrowed for the call. One thread at a time.

#include "tools/almcfg/check/checker.h"

#include <algorithm>
#include <string>
#include <vector>

#include "src/text/strfunctions.h"
#include "tools/almcfg/check/cell_text.h"
#include "tools/almcfg/check/explain_rejected.h"
#include "tools/almcfg/check/lint_accepted.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"

namespace almcfg {
namespace {

using NS_ASCII::LineOutcome;
using NS_ASCII::ParsedLine;

constexpr LineNumber kProgressLines = 4096;

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// The byte order mark that the file starts with; empty when there is none.
std::string_view MarkOf(LineNumber number, std::string_view text) {
  if (number == 1) {
    for (const std::string_view mark :
         {kUtf8Mark, std::string_view("\xFF\xFE"), std::string_view("\xFE\xFF")}) {
      if (StartsWith(text, mark)) {
        return mark;
      }
    }
  }
  return {};
}

std::string ConsequenceOf(LineOutcome outcome) {
  switch (outcome) {
    case LineOutcome::kSkipped:
      return "the line is skipped";
    case LineOutcome::kAccepted:
      return "what is before it is loaded";
    default:
      return "the line is not loaded";
  }
}

struct Consequence {
  const char* load;    ///< what a load would do
  const char* remedy;  ///< what to do about it
};

Consequence ConsequenceOf(Obstacle obstacle) {
  constexpr const char* kLoadsNothing = "a load would succeed and load nothing";
  switch (obstacle) {
    case Obstacle::kDirectory:
      return {kLoadsNothing, "name the file in it"};
    case Obstacle::kDevice:
      return {"a load may never end", "name a file"};
    case Obstacle::kSilentPipe:
      return {"a load would wait until something does", "start what writes to it, or name a file"};
    case Obstacle::kReadFailed:
      return {"a load would NEVER END", "put the file where it can be read to its end"};
    case Obstacle::kNoInput:
      return {"there is nothing to check", "name a file, or give one as standard input"};
    case Obstacle::kTooManyLines:
      return {"a load has no such limit", "check it in parts"};
    default:
      return {kLoadsNothing, "check the path and who may read it"};
  }
}

/// Makes the findings about one file. Members about a line are those of the current line.
class Checker {
 public:
  Checker(const LoadedTable& table, const SourceText& text, FindingSink& sink)
      : table_(table), text_(text), sink_(sink) {}

  void Check(Progress& progress) {
    for (LineNumber number = 1; number <= text_.LineCount(); ++number) {
      CheckLine(number);
      Report();
      if (number % kProgressLines == 0) {
        progress.Show(text_.Name(), "checked", number);
      }
    }
    if (!hasRecord_ && !hasError_) {
      sink_.Take(text_,
                 {Code::kNoRecord, 1, 1, 0, "the file holds no record: every query gets a successful 0",
                  "check that this is the right file, and that it was written completely", 0});
    }
  }

 private:
  void CheckLine(LineNumber number) {
    number_ = number;
    line_ = text_.LineAt(number);
    loaded_ = line_.Loaded();
    parsed_ = NS_ASCII::ParseLine(loaded_);
    hasRecord_ = hasRecord_ || parsed_.outcome == LineOutcome::kAccepted;
    if (line_.IsOverlong()) {
      FindOverlong();
    } else if (parsed_.outcome != LineOutcome::kSkipped || StartsWith(line_.text, {"\0", 1})) {
      CheckContent();
    }
    CheckLineEnd();
  }

  void CheckContent() {
    const bool hasNul = FindNul();
    const bool hasMark = FindByteOrderMark();
    const bool isComment = FindIndentedComment();
    if (parsed_.outcome == LineOutcome::kAccepted) {
      FindForeignBytes();
      LintAccepted(loaded_, parsed_, findings_);
      FindRepeats();
      return;
    }
    const bool isMarkedComment = hasMark && line_.text.find('#') == MarkOf(number_, line_.text).size();
    const bool isExplained =
        hasNul || isMarkedComment || (isComment && parsed_.outcome == LineOutcome::kTooFewColumns);
    if (!isExplained) {
      FindForeignBytes();
      if (auto finding = ExplainRejected(loaded_, parsed_)) {
        findings_.push_back(*std::move(finding));
      }
    }
  }

  void CheckLineEnd() {
    if (number_ == text_.FirstCrLfLine()) {
      Add(Code::kCrLineEnds, line_.length, 1,
          Counted(text_.CrLfLines(), "line") + " of " + Grouped(text_.LineCount()) +
              " with CR LF at the end; the CR is trimmed away, but counts towards the line's length",
          "save the file with LF line ends");
    }
    if (number_ == text_.LineCount() && !text_.EndsWithLineFeed()) {
      Add(Code::kNoFinalLineFeed, line_.length + 1, 1,
          "the last line has no line feed: text that is appended to the file becomes part of it",
          "end the last line with a line feed");
    }
  }

  void Add(Code code, std::size_t column, std::size_t length, std::string message, std::string hint) {
    findings_.push_back({code, 1, column, length, std::move(message), std::move(hint), 0});
  }

  void Report() {
    if (findings_.size() > 1) {  // Sorting allocates memory, even for a single finding.
      std::stable_sort(findings_.begin(), findings_.end(),
                       [](const Finding& a, const Finding& b) { return a.column < b.column; });
    }
    for (Finding& finding : findings_) {
      finding.line = number_;
      hasError_ = hasError_ || RuleOf(finding.code).severity == Severity::kError;
      sink_.Take(text_, finding);
    }
    findings_.clear();
  }

  void FindOverlong() {
    const LineNumber after = text_.LineCount() - number_;
    std::string message =
        "the line has " + Counted(line_.length, "byte") + ", a load reads 1,022 of them and then NEVER ENDS";
    if (!table_.IsReached({&text_, number_})) {
      message += " (it does not reach this line: an earlier one is too long)";
    } else if (after != 0) {
      message += ": " + Counted(after, "line") + " after it " + (after == 1 ? "is" : "are") + " never read";
    }
    const std::size_t cr = line_.text.find('\r');
    const bool isCrOnly = cr != std::string_view::npos && cr + 1 < line_.length;
    Add(Code::kOverlongLine, kLongestLine + 1, 1, message,
        isCrOnly ? "end lines with LF or CR LF, not with CR alone"
                 : "spread it over several lines of at most 1,022 bytes, a CR at the end included");
  }

  bool FindNul() {
    const std::size_t at = loaded_.size();
    if (at == line_.text.size()) {
      return false;
    }
    const std::size_t after = std::min(line_.text.find_first_not_of('\0', at), line_.text.size());
    Add(Code::kNulByte, at + 1, after - at,
        "a NUL byte ends the line here: " + ConsequenceOf(parsed_.outcome),
        "save the file as plain text; UTF-16 has NUL bytes throughout");
    return true;
  }

  bool FindByteOrderMark() {
    const std::string_view mark = MarkOf(number_, line_.text);
    if (mark.empty()) {
      return false;
    }
    const bool beforeComment = line_.text.find('#') == mark.size();
    Add(Code::kByteOrderMark, 1, mark.size(),
        beforeComment ? "the file starts with a byte order mark, so this line is not a comment for the loader"
                      : "the file starts with a byte order mark, which belongs to the first key",
        mark == kUtf8Mark ? "save the file without byte order mark"
                          : "save the file as plain text, not as UTF-16");
    return true;
  }

  bool FindIndentedComment() {
    const std::string_view trimmed = NS_ASCII::TrimView(loaded_);
    const std::size_t at = trimmed.empty() ? 0 : OffsetIn(loaded_, trimmed);
    if (at == 0 || !StartsWith(trimmed, "#")) {
      return false;
    }
    Add(Code::kIndentedComment, 1, at,
        std::string("not a comment: \"#\" must be the first character (the line ") +
            (parsed_.outcome == LineOutcome::kAccepted ? "is LOADED)"
                                                       : "is not a record, so it is not loaded)"),
        "remove the blank before the \"#\"");
    return true;
  }

  void FindForeignBytes() {
    const auto isForeign = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    const std::string_view rest = loaded_.substr(MarkOf(number_, line_.text).size());
    const auto first = std::find_if(rest.begin(), rest.end(), isForeign);
    if (first == rest.end()) {
      return;
    }
    const auto last = std::find_if_not(first, rest.end(), isForeign);
    Add(Code::kNotAscii, static_cast<std::size_t>(first - loaded_.begin()) + 1,
        static_cast<std::size_t>(last - first),
        std::string("not ASCII (") + (IsUtf8(loaded_) ? "UTF-8" : "not UTF-8 either") +
            "): callers must use the very same bytes",
        "write ASCII, or make sure that callers use the same encoding");
  }

  void FindRepeats() {
    const Place place{&text_, number_};
    const std::vector<Repeat> repeats = table_.RepeatsOf(place);
    if (repeats.empty()) {
      return;
    }
    if (IsExactRepeat(table_, place)) {
      AddRepeat(Code::kRepeatedLine, repeats.front(),
                "the line repeats line " + Grouped(repeats.front().earlier.line), "remove one of the two");
      return;
    }
    std::vector<LineNumber> seen;
    for (const Repeat& repeat : repeats) {
      const LineNumber earlier = repeat.earlier.line;
      // A key of an earlier file is not reported: a later file may replace its value on purpose.
      if (repeat.earlier.text == &text_ && std::find(seen.begin(), seen.end(), earlier) == seen.end()) {
        seen.push_back(earlier);
        AddRepeatedKey(repeat);
      }
    }
  }

  void AddRepeatedKey(const Repeat& repeat) {
    const std::string key = Shown(RecordAt(repeat.record));
    const std::string where = "line " + Grouped(repeat.earlier.line);
    const std::string_view earlierText = text_.LineAt(repeat.earlier.line).Loaded();
    const std::string_view earlierValue = NS_ASCII::ParseLine(earlierText).columns[4];
    const std::string_view value = parsed_.columns[4];
    if (repeat.earlier.line == number_) {
      AddRepeat(Code::kDuplicateKey, repeat, "the key " + key + " occurs twice in this line",
                "name each alternative once");
    } else if (earlierValue != value) {
      AddRepeat(Code::kValueReplaced, repeat,
                "the value " + Quoted(earlierValue) + " of " + where + " is REPLACED by " + Quoted(value) +
                    " for the key " + key,
                "keep one of the two lines; the later one wins");
    } else {
      AddRepeat(Code::kDuplicateKey, repeat, "the key " + key + " already has the same value in " + where,
                "remove it from one of the two lines");
    }
  }

  [[nodiscard]] Record RecordAt(std::size_t index) const {
    Records records;
    NS_ASCII::ListRecords(parsed_, records);
    return records[index];
  }

  void AddRepeat(Code code, const Repeat& repeat, std::string message, std::string hint) {
    const std::string_view trimmed = NS_ASCII::TrimView(loaded_);
    Add(code, OffsetIn(loaded_, trimmed) + 1, trimmed.rfind('\t'), std::move(message), std::move(hint));
    findings_.back().otherLine = repeat.earlier.line == number_ ? 0 : repeat.earlier.line;
  }

  const LoadedTable& table_;
  const SourceText& text_;
  FindingSink& sink_;
  bool hasRecord_ = false;
  bool hasError_ = false;

  LineNumber number_ = 0;
  Line line_;
  std::string_view loaded_;
  ParsedLine parsed_;
  std::vector<Finding> findings_;
};

}  // namespace

bool IsExactRepeat(const LoadedTable& table, Place place) {
  const std::vector<Repeat> repeats = table.RepeatsOf(place);
  const std::string_view line = TextOf(place);
  const ParsedLine parsed = NS_ASCII::ParseLine(place.text->LineAt(place.line).Loaded());
  return !repeats.empty() && repeats.size() == parsed.key1s.size() * parsed.key2s.size() &&
         std::all_of(repeats.begin(), repeats.end(), [&](const Repeat& repeat) {
           return repeat.earlier.text == place.text && TextOf(repeat.earlier) == line;
         });
}

Finding Unreadable(const ReadError& error) {
  const Consequence consequence = ConsequenceOf(error.obstacle);
  return {error.obstacle == Obstacle::kDirectory ? Code::kDirectory : Code::kUnreadableFile,
          1,
          1,
          0,
          std::string(error.what()) + ": " + consequence.load,
          consequence.remedy,
          0};
}

void CheckText(const LoadedTable& table, const SourceText& text, Progress& progress, FindingSink& sink) {
  Checker(table, text, sink).Check(progress);
}

}  // namespace almcfg
