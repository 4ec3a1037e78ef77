#include <algorithm>
#include <ostream>
#include <utility>

#include "tools/almcfg/page_assets.h"
#include "tools/almcfg/report.h"
#include "tools/almcfg/table_writer.h"
#include "tools/almcfg/visible.h"

namespace almcfg {
namespace {

/// Text for any place in the page: nothing in it is markup, and nothing is invisible.
std::string Html(const std::string& printable) {
  std::string html;
  for (const char c : printable) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string HtmlOf(std::string_view bytes) { return Html(Marked(bytes)); }

/// A path that may go on in the next line behind a separator.
std::string Breakable(const std::string& html) {
  std::string breakable;
  for (const char c : html) {
    breakable += c;
    breakable += c == '/' ? "<wbr>" : "";
  }
  return breakable;
}

using Range = std::pair<std::size_t, std::size_t>;  // of findings, the end excluded

class HtmlWriter : public TableWriter {
 public:
  HtmlWriter(std::ostream& out, const LoadedFiles& files, std::vector<PlacedFinding> findings,
             bool inFileOrder)
      : out_(out),
        files_(files),
        findings_(std::move(findings)),
        isShown_(findings_.size()),
        inFileOrder_(inFileOrder) {
    // What concerns a whole file was found last.
    std::stable_sort(findings_.begin(), findings_.end(),
                     [&files](const PlacedFinding& a, const PlacedFinding& b) {
                       return files.IdOf(a.place) < files.IdOf(b.place);
                     });
    out_ << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
            "'unsafe-inline'; "
            "script-src 'unsafe-inline'\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<title>Alarm configuration</title>\n<style>"
         << kPageCss << "</style>\n</head>\n<body>\n";
    WriteHead();
  }

  void Write(const Entry& entry) override {
    const Range range = FindingsOf(entry.place);
    if (inFileOrder_) {
      WriteRowsBefore(range.first);
    }
    StartRow(range);
    for (const std::string_view column : {entry.key.key1, entry.key.key2, entry.key.key3}) {
      out_ << "<td>" << HtmlOf(column) << "</td>";
    }
    out_ << "<td class=\"number\">" << HtmlOf(entry.key.numKey) << "</td><td class=\"number\">"
         << HtmlOf(entry.value) << "</td>";
    EndRow(entry.place, range);
  }

  void End(const LoadedFiles& /*files*/) override {
    WriteRowsBefore(findings_.size());
    out_ << "</tbody>\n</table>\n<p class=\"empty\" id=\"nothing\" hidden>Nothing fits. <kbd>Esc</kbd> shows "
            "all "
            "rows.</p>\n</main>\n<script>"
         << kPageJs << "</script>\n</body>\n</html>\n";
  }

 private:
  void WriteHead() {
    Tally tally;
    for (const PlacedFinding& placed : findings_) {
      tally.Add(TrapOf(placed.finding.code).severity);
    }
    out_ << "<header>\n<h1>Alarm configuration</h1>\n<p>What a process has after loading the files, with "
         << Html(Summary(tally))
         << ". Keys: <kbd>/</kbd> search, <kbd>n</kbd> and <kbd>p</kbd> next and previous "
            "finding, <kbd>Esc</kbd> show all.</p>\n</header>\n"
            "<form id=\"controls\" role=\"search\">\n"
            "<input id=\"search\" type=\"search\" placeholder=\"Search: words from any column\" "
            "aria-label=\"Search: words from any column\" autocomplete=\"off\" spellcheck=\"false\" "
            "autofocus>\n"
            "<select id=\"level\" aria-label=\"Rows to show\">\n<option value=\"0\">All rows</option>\n"
            "<option value=\"1\">Rows with findings</option>\n<option value=\"2\">Warnings and "
            "errors</option>\n"
            "<option value=\"3\">Errors</option>\n</select>\n"
            "<button id=\"previous\" type=\"button\">Previous finding</button>\n"
            "<button id=\"next\" type=\"button\">Next finding</button>\n"
            "<output id=\"count\" aria-live=\"polite\"></output>\n</form>\n<main>\n<table>\n<thead>\n<tr>"
            "<th scope=\"col\">Key 1</th><th scope=\"col\">Key 2</th><th scope=\"col\">Key 3</th>"
            "<th scope=\"col\" class=\"number\">Number</th><th scope=\"col\" class=\"number\">Value</th>"
            "<th scope=\"col\">Source</th><th scope=\"col\">Findings</th></tr>\n</thead>\n<tbody>\n";
  }

  /// The findings of one line; an empty range, where they would be, when it has none.
  [[nodiscard]] Range FindingsOf(Place place) const {
    const LoadedFiles::LineId id = files_.IdOf(place);
    const auto idOf = [this](const PlacedFinding& placed) { return files_.IdOf(placed.place); };
    const auto first = std::partition_point(findings_.begin(), findings_.end(),
                                            [&](const PlacedFinding& placed) { return idOf(placed) < id; });
    const auto last = std::partition_point(first, findings_.end(),
                                           [&](const PlacedFinding& placed) { return idOf(placed) == id; });
    return {static_cast<std::size_t>(first - findings_.begin()),
            static_cast<std::size_t>(last - findings_.begin())};
  }

  void StartRow(const Range& range) {
    Severity worst = Severity::kNote;
    for (std::size_t i = range.first; i < range.second; ++i) {
      worst = std::min(worst, TrapOf(findings_[i].finding.code).severity);
      isShown_[i] = true;
    }
    out_ << "<tr";
    if (range.first != range.second) {
      out_ << " class=\"" << NameOf(worst) << "\" tabindex=\"0\"";
    }
    out_ << '>';
  }

  void EndRow(Place place, const Range& range) {
    out_ << "<td class=\"source\">" << Breakable(Html(Shown(place))) << "</td><td>";
    if (range.first != range.second) {
      out_ << "<ul>";
    }
    for (std::size_t i = range.first; i < range.second; ++i) {
      const Finding& finding = findings_[i].finding;
      const Trap& trap = TrapOf(finding.code);
      out_ << "<li class=\"" << NameOf(trap.severity) << "\"><span class=\"badge\">" << NameOf(trap.severity)
           << "</span> " << Html(finding.message) << " [" << trap.name << "] <span class=\"hint\">"
           << Html(finding.hint) << "</span></li>";
    }
    out_ << (range.first != range.second ? "</ul>" : "") << "</td></tr>\n";
  }

  /// Rows for lines with findings that no entry has shown, up to finding number `end`.
  void WriteRowsBefore(std::size_t end) {
    for (; next_ < end; ++next_) {
      if (isShown_[next_]) {
        continue;
      }
      const Place place = findings_[next_].place;
      const Range range = FindingsOf(place);
      StartRow(range);
      out_ << "<td colspan=\"5\">" << Html(LineExcerpt(place.text->line(place.line).text)) << "</td>";
      EndRow(place, range);
    }
  }

  std::ostream& out_;
  const LoadedFiles& files_;
  std::vector<PlacedFinding> findings_;
  std::vector<bool> isShown_;  // For each finding.
  std::size_t next_ = 0;       // Findings before this one are shown.
  bool inFileOrder_;
};

}  // namespace

std::unique_ptr<TableWriter> MakeHtmlWriter(std::ostream& out, const LoadedFiles& files,
                                            std::vector<PlacedFinding> findings, bool inFileOrder) {
  return std::make_unique<HtmlWriter>(out, files, std::move(findings), inFileOrder);
}

}  // namespace almcfg
