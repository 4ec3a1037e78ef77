// The catalogue of rules, which is constant, and the totals. Any thread may read the catalogue.

#include "tools/almcfg/check/finding.h"

#include <algorithm>
#include <numeric>

namespace almcfg {
namespace {

using S = Severity;
using R = Repair;

constexpr std::array<Rule, kRuleCount> kRules{{
    {Code::kOverlongLine, "overlong-line", S::kError, R::kUnsafe,
     "A line of more than 1,022 bytes: the load never ends."},
    {Code::kUnreadableFile, "unreadable-file", S::kError, R::kNever,
     "A file that cannot be read: a load of it loads nothing, waits, or never ends."},
    {Code::kDirectory, "directory", S::kError, R::kNever, "A directory: a load succeeds and loads nothing."},
    {Code::kTooFewColumns, "too-few-columns", S::kError, R::kNever,
     "Fewer than five columns: the line is dropped without a message."},
    {Code::kEmptyEdgeColumn, "empty-edge-column", S::kError, R::kNever,
     "An empty first or last column is trimmed away: the line is dropped without a message."},
    {Code::kWrongSeparator, "wrong-separator", S::kError, R::kSafe,
     "Blanks, commas or semicolons instead of TABs: the line is dropped without a message."},
    {Code::kTooManyColumns, "too-many-columns", S::kError, R::kNever,
     "Six or more columns: the line is not loaded."},
    {Code::kEmptyColumn, "empty-column", S::kError, R::kNever, "An empty column: the line is not loaded."},
    {Code::kTooManyAlternatives, "too-many-alternatives", S::kError, R::kUnsafe,
     "Six or more alternatives in column 1 or 2: the line is not loaded."},
    {Code::kEmptyAlternative, "empty-alternative", S::kError, R::kNever,
     "An empty alternative in column 1 or 2: the line is not loaded."},
    {Code::kNulByte, "nul-byte", S::kError, R::kNever, "A NUL byte ends the line for the loader."},
    {Code::kValueReplaced, "value-replaced", S::kWarning, R::kUnsafe,
     "An earlier line has the same key and another value: the later line wins."},
    {Code::kDuplicateKey, "duplicate-key", S::kWarning, R::kUnsafe,
     "An earlier line has the same key and the same value, or the line names an alternative twice."},
    {Code::kHeaderLine, "header-line", S::kWarning, R::kSafe,
     "Columns 4 and 5 hold words instead of numbers: a heading, loaded as a record if TABs separate it."},
    {Code::kQuotedCell, "quoted-cell", S::kWarning, R::kSafe,
     "Quotation marks around a column belong to its text."},
    {Code::kNumberNeverMatches, "number-never-matches", S::kWarning, R::kUnsafe,
     "Column 4 is not the plain decimal text of a 32-bit integer: no query ever finds the line."},
    {Code::kValueNotInteger, "value-not-integer", S::kWarning, R::kNever,
     "Column 5 is not wholly a decimal integer: a query that finds the line fails."},
    {Code::kValueWraps, "value-wraps", S::kWarning, R::kNever,
     "Column 5 does not fit into 32 bits: callers get another number."},
    {Code::kEdgeBlank, "edge-blank", S::kWarning, R::kUnsafe,
     "A blank at the edge of a column or alternative belongs to it."},
    {Code::kControlCharacter, "control-character", S::kWarning, R::kNever,
     "A control character in a key belongs to it."},
    {Code::kIndentedComment, "indented-comment", S::kWarning, R::kSafe,
     "A blank before \"#\": the line is not a comment."},
    {Code::kByteOrderMark, "byte-order-mark", S::kWarning, R::kSafe,
     "A byte order mark belongs to the first line's text."},
    {Code::kNotAscii, "not-ascii", S::kWarning, R::kNever,
     "Text outside ASCII is compared byte by byte: callers must use the file's encoding."},
    {Code::kManyRecords, "many-records", S::kWarning, R::kNever,
     "The alternatives combine to 16 records or more."},
    {Code::kNoRecord, "no-record", S::kWarning, R::kNever,
     "The file holds no record: every query gets a successful 0."},
    {Code::kTrailingSlash, "trailing-slash", S::kNote, R::kSafe, "A trailing \"/\" is ignored."},
    {Code::kSlashInColumn3, "slash-in-column-3", S::kNote, R::kNever,
     "Column 3 has no alternatives: its \"/\" is part of the key."},
    {Code::kOuterBlank, "outer-blank", S::kNote, R::kSafe, "Blanks at the ends of a line are trimmed away."},
    {Code::kCrLineEnds, "cr-line-ends", S::kNote, R::kSafe, "Lines end with CR LF; the CR is trimmed away."},
    {Code::kNoFinalLineFeed, "no-final-line-feed", S::kNote, R::kSafe,
     "The last line has no line feed: text that is appended to the file becomes part of it."},
    {Code::kRepeatedLine, "repeated-line", S::kNote, R::kSafe, "The line repeats an earlier one exactly."},
}};

constexpr std::size_t FirstMisplacedRule() {
  std::size_t at = 0;
  while (at < kRuleCount && kRules[at].name != nullptr && kRules[at].code == static_cast<Code>(at)) {
    ++at;
  }
  return at;
}
static_assert(FirstMisplacedRule() == kRuleCount,
              "kRules: write one rule for each Code, in the order of Code");

}  // namespace

const std::array<Rule, kRuleCount>& Rules() { return kRules; }

const Rule& RuleOf(Code code) { return Rules()[static_cast<std::size_t>(code)]; }

const Rule* FindRule(std::string_view name) {
  const auto rule =
      std::find_if(Rules().begin(), Rules().end(), [name](const Rule& each) { return each.name == name; });
  return rule == Rules().end() ? nullptr : &*rule;
}

const char* NameOf(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    default:
      return "note";
  }
}

std::size_t Tally::Count(Severity severity) const {
  std::size_t count = 0;
  for (const Rule& rule : Rules()) {
    count += rule.severity == severity ? byCode[static_cast<std::size_t>(rule.code)] : 0;
  }
  return count;
}

std::size_t Tally::Total() const { return std::accumulate(byCode.begin(), byCode.end(), std::size_t{0}); }

}  // namespace almcfg
