// Splits one line of `AlarmConfig.csv` into columns, alternatives and records. Pure functions; all results
// are views into the caller's line. Any thread may call them.

#include "src/alarmconfig/almgrammar.h"

#include "src/text/strfunctions.h"

namespace NS_ASCII {
namespace {

/// Splits `text`, which lies in `lineAsRead`, into `parts`. Marks `line` as rejected and returns false at an
/// empty or a sixth part.
bool SplitOrReject(std::string_view lineAsRead, std::string_view text, SplitText split,
                   std::string_view separator, PartList& parts, ParsedLine& line) {
  const std::optional<BadPart> bad = SplitParts(text, separator, parts);
  if (bad) {
    line.outcome = LineOutcome::kRejected;
    line.rejection = {bad->reason, split, text, bad->index,
                      static_cast<std::size_t>(bad->part.data() - lineAsRead.data())};
  }
  return !bad;
}

}  // namespace

std::optional<BadPart> SplitParts(std::string_view text, std::string_view separators, PartList& parts) {
  std::string_view rest = text;
  while (!rest.empty()) {
    // A single character is found by memchr, several times faster.
    const std::size_t end =
        separators.size() == 1 ? rest.find(separators.front()) : rest.find_first_of(separators);
    const std::string_view part = rest.substr(0, end);
    if (part.empty()) {
      return BadPart{RejectReason::kEmptyPart, parts.size(), part};
    }
    parts.Append(part);
    if (parts.size() > kMaxParts) {
      return BadPart{RejectReason::kSixthPart, kMaxParts, part};
    }
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return std::nullopt;
}

ParsedLine ParseLine(std::string_view lineAsRead) {
  ParsedLine line;
  if (lineAsRead.empty() || lineAsRead.front() == '#') {
    return line;
  }
  if (!SplitOrReject(lineAsRead, TrimView(lineAsRead), SplitText::kLine, "\t", line.columns, line)) {
    return line;
  }
  if (line.columns.size() != kAlarmColumns) {
    line.outcome = LineOutcome::kTooFewColumns;
    return line;
  }
  if (SplitOrReject(lineAsRead, line.columns[0], SplitText::kColumn1, "/", line.key1s, line) &&
      SplitOrReject(lineAsRead, line.columns[1], SplitText::kColumn2, "/", line.key2s, line)) {
    line.outcome = LineOutcome::kAccepted;
  }
  return line;
}

void ListRecords(const ParsedLine& line, std::vector<AlarmRecordView>& records) {
  records.clear();
  for (const std::string_view key1 : line.key1s) {
    for (const std::string_view key2 : line.key2s) {
      records.push_back({{key1, key2, line.columns[2], line.columns[3]}, line.columns[4]});
    }
  }
}

}  // namespace NS_ASCII
