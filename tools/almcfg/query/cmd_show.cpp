// almcfg show: writes the table in force after loading the files in order. Owns the table, the findings and
// the calls. One thread.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/almcfg/check/answer.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/query/calls.h"
#include "tools/almcfg/query/load_files.h"
#include "tools/almcfg/write/printable.h"
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

/// Adds the calls to the page's content.
void AddCalls(const LoadedTable& table, const Calls& calls, PageContent& content) {
  std::uint64_t served = 0;
  std::uint64_t notServed = 0;
  std::uint64_t noInteger = 0;
  for (const auto& [query, count] : calls.counts) {
    const std::string number = std::to_string(query.number);
    const std::optional<Entry> entry = table.Find({query.key1, query.key2, query.key3, number});
    (!entry ? notServed : AnswerFor(entry->value).result == 0 ? served : noInteger) += count;
  }
  content.countCalls = [&calls](const Entry& entry) { return CountOf(calls, entry.key); };
  content.callSummary = Counted(served + notServed + noInteger, "call") +
                        " of GetAlmCfgValue: " + Grouped(served) + " served, " + Grouped(notServed) +
                        " not served, " + Grouped(noInteger) + " with a value that is not an integer.";
}

std::unique_ptr<TableWriter> MakeWriter(const Options& options, const Outputs& outputs,
                                        const LoadedTable& table, PageContent content) {
  switch (options.format) {
    case Format::kJson:
      return MakeJsonWriter(outputs.out);
    case Format::kHtml:
      return MakeHtmlWriter(outputs.out, table, std::move(content));
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
  PageContent content{std::move(collector.findings), !options.sorted, nullptr, ""};
  Calls calls;
  if (!options.calls.empty()) {
    if (!ReadCalls(options, outputs, calls)) {
      return kCouldNotRun;
    }
    AddCalls(*table, calls, content);
  }
  const std::unique_ptr<TableWriter> writer = MakeWriter(options, outputs, *table, std::move(content));
  const auto write = [&writer](const Entry& entry) { writer->Write(entry); };
  if (options.sorted) {
    table->ForEachInTableOrder(write);
  } else {
    table->ForEach(write);
  }
  writer->End(*table);
  return table->EndlessLine() ? kFindings : kClean;
}

}  // namespace almcfg
