// The HTML output of `almcfg show`: a head in HTML, and the rows as JSON for the page's script, which draws
// the visible ones. Style and script are in page/. The stream is borrowed. One thread at a time.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "tools/almcfg/page_assets.h"
#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/report.h"
#include "tools/almcfg/write/table_writer.h"

namespace almcfg {
namespace {

/// Bytes as text for HTML: markup is escaped, invisible characters are shown.
std::string Html(std::string_view bytes) {
  std::string html;
  for (const char c : Printable(bytes)) {
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
      default:
        html += c;
    }
  }
  return html;
}

/// JSON for a script element. "<" is escaped, because "</script" or "<!--" would end or change the element.
std::string ScriptJson(const Json& value) {
  std::string json;
  for (const char c : Dump(value)) {
    if (c == '<') {
      json += "\\u003c";
    } else {
      json += c;
    }
  }
  return json;
}

/// The time of the page: now, or SOURCE_DATE_EPOCH so that the same files give the same page.
std::tm PageTime() {
  std::time_t seconds = std::time(nullptr);
  const char* const fixed = std::getenv("SOURCE_DATE_EPOCH");
  bool isGood = true;
  if (fixed != nullptr) {
    const std::string_view text = fixed;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    isGood = error == std::errc() && end == text.data() + text.size();
  }
  std::tm time{};
  if (!isGood || gmtime_r(&seconds, &time) == nullptr) {
    throw std::runtime_error("SOURCE_DATE_EPOCH: " + Quoted(fixed != nullptr ? fixed : "") +
                             " is not a time in seconds since 1970; correct or unset it");
  }
  return time;
}

std::string Format(const std::tm& time, const char* format) {
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

/// The last `parts` parts of a path; all of it when it has no more.
std::string_view Tail(std::string_view path, std::size_t parts) {
  std::size_t start = path.size();
  for (; parts != 0; --parts) {
    const std::size_t slash = start == 0 ? std::string_view::npos : path.rfind('/', start - 1);
    if (slash == std::string_view::npos) {
      return path;
    }
    start = slash;
  }
  return path.substr(start + 1);
}

/// For each path its file name, with as many of its folders as distinguish it from the other paths.
std::vector<std::string_view> ShortNames(const std::vector<std::string_view>& paths) {
  std::vector<std::string_view> names;
  for (const std::string_view path : paths) {
    std::size_t parts = 1;
    const auto isLikeThis = [&](std::string_view other) {
      return other != path && Tail(other, parts) == Tail(path, parts);
    };
    while (Tail(path, parts) != path && std::any_of(paths.begin(), paths.end(), isLikeThis)) {
      ++parts;
    }
    names.push_back(Tail(path, parts));
  }
  return names;
}

/// The number of a severity in the page's script; 0 means no finding.
int RankOf(Severity severity) { return 3 - static_cast<int>(severity); }

using Range = std::pair<std::size_t, std::size_t>;  // of findings, the end excluded

class HtmlWriter : public TableWriter {
 public:
  HtmlWriter(std::ostream& out, const LoadedTable& files, PageContent content)
      : out_(out),
        content_(std::move(content)),
        findings_(std::move(content_.findings)),
        isShown_(findings_.size()),
        firstText_(&files.Text(0)) {
    for (std::size_t i = 0; i < files.FileCount(); ++i) {
      paths_.emplace_back(files.Text(i).Name());
    }
    // The checker reports a file without a record at line 1, but after the findings of all lines.
    std::stable_sort(findings_.begin(), findings_.end(),
                     [this](const PlacedFinding& a, const PlacedFinding& b) {
                       return PositionOf(a.place) < PositionOf(b.place);
                     });
    const std::tm time = PageTime();  // Throws, so before anything is written.
    WritePageUpTo("{{title}}");
    WriteTitle();
    WritePageUpTo("{{head}}");
    WriteHead(files, time);
    WritePageUpTo("{{data}}");
    StartData();
  }

  void Write(const Entry& entry) override {
    const Range range = FindingsOf(entry.place);
    if (content_.inFileOrder) {
      WriteLinesBefore(range.first);
    }
    const NS_ASCII::AlarmKey& key = entry.key;
    const auto calls = content_.countCalls ? std::make_optional(content_.countCalls(entry)) : std::nullopt;
    WriteRow(entry.place, range, {key.key1, key.key2, key.key3, key.numKey, entry.value}, calls);
  }

  void End(const LoadedTable& /*files*/) override {
    WriteLinesBefore(findings_.size());
    out_ << "\n]}";
    WritePageUpTo("");
  }

 private:
  /// The page's text up to the next `mark`, without it; with "" up to the end.
  void WritePageUpTo(std::string_view mark) {
    const std::size_t length = mark.empty() ? rest_.size() : rest_.find(mark);
    out_ << rest_.substr(0, length);
    rest_.remove_prefix(length + mark.size());
  }

  void WriteTitle() {
    out_ << "Alarm configuration";
    if (!paths_.empty()) {
      out_ << ": " << Html(Tail(paths_[0], 1));
    }
    if (paths_.size() > 1) {
      out_ << " and " << Counted(paths_.size() - 1, "more file");
    }
  }

  void WriteHead(const LoadedTable& files, const std::tm& time) {
    Tally tally;
    for (const PlacedFinding& placed : findings_) {
      tally.Add(placed.finding.code);
    }
    out_ << "<p>" << Counted(files.RecordCount(), "key") << " in force, " << Html(Summary(tally))
         << ". Loaded <time datetime=\"" << Format(time, "%Y-%m-%dT%H:%M:%SZ") << "\">"
         << Format(time, "%Y-%m-%d %H:%M:%S UTC") << "</time> by almcfg " ALMCFG_VERSION " from";
    if (paths_.size() == 1) {
      out_ << " <b>" << Html(paths_[0]) << "</b></p>";
    } else {
      out_ << " these files, in this order:</p>\n<ol tabindex=\"0\" aria-label=\"Files\">\n";
      for (const std::string_view path : paths_) {
        out_ << "<li>" << Html(path) << "</li>\n";
      }
      out_ << "</ol>";
    }
    if (content_.countCalls) {
      out_ << "\n<p>" << Html(content_.callSummary) << "</p>";
    }
    if (const Place endless = files.EndlessLine()) {
      out_ << "\n<p class=\"alert\" role=\"alert\">A load of these files NEVER ENDS: " << Html(Shown(endless))
           << " is too long. Nothing after it is loaded.</p>";
    }
  }

  /// Each of the rows that follow is [file, line, rank, [[rank, code, message, hint]...], cells...]: five cells of
  /// an entry and, with calls, their number, or one cell with the text of a line without an entry.
  void StartData() {
    Json files = Json::array();
    for (const std::string_view name : ShortNames(paths_)) {
      files.push_back({{"name", Printable(name)}, {"path", Printable(paths_[files.size()])}});
    }
    out_ << "{\"files\":" << ScriptJson(files) << (content_.countCalls ? ",\"calls\":true" : "")
         << ",\"lines\":[";
  }

  [[nodiscard]] std::size_t FileOf(Place place) const {
    return static_cast<std::size_t>(place.text - firstText_);
  }

  [[nodiscard]] std::pair<std::size_t, LineNumber> PositionOf(Place place) const {
    return {FileOf(place), place.line};
  }

  /// The findings of one line; an empty range at their position when the line has none.
  [[nodiscard]] Range FindingsOf(Place place) const {
    const auto wanted = PositionOf(place);
    const auto first =
        std::partition_point(findings_.begin(), findings_.end(),
                             [&](const PlacedFinding& placed) { return PositionOf(placed.place) < wanted; });
    const auto last = std::find_if(first, findings_.end(),
                                   [&](const PlacedFinding& placed) { return !(placed.place == place); });
    return {static_cast<std::size_t>(first - findings_.begin()),
            static_cast<std::size_t>(last - findings_.begin())};
  }

  /// False for the finding of a file without lines.
  static bool HasLine(Place place) { return place.line <= place.text->LineCount(); }

  void WriteRow(Place place, const Range& range, std::initializer_list<std::string_view> cells,
                std::optional<std::uint64_t> calls = std::nullopt) {
    int worst = 0;
    Json findings = Json::array();
    for (std::size_t i = range.first; i < range.second; ++i) {
      const Finding& finding = findings_[i].finding;
      const Rule& rule = RuleOf(finding.code);
      worst = std::max(worst, RankOf(rule.severity));
      findings.push_back({RankOf(rule.severity), rule.name, finding.message, finding.hint});
      isShown_[i] = true;
    }
    Json row{FileOf(place), HasLine(place) ? place.line : 0, worst, std::move(findings)};
    for (const std::string_view cell : cells) {
      row.push_back(Marked(cell));
    }
    if (calls) {
      row.push_back(*calls);
    }
    out_ << (isFirst_ ? "\n" : ",\n") << ScriptJson(row);
    isFirst_ = false;
  }

  /// Rows for lines with findings that no entry has shown, up to finding number `end`.
  void WriteLinesBefore(std::size_t end) {
    for (; next_ < end; ++next_) {
      if (!isShown_[next_]) {
        const Place place = findings_[next_].place;
        WriteRow(place, FindingsOf(place), {HasLine(place) ? TextOf(place) : std::string_view()});
      }
    }
  }

  std::ostream& out_;
  PageContent content_;
  std::vector<std::string_view> paths_;
  std::vector<PlacedFinding> findings_;
  std::vector<bool> isShown_;  // For each finding.
  const SourceText* firstText_;
  std::size_t next_ = 0;  // Findings before this one are shown.
  bool isFirst_ = true;
  std::string_view rest_ = kPage;  // The part of the page that is not written yet.
};

}  // namespace

std::unique_ptr<TableWriter> MakeHtmlWriter(std::ostream& out, const LoadedTable& files,
                                            PageContent content) {
  return std::make_unique<HtmlWriter>(out, files, std::move(content));
}

}  // namespace almcfg
