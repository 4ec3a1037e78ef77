#ifndef TOOLS_ALMCFG_FINDING_H_
#define TOOLS_ALMCFG_FINDING_H_

#include <array>
#include <cstddef>
#include <string>

#include "tools/almcfg/source_text.h"

namespace almcfg {

enum class Severity { kError, kWarning, kNote };

/// What can be found. The order is that of the catalogue.
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
  kNumberNeverMatches,
  kValueNotInteger,
  kValueWraps,
  kEdgeBlank,
  kIndentedComment,
  kByteOrderMark,
  kNotAscii,
  kManyRecords,
  kTrailingSlash,
  kCrLineEnds,
  kNoFinalLineFeed,
  kRepeatedLine,
};

/// What is fixed for a code. Names are stable: people and scripts select by them.
struct Trap {
  Code code;
  const char* name;
  Severity severity;
  const char* summary;  ///< one sentence: what happens to such a line
};

inline constexpr std::size_t kTrapCount = static_cast<std::size_t>(Code::kRepeatedLine) + 1;

/// The catalogue, in the order of `Code`.
const std::array<Trap, kTrapCount>& Traps();
const Trap& TrapOf(Code code);
const char* NameOf(Severity severity);

/// One finding. Texts are UTF-8, safe to print.
struct Finding {
  Code code;
  LineNumber line = 1;
  std::size_t column = 1;  ///< in bytes, from 1
  std::size_t length = 1;  ///< bytes that are meant
  std::string message;
  std::string hint;          ///< what to write instead
  LineNumber otherLine = 0;  ///< an earlier line that belongs to it; 0 when there is none
};

/// Takes findings as they are made, file by file and line by line.
class FindingSink {
 public:
  virtual ~FindingSink() = default;
  virtual void Take(const SourceText& text, const Finding& finding) = 0;
};

/// How many findings of each severity there were.
struct Tally {
  std::size_t errors = 0;
  std::size_t warnings = 0;
  std::size_t notes = 0;

  void Add(Severity severity);
};

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_FINDING_H_
