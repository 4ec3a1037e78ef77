// almcfg show: writes the table in force after loading the files in order.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "tools/almcfg/commands.h"
#include "tools/almcfg/query/load_files.h"
#include "tools/almcfg/write/progress.h"
#include "tools/almcfg/write/table_writer.h"

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
                                        const LoadedTable& table, Collector& collector) {
  switch (options.format) {
    case Format::kJson:
      return MakeJsonWriter(outputs.out);
    case Format::kHtml:
      return MakeHtmlWriter(outputs.out, table, std::move(collector.findings), !options.sorted);
    default:
      return MakeTsvWriter(outputs.out, outputs.isTerminal);
  }
}

}  // namespace

int RunShow(const Options& options, const Outputs& outputs) {
  Collector collector;
  const std::optional<LoadedTable> table =
      LoadFiles(options.files, options, outputs, options.format == Format::kHtml ? &collector : nullptr);
  if (!table) {
    return kCouldNotRun;
  }
  const std::unique_ptr<TableWriter> writer = MakeWriter(options, outputs, *table, collector);
  const auto write = [&writer](const Entry& entry) { writer->Write(entry); };
  if (options.sorted) {
    table->ForEachInTableOrder(write);
  } else {
    table->ForEach(write);
  }
  writer->End(*table);
  return table->endlessLine() ? kFindings : kClean;
}

}  // namespace almcfg
