// The formats of almcfg check, field by field, for a run of three files of which one cannot be read.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"
#include "tools/almcfg/check/finding.h"

namespace {

using nlohmann::json;

/// A replaced value in a.csv; in b.csv two findings about one line, one about the whole file, and a lost line.
class Report : public testing::Test {
 protected:
  Report() {
    folder_.Write("a.csv", "A\tB\tC\t7\t1\nA/X\tB\tC\t7\t2\n");
    folder_.Write("b.csv", "\xC3\x9C\tB\tC\t07\t1\r\nlost\r\n");
  }

  [[nodiscard]] std::string Run(const std::string& format) const {
    return almcfg_test::RunIn(folder_.path(), {"check", "--format", format, "a.csv", "no\xFF.csv", "b.csv"})
        .out;
  }

  const TempDirectory folder_;
};

TEST_F(Report, InTextShowsEachFindingAndTotalsAllFiles) {
  EXPECT_EQ(
      Run("text"),
      R"(a.csv:2:1: warning: the value "1" of line 1 is REPLACED by "2" for the key "A", "B", "C", "7" [value-replaced]
  A/X→B→C→7→2
  ^~~~~~~~~
  line 1: A→B→C→7→1
  hint: keep one of the two lines; the later one wins
no\xFF.csv:1:1: error: No such file or directory: a load would succeed and load nothing [unreadable-file]
  hint: check the path and who may read it
b.csv:1:1: warning: not ASCII (UTF-8): callers must use the very same bytes [not-ascii]
  Ü→B→C→07→1␍
  ^
  hint: write ASCII, or make sure that callers use the same encoding
b.csv:1:8: warning: column 4 is "07": no query ever finds the line, and its callers get a successful 0 [number-never-matches]
  Ü→B→C→07→1␍
        ^~
  hint: write 7
b.csv:1:12: note: 2 lines of 2 with CR LF at the end; the CR is trimmed away, but counts towards the line's length [cr-line-ends]
  Ü→B→C→07→1␍
            ^
  hint: save the file with LF line ends
b.csv:2:1: error: the line has 1 column, five are needed: it is dropped without a message [too-few-columns]
  lost␍
  ^~~~
  hint: add what is missing, or start the line with "#"; a line is KEY1<TAB>KEY2<TAB>KEY3<TAB>NUMBER<TAB>VALUE
  unreadable-file: 1
  too-few-columns: 1
  value-replaced: 1
  number-never-matches: 1
  not-ascii: 1
  cr-line-ends: 1
3 files, 3 keys, 2 errors, 3 warnings, 1 note
)");
}

TEST_F(Report, InJsonHasEachFindingEachFileAndTheTotals) {
  EXPECT_EQ(json::parse(Run("json")), json::parse(R"({
    "findings": [
      {"file": "a.csv", "line": 2, "column": 1, "length": 9, "severity": "warning", "code": "value-replaced",
       "message": "the value \"1\" of line 1 is REPLACED by \"2\" for the key \"A\", \"B\", \"C\", \"7\"",
       "hint": "keep one of the two lines; the later one wins", "text": "A/X\tB\tC\t7\t2",
       "otherLine": 1, "otherText": "A\tB\tC\t7\t1"},
      {"file": "no\uFFFD.csv", "fileHex": "6e6fff2e637376", "line": 1, "column": 1, "length": 0,
       "severity": "error", "code": "unreadable-file",
       "message": "No such file or directory: a load would succeed and load nothing",
       "hint": "check the path and who may read it"},
      {"file": "b.csv", "line": 1, "column": 1, "length": 2, "severity": "warning", "code": "not-ascii",
       "message": "not ASCII (UTF-8): callers must use the very same bytes",
       "hint": "write ASCII, or make sure that callers use the same encoding", "text": "Ü\tB\tC\t07\t1\r"},
      {"file": "b.csv", "line": 1, "column": 8, "length": 2, "severity": "warning", "code": "number-never-matches",
       "message": "column 4 is \"07\": no query ever finds the line, and its callers get a successful 0",
       "hint": "write 7", "text": "Ü\tB\tC\t07\t1\r"},
      {"file": "b.csv", "line": 1, "column": 12, "length": 1, "severity": "note", "code": "cr-line-ends",
       "message": "2 lines of 2 with CR LF at the end; the CR is trimmed away, but counts towards the line's length",
       "hint": "save the file with LF line ends", "text": "Ü\tB\tC\t07\t1\r"},
      {"file": "b.csv", "line": 2, "column": 1, "length": 4, "severity": "error", "code": "too-few-columns",
       "message": "the line has 1 column, five are needed: it is dropped without a message",
       "hint": "add what is missing, or start the line with \"#\"; a line is KEY1<TAB>KEY2<TAB>KEY3<TAB>NUMBER<TAB>VALUE",
       "text": "lost\r"}],
    "files": [{"file": "a.csv", "wasRead": true, "lines": 2, "records": 2},
              {"file": "no\uFFFD.csv", "fileHex": "6e6fff2e637376", "wasRead": false, "lines": 0, "records": 0},
              {"file": "b.csv", "wasRead": true, "lines": 2, "records": 1}],
    "totals": {"files": 3, "records": 3, "errors": 2, "warnings": 3, "notes": 1, "omitted": 0,
               "byCode": {"unreadable-file": 1, "too-few-columns": 1, "value-replaced": 1,
                          "number-never-matches": 1, "not-ascii": 1, "cr-line-ends": 1}},
    "exitCode": 2})"));
}

/// A result of the SARIF log; `region` without the line.
json Result(const almcfg::Rule& rule, const std::string& message, const std::string& file, int line,
            json region = json::object()) {
  region["startLine"] = line;
  return {
      {"ruleId", rule.name},
      {"ruleIndex", static_cast<int>(rule.code)},
      {"level", almcfg::NameOf(rule.severity)},
      {"message", {{"text", message}}},
      {"locations",
       json::array({{{"physicalLocation", {{"artifactLocation", {{"uri", file}}}, {"region", region}}}}})}};
}

json Region(int start, int end, const std::string& text) {
  return {{"startColumn", start}, {"endColumn", end}, {"snippet", {{"text", text}}}};
}

TEST_F(Report, InSarifHasEachFindingWithItsPlaceAndTheEarlierLine) {
  using almcfg::Code;
  using almcfg::RuleOf;
  const json run = json::parse(Run("sarif"))["runs"][0];
  const std::string first = "\xC3\x9C\tB\tC\t07\t1\r";
  json replaced =
      Result(RuleOf(Code::kValueReplaced),
             "the value \"1\" of line 1 is REPLACED by \"2\" for the key \"A\", \"B\", \"C\", \"7\". "
             "Hint: keep one of the two lines; the later one wins.",
             "a.csv", 2, Region(1, 10, "A/X\tB\tC\t7\t2"));
  replaced["relatedLocations"] = json::array(
      {{{"physicalLocation", {{"artifactLocation", {{"uri", "a.csv"}}}, {"region", {{"startLine", 1}}}}},
        {"message", {{"text", "the earlier line"}}}}});
  const json expected =
      json::array({replaced,
                   Result(RuleOf(Code::kUnreadableFile),
                          "No such file or directory: a load would succeed and load nothing. Hint: check the "
                          "path and who may "
                          "read it.",
                          "no%FF.csv", 1),
                   Result(RuleOf(Code::kNotAscii),
                          "not ASCII (UTF-8): callers must use the very same bytes. Hint: write ASCII, or "
                          "make sure that callers "
                          "use the same encoding.",
                          "b.csv", 1, Region(1, 2, first)),
                   Result(RuleOf(Code::kNumberNeverMatches),
                          "column 4 is \"07\": no query ever finds the line, and its callers get a "
                          "successful 0. Hint: write 7.",
                          "b.csv", 1, Region(7, 9, first)),
                   Result(RuleOf(Code::kCrLineEnds),
                          "2 lines of 2 with CR LF at the end; the CR is trimmed away, but counts towards "
                          "the line's length. "
                          "Hint: save the file with LF line ends.",
                          "b.csv", 1, Region(11, 12, first)),
                   Result(RuleOf(Code::kTooFewColumns),
                          "the line has 1 column, five are needed: it is dropped without a message. Hint: "
                          "add what is missing, or "
                          "start the line with \"#\"; a line is KEY1<TAB>KEY2<TAB>KEY3<TAB>NUMBER<TAB>VALUE.",
                          "b.csv", 2, Region(1, 5, "lost\r"))});
  EXPECT_EQ(run["results"], expected);
  EXPECT_EQ(run["invocations"], json::array({{{"executionSuccessful", false}, {"exitCode", 2}}}));
  EXPECT_EQ(run["columnKind"], "unicodeCodePoints");
}

TEST_F(Report, InSarifNamesTheProgramAndEveryRule) {
  const json log = json::parse(Run("sarif"));
  EXPECT_EQ(log["$schema"], "https://json.schemastore.org/sarif-2.1.0.json");
  EXPECT_EQ(log["version"], "2.1.0");
  EXPECT_EQ(log["runs"].size(), 1U);
  json rules = json::array();
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    rules.push_back({{"id", rule.name},
                     {"shortDescription", {{"text", rule.summary}}},
                     {"defaultConfiguration", {{"level", almcfg::NameOf(rule.severity)}}}});
  }
  EXPECT_EQ(log["runs"][0]["tool"]["driver"],
            (json{{"name", "almcfg"}, {"version", ALMCFG_VERSION}, {"rules", rules}}));
}

TEST_F(Report, InSarifSaysThatARunOfReadableFilesSucceeded) {
  const std::string out =
      almcfg_test::RunIn(folder_.path(), {"check", "--format", "sarif", "--strict", "a.csv"}).out;
  EXPECT_EQ(json::parse(out)["runs"][0]["invocations"],
            json::array({{{"executionSuccessful", true}, {"exitCode", 1}}}));
}

TEST_F(Report, WithoutFindingsIsWholeInEveryFormat) {
  folder_.Write("good.csv", "A\tB\tC\t7\t1\n");
  const auto run = [this](const std::string& format) {
    return almcfg_test::RunIn(folder_.path(), {"check", "--format", format, "good.csv"}).out;
  };
  EXPECT_EQ(run("text"), "1 file, 1 key, no findings\n");
  const json report = json::parse(run("json"));
  EXPECT_EQ(report["findings"], json::array());
  EXPECT_EQ(report["totals"]["byCode"], json::object());
  EXPECT_EQ(report["exitCode"], 0);
  EXPECT_EQ(json::parse(run("sarif"))["runs"][0]["results"], json::array());
}

TEST_F(Report, CountsTheFindingsThatItLeavesOut) {
  const auto run = [this](const std::string& format) {
    return almcfg_test::RunIn(folder_.path(),
                              {"check", "--format", format, "--max-findings", "1", "a.csv", "b.csv"});
  };
  const json report = json::parse(run("json").out);
  EXPECT_EQ(report["findings"].size(), 1U);
  EXPECT_EQ(report["totals"]["omitted"], 4);
  EXPECT_EQ(report["totals"]["warnings"], 3);
  EXPECT_EQ(json::parse(run("sarif").out)["runs"][0]["results"].size(), 1U);
  EXPECT_EQ(run("text").exitCode, 1);
  EXPECT_THAT(almcfg_test::RunIn(folder_.path(), {"check", "--max-findings", "4", "a.csv", "b.csv"}).out,
              testing::HasSubstr("\n1 more finding\n"));
  EXPECT_THAT(run("text").out, testing::HasSubstr("\n4 more findings\n  too-few-columns: 1\n"));
}

}  // namespace
