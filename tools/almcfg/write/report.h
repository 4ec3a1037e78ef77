#ifndef TOOLS_ALMCFG_REPORT_H_
#define TOOLS_ALMCFG_REPORT_H_

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

#include "tools/almcfg/finding.h"

namespace almcfg {

class Progress;

/// What one run has seen.
struct Totals {
  std::size_t files = 0;
  std::size_t records = 0;  ///< keys in force, file by file
  Tally findings;
};

/// The outcome of a check, written while it is made: findings file by file, then the totals. Memory does not
/// grow with the number of findings.
class Report : public FindingSink {
 public:
  /// After the last finding of a file. `wasRead` is false for one that could not be.
  virtual void EndFile(const SourceText& text, std::size_t records, bool wasRead) = 0;
  virtual void End(const Totals& totals, int exitCode) = 0;
};

/// For people: the finding, the line with marks and a caret, a hint; then one line of totals. `out` and
/// `progress` are borrowed.
std::unique_ptr<Report> MakeTextReport(std::ostream& out, Progress& progress, bool color);

/// One JSON object. Bytes that are not UTF-8 become U+FFFD, and the line then comes in hexadecimal too.
std::unique_ptr<Report> MakeJsonReport(std::ostream& out);

/// A SARIF 2.1.0 log. Columns count characters.
std::unique_ptr<Report> MakeSarifReport(std::ostream& out);

/// One finding as text, as the text report writes it.
void WriteFinding(std::ostream& out, const SourceText& text, const Finding& finding, bool color);

/// "1 error, 2 warnings, 3 notes" without what there is none of; "no findings".
std::string Summary(const Tally& tally);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_REPORT_H_
