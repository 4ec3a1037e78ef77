// almcfg check: checks each file on its own, selects and counts the findings, and passes them to the report.
// Owns the texts of one file at a time. One thread.

#include <memory>
#include <ostream>

#include "tools/almcfg/check/checker.h"
#include "tools/almcfg/check/explain.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/write/report.h"

namespace almcfg {
namespace {

std::unique_ptr<Report> MakeReport(const Options& options, const Outputs& outputs) {
  switch (options.format) {
    case Format::kJson:
      return MakeJsonReport(outputs.out);
    case Format::kSarif:
      return MakeSarifReport(outputs.out);
    default:
      return MakeTextReport(outputs.out, outputs.progress, outputs.style, options.quiet);
  }
}

/// Counts the selected findings and passes them on, up to the maximum.
class Selector : public FindingSink {
 public:
  Selector(const Options& options, FindingSink& next) : options_(options), next_(next) {}

  void Take(const SourceText& text, const Finding& finding) override {
    if (!options_.codes[static_cast<std::size_t>(finding.code)]) {
      return;
    }
    tally_.Add(finding.code);
    if (passed_ < options_.maxFindings) {
      ++passed_;
      next_.Take(text, finding);
    }
  }

  [[nodiscard]] const Tally& Counts() const { return tally_; }
  [[nodiscard]] std::size_t Omitted() const { return tally_.Total() - passed_; }

 private:
  const Options& options_;
  FindingSink& next_;
  Tally tally_;
  std::size_t passed_ = 0;
};

/// Checks each file on its own: a later file may replace values of an earlier one on purpose.
bool CheckFile(const std::string& path, const Options& options, const Outputs& outputs, Report& report,
               FindingSink& sink, Totals& totals) {
  try {
    std::vector<SourceText> texts;
    texts.push_back(SourceText::Read(path, options.NameOf(path), outputs.progress));
    const LoadedTable table(std::move(texts), outputs.progress);
    CheckText(table, table.Text(0), outputs.progress, sink);
    totals.records += table.RecordCount();
    report.EndFile(table.Text(0), table.RecordCount(), true);
    return true;
  } catch (const ReadError& error) {
    const SourceText nothing = SourceText::FromBytes(options.NameOf(path), "");
    sink.Take(nothing, Unreadable(error));
    report.EndFile(nothing, 0, false);
    return false;
  }
}

}  // namespace

int RunCheck(const Options& options, const Outputs& outputs) {
  if (options.explain != nullptr) {
    outputs.out << Explanation(*options.explain);
    return kClean;
  }
  const std::unique_ptr<Report> report = MakeReport(options, outputs);
  Selector selector(options, *report);
  Totals totals;
  bool allRead = true;
  for (const std::string& path : options.files) {
    allRead = CheckFile(path, options, outputs, *report, selector, totals) && allRead;
    ++totals.files;
  }
  totals.findings = selector.Counts();
  totals.omitted = selector.Omitted();
  const bool isClean = totals.findings.Count(Severity::kError) == 0 &&
                       (!options.strict || totals.findings.Count(Severity::kWarning) == 0);
  const int exitCode = !allRead ? kCouldNotRun : isClean ? kClean : kFindings;
  report->End(totals, exitCode);
  return exitCode;
}

}  // namespace almcfg
