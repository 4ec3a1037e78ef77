// The text output of `almcfg check`: each finding with its line, a caret and a hint, then the totals. The
// stream and the progress line are borrowed. One thread at a time.

#include <algorithm>
#include <ostream>

#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/progress.h"
#include "tools/almcfg/write/report.h"
#include "tools/almcfg/write/snippet.h"

namespace almcfg {
namespace {

constexpr std::size_t kMargin = 2;  // columns before a line of a file
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

void AppendPainted(std::string& out, bool color, const char* paint, std::string_view text) {
  if (color) {
    out.append(paint).append(text).append(kReset);
  } else {
    out += text;
  }
}

void AppendSource(std::string& out, const SourceText& text, const Finding& finding, TextStyle style) {
  if (finding.line > text.LineCount()) {
    return;
  }
  const Blanks blanks = finding.code == Code::kWrongSeparator ? Blanks::kAll : Blanks::kAtEdges;
  const Line line = text.LineAt(finding.line);
  const Snippet snippet = MakeSnippet(line.text, finding.column, finding.length, blanks,
                                      style.width - std::min(style.width, kMargin));
  out.append("  ").append(snippet.text);
  out.append(finding.column > kLongestLine && line.IsOverlong() ? "…\n  " : "\n  ")
      .append(snippet.indent, ' ');
  AppendPainted(out, style.color, kGreen, '^' + std::string(snippet.width - 1, '~'));
  out += '\n';
  if (finding.otherLine != 0) {
    out.append("  line ").append(std::to_string(finding.otherLine)).append(": ");
    out.append(LineExcerpt(text.LineAt(finding.otherLine).text)).append("\n");
  }
}

void AppendFinding(std::string& out, const SourceText& text, const Finding& finding, TextStyle style) {
  const Rule& rule = RuleOf(finding.code);
  std::string where = Printable(text.Name());
  where.append(":").append(std::to_string(finding.line));
  where.append(":").append(std::to_string(finding.column)).append(":");
  AppendPainted(out, style.color, kBold, where);
  out += ' ';
  AppendPainted(out, style.color, ColorOf(rule.severity), NameOf(rule.severity) + std::string(":"));
  out.append(" ").append(finding.message).append(" [").append(rule.name).append("]\n");
  AppendSource(out, text, finding, style);
  out.append("  hint: ").append(finding.hint).append("\n");
}

class TextReport : public Report {
 public:
  TextReport(std::ostream& out, Progress& progress, TextStyle style, bool quiet)
      : out_(out), progress_(progress), style_(style), quiet_(quiet) {}

  void Take(const SourceText& text, const Finding& finding) override {
    progress_.Hide();
    buffer_.clear();
    AppendFinding(buffer_, text, finding, style_);
    out_ << buffer_;
  }

  void EndFile(const SourceText& /*text*/, std::size_t /*records*/, bool /*wasRead*/) override {}

  void End(const Totals& totals, int /*exitCode*/) override {
    progress_.Hide();
    if (quiet_) {
      return;
    }
    if (totals.omitted != 0) {
      out_ << Counted(totals.omitted, "more finding") << '\n';
    }
    for (const Rule& rule : Rules()) {
      if (const std::size_t count = totals.findings.byCode[static_cast<std::size_t>(rule.code)]) {
        out_ << "  " << rule.name << ": " << Grouped(count) << '\n';
      }
    }
    out_ << Counted(totals.files, "file") << ", " << Counted(totals.records, "key") << ", "
         << Summary(totals.findings) << '\n';
  }

 private:
  std::ostream& out_;
  Progress& progress_;
  TextStyle style_;
  bool quiet_;
  std::string buffer_;
};

}  // namespace

void WriteFinding(std::ostream& out, const SourceText& text, const Finding& finding, TextStyle style) {
  std::string shown;
  AppendFinding(shown, text, finding, style);
  out << shown;
}

std::string Summary(const Tally& tally) {
  std::string summary;
  const auto add = [&summary](std::size_t count, const char* noun) {
    if (count != 0) {
      summary += (summary.empty() ? "" : ", ") + Counted(count, noun);
    }
  };
  add(tally.Count(Severity::kError), "error");
  add(tally.Count(Severity::kWarning), "warning");
  add(tally.Count(Severity::kNote), "note");
  return summary.empty() ? "no findings" : summary;
}

std::unique_ptr<Report> MakeTextReport(std::ostream& out, Progress& progress, TextStyle style, bool quiet) {
  return std::make_unique<TextReport>(out, progress, style, quiet);
}

}  // namespace almcfg
