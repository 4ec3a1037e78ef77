// almcfg coverage: queries against a table, in text and JSON, and what is refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kConfig =
    "COM/EQU\tBTS\tLOS\t7\t1\n"
    "QOS\tSGSN\tJITTER\t60\thigh\n"
    "COM\tOLT \tLOS\t7\t2\n"
    "ENV\tHUB\tDOOR\t15\t4\n";

Outcome Coverage(const std::string& calls, const std::vector<std::string>& options = {}) {
  const TempFile config(kConfig);
  const TempFile file(calls);
  std::vector<std::string> arguments{"coverage", config.path(), "--calls", file.path()};
  arguments.insert(arguments.end(), options.begin(), options.end());
  Outcome outcome = RunAlmcfg(arguments);
  // The names of temporary files differ from run to run.
  for (std::string* const text : {&outcome.out, &outcome.err}) {
    for (const auto& [path, name] : {std::pair{config.path(), "CONFIG"}, std::pair{file.path(), "CALLS"}}) {
      for (std::size_t at = 0; (at = text->find(path, at)) != std::string::npos;) {
        text->replace(at, path.size(), name);
      }
    }
  }
  return outcome;
}

nlohmann::json CoverageJson(const std::string& calls) {
  return nlohmann::json::parse(Coverage(calls, {"--format", "json"}).out);
}

std::string Recorded(const std::string& key1, const std::string& key2, const std::string& key3, int number) {
  return R"({"op":"GetAlmCfgValue","in":[")" + key1 + "\",\"" + key2 + "\",\"" + key3 + "\"," +
         std::to_string(number) + R"(],"result":0,"out":[0],"thread":1,"start":2,"ns":3})" + "\n";
}

TEST(Coverage, SaysWhatIsServedWhatIsNotAndWhatNoQueryAskedFor) {
  const Outcome outcome = Coverage("COM\tBTS\tLOS\t7\t1234\nCOM\tOLT\tLOS\t7\nQOS\tSGSN\tJITTER\t60\t2\n");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out,
            "calls:       1,237 of GetAlmCfgValue, 3 different queries\n"
            "served:      1,234\n"
            "not served:  1; the caller gets a successful 0\n"
            "no integer:  2; the caller's variable is unchanged\n"
            "lines:       4, of which 3 have keys that were never asked for\n"
            "\n"
            "Queries that no line serves\n"
            "  1  \"COM\", \"OLT\", \"LOS\", \"7\"\n"
            "      near: CONFIG:3: column 2 is \"OLT\xC2\xB7\", not \"OLT\" (a blank at the edge)\n"
            "\n"
            "Queries whose value is not an integer\n"
            "  2  \"QOS\", \"SGSN\", \"JITTER\", \"60\": \"high\" in CONFIG:2\n"
            "\n"
            "Lines and alternatives that were never asked for\n"
            "  CONFIG:1: COM/EQU\xE2\x86\x92"
            "BTS\xE2\x86\x92LOS\xE2\x86\x92"
            "7\xE2\x86\x92"
            "1\n"
            "      only: \"EQU\", \"BTS\"\n"
            "  CONFIG:3: COM\xE2\x86\x92OLT\xC2\xB7\xE2\x86\x92LOS\xE2\x86\x92"
            "7\xE2\x86\x92"
            "2\n"
            "  CONFIG:4: ENV\xE2\x86\x92HUB\xE2\x86\x92"
            "DOOR\xE2\x86\x92"
            "15\xE2\x86\x92"
            "4\n"
            "\n"
            "Most frequent queries\n"
            "  1,234  \"COM\", \"BTS\", \"LOS\", \"7\": \"1\" in CONFIG:1\n");
}

TEST(Coverage, CountsTheCallsOfARecordingInTotalsThatAddUp) {
  const std::string calls =
      R"({"recording":1,"time":"t","operations":[],"every":10,"library":"l","build_id":"b",)"
      R"("config_dir":"c","alarm_config":"a"})"
      "\n" +
      Recorded("COM", "BTS", "LOS", 7) + Recorded("COM", "BTS", "LOS", 7) +
      Recorded("no", "such", "alarm", 1) +
      R"({"op":"IsValid","in":[],"result":1,"thread":1,"start":2,"ns":3})"
      "\n" +
      R"({"end":"t","records":4,"dropped":5})"
      "\n";
  const nlohmann::json report = CoverageJson(calls);
  EXPECT_EQ(report["calls"], 3);
  EXPECT_EQ(report["queries"], 2);
  EXPECT_EQ(report["every"], 10);
  EXPECT_EQ(report["dropped"], 5);
  EXPECT_EQ(report["served"][0]["count"], 2);
  EXPECT_EQ(report["served"][0]["line"], 1);
  EXPECT_EQ(report["served"][0]["value"], "1");
  EXPECT_EQ(report["notServed"][0]["key1"], "no");
  EXPECT_EQ(report["notServed"][0]["number"], "1");
  const std::string text = Coverage(calls).out;
  EXPECT_THAT(text, HasSubstr("sample:      one call in 10 was recorded\n"));
  EXPECT_THAT(
      text, HasSubstr("dropped:     5 calls are not in the recording, those of other operations included\n"));
}

TEST(Coverage, ListsTheMostFrequentQueriesFirst) {
  const nlohmann::json report = CoverageJson("a\tb\tc\t1\t2\na\tb\tc\t2\t9\na\tb\tc\t1\t5\n");
  EXPECT_EQ(report["notServed"][0]["number"], "2");
  EXPECT_EQ(report["notServed"][0]["count"], 9);
  EXPECT_EQ(report["notServed"][1]["count"], 7);
}

TEST(Coverage, NamesTheLinesAndAlternativesThatNoQueryAskedFor) {
  const nlohmann::json report = CoverageJson("COM\tBTS\tLOS\t7\nENV\tHUB\tDOOR\t15\n");
  EXPECT_EQ(report["lines"], 4);
  ASSERT_EQ(report["unasked"].size(), 3U);
  EXPECT_EQ(report["unasked"][0]["line"], 1);
  EXPECT_EQ(report["unasked"][0]["alternatives"], nlohmann::json({"\"EQU\", \"BTS\""}));
  EXPECT_EQ(report["unasked"][1]["line"], 2);
  EXPECT_TRUE(report["unasked"][1]["alternatives"].empty());
}

TEST(Coverage, FailsOnAQueryThatIsNotServedOnlyWhenStrict) {
  EXPECT_EQ(Coverage("no\tsuch\talarm\t1\n").exitCode, 0);
  EXPECT_EQ(Coverage("no\tsuch\talarm\t1\n", {"--strict"}).exitCode, 1);
  EXPECT_EQ(Coverage("COM\tBTS\tLOS\t7\nQOS\tSGSN\tJITTER\t60\n", {"--strict"}).exitCode, 0);
}

TEST(Coverage, SkipsLinesThatAreNotQueriesAndSaysWhichOnes) {
  const Outcome outcome = Coverage("# comment\n\na\tb\tc\na\tb\tc\tx\na\tb\tc\t1\t-1\nCOM\tBTS\tLOS\t7\n");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, HasSubstr("almcfg: CALLS:3:1: neither a record nor KEY1, KEY2, KEY3, NUMBER"));
  EXPECT_THAT(outcome.err,
              HasSubstr("almcfg: CALLS:4:7: the fourth column is not a 32-bit decimal integer; the line is"));
  EXPECT_THAT(
      outcome.err,
      HasSubstr(
          "almcfg: CALLS:5:9: the count is not an integer from 0 to 4294967295; the line is skipped\n"));
  EXPECT_THAT(outcome.out, StartsWith("calls:       1 of"));
}

TEST(Coverage, AddsUpTheDroppedCallsOfSeveralRecordings) {
  const std::string calls = Recorded("COM", "BTS", "LOS", 7) + R"({"end":"t","records":1,"dropped":5})" +
                            "\n" + R"({"end":"t","records":1,"dropped":3})" + "\n";
  EXPECT_EQ(CoverageJson(calls)["dropped"], 8);
}

TEST(Coverage, ListsTenOfTheMostFrequentQueries) {
  const TempFile config("A\tB\tC\t1\t1\nA/B/C/D/E\tV/W/X\tC\t1\t1\n");
  std::string queries;
  for (const std::string key1 : {"A", "B", "C", "D", "E"}) {
    for (const std::string key2 : {"V", "W", "X"}) {
      queries += key1 + "\t" + key2 + "\tC\t1\t" + std::to_string(queries.size()) + "\n";
    }
  }
  const std::string out = RunAlmcfg({"coverage", config.path(), "--calls", "-"}, queries).out;
  const std::string list = out.substr(out.find("\nMost frequent queries\n"));
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 2 + 10);
}

TEST(Coverage, NamesAtMostTwoNeighboursOfEachQuery) {
  const TempFile config("X\tB\tC\t7\t1\nY\tB\tC\t7\t1\nZ\tB\tC\t7\t1\n");
  const Outcome outcome =
      RunAlmcfg({"coverage", "--format", "json", config.path(), "--calls", "-"}, "A\tB\tC\t7\n");
  EXPECT_EQ(nlohmann::json::parse(outcome.out)["notServed"][0]["nearest"].size(), 2U);
}

TEST(Coverage, ListsQueriesWithoutAnIntegerTheMostFrequentFirst) {
  const TempFile config("A/B\tB\tC\t7\tx\n");
  const Outcome outcome = RunAlmcfg({"coverage", "--format", "json", config.path(), "--calls", "-"},
                                    "A\tB\tC\t7\nB\tB\tC\t7\t2\n");
  EXPECT_EQ(nlohmann::json::parse(outcome.out)["noInteger"][0]["key1"], "B");
}

TEST(Coverage, ReadsTheCallsFromStandardInput) {
  const TempFile config(kConfig);
  const Outcome outcome = RunAlmcfg({"coverage", config.path(), "--calls", "-"}, "COM\tBTS\tLOS\t7\nlost\n");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, StartsWith("calls:       1 of"));
  EXPECT_THAT(outcome.err, HasSubstr("almcfg: <stdin>:2:1: neither a record nor"));
  const Outcome twice = RunAlmcfg({"coverage", "-", "--calls", "-"});
  EXPECT_EQ(twice.exitCode, 2);
  EXPECT_THAT(twice.err, HasSubstr("standard input (-) can be read only once"));
}

TEST(Coverage, ReadsAListWithCrLf) {
  EXPECT_THAT(Coverage("# x\r\n\r\nCOM\tBTS\tLOS\t7\r\nCOM\tBTS\tLOS\t7\t5\r\n").out,
              StartsWith("calls:       6 of GetAlmCfgValue, 1 different queries\n"));
}

TEST(Coverage, RefusesACountWithWhichASumCouldOverflow) {
  const Outcome outcome =
      Coverage("COM\tBTS\tLOS\t7\t4294967295\nCOM\tBTS\tLOS\t7\t4294967296\nCOM\tBTS\tLOS\t7\t5\n");
  EXPECT_THAT(outcome.out, StartsWith("calls:       4,294,967,300 of"));
  EXPECT_THAT(outcome.err, HasSubstr("CALLS:2:15: the count is not an integer from 0 to 4294967295"));
}

TEST(Coverage, UsesACutRecording) {
  const Outcome outcome = Coverage(Recorded("COM", "BTS", "LOS", 7) + R"({"op":"GetAlm)");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.err, HasSubstr("almcfg: CALLS:2:14: the line is truncated; the line is skipped\n"));
  EXPECT_THAT(outcome.out, StartsWith("calls:       1 of"));
}

TEST(Coverage, CountsTheLinesThatItDoesNotListOneByOne) {
  const Outcome outcome = Coverage(Recorded("COM", "BTS", "LOS", 7) + std::string(15, '\n'));
  EXPECT_THAT(outcome.err, HasSubstr("CALLS:11:1: "));
  EXPECT_THAT(outcome.err, Not(HasSubstr("CALLS:12:")));
  EXPECT_THAT(outcome.err, HasSubstr("almcfg: CALLS: 5 more such lines\n"));
}

TEST(Coverage, NeedsAFileWithQueries) {
  EXPECT_EQ(Coverage("").exitCode, 2);
  EXPECT_THAT(Coverage("junk\n").err, HasSubstr("CALLS: holds no call of GetAlmCfgValue"));
  const Outcome outcome = RunAlmcfg({"coverage", "examples/broken/value-replaced.csv"});
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.err, HasSubstr("coverage: --calls RECORDING is needed"));
}

TEST(Coverage, SaysWhyTheCallsCannotBeRead) {
  const std::string config = "examples/broken/value-replaced.csv";
  const TempDirectory folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const auto& [calls, reason] :
       {std::pair{"/no/such", "No such file or directory"}, std::pair{"/", "Is a directory"},
        std::pair{"/dev/zero", "It is a device, not a file"},
        std::pair{"/proc/self/mem", "Input/output error"},
        std::pair{pipe.c_str(), "Nothing writes to this pipe"}}) {
    const Outcome outcome = RunAlmcfg({"coverage", config, "--calls", calls});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.err, testing::EndsWith(std::string("almcfg: ") + calls + ": " + reason + "\n"));
  }
}

TEST(Coverage, SaysThatTheLoadNeverEnds) {
  const TempFile config("COM\tBTS\tLOS\t7\t1\n" + std::string(1023, 'x') + "\n");
  const TempFile calls("COM\tBTS\tLOS\t7\n");
  const Outcome text = RunAlmcfg({"coverage", config.path(), "--calls", calls.path()});
  EXPECT_EQ(text.exitCode, 1);
  EXPECT_THAT(text.out, HasSubstr("\nload:        NEVER ENDS at " + config.path() + ":2\n"));
  const Outcome json = RunAlmcfg({"coverage", "--format", "json", config.path(), "--calls", calls.path()});
  EXPECT_EQ(json.exitCode, 1);
  EXPECT_EQ(nlohmann::json::parse(json.out)["endlessLine"],
            (nlohmann::json{{"file", config.path()}, {"line", 2}}));
}

TEST(Coverage, InJsonHasEveryFieldForTwoFiles) {
  const TempDirectory folder;
  folder.Write("a.csv", "A\tB\tC\t7\t1\nQ\xFF\tB\tC\t7\tx\n");
  folder.Write("b.csv", "A\tB\tC\t7\t3\nB/D\tB\tC\t7\t2\nE\tB\tC\t7\t\xFF\n");
  folder.Write("calls", "A\tB\tC\t7\t3\na\tB\tC\t7\nQ\xFF\tB\tC\t7\nB\tB\tC\t7\n");
  const Outcome outcome = almcfg_test::RunIn(
      folder.path(), {"coverage", "--format", "json", "a.csv", "b.csv", "--calls", "calls"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(nlohmann::json::parse(outcome.out), nlohmann::json::parse(R"json({
    "calls": 6, "queries": 4, "every": 1, "dropped": 0, "lines": 4,
    "notServed": [{"key1": "a", "key2": "B", "key3": "C", "number": "7", "count": 1,
      "nearest": [{"file": "b.csv", "line": 1, "difference": "column 1 is \"A\", not \"a\" (another case)"}]}],
    "noInteger": [{"key1": "Q\uFFFD", "key1Hex": "51ff", "key2": "B", "key3": "C", "number": "7", "count": 1,
      "file": "a.csv", "line": 2, "value": "x"}],
    "unasked": [
      {"file": "b.csv", "line": 2, "text": "B/D\tB\tC\t7\t2", "alternatives": ["\"D\", \"B\""]},
      {"file": "b.csv", "line": 3, "text": "E\tB\tC\t7\t\uFFFD", "textHex": "4509420943093709ff",
       "alternatives": []}],
    "served": [
      {"key1": "A", "key2": "B", "key3": "C", "number": "7", "count": 3, "file": "b.csv", "line": 1, "value": "3"},
      {"key1": "B", "key2": "B", "key3": "C", "number": "7", "count": 1, "file": "b.csv", "line": 2, "value": "2"}],
    "endlessLine": null})json"));
}

/// The data of the HTML page for calls, from its rows on.
std::string PageRows(const std::string& calls) {
  const TempFile config(kConfig);
  const TempFile file(calls);
  const std::string page = RunAlmcfg({"show", "--format", "html", "--calls", file.path(), config.path()}).out;
  const std::size_t from = page.find(R"(,"calls":true,"lines":)");
  return from == std::string::npos ? "" : page.substr(from, page.find("</script>", from) - from);
}

TEST(CoveragePage, HasTheNumberOfCallsInTheRowOfEachKey) {
  const std::string rows = PageRows("EQU\tBTS\tLOS\t7\t1234\nQOS\tSGSN\tJITTER\t60\nno\tsuch\talarm\t1\t3\n");
  EXPECT_THAT(rows, HasSubstr(R"("COM","BTS","LOS","7","1",0])"));
  EXPECT_THAT(rows, HasSubstr(R"("EQU","BTS","LOS","7","1",1234])"));
  EXPECT_THAT(rows, HasSubstr(R"("QOS","SGSN","JITTER","60","high",1])"));
}

TEST(CoveragePage, DoesNotCountAQueryForANumberThatIsWrittenAnotherWay) {
  const TempFile config("COM\tBTS\tLOS\t07\t1\nCOM\tBTS\tLOS\t7\t2\n");
  const TempFile calls("COM\tBTS\tLOS\t7\n");
  const std::string page =
      RunAlmcfg({"show", "--format", "html", "--calls", calls.path(), config.path()}).out;
  EXPECT_THAT(page, HasSubstr(R"("07","1",0])"));
  EXPECT_THAT(page, HasSubstr(R"("7","2",1])"));
}

TEST(CoveragePage, SaysInItsHeadHowManyCallsWereServed) {
  const TempFile config(kConfig);
  const TempFile calls("COM\tBTS\tLOS\t7\t1234\nno\tsuch\talarm\t1\t3\nQOS\tSGSN\tJITTER\t60\t2\n");
  EXPECT_THAT(
      RunAlmcfg({"show", "--format", "html", "--calls", calls.path(), config.path()}).out,
      HasSubstr("<p>1,239 calls of GetAlmCfgValue: 1,234 served, 3 not served, 2 with a value that is not "
                "an integer.</p>"));
}

TEST(CoveragePage, IsRefusedForOtherFormatsAndFilesWithoutAQuery) {
  const TempFile config(kConfig);
  const Outcome table = RunAlmcfg({"show", "--calls", config.path(), config.path()});
  EXPECT_EQ(table.exitCode, 2);
  EXPECT_THAT(table.err,
              HasSubstr("show: --calls needs --format html; almcfg coverage reports as text or JSON"));
  const Outcome page = RunAlmcfg({"show", "--format", "html", "--calls", "/dev/null", config.path()});
  EXPECT_EQ(page.exitCode, 2);
  EXPECT_EQ(page.out, "");
}

}  // namespace
