#include <ostream>

#include "tools/almcfg/progress.h"
#include "tools/almcfg/report.h"
#include "tools/almcfg/snippet.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

constexpr const char* kReset = "\x1b[0m";
constexpr const char* kBold = "\x1b[1m";
constexpr const char* kGreen = "\x1b[1;32m";

const char* ColorOf(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "\x1b[1;31m";
    case Severity::kWarning:
      return "\x1b[1;35m";
    default:
      return "\x1b[1;36m";
  }
}

std::string Painted(bool color, const char* paint, const std::string& text) {
  return color ? paint + text + kReset : text;
}

void AppendSource(std::string& out, const SourceText& text, const Finding& finding, bool color) {
  if (finding.line > text.lineCount()) {
    return;
  }
  const Blanks blanks = finding.code == Code::kWrongSeparator ? Blanks::kAll : Blanks::kAtEdges;
  const Line line = text.line(finding.line);
  const Snippet snippet = MakeSnippet(line.text, finding.column, finding.length, blanks);
  out += "  " + snippet.text + (finding.column > kLongestLine ? "…" : "") + "\n  " +
         std::string(snippet.indent, ' ');
  out += Painted(color, kGreen, '^' + std::string(snippet.width - 1, '~')) + '\n';
  if (finding.otherLine != 0) {
    out += "  line " + std::to_string(finding.otherLine) + ": " +
           LineExcerpt(text.line(finding.otherLine).text) + '\n';
  }
}

class TextReport : public Report {
 public:
  TextReport(std::ostream& out, Progress& progress, bool color)
      : out_(out), progress_(progress), color_(color) {}

  void Take(const SourceText& text, const Finding& finding) override {
    progress_.Hide();
    WriteFinding(out_, text, finding, color_);
  }

  void EndFile(const SourceText& /*text*/, std::size_t /*records*/, bool /*wasRead*/) override {}

  void End(const Totals& totals, int /*exitCode*/) override {
    progress_.Hide();
    out_ << Counted(totals.files, "file") << ", " << Counted(totals.records, "record") << ", "
         << Summary(totals.findings) << '\n';
  }

 private:
  std::ostream& out_;
  Progress& progress_;
  bool color_;
};

}  // namespace

void WriteFinding(std::ostream& out, const SourceText& text, const Finding& finding, bool color) {
  const Trap& trap = TrapOf(finding.code);
  const std::string where = Printable(text.name()) + ':' + std::to_string(finding.line) + ':' +
                            std::to_string(finding.column) + ':';
  std::string lines = Painted(color, kBold, where) + ' ' +
                      Painted(color, ColorOf(trap.severity), NameOf(trap.severity) + std::string(":")) + ' ' +
                      finding.message + " [" + trap.name + "]\n";
  AppendSource(lines, text, finding, color);
  out << lines << "  hint: " << finding.hint << '\n';
}

std::string Summary(const Tally& tally) {
  std::string summary;
  const auto add = [&summary](std::size_t count, const char* noun) {
    if (count != 0) {
      summary += (summary.empty() ? "" : ", ") + Counted(count, noun);
    }
  };
  add(tally.errors, "error");
  add(tally.warnings, "warning");
  add(tally.notes, "note");
  return summary.empty() ? "no findings" : summary;
}

std::unique_ptr<Report> MakeTextReport(std::ostream& out, Progress& progress, bool color) {
  return std::make_unique<TextReport>(out, progress, color);
}

}  // namespace almcfg
