// Reads files into a table, which the caller owns, and reports their problems. One thread at a time.

#include "tools/almcfg/query/load_files.h"

#include <ostream>

#include "tools/almcfg/check/checker.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"
#include "tools/almcfg/write/report.h"

namespace almcfg {
namespace {

/// Counts findings, reports those that stop a load, and passes all on.
class Listener : public FindingSink {
 public:
  Listener(const Outputs& outputs, FindingSink* next) : outputs_(outputs), next_(next) {}

  void Take(const SourceText& text, const Finding& finding) override {
    tally_.Add(finding.code);
    if (finding.code == Code::kOverlongLine) {
      outputs_.progress.Hide();
      WriteFinding(outputs_.err, text, finding, {});
    }
    if (next_ != nullptr) {
      next_->Take(text, finding);
    }
  }

  void ReportCount(const SourceText& text) const {
    outputs_.progress.Hide();
    if (tally_.Count(Severity::kError) + tally_.Count(Severity::kWarning) != 0) {
      outputs_.err << "almcfg: " << Printable(text.Name()) << ": " << Summary(tally_)
                   << "; see almcfg check\n";
    }
  }

 private:
  const Outputs& outputs_;
  FindingSink* next_;
  Tally tally_;
};

bool HasEnd(const SourceText& text) {
  for (LineNumber number = 1; number <= text.LineCount(); ++number) {
    if (text.LineAt(number).IsOverlong()) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<LoadedTable> LoadFiles(const std::vector<std::string>& paths, const Options& options,
                                     const Outputs& outputs, FindingSink* sink) {
  std::vector<SourceText> texts;
  std::size_t read = 0;
  try {
    for (bool hasEnd = true; read < paths.size() && hasEnd; ++read) {
      texts.push_back(SourceText::Read(paths[read], options.NameOf(paths[read]), outputs.progress));
      hasEnd = HasEnd(texts.back());
    }
    std::optional<LoadedTable> table(std::in_place, std::move(texts), outputs.progress);
    for (std::size_t i = 0; i < table->FileCount(); ++i) {
      Listener listener(outputs, sink);
      CheckText(*table, table->Text(i), outputs.progress, listener);
      listener.ReportCount(table->Text(i));
    }
    for (; read < paths.size(); ++read) {
      outputs.err << "almcfg: " << Printable(options.NameOf(paths[read]))
                  << ": never read, since the load of " << Shown(table->EndlessLine()) << " does not end\n";
    }
    return table;
  } catch (const ReadError& error) {
    outputs.progress.Hide();
    outputs.err << "almcfg: " << Printable(options.NameOf(paths[std::min(read, paths.size() - 1)])) << ": "
                << error.what() << '\n';
    return std::nullopt;
  }
}

}  // namespace almcfg
