// The JSON output of `almcfg check`: one object, written finding by finding to a borrowed stream. One thread
// at a time.

#include <ostream>

#include "tools/almcfg/write/json_text.h"
#include "tools/almcfg/write/report.h"

namespace almcfg {
namespace {

Json ToJson(const SourceText& text, const Finding& finding) {
  const Rule& rule = RuleOf(finding.code);
  Json json;
  SetText(json, "file", text.Name());
  json["line"] = finding.line;
  json["column"] = finding.column;
  json["length"] = finding.length;
  json["severity"] = NameOf(rule.severity);
  json["code"] = rule.name;
  json["message"] = finding.message;
  json["hint"] = finding.hint;
  if (finding.line <= text.LineCount()) {
    SetText(json, "text", text.LineAt(finding.line).text);
  }
  if (finding.otherLine != 0) {
    json["otherLine"] = finding.otherLine;
    SetText(json, "otherText", text.LineAt(finding.otherLine).text);
  }
  return json;
}

class JsonReport : public Report {
 public:
  explicit JsonReport(std::ostream& out) : out_(out) { out_ << "{\"findings\":["; }

  void Take(const SourceText& text, const Finding& finding) override {
    out_ << (first_ ? "\n" : ",\n") << Dump(ToJson(text, finding));
    first_ = false;
  }

  void EndFile(const SourceText& text, std::size_t records, bool wasRead) override {
    Json file;
    SetText(file, "file", text.Name());
    file["wasRead"] = wasRead;
    file["lines"] = text.LineCount();
    file["records"] = records;
    files_.push_back(std::move(file));
  }

  void End(const Totals& totals, int exitCode) override {
    Json byCode = Json::object();
    for (const Rule& rule : Rules()) {
      if (const std::size_t count = totals.findings.byCode[static_cast<std::size_t>(rule.code)]) {
        byCode[rule.name] = count;
      }
    }
    const Json sums{{"files", totals.files},
                    {"records", totals.records},
                    {"errors", totals.findings.Count(Severity::kError)},
                    {"warnings", totals.findings.Count(Severity::kWarning)},
                    {"notes", totals.findings.Count(Severity::kNote)},
                    {"omitted", totals.omitted},
                    {"byCode", std::move(byCode)}};
    out_ << "\n],\n\"files\":" << Dump(files_) << ",\n\"totals\":" << Dump(sums)
         << ",\n\"exitCode\":" << exitCode << "}\n";
  }

 private:
  std::ostream& out_;
  bool first_ = true;
  Json files_ = Json::array();
};

}  // namespace

std::unique_ptr<Report> MakeJsonReport(std::ostream& out) { return std::make_unique<JsonReport>(out); }

}  // namespace almcfg
