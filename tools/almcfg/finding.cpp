#include "tools/almcfg/finding.h"

namespace almcfg {

const std::array<Trap, kTrapCount>& Traps() {
  using S = Severity;
  static constexpr std::array<Trap, kTrapCount> kTraps{{
      {Code::kOverlongLine, "overlong-line", S::kError,
       "A line of more than 1,022 characters: the load never ends."},
      {Code::kUnreadableFile, "unreadable-file", S::kError,
       "A file that cannot be read: a load of it loads nothing, waits, or never ends."},
      {Code::kDirectory, "directory", S::kError, "A directory: a load succeeds and loads nothing."},
      {Code::kTooFewColumns, "too-few-columns", S::kError,
       "Fewer than five columns: the line is dropped without a message."},
      {Code::kEmptyEdgeColumn, "empty-edge-column", S::kError,
       "An empty first or last column is trimmed away: the line is dropped without a message."},
      {Code::kWrongSeparator, "wrong-separator", S::kError,
       "Blanks, commas or semicolons stand where TABs are meant: the line is dropped without a message."},
      {Code::kTooManyColumns, "too-many-columns", S::kError, "Six or more columns: the line is not loaded."},
      {Code::kEmptyColumn, "empty-column", S::kError, "An empty column: the line is not loaded."},
      {Code::kTooManyAlternatives, "too-many-alternatives", S::kError,
       "Six or more alternatives in column 1 or 2: the line is not loaded."},
      {Code::kEmptyAlternative, "empty-alternative", S::kError,
       "An empty alternative in column 1 or 2: the line is not loaded."},
      {Code::kNulByte, "nul-byte", S::kError, "A NUL byte ends the line for the loader."},
      {Code::kValueReplaced, "value-replaced", S::kWarning,
       "An earlier line has the same key and another value: the later line wins."},
      {Code::kDuplicateKey, "duplicate-key", S::kWarning,
       "An earlier line has the same key and the same value."},
      {Code::kNumberNeverMatches, "number-never-matches", S::kWarning,
       "Column 4 is not the plain decimal text of a 32-bit integer: no query ever finds the line."},
      {Code::kValueNotInteger, "value-not-integer", S::kWarning,
       "Column 5 is not wholly a decimal integer: a query that finds the line fails."},
      {Code::kValueWraps, "value-wraps", S::kWarning,
       "Column 5 does not fit into 32 bits: callers get another number."},
      {Code::kEdgeBlank, "edge-blank", S::kWarning,
       "A blank at the edge of a column or alternative belongs to it."},
      {Code::kIndentedComment, "indented-comment", S::kWarning,
       "A blank before \"#\": the line is no comment."},
      {Code::kByteOrderMark, "byte-order-mark", S::kWarning,
       "A byte order mark belongs to the first line's text."},
      {Code::kNotAscii, "not-ascii", S::kWarning,
       "Bytes that are not ASCII are compared as they stand, whatever their encoding."},
      {Code::kManyRecords, "many-records", S::kWarning, "The alternatives multiply to 16 records or more."},
      {Code::kTrailingSlash, "trailing-slash", S::kNote, "A trailing \"/\" is ignored."},
      {Code::kCrLineEnds, "cr-line-ends", S::kNote, "Lines end with CR LF; the CR is trimmed away."},
      {Code::kNoFinalLineFeed, "no-final-line-feed", S::kNote,
       "The last line has no line feed; it is loaded all the same."},
      {Code::kRepeatedLine, "repeated-line", S::kNote, "The line repeats an earlier one exactly."},
  }};
  return kTraps;
}

const Trap& TrapOf(Code code) { return Traps()[static_cast<std::size_t>(code)]; }

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

void Tally::Add(Severity severity) {
  ++(severity == Severity::kError ? errors : severity == Severity::kWarning ? warnings : notes);
}

}  // namespace almcfg
