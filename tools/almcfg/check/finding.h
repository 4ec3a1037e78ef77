#ifndef TOOLS_ALMCFG_CHECK_FINDING_H_
#define TOOLS_ALMCFG_CHECK_FINDING_H_

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "tools/almcfg/read/source_text.h"

/// The rules of `almcfg check`, with their names, severities and repairs, and the findings that refer to
/// them. A new rule is added to `Code` here and to `Rules` in finding.cpp. Any thread may read the rules;
/// findings are plain values.
namespace almcfg {

enum class Severity { kError, kWarning, kNote };

/// The codes of the findings, in the order of the catalogue.
enum class Code {
  kOverlongLine,
  kUnreadableFile,
  kDirectory,
  kTooFewColumns,
  kEmptyEdgeColumn,
  kWrongSeparator,
  kTooManyColumns,
  kEmptyColumn,
  kTooManyAlternatives,
  kEmptyAlternative,
  kNulByte,
  kValueReplaced,
  kDuplicateKey,
  kHeaderLine,
  kQuotedCell,
  kNumberNeverMatches,
  kValueNotInteger,
  kValueWraps,
  kEdgeBlank,
  kControlCharacter,
  kIndentedComment,
  kByteOrderMark,
  kNotAscii,
  kManyRecords,
  kNoRecord,
  kTrailingSlash,
  kSlashInColumn3,
  kOuterBlank,
  kCrLineEnds,
  kNoFinalLineFeed,
  kRepeatedLine,
};

/// Whether `fix` repairs what a rule finds: never, always, or only with --unsafe. Some lines are left out,
/// see repair_line.h.
enum class Repair { kNever, kSafe, kUnsafe };

/// The constant properties of a code. Names never change: people and scripts select by them.
struct Rule {
  Code code;
  const char* name;
  Severity severity;
  Repair repair;
  const char* summary;  ///< one sentence: what happens to such a line
};

inline constexpr std::size_t kRuleCount = static_cast<std::size_t>(Code::kRepeatedLine) + 1;

/// The catalogue, in the order of `Code`.
const std::array<Rule, kRuleCount>& Rules();
const Rule& RuleOf(Code code);

/// The rule of that name; null when there is none.
const Rule* FindRule(std::string_view name);

const char* NameOf(Severity severity);

/// A set of codes.
using CodeSet = std::array<bool, kRuleCount>;

/// One finding. Texts are UTF-8, safe to print.
struct Finding {
  Code code;
  LineNumber line = 1;
  std::size_t column = 1;  ///< in bytes, from 1
  std::size_t length = 1;  ///< bytes to mark, from `column`
  std::string message;
  std::string hint;          ///< what to do
  LineNumber otherLine = 0;  ///< an earlier line that the finding refers to; 0 when there is none
};

/// Receives findings one by one, in the order of files and lines.
class FindingSink {
 public:
  virtual ~FindingSink() = default;
  virtual void Take(const SourceText& text, const Finding& finding) = 0;
};

/// Counts findings by severity and code.
struct Tally {
  std::array<std::size_t, kRuleCount> byCode{};

  void Add(Code code) { ++byCode[static_cast<std::size_t>(code)]; }
  [[nodiscard]] std::size_t Count(Severity severity) const;
  [[nodiscard]] std::size_t Total() const;
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECK_FINDING_H_
