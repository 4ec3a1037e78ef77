#include "tools/almcfg/checker.h"

#include <algorithm>
#include <string>

#include "tools/almcfg/bad_line.h"
#include "tools/almcfg/good_line.h"
#include "tools/almcfg/line_parts.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

using NS_ASCII::LineFate;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// The byte order mark that the file starts with; empty when there is none.
std::string_view MarkOf(const TakenLine& taken) {
  if (taken.place.line == 1) {
    for (const std::string_view mark :
         {kUtf8Mark, std::string_view("\xFF\xFE"), std::string_view("\xFE\xFF")}) {
      if (StartsWith(taken.line.text, mark)) {
        return mark;
      }
    }
  }
  return {};
}

std::string WhatBecameOf(LineFate fate) {
  switch (fate) {
    case LineFate::kSkipped:
      return "the line is skipped";
    case LineFate::kStored:
      return "what stands before it is loaded";
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

/// How two lines with one key differ.
Finding Duplicate(const TakenLine& taken, LineNumber earlier, const Line& earlierLine,
                  std::string_view earlierValue, const Record& record) {
  const Part trimmed = Trimmed(taken.line.Loaded());
  const std::size_t keysEnd = trimmed.text.rfind('\t');
  const std::string key = Shown(record);
  const std::string where = "line " + Grouped(earlier);
  Finding finding{Code::kDuplicateKey, 1, trimmed.at + 1, keysEnd, "", "", earlier};
  if (earlier == taken.place.line) {
    finding.message = "the key " + key + " occurs twice in this line";
    finding.hint = "name each alternative once";
    finding.otherLine = 0;
  } else if (earlierValue != record.value) {
    finding.code = Code::kValueReplaced;
    finding.message = "the value " + Quoted(earlierValue) + " of " + where + " is REPLACED by " +
                      Quoted(record.value) + " for the key " + key;
    finding.hint = "keep one of the two lines; the later one wins";
  } else if (taken.line.text == earlierLine.text) {
    finding.code = Code::kRepeatedLine;
    finding.message = "the line repeats " + where;
    finding.hint = "remove one of the two";
  } else {
    finding.message = "the key " + key + " has the same value in " + where + " already";
    finding.hint = "remove it from one of the two lines";
  }
  return finding;
}

}  // namespace

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

void Checker::OnLine(const LoadedFiles& files, const TakenLine& taken) {
  findings_.clear();
  const std::string_view text = taken.line.text;
  if (!text.empty() && text.back() == '\r') {
    firstCrLine_ = crLines_++ == 0 ? taken.place.line : firstCrLine_;
  }
  if (taken.line.IsOverlong()) {
    FindOverlong(taken);
  } else if (taken.fate != LineFate::kSkipped || StartsWith(text, std::string_view("\0", 1))) {
    Find(files, taken);
  }
  std::stable_sort(findings_.begin(), findings_.end(),
                   [](const Finding& a, const Finding& b) { return a.column < b.column; });
  for (Finding& finding : findings_) {
    finding.line = taken.place.line;
    sink_.Take(*taken.place.text, finding);
  }
}

void Checker::OnEnd(const SourceText& text) {
  const LineNumber lines = text.lineCount();
  if (crLines_ != 0) {
    sink_.Take(text,
               {Code::kCrLineEnds, firstCrLine_, text.line(firstCrLine_).text.size(), 1,
                Counted(crLines_, "line") + " of " + Grouped(lines) +
                    " with CR LF at the end; the CR is trimmed away, but counts towards the line's length",
                "save the file with LF line ends", 0});
  }
  if (!text.endsWithLineFeed()) {
    sink_.Take(text, {Code::kNoFinalLineFeed, lines, text.line(lines).text.size() + 1, 1,
                      "the last line has no line feed; it is loaded all the same",
                      "end the last line too, so that the next one starts afresh", 0});
  }
  crLines_ = 0;
  firstCrLine_ = 0;
}

void Checker::Find(const LoadedFiles& files, const TakenLine& taken) {
  const bool hasNul = FindNul(taken);
  const bool hasMark = FindByteOrderMark(taken);
  const bool isComment = FindIndentedComment(taken);
  if (taken.fate == LineFate::kStored) {
    FindForeignBytes(taken);
    FindOddities(taken.line.Loaded(), taken.records, findings_);
    FindDuplicates(files, taken);
  } else if (!hasNul && !isComment && !(hasMark && taken.line.text.find('#') == MarkOf(taken).size())) {
    FindForeignBytes(taken);
    ExplainBad(taken);
  }
}

void Checker::FindOverlong(const TakenLine& taken) {
  const LineNumber behind = taken.place.text->lineCount() - taken.place.line;
  std::string message = "the line has " + Counted(taken.line.length, "character") +
                        ", a load reads 1,022 of them and then NEVER ENDS";
  if (!taken.isReached) {
    message += " (nor does it get here)";
  } else if (behind != 0) {
    message += ": " + Counted(behind, "line") + " behind it " + (behind == 1 ? "is" : "are") + " never read";
  }
  const bool isCrOnly = taken.line.text.find('\r') < taken.line.text.size() - 1;
  findings_.push_back(
      {Code::kOverlongLine, 1, kLongestLine + 1, 1, message,
       isCrOnly ? "end lines with LF or CR LF, not with CR alone"
                : "spread it over several lines of at most 1,022 characters, a CR at the end included",
       0});
}

bool Checker::FindNul(const TakenLine& taken) {
  const std::size_t at = taken.line.Loaded().size();
  if (at == taken.line.text.size()) {
    return false;
  }
  const std::size_t behind = std::min(taken.line.text.find_first_not_of('\0', at), taken.line.text.size());
  findings_.push_back({Code::kNulByte, 1, at + 1, behind - at,
                       "a NUL byte ends the line here: " + WhatBecameOf(taken.fate),
                       "save the file as plain text; UTF-16 has NUL bytes throughout", 0});
  return true;
}

bool Checker::FindByteOrderMark(const TakenLine& taken) {
  const std::string_view mark = MarkOf(taken);
  if (mark.empty()) {
    return false;
  }
  const bool beforeComment = taken.line.text.find('#') == mark.size();
  findings_.push_back(
      {Code::kByteOrderMark, 1, 1, mark.size(),
       beforeComment ? "the file starts with a byte order mark, so this line is no comment for the loader"
                     : "the file starts with a byte order mark, which belongs to the first key",
       mark == kUtf8Mark ? "save the file without byte order mark"
                         : "save the file as plain text, not as UTF-16",
       0});
  return true;
}

bool Checker::FindIndentedComment(const TakenLine& taken) {
  const Part trimmed = Trimmed(taken.line.Loaded());
  if (trimmed.at == 0 || !StartsWith(trimmed.text, "#")) {
    return false;
  }
  findings_.push_back(
      {Code::kIndentedComment, 1, 1, trimmed.at,
       std::string("a blank before \"#\": this is no comment, ") +
           (taken.fate == LineFate::kStored ? "and it is LOADED" : "it only happens not to be loaded"),
       "put the \"#\" in the first column", 0});
  return true;
}

void Checker::FindForeignBytes(const TakenLine& taken) {
  const std::string_view line = taken.line.Loaded();
  unsigned char all = 0;
  for (const char byte : line) {
    all = static_cast<unsigned char>(all | static_cast<unsigned char>(byte));
  }
  if (all < 0x80) {
    return;
  }
  const std::size_t skip = MarkOf(taken).size();
  const auto isForeign = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
  const auto first = std::find_if(line.begin() + static_cast<std::ptrdiff_t>(skip), line.end(), isForeign);
  if (first == line.end()) {
    return;
  }
  const auto last = std::find_if_not(first, line.end(), isForeign);
  findings_.push_back({Code::kNotAscii, 1, static_cast<std::size_t>(first - line.begin()) + 1,
                       static_cast<std::size_t>(last - first),
                       std::string("not ASCII (") + (IsUtf8(line) ? "UTF-8" : "not UTF-8 either") +
                           "): callers must use the very same bytes",
                       "write ASCII, or make sure that callers use the same encoding", 0});
}

void Checker::FindDuplicates(const LoadedFiles& files, const TakenLine& taken) {
  std::vector<LineNumber> seen;
  for (std::size_t i = 0; i < taken.earlier.size(); ++i) {
    const Place& earlier = taken.earlier[i];
    // Another file may replace values on purpose.
    if (earlier.text != taken.place.text || std::find(seen.begin(), seen.end(), earlier.line) != seen.end()) {
      continue;
    }
    seen.push_back(earlier.line);
    findings_.push_back(Duplicate(taken, earlier.line, earlier.text->line(earlier.line),
                                  files.RecordsOf(earlier).front().value, taken.records[i]));
  }
}

void Checker::ExplainBad(const TakenLine& taken) {
  if (taken.fate == LineFate::kLogged) {
    findings_.push_back(ExplainLogged(taken.line.Loaded(), taken.message));
  } else if (auto finding = ExplainDropped(taken.line.Loaded())) {
    findings_.push_back(*std::move(finding));
  }
}

}  // namespace almcfg
