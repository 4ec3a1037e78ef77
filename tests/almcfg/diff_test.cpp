// almcfg diff: what a reload and a restart change, in text and JSON.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"

namespace {

using almcfg_test::Outcome;
using nlohmann::json;
using testing::HasSubstr;

const std::string kEndless = std::string(1023, 'x') + "\n";

Outcome Diff(const std::string& running, const std::string& fresh, const std::string& format = "text") {
  const TempDirectory folder;
  folder.Write("run.csv", running);
  folder.Write("new.csv", fresh);
  return almcfg_test::RunIn(folder.path(), {"diff", "--format", format, "run.csv", "new.csv"});
}

json DiffJson(const std::string& running, const std::string& fresh) {
  return json::parse(Diff(running, fresh, "json").out);
}

// One key of each kind: the answer changes, the text only, a new key, a deleted key.
const std::string kRunning = "A\tB\tC\t7\t1\nB\tB\tC\t7\t2\nQ\xFF\tB\tC\t7\tx\nS\tB\tC\t7\t0\n";
const std::string kFresh = "A\tB\tC\t7\t3\nB\tB\tC\t7\t02\nD\tB\tC\t7\t4\nS\tB\tC\t7\t0\n";

TEST(Diff, InTextShowsEachChangeAndWhatAReloadAndARestartDo) {
  const Outcome outcome = Diff(kRunning, kFresh);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, R"(changed:   "A", "B", "C", "7"
             was "1" by run.csv:1
             now "3" by new.csv:1
rewritten: "B", "B", "C", "7"
             was "2" by run.csv:2
             now "02" by new.csv:2
             and the answer is the same
added:     "D", "B", "C", "7"
             now "4" by new.csv:3
stays:     "Q\xFF", "B", "C", "7"
             was "x" by run.csv:3
             and remains in force until a restart
reload:    1 answer changed, 1 key added, 1 value rewritten, 1 deleted key stays in force
restart:   the same, and 1 deleted key ends: its callers then get a successful 0
)");
}

TEST(Diff, InJsonShowsEachChangeAndWhatAReloadAndARestartDo) {
  const Outcome outcome = Diff(kRunning, kFresh, "json");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(json::parse(outcome.out), json::parse(R"({
    "changes": [
      {"kind": "changed", "key1": "A", "key2": "B", "key3": "C", "number": "7",
       "running": {"value": "1", "file": "run.csv", "line": 1}, "new": {"value": "3", "file": "new.csv", "line": 1}},
      {"kind": "rewritten", "key1": "B", "key2": "B", "key3": "C", "number": "7",
       "running": {"value": "2", "file": "run.csv", "line": 2}, "new": {"value": "02", "file": "new.csv", "line": 2}},
      {"kind": "added", "key1": "D", "key2": "B", "key3": "C", "number": "7",
       "running": null, "new": {"value": "4", "file": "new.csv", "line": 3}},
      {"kind": "stays", "key1": "Q\uFFFD", "key1Hex": "51ff", "key2": "B", "key3": "C", "number": "7",
       "running": {"value": "x", "file": "run.csv", "line": 3}, "new": null}],
    "reload": {"changed": 1, "added": 1, "rewritten": 1, "staying": 1},
    "restart": {"changed": 1, "added": 1, "rewritten": 1, "removed": 1},
    "endlessLine": {"running": null, "new": null}})"));
}

TEST(Diff, CountsSeveralChanges) {
  const std::string three = "A\tB\tC\t7\t1\nB\tB\tC\t7\t1\nC\tB\tC\t7\t1\n";
  EXPECT_THAT(Diff("", three).out,
              testing::EndsWith("reload:    0 answers changed, 3 keys added, 0 deleted keys stay in "
                                "force\nrestart:   the same, and nothing more\n"));
  EXPECT_THAT(Diff(three, "").out,
              testing::EndsWith(
                  "reload:    0 answers changed, 0 keys added, 3 deleted keys stay in force\n"
                  "restart:   the same, and 3 deleted keys end: their callers then get a successful 0\n"));
  EXPECT_THAT(Diff(three, "A/B/C\tB\tC\t7\t01\n").out,
              HasSubstr("0 keys added, 3 values rewritten, 0 deleted"));
}

TEST(Diff, InJsonCountsTheKeysThatARestartRemoves) {
  const json answer = DiffJson("A/B\tB\tC\t7\t1\n", "");
  EXPECT_EQ(answer["reload"]["staying"], 2);
  EXPECT_EQ(answer["restart"]["removed"], 2);
}

TEST(Diff, ExitsWith1ForEachKindOfDifferenceAlone) {
  EXPECT_EQ(Diff("A\tB\tC\t7\t1\n", "A\tB\tC\t7\t2\n").exitCode, 1);
  EXPECT_EQ(Diff("A\tB\tC\t7\t1\n", "A/B\tB\tC\t7\t1\n").exitCode, 1);
  EXPECT_EQ(Diff("A/B\tB\tC\t7\t1\n", "A\tB\tC\t7\t1\n").exitCode, 1);
  EXPECT_EQ(Diff("A\tB\tC\t7\t1\n", "A\tB\tC\t7\tx\n").exitCode, 1);
}

TEST(Diff, IsCleanWhenEveryAnswerIsTheSame) {
  const Outcome same = Diff("A/B\tB\tC\t7\t1\n", "B\tB\tC\t7\t1\n# the same\nA\tB\tC\t7\t1\n");
  EXPECT_EQ(same.exitCode, 0);
  EXPECT_EQ(same.out,
            "reload:    0 answers changed, 0 keys added, 0 deleted keys stay in force\n"
            "restart:   the same, and nothing more\n");
  EXPECT_EQ(Diff("A\tB\tC\t7\t5\n", "A\tB\tC\t7\t05\n").exitCode, 0);
  EXPECT_EQ(Diff("A\tB\tC\t7\tx\n", "A\tB\tC\t7\ty\n").exitCode, 0) << "both fail";
  EXPECT_EQ(Diff("A\tB\tC\t7\t1\n", "A\tB\tC\t7\t4294967297\n").exitCode, 0) << "wraps to 1";
}

TEST(Diff, SaysThatARestartNeverComesUpWhenTheNewLoadDoesNotEnd) {
  const Outcome outcome = Diff("A\tB\tC\t7\t1\n", "A\tB\tC\t7\t1\n" + kEndless);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "reload:    0 answers changed, 0 keys added, 0 deleted keys stay in force\n"
            "reload:    NEVER ENDS at new.csv:2\n"
            "restart:   NEVER COMES UP: its load does not end at new.csv:2\n");
  const json answer = DiffJson("A\tB\tC\t7\t1\n", "A\tB\tC\t7\t1\n" + kEndless);
  EXPECT_EQ(answer["endlessLine"], (json{{"running", nullptr}, {"new", {{"file", "new.csv"}, {"line", 2}}}}));
  EXPECT_EQ(answer["restart"], nullptr);
  EXPECT_EQ(answer["reload"], (json{{"changed", 0}, {"added", 0}, {"rewritten", 0}, {"staying", 0}}));
}

TEST(Diff, SaysThatTheRunningLoadDoesNotEnd) {
  const Outcome outcome = Diff(kEndless + "A\tB\tC\t7\t1\n", "");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "reload:    0 answers changed, 0 keys added, 0 deleted keys stay in force\n"
            "running:   its load NEVER ENDS at run.csv:1\n"
            "restart:   the same, and nothing more\n");
  EXPECT_EQ(DiffJson(kEndless, "")["endlessLine"],
            (json{{"running", {{"file", "run.csv"}, {"line", 1}}}, {"new", nullptr}}));
}

TEST(Diff, DoesNotRunWhenOneOfTheFilesCannotBeRead) {
  const TempDirectory folder;
  folder.Write("a.csv", "");
  for (const auto& [running, fresh] : {std::pair{"a.csv", "none"}, std::pair{"none", "a.csv"}}) {
    const Outcome outcome = almcfg_test::RunIn(folder.path(), {"diff", running, fresh});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, testing::EndsWith("almcfg: none: No such file or directory\n"));
  }
}

}  // namespace
