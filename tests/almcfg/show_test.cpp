// almcfg show: the table in force as text and JSON.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using nlohmann::json;
using testing::HasSubstr;

const std::string kGood = "A\tB\tC\t7\t1\n";
const std::string kWarning = "A\tB\tC\t07\t1\n";
const std::string kError = "A\tB\tC\t7\n";

TEST(Show, InJsonHasEveryKeyInForceOfTwoFilesWithItsPlace) {
  const TempDirectory folder;
  folder.Write("a.csv", "A\tB\tC\t7\t1\nQ\xFF/R\tB\tC\t7\tx\n");
  folder.Write("b.csv", "\nA\tB\tC\t7\t3\n");
  const Outcome outcome = almcfg_test::RunIn(folder.path(), {"show", "--format", "json", "a.csv", "b.csv"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(json::parse(outcome.out), json::parse(R"({
    "records": [
      {"key1": "Q\uFFFD", "key1Hex": "51ff", "key2": "B", "key3": "C", "number": "7", "value": "x",
       "file": "a.csv", "line": 2},
      {"key1": "R", "key2": "B", "key3": "C", "number": "7", "value": "x", "file": "a.csv", "line": 2},
      {"key1": "A", "key2": "B", "key3": "C", "number": "7", "value": "3", "file": "b.csv", "line": 2}],
    "endlessLine": null})"));
}

TEST(Show, CountsTheFindingsOfEachFileOnItsOwn) {
  const TempDirectory folder;
  folder.Write("a.csv", kWarning + kError);
  folder.Write("b.csv", kGood);
  folder.Write("c.csv", kError + kError);
  EXPECT_EQ(almcfg_test::RunIn(folder.path(), {"show", "a.csv", "b.csv", "c.csv"}).err,
            "almcfg: a.csv: 1 error, 1 warning; see almcfg check\n"
            "almcfg: c.csv: 2 errors; see almcfg check\n");
}

TEST(Show, SaysNothingOfValuesThatALaterFileReplacesOnPurpose) {
  const TempDirectory folder;
  folder.Write("a.csv", kGood);
  folder.Write("b.csv", "A\tB\tC\t7\t2\n" + kGood);
  EXPECT_EQ(almcfg_test::RunIn(folder.path(), {"show", "a.csv", "b.csv"}).err,
            "almcfg: b.csv: 1 warning; see almcfg check\n");
}

TEST(Show, ListsAnAlternativeThatIsNamedTwiceOnce) {
  EXPECT_EQ(RunAlmcfg({"show", "-"}, "A/A\tB\tC\t7\t2\n").out,
            "#key1\tkey2\tkey3\tnumber\tvalue\tsource\nA\tB\tC\t7\t2\t<stdin>:1\n");
}

TEST(Show, ListsWhatIsInForceByFileOrInTheTablesOrder) {
  const TempFile first("A\tB\tC\t7\t1\nB/A\tB\tC\t7\t2\n");
  const TempFile second("C\tB\tC\t7\t3\nA\tB\tC\t7\t4\n");
  const std::string head = "#key1\tkey2\tkey3\tnumber\tvalue\tsource\n";
  const std::string a = "A\tB\tC\t7\t4\t" + second.path() + ":2\n";
  const std::string b = "B\tB\tC\t7\t2\t" + first.path() + ":2\n";
  const std::string c = "C\tB\tC\t7\t3\t" + second.path() + ":1\n";
  EXPECT_EQ(RunAlmcfg({"show", first.path(), second.path()}).out, head + b + c + a);
  EXPECT_EQ(RunAlmcfg({"show", "--sort", first.path(), second.path()}).out, head + c + b + a);
}

TEST(Show, NamesTheLineAtWhichTheLoadNeverEnds) {
  const Outcome outcome =
      RunAlmcfg({"show", "--format", "json", "-"}, kGood + std::string(1023, 'x') + "\n" + kWarning);
  EXPECT_EQ(outcome.exitCode, 1);
  const json result = json::parse(outcome.out);
  EXPECT_EQ(result["records"].size(), 1U);
  EXPECT_EQ(result["endlessLine"]["line"], 2);
  EXPECT_THAT(outcome.err, HasSubstr("NEVER ENDS"));
}

TEST(Show, CountsErrorsAndWarningsOnTheErrorStream) {
  EXPECT_EQ(RunAlmcfg({"show", "-"}, kWarning).err, "almcfg: <stdin>: 1 warning; see almcfg check\n");
  EXPECT_EQ(RunAlmcfg({"show", "-"}, kError + kWarning).err,
            "almcfg: <stdin>: 1 error, 1 warning; see almcfg check\n");
  EXPECT_EQ(RunAlmcfg({"show", "-"}, "A\tB\tC\t7\t1").err, "");
}

}  // namespace
