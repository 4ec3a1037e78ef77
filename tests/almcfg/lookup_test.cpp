// almcfg lookup: answers, the lines that serve and were replaced, and the nearest keys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using nlohmann::json;
using testing::HasSubstr;

const std::string kGood = "A\tB\tC\t7\t1\n";

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
}

/// Two files that set the key A, B, C, 7; the second one also has a key without an integer and an alternative twice.
class LookupOfTwoFiles : public testing::Test {
 protected:
  LookupOfTwoFiles() {
    folder_.Write("a.csv", "A\tB\tC\t7\t1\n# x\nA\tB\tC\t7\t2\xFF\n");
    folder_.Write("b.csv", "A/A\tB\tC\t7\t3\nN\tB\tC\t7\t15x\n\"Q\"\tB\tC\t7\t4\n");
  }

  [[nodiscard]] Outcome Run(const std::string& key1, const std::string& format) const {
    return almcfg_test::RunIn(folder_.path(),
                              {"lookup", "--format", format, "a.csv", "b.csv", key1, "B", "C", "7"});
  }

  const TempDirectory folder_;
};

TEST_F(LookupOfTwoFiles, ShowsTheLineThatServesTheKeyAndThoseItReplacedLatestFirst) {
  const Outcome outcome = Run("A", "text");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out,
            "key:       \"A\", \"B\", \"C\", \"7\"\nanswer:    result 0, value 3\n"
            "served by: b.csv:1: A/A→B→C→7→3\n"
            "replaced:  a.csv:3: value \"2\\xFF\"\nreplaced:  a.csv:1: value \"1\"\n");
  EXPECT_EQ(json::parse(Run("A", "json").out), json::parse(R"json({
    "key1": "A", "key2": "B", "key3": "C", "number": "7", "result": 0, "value": 3,
    "servedBy": {"file": "b.csv", "line": 1, "value": "3", "text": "A/A\tB\tC\t7\t3"},
    "replaced": [{"file": "a.csv", "line": 3, "value": "2\uFFFD", "valueHex": "32ff",
                  "text": "A\tB\tC\t7\t2\uFFFD", "textHex": "410942094309370932ff"},
                 {"file": "a.csv", "line": 1, "value": "1", "text": "A\tB\tC\t7\t1"}],
    "nearest": [], "endlessLine": null})json"));
}

TEST_F(LookupOfTwoFiles, SaysThatAMissingKeyGetsASuccessfulZeroAndWhatIsNear) {
  const Outcome outcome = Run("a", "text");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "key:       \"a\", \"B\", \"C\", \"7\"\n"
            "answer:    result 0, value 0: NO LINE serves this key; the caller gets a successful 0\n"
            "near:      b.csv:1: column 1 is \"A\", not \"a\" (another case)\n"
            "             A/A→B→C→7→3\n");
  EXPECT_EQ(json::parse(Run("a", "json").out), json::parse(R"json({
    "key1": "a", "key2": "B", "key3": "C", "number": "7", "result": 0, "value": 0,
    "servedBy": null, "replaced": [],
    "nearest": [{"file": "b.csv", "line": 1, "difference": "column 1 is \"A\", not \"a\" (another case)",
                 "text": "A/A\tB\tC\t7\t3"}],
    "endlessLine": null})json"));
}

TEST_F(LookupOfTwoFiles, NamesALineWithQuotesAsNear) {
  const Outcome outcome = Run("Q", "text");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              HasSubstr("near:      b.csv:3: column 1 is \"\"Q\"\", not \"Q\" (in quotation marks)\n"));
}

TEST_F(LookupOfTwoFiles, SaysThatTheCallersValueIsUnchangedWhenTheValueIsNotAnInteger) {
  const Outcome outcome = Run("N", "text");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "key:       \"N\", \"B\", \"C\", \"7\"\n"
            "answer:    result 1, and the caller's value is unchanged: \"15x\" is not a decimal integer\n"
            "served by: b.csv:2: N→B→C→7→15x\n");
  const json answer = json::parse(Run("N", "json").out);
  EXPECT_EQ(answer["result"], 1);
  EXPECT_EQ(answer["value"], nullptr);
}

TEST_F(LookupOfTwoFiles, SaysThatTheLoadNeverEnds) {
  folder_.Write("a.csv", kGood + std::string(1023, 'x') + "\n");
  const Outcome outcome = Run("A", "text");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              testing::EndsWith("served by: a.csv:1: A→B→C→7→1\nload:      NEVER ENDS at a.csv:2: the "
                                "answer is that of a process that hangs in it\n"));
  EXPECT_THAT(outcome.err,
              testing::EndsWith("almcfg: a.csv: 1 error; see almcfg check\nalmcfg: b.csv: never read, since "
                                "the load of a.csv:2 does not end\n"));
  EXPECT_EQ(json::parse(Run("A", "json").out)["endlessLine"], (json{{"file", "a.csv"}, {"line", 2}}));
}

TEST(Lookup, TakesNegativeNumbersAndKeysThatLookLikeOptions) {
  EXPECT_EQ(Exit({"lookup", "-", "A", "B", "C", "-7"}, "A\tB\tC\t-7\t1\n"), 0);
  EXPECT_EQ(Exit({"lookup", "-", "A", "B", "C", "-0"}, "A\tB\tC\t0\t1\n"), 0);
  EXPECT_EQ(Exit({"lookup", "-", "--", "-A", "B", "C", "-7"}, "-A\tB\tC\t-7\t1\n"), 0);
  EXPECT_EQ(Exit({"lookup", "-", "A", "-5", "C", "-7", "--format", "json"}, "A\t-5\tC\t-7\t1\n"), 0);
  EXPECT_THAT(RunAlmcfg({"check", "-1.csv"}).out, HasSubstr("-1.csv:1:1: error: No such file"));
}

TEST(Lookup, TakesEveryKeyUnchanged) {
  const std::vector<std::string> keys{"[x]",  "[x,y]", "[]", "{}",  "{x}", "%%",  "++",
                                      "\"\"", "\"x\"", "''", "`x`", "/x",  "x=y", "check"};
  std::string content = "A\tB\tx\t7\t1\n";
  for (const std::string& key : keys) {
    content += "A\tB\t" + key + "\t7\t2\n";
  }
  for (const std::string& key : keys) {
    const Outcome outcome = RunAlmcfg({"lookup", "-", "A", "B", key, "7"}, content);
    EXPECT_EQ(outcome.exitCode, 0) << key << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("value 2\n")) << key;
  }
}

TEST(Lookup, NamesAtMostFiveNeighboursInTheOrderOfTheFile) {
  std::string content;
  for (const std::string key : {"U", "V", "W", "X", "Y", "Z"}) {
    content += key + "\tB\tC\t7\t1\n";
  }
  const json answer =
      json::parse(RunAlmcfg({"lookup", "--format", "json", "-", "A", "B", "C", "7"}, content).out);
  ASSERT_EQ(answer["nearest"].size(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(answer["nearest"][i]["line"], i + 1);
  }
}

TEST(Lookup, TakesAnEmptyKeyUnchanged) {
  const Outcome outcome = RunAlmcfg({"lookup", "-", "", "B", "C", "7"}, kGood);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, testing::StartsWith("key:       \"\", \"B\", \"C\", \"7\"\n"));
}

}  // namespace
