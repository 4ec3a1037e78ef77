#ifndef SRC_ALARMCONFIG_ALMGRAMMAR_H_
#define SRC_ALARMCONFIG_ALMGRAMMAR_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almrecord.h"

/// The grammar of a line of `AlarmConfig.csv`. Pure functions over views of the caller's line: they do not
/// log or store anything, and any thread may call them.
///
/// A line that is empty or starts with "#" is skipped. Every other line is trimmed at both ends and split at
/// its TABs into exactly five columns. Columns 1 and 2 hold one to five alternatives separated by "/"; the
/// line yields one record for each combination of them. No column and no alternative may be empty, except
/// that one separator at the very end of a text is ignored. Blanks next to a TAB belong to the column;
/// quotes are ordinary characters.
namespace NS_ASCII {

/// How many columns a line has.
inline constexpr std::size_t kAlarmColumns = 5;

/// How many parts a line or a column may be split into.
inline constexpr std::size_t kMaxParts = 5;

/// What a load does with a line.
enum class LineOutcome {
  kSkipped,        ///< a comment or an empty line
  kTooFewColumns,  ///< ignored without a message; also a line of white space only
  kRejected,       ///< a message is logged: an empty or a sixth part
  kAccepted,       ///< all its records are inserted
};

enum class RejectReason { kEmptyPart, kSixthPart };

/// Which text was split.
enum class SplitText { kLine, kColumn1, kColumn2 };

/// The parts of one text, in order.
class PartList {
 public:
  void Append(std::string_view part) { parts_[size_++] = part; }
  [[nodiscard]] std::size_t size() const { return size_; }
  const std::string_view& operator[](std::size_t index) const { return parts_[index]; }
  [[nodiscard]] const std::string_view* begin() const { return parts_.data(); }
  [[nodiscard]] const std::string_view* end() const { return parts_.data() + size_; }

 private:
  std::array<std::string_view, kMaxParts + 1> parts_;  // The last is for the sixth part of a rejected text.
  std::size_t size_ = 0;
};

/// The empty or sixth part that makes a text invalid.
struct BadPart {
  RejectReason reason;
  std::size_t index;      ///< from 0
  std::string_view part;  ///< a view into the text, even if it is empty
};

/// Appends the parts of `text` between characters of `separators` to `parts`, which must be empty. Splitting
/// stops at a bad part, which is returned; a sixth part is also appended, an empty one is not. An empty text
/// has no parts.
std::optional<BadPart> SplitParts(std::string_view text, std::string_view separators, PartList& parts);

/// Why a line is rejected.
struct Rejection {
  RejectReason reason{};
  SplitText split{};        ///< which text was being split
  std::string_view text;    ///< that text: the trimmed line, or the column
  std::size_t partIndex{};  ///< the bad part's index in that text, from 0
  std::size_t offset{};     ///< the bad part's first byte, counted from the start of the line as read
};

/// A parsed line. All views refer to the line that was given to `ParseLine`.
struct ParsedLine {
  LineOutcome outcome = LineOutcome::kSkipped;
  Rejection rejection;  ///< set when rejected
  PartList columns;     ///< all five when accepted, those found when there are too few
  PartList key1s;       ///< the alternatives of column 1, set when accepted
  PartList key2s;       ///< the alternatives of column 2, set when accepted
};

/// Parses one line. `lineAsRead` is the line without its LF, up to its first NUL, before trimming.
ParsedLine ParseLine(std::string_view lineAsRead);

/// Replaces `records` with the records of an accepted line: for each alternative of column 1 in order, each
/// alternative of column 2 in order. The records are views into the line.
void ListRecords(const ParsedLine& line, std::vector<AlarmRecordView>& records);

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMGRAMMAR_H_
