#include <memory>
#include <utility>
#include <vector>

#include "tools/almcfg/commands.h"
#include "tools/almcfg/desk_load.h"
#include "tools/almcfg/progress.h"
#include "tools/almcfg/table_writer.h"

namespace almcfg {
namespace {

/// Keeps the findings for the page.
class Collector : public FindingSink {
 public:
  void Take(const SourceText& text, const Finding& finding) override {
    findings.push_back({{&text, finding.line}, finding});
  }

  std::vector<PlacedFinding> findings;
};

std::unique_ptr<TableWriter> MakeWriter(const Options& options, const Outputs& outputs,
                                        const LoadedFiles& files, Collector& collector) {
  switch (options.format) {
    case Format::kJson:
      return MakeJsonWriter(outputs.out);
    case Format::kHtml:
      return MakeHtmlWriter(outputs.out, files, std::move(collector.findings), !options.sorted);
    default:
      return MakeTsvWriter(outputs.out, outputs.isTerminal);
  }
}

}  // namespace

int RunShow(const Options& options, const Outputs& outputs) {
  Collector collector;
  NS_ASCII::Alarm_Config_Param table;
  DeskLoad load(table, outputs, options.format == Format::kHtml ? &collector : nullptr);
  if (!load.Load(options.files)) {
    return kCouldNotRun;
  }
  outputs.progress.Hide();
  const std::unique_ptr<TableWriter> writer = MakeWriter(options, outputs, load.files(), collector);
  const auto write = [&writer](const Entry& entry) { writer->Write(entry); };
  if (options.sorted) {
    load.ForEachInTableOrder(write);
  } else {
    load.ForEachInFileOrder(write);
  }
  writer->End(load.files());
  return load.files().endlessLine() ? kFindings : kClean;
}

}  // namespace almcfg
