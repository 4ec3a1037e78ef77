#include <ostream>

#include "tools/almcfg/json_text.h"
#include "tools/almcfg/report.h"

namespace almcfg {
namespace {

Json ToJson(const SourceText& text, const Finding& finding) {
  const Trap& trap = TrapOf(finding.code);
  Json json;
  SetText(json, "file", text.name());
  json["line"] = finding.line;
  json["column"] = finding.column;
  json["length"] = finding.length;
  json["severity"] = NameOf(trap.severity);
  json["code"] = trap.name;
  json["message"] = finding.message;
  json["hint"] = finding.hint;
  if (finding.line <= text.lineCount()) {
    SetText(json, "text", text.line(finding.line).text);
  }
  if (finding.otherLine != 0) {
    json["otherLine"] = finding.otherLine;
    SetText(json, "otherText", text.line(finding.otherLine).text);
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
    SetText(file, "file", text.name());
    file["wasRead"] = wasRead;
    file["lines"] = text.lineCount();
    file["records"] = records;
    files_.push_back(std::move(file));
  }

  void End(const Totals& totals, int exitCode) override {
    const Json sums{{"files", totals.files},
                    {"records", totals.records},
                    {"errors", totals.findings.errors},
                    {"warnings", totals.findings.warnings},
                    {"notes", totals.findings.notes}};
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
