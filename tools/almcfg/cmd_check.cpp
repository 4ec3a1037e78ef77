#include <memory>

#include "tools/almcfg/checker.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/loaded_files.h"
#include "tools/almcfg/report.h"

namespace almcfg {
namespace {

std::unique_ptr<Report> MakeReport(Format format, const Outputs& outputs) {
  switch (format) {
    case Format::kJson:
      return MakeJsonReport(outputs.out);
    case Format::kSarif:
      return MakeSarifReport(outputs.out);
    default:
      return MakeTextReport(outputs.out, outputs.progress, outputs.color);
  }
}

/// Counts what it passes on.
class Counter : public FindingSink {
 public:
  explicit Counter(FindingSink& next) : next_(next) {}

  void Take(const SourceText& text, const Finding& finding) override {
    tally_.Add(TrapOf(finding.code).severity);
    next_.Take(text, finding);
  }

  [[nodiscard]] const Tally& tally() const { return tally_; }

 private:
  FindingSink& next_;
  Tally tally_;
};

/// Each file on its own: what one of them replaces in another is no mistake.
bool CheckFile(const std::string& path, Report& report, FindingSink& sink, const Outputs& outputs,
               Totals& totals) {
  try {
    Checker checker(sink);
    LoadedFiles loaded(checker, outputs.progress);
    loaded.Load(SourceText::Read(path, outputs.progress));
    totals.records += loaded.recordCount();
    report.EndFile(loaded.text(0), loaded.recordCount(), true);
    return true;
  } catch (const ReadError& error) {
    const SourceText nothing = SourceText::Nothing(path);
    sink.Take(nothing, Unreadable(error));
    report.EndFile(nothing, 0, false);
    return false;
  }
}

}  // namespace

int RunCheck(const Options& options, const Outputs& outputs) {
  const std::unique_ptr<Report> report = MakeReport(options.format, outputs);
  Counter counter(*report);
  Totals totals;
  bool allRead = true;
  for (const std::string& path : options.files) {
    allRead = CheckFile(path, *report, counter, outputs, totals) && allRead;
    ++totals.files;
  }
  totals.findings = counter.tally();
  const bool isClean = totals.findings.errors == 0 && (!options.strict || totals.findings.warnings == 0);
  const int exitCode = !allRead ? kCouldNotRun : isClean ? kClean : kFindings;
  report->End(totals, exitCode);
  return exitCode;
}

}  // namespace almcfg
