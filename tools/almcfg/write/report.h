#ifndef TOOLS_ALMCFG_WRITE_REPORT_H_
#define TOOLS_ALMCFG_WRITE_REPORT_H_

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

#include "tools/almcfg/check/finding.h"

/// The outputs of `almcfg check`: text, JSON and SARIF. Reports borrow the stream that they write to. Threads:
/// one at a time for each stream.
namespace almcfg {

class Progress;

/// The style of text output.
struct TextStyle {
  bool color = false;
  std::size_t width = 100;  ///< columns that a line of a file may take
};

/// The totals of one run.
struct Totals {
  std::size_t files = 0;
  std::size_t records = 0;  ///< the sum of each file's keys in force
  Tally findings;
  std::size_t omitted = 0;  ///< findings that were counted, but not reported
};

/// The outcome of a check, written as it comes: findings file by file, then the totals. Memory does not grow
/// with the number of findings.
class Report : public FindingSink {
 public:
  /// After the last finding of a file. `wasRead` is false for one that could not be.
  virtual void EndFile(const SourceText& text, std::size_t records, bool wasRead) = 0;
  virtual void End(const Totals& totals, int exitCode) = 0;
};

/// For people: the finding, the line with marks and a caret, a hint; then, unless `quiet`, how often each
/// code was found and one line of totals. `out` and `progress` are borrowed.
std::unique_ptr<Report> MakeTextReport(std::ostream& out, Progress& progress, TextStyle style, bool quiet);

/// One JSON object. Bytes that are not UTF-8 become U+FFFD, and the line is then also given in hexadecimal.
std::unique_ptr<Report> MakeJsonReport(std::ostream& out);

/// A SARIF 2.1.0 log. Columns count characters.
std::unique_ptr<Report> MakeSarifReport(std::ostream& out);

/// One finding as text, as the text report writes it.
void WriteFinding(std::ostream& out, const SourceText& text, const Finding& finding, TextStyle style);

/// "1 error, 2 warnings, 3 notes", counts of zero left out; "no findings" when all are zero.
std::string Summary(const Tally& tally);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_REPORT_H_
