// The SARIF 2.1.0 output of `almcfg check`, written finding by finding to a borrowed stream. One thread at a
// time.

#include <algorithm>
#include <ostream>

#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/printable.h"
#include "tools/almcfg/write/report.h"

namespace almcfg {
namespace {

bool IsPlainInUri(char c) {
  constexpr std::string_view kPlain = "-._~/";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         kPlain.find(c) != std::string_view::npos;
}

/// A path as a URI reference.
std::string UriOf(std::string_view path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri;
  for (const char c : path) {
    const auto value = static_cast<unsigned char>(c);
    if (IsPlainInUri(c)) {
      uri += c;
    } else {
      uri += {'%', kDigits[value >> 4], kDigits[value & 0xF]};
    }
  }
  return uri;
}

Json Location(const SourceText& text, LineNumber line, const Json& region) {
  Json place{{"artifactLocation", {{"uri", UriOf(text.Name())}}}};
  place["region"] = {{"startLine", line}};
  place["region"].update(region);
  return {{"physicalLocation", std::move(place)}};
}

Json Region(const SourceText& text, const Finding& finding) {
  if (finding.line > text.LineCount()) {
    return Json::object();
  }
  const std::string_view line = text.LineAt(finding.line).text;
  const std::size_t begin = std::min(finding.column - 1, line.size());
  const std::size_t start = CharacterCount(line.substr(0, begin)) + 1;
  const std::size_t marked = CharacterCount(line.substr(begin, finding.length));
  return {{"startColumn", start}, {"endColumn", start + marked}, {"snippet", {{"text", ToUtf8(line)}}}};
}

Json ToResult(const SourceText& text, const Finding& finding) {
  const Rule& rule = RuleOf(finding.code);
  Json result{{"ruleId", rule.name},
              {"ruleIndex", static_cast<std::size_t>(rule.code)},
              {"level", NameOf(rule.severity)},
              {"message", {{"text", finding.message + ". Hint: " + finding.hint + "."}}}};
  result["locations"] = Json::array({Location(text, finding.line, Region(text, finding))});
  if (finding.otherLine != 0) {
    Json other = Location(text, finding.otherLine, Json::object());
    other["message"] = {{"text", "the earlier line"}};
    result["relatedLocations"] = Json::array({std::move(other)});
  }
  return result;
}

Json Driver() {
  Json rules = Json::array();
  for (const Rule& rule : Rules()) {
    rules.push_back({{"id", rule.name},
                     {"shortDescription", {{"text", rule.summary}}},
                     {"defaultConfiguration", {{"level", NameOf(rule.severity)}}}});
  }
  return {{"name", "almcfg"}, {"version", ALMCFG_VERSION}, {"rules", std::move(rules)}};
}

class SarifReport : public Report {
 public:
  explicit SarifReport(std::ostream& out) : out_(out) {
    out_ << "{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\",\n"
         << "\"runs\":[{\"tool\":{\"driver\":" << Dump(Driver())
         << "},\n\"columnKind\":\"unicodeCodePoints\",\n\"results\":[";
  }

  void Take(const SourceText& text, const Finding& finding) override {
    out_ << (first_ ? "\n" : ",\n") << Dump(ToResult(text, finding));
    first_ = false;
  }

  void EndFile(const SourceText& /*text*/, std::size_t /*records*/, bool wasRead) override {
    allRead_ = allRead_ && wasRead;
  }

  void End(const Totals& /*totals*/, int exitCode) override {
    const Json invocation{{"executionSuccessful", allRead_}, {"exitCode", exitCode}};
    out_ << "\n],\n\"invocations\":[" << Dump(invocation) << "]}]}\n";
  }

 private:
  std::ostream& out_;
  bool first_ = true;
  bool allRead_ = true;
};

}  // namespace

std::unique_ptr<Report> MakeSarifReport(std::ostream& out) { return std::make_unique<SarifReport>(out); }

}  // namespace almcfg
