// almcfg fix: repairs files and writes them to standard output, in place or as a diff. Reports each repair on
// standard error. Owns the content of one file at a time. One thread.

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string>

#include "tools/almcfg/check/checker.h"
#include "tools/almcfg/commands.h"
#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/repair/repair_text.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"
#include "tools/almcfg/write/replace_file.h"
#include "tools/almcfg/write/unified_diff.h"

namespace almcfg {
namespace {

class Counter : public FindingSink {
 public:
  void Take(const SourceText& /*text*/, const Finding& finding) override { tally.Add(finding.code); }

  Tally tally;
};

/// Counts what a check finds in the repaired content.
Tally CheckBytes(const std::string& content, Progress& progress) {
  std::vector<SourceText> texts;
  texts.push_back(SourceText::FromBytes("", content));
  const LoadedTable table(std::move(texts), progress);
  Counter counter;
  CheckText(table, table.Text(0), progress, counter);
  return counter.tally;
}

void ReportRepairs(const RepairedText& repaired, const Tally& left, const std::string& name,
                   std::ostream& err) {
  for (const Finding& repair : repaired.repairs) {
    err << name + ':' + std::to_string(repair.line) + ':' + std::to_string(repair.column) +
               ": repaired: " + repair.message + " [" + RuleOf(repair.code).name + "]\n";
  }
  err << "almcfg: " + name + ": " + Counted(repaired.repairs.size(), "repair") + "; " + Summary(left) +
             (left.Total() == 0 ? "" : " left, see almcfg check") + '\n';
}

/// On a terminal, with control characters made visible.
void WriteText(std::ostream& out, const std::string& text, bool isTerminal) {
  if (!isTerminal) {
    out << text;
    return;
  }
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t to = std::min(text.find('\n', from), text.size());
    out << Marked(std::string_view(text).substr(from, to - from)) << '\n';
    from = to + 1;
  }
}

void WriteResult(const RepairedText& repaired, const std::string& path, const Options& options,
                 const Outputs& outputs) {
  if (options.unifiedDiff) {
    WriteUnifiedDiff(outputs.out, options.NameOf(path), repaired.original, repaired.repaired,
                     outputs.isTerminal);
  } else if (!options.inPlace) {
    WriteText(outputs.out, repaired.Text(), outputs.isTerminal);
  } else if (!repaired.repairs.empty()) {
    ReplaceFile(path, repaired.Text(), options.backup);
  }
}

/// Returns an exit code.
int FixFile(const std::string& path, const Options& options, const Outputs& outputs) {
  const std::string name = Printable(options.NameOf(path));
  try {
    std::string content;
    ReadBytes(path, [&](const char* bytes, std::size_t count) { content.append(bytes, count); });
    const RepairedText repaired = RepairText(content, {options.codes, options.unsafe});
    const Tally left = CheckBytes(repaired.Text(), outputs.progress);
    outputs.progress.Hide();
    WriteResult(repaired, path, options, outputs);
    if (!options.quiet) {
      ReportRepairs(repaired, left, name, outputs.err);
    }
    const bool isPending = options.unifiedDiff && !repaired.repairs.empty();
    return isPending || left.Count(Severity::kError) != 0 ? kFindings : kClean;
  } catch (const std::ios::failure&) {
    throw;  // Standard output failed, so no further file can be written.
  } catch (const std::runtime_error& error) {
    outputs.progress.Hide();
    outputs.err << "almcfg: " << name << ": " << Printable(error.what()) << '\n';
    return kCouldNotRun;
  }
}

}  // namespace

int RunFix(const Options& options, const Outputs& outputs) {
  int worst = kClean;
  for (const std::string& path : options.files) {
    worst = std::max(worst, FixFile(path, options, outputs));
  }
  return worst;
}

}  // namespace almcfg
