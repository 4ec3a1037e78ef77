// The program as users and scripts run it: exit codes, machine formats, and unsuitable input.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/check/finding.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

const std::string kCommands = "check|fix|show|lookup|diff|coverage";
const std::string kGood = "A\tB\tC\t7\t1\n";
const std::string kWarning = "A\tB\tC\t07\t1\n";
const std::string kError = "A\tB\tC\t7\n";

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
}

TEST(ExitCode, OfCheckDistinguishesFindingsFromNotRunning) {
  EXPECT_EQ(Exit({"check", "-"}, kGood), 0);
  EXPECT_EQ(Exit({"check", "-"}, kWarning), 0);
  EXPECT_EQ(Exit({"check", "--strict", "-"}, kWarning), 1);
  EXPECT_EQ(Exit({"check", "-"}, kError), 1);
  EXPECT_EQ(Exit({"check", "--strict", "-"}, "A\tB\tC\t7\t1"), 0);
  EXPECT_EQ(Exit({"check", "/no/such/file", "-"}, kError), 2);
}

TEST(ExitCode, OfEveryMistakeInTheCommandLineIs2) {
  const TempFile file(kGood);
  const std::vector<std::vector<std::string>> mistakes{
      {},
      {"chek", file.path()},
      {"-"},
      {"--", "check", file.path()},
      {"--colour"},
      {"--color", "never", "check", file.path()},
      {"check"},
      {"check", "--format", "xml", file.path()},
      {"check", "--format", "html", file.path()},
      {"check", "--color", "blue", file.path()},
      {"check", "--colour", "never", file.path()},
      {"check", file.path(), "--color"},
      {"check", file.path(), "--color="},
      {"check", "--sort", file.path()},
      {"check", "-", "-"},
      {"show", "--format", "sarif", file.path()},
      {"lookup", "A", "B", "C", "7"},
      {"lookup", file.path(), "A", "B", "C", "seven"},
      {"lookup", file.path(), "A", "B", "C", "2147483648"},
      {"diff", file.path()},
      {"diff", file.path(), file.path(), file.path()},
      {"diff", "-", "-"},
  };
  for (const auto& arguments : mistakes) {
    const Outcome outcome = RunAlmcfg(arguments);
    EXPECT_EQ(outcome.exitCode, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.out, "") << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, testing::StartsWith("almcfg: ")) << testing::PrintToString(arguments);
  }
}

/// The line that says what is wrong with the command line.
std::string MistakeIn(const std::vector<std::string>& arguments) {
  const std::string err = RunAlmcfg(arguments).err;
  return err.substr(0, err.find("\nalmcfg --help describes the commands\n"));
}

TEST(CommandLine, MistakesSayWhatThereIs) {
  EXPECT_EQ(MistakeIn({}), "almcfg: one of " + kCommands + " is needed");
  EXPECT_EQ(MistakeIn({"chek", "x"}), "almcfg: \"chek\" is none of " + kCommands);
  EXPECT_EQ(MistakeIn({"-"}), "almcfg: \"-\" is none of " + kCommands);
  EXPECT_EQ(MistakeIn({"check"}), "almcfg: FILE: at least one is needed; - is standard input");
  EXPECT_EQ(MistakeIn({"check", ""}), "almcfg: FILE: a name is empty");
  EXPECT_EQ(MistakeIn({"check", "-", "-"}), "almcfg: FILE: standard input (-) can be read only once");
  EXPECT_EQ(MistakeIn({"check", "x", "--color"}), "almcfg: --color: one of always|auto|never is needed");
  EXPECT_EQ(MistakeIn({"check", "--color=", "x"}), "almcfg: --color: one of always|auto|never is needed");
  EXPECT_EQ(MistakeIn({"check", "--color=red", "x"}),
            "almcfg: --color: \"red\" is none of always|auto|never");
  EXPECT_EQ(MistakeIn({"check", "--strict=yes", "x"}),
            "almcfg: --strict: it takes no value, but was given \"yes\"");
  EXPECT_EQ(MistakeIn({"check", "--select", "x"}),
            "almcfg: --select: \"x\" is not a code; almcfg check --help lists them");
  EXPECT_EQ(MistakeIn({"check", "--ignore=edge-blank,", "x"}),
            "almcfg: --ignore: \"\" is not a code; almcfg check --help lists them");
  EXPECT_EQ(MistakeIn({"check", "--max-findings", "-1", "x"}),
            "almcfg: --max-findings: \"-1\" is not a count");
  EXPECT_EQ(MistakeIn({"check", "--max-findings"}), "almcfg: --max-findings: N is needed");
  EXPECT_EQ(MistakeIn({"lookup", "A", "B", "C", "7"}),
            "almcfg: lookup: FILE... KEY1 KEY2 KEY3 NUMBER are needed");
  EXPECT_EQ(MistakeIn({"lookup", "x", "A", "B", "C", "2147483648"}),
            "almcfg: NUMBER: \"2147483648\" is not a 32-bit decimal integer, which callers ask with");
  EXPECT_EQ(MistakeIn({"diff", "x"}), "almcfg: diff: two files are needed, RUNNING and NEW");
}

TEST(CommandLine, NamesAnOptionThatIsUnknownOrInTheWrongPlace) {
  EXPECT_EQ(MistakeIn({"--foo"}), "almcfg: no option \"--foo\" before the command, one of " + kCommands);
  EXPECT_EQ(MistakeIn({"--color", "never", "check", "x"}),
            "almcfg: no option \"--color\" before the command, one of " + kCommands);
  EXPECT_EQ(MistakeIn({"lookup", "x", "--foo=1", "-A", "B", "C", "-7"}),
            "almcfg: lookup: no option \"--foo=1\"; a file or key that starts with \"-\" goes after \"--\"");
}

TEST(CommandLine, MistakesAreOneLineAlsoWhenTheyQuoteLineFeeds) {
  const std::string odd = "a\nb\x1b[31m";
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{odd},
                                             {"--" + odd},
                                             {"--color=" + odd},
                                             {"--version=" + odd},
                                             {"check", "--" + odd},
                                             {"check", "--format", odd, "x"},
                                             {"check", "--strict=" + odd, "x"},
                                             {"lookup", "x", "A", "B", "C", odd}}) {
    const std::string mistake = MistakeIn(arguments);
    EXPECT_THAT(mistake, HasSubstr("a\\x0Ab\\x1B[31m"));
    EXPECT_THAT(mistake, Not(HasSubstr("\n")));
    EXPECT_THAT(mistake, Not(HasSubstr("\x1b")));
  }
}

TEST(ExitCode, OfHelpAndVersionIs0) {
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"--help"},
                                             {"--version"},
                                             {"check", "--help"},
                                             {"show", "--help"},
                                             {"lookup", "--help"},
                                             {"diff", "--help"}}) {
    const Outcome outcome = RunAlmcfg(arguments);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
  }
}

TEST(ExitCode, OfOutputThatCannotBeWrittenIs2) {
  for (const std::string arguments : {"check -", "--help", "check --help", "--version"}) {
    const TempFile err("");
    const std::string command = ALMCFG_PROGRAM " " + arguments + " </dev/null >/dev/full 2>" + err.path();
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2) << arguments;
    EXPECT_EQ(almcfg_test::ReadFile(err.path()),
              "almcfg: standard output could not be written: No space left on device\n")
        << arguments;
  }
}

/// What `check` writes when the shell starts it with `redirection`, ending with exit code 2.
std::string CheckWith(const std::string& redirection, const std::string& paths) {
  const TempFile out("");
  const std::string command =
      ALMCFG_PROGRAM " check " + paths + " " + redirection + " >" + out.path() + " 2>/dev/null";
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 2);
  return almcfg_test::ReadFile(out.path());
}

TEST(Check, DoesNotTakeAFileForAMissingStandardInput) {
  const TempFile file(kGood);
  EXPECT_THAT(CheckWith("<&-", file.path() + " -"),
              HasSubstr("<stdin>:1:1: error: Bad file descriptor: there is nothing to check"));
}

TEST(Check, DoesNotTakeASilentPipeForAMissingStandardInput) {
  const TempFile pipe("");
  unlink(pipe.path().c_str());
  ASSERT_EQ(mkfifo(pipe.path().c_str(), 0600), 0);
  EXPECT_THAT(CheckWith("<&-", pipe.path()), HasSubstr("error: Nothing writes to this pipe"));
}

TEST(Check, SaysNothingOfALoadWhenStandardInputFails) {
  const TempFile file("");
  EXPECT_THAT(CheckWith("0>" + file.path(), "-"),
              HasSubstr("<stdin>:1:1: error: Bad file descriptor: there is nothing to check"));
}

TEST(Check, SaysWhatALoadWouldDoWithAFileThatCannotBeRead) {
  const TempFile pipe("");
  unlink(pipe.path().c_str());
  ASSERT_EQ(mkfifo(pipe.path().c_str(), 0600), 0);
  const std::string end = " [unreadable-file]\n  hint: ";
  EXPECT_THAT(RunAlmcfg({"check", "/no/such/file"}).out,
              HasSubstr("No such file or directory: a load would succeed and load nothing" + end));
  EXPECT_THAT(RunAlmcfg({"check", pipe.path()}).out,
              HasSubstr("Nothing writes to this pipe: a load would wait until something does" + end));
  EXPECT_THAT(RunAlmcfg({"check", "/dev/zero"}).out,
              HasSubstr("It is a device, not a file: a load may never end" + end));
  EXPECT_THAT(RunAlmcfg({"check", "/proc/self/mem"}).out,
              HasSubstr("Input/output error: a load would NEVER END" + end));
}

TEST(Check, GoesOverAllFilesAndTotalsThem) {
  const TempFile bad(kError);
  const TempFile good(kGood);
  const Outcome outcome = RunAlmcfg({"check", bad.path(), "/no/such/file", good.path()});
  EXPECT_THAT(outcome.out, HasSubstr(bad.path() + ":1:1: error: "));
  EXPECT_THAT(outcome.out, HasSubstr("/no/such/file:1:1: error: No such file or directory"));
  EXPECT_THAT(outcome.out, testing::EndsWith("3 files, 1 record, 2 errors\n"));
}

TEST(Check, SaysThatACleanFileIsClean) {
  EXPECT_EQ(RunAlmcfg({"check", "-"}, kGood).out, "1 file, 1 record, no findings\n");
}

TEST(Check, ColorsOnlyOnRequest) {
  EXPECT_THAT(RunAlmcfg({"check", "-"}, kError).out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(RunAlmcfg({"check", "--color", "always", "-"}, kError).out, HasSubstr("\x1b[1;31merror:"));
}

TEST(CheckJson, IsOneObjectWithFindingsFilesAndTotals) {
  const json result =
      json::parse(RunAlmcfg({"check", "--format", "json", "-", "/no/such/file"}, kWarning).out);
  EXPECT_EQ(result["findings"].size(), 2U);
  EXPECT_EQ(result["findings"][0]["code"], "number-never-matches");
  EXPECT_EQ(result["findings"][0]["line"], 1);
  EXPECT_EQ(result["findings"][0]["column"], 7);
  EXPECT_EQ(result["findings"][0]["text"], "A\tB\tC\t07\t1");
  EXPECT_EQ(result["files"][0]["records"], 1);
  EXPECT_EQ(result["files"][1]["wasRead"], false);
  EXPECT_EQ(result["totals"], (json{{"files", 2},
                                    {"records", 1},
                                    {"errors", 1},
                                    {"warnings", 1},
                                    {"notes", 0},
                                    {"omitted", 0},
                                    {"byCode", {{"number-never-matches", 1}, {"unreadable-file", 1}}}}));
  EXPECT_EQ(result["exitCode"], 2);
}

TEST(CheckJson, NamesEachOfTwoFilesAndTheEarlierLine) {
  const TempFile first(kGood + "A\tB\tC\t7\t2\n");
  const TempFile second("X\tB\tC\t7\t1\n" + kError);
  const json result = json::parse(RunAlmcfg({"check", "--format", "json", first.path(), second.path()}).out);
  EXPECT_EQ(result["findings"][0],
            (json{{"file", first.path()},
                  {"line", 2},
                  {"column", 1},
                  {"length", 7},
                  {"severity", "warning"},
                  {"code", "value-replaced"},
                  {"message",
                   "the value \"1\" of line 1 is REPLACED by \"2\" for the key \"A\", \"B\", \"C\", \"7\""},
                  {"hint", "keep one of the two lines; the later one wins"},
                  {"text", "A\tB\tC\t7\t2"},
                  {"otherLine", 1},
                  {"otherText", "A\tB\tC\t7\t1"}}));
  EXPECT_EQ(result["findings"][1]["file"], second.path());
  EXPECT_EQ(result["files"],
            (json{{{"file", first.path()}, {"wasRead", true}, {"lines", 2}, {"records", 1}},
                  {{"file", second.path()}, {"wasRead", true}, {"lines", 2}, {"records", 1}}}));
  EXPECT_EQ(result["totals"]["records"], 2);
}

TEST(Check, SelectsIgnoresAndLimitsFindings) {
  const std::string content = kWarning + kError + kError;
  EXPECT_EQ(Exit({"check", "--ignore", "too-few-columns", "-"}, content), 0);
  EXPECT_EQ(Exit({"check", "--strict", "--ignore", "too-few-columns", "-"}, content), 1);
  EXPECT_EQ(RunAlmcfg({"check", "--select", "edge-blank", "-"}, content).out,
            "1 file, 1 record, no findings\n");
  const Outcome limited = RunAlmcfg({"check", "--max-findings", "1", "-"}, content);
  EXPECT_EQ(limited.exitCode, 1);
  EXPECT_THAT(limited.out, Not(HasSubstr(" [too-few-columns]")));
  EXPECT_THAT(limited.out, testing::EndsWith("2 more findings\n  too-few-columns: 2\n"
                                             "  number-never-matches: 1\n"
                                             "1 file, 1 record, 2 errors, 1 warning\n"));
  EXPECT_EQ(RunAlmcfg({"check", "--quiet", "-"}, kGood).out, "");
  EXPECT_THAT(RunAlmcfg({"check", "--stdin-name", "x\x1b.csv", "-"}, kError).out,
              testing::StartsWith("x\\x1B.csv:1:1: error: "));
}

TEST(Check, ExplainsACodeInTheWordsOfThePage) {
  const std::string text = RunAlmcfg({"check", "--explain", "nul-byte"}).out;
  EXPECT_THAT(text, testing::StartsWith("nul-byte (error)\n\nA NUL ends the line for the loader."));
  EXPECT_THAT(text, Not(HasSubstr("####")));
}

TEST(Check, WarnsAboutFilesWithoutARecord) {
  for (const std::string content : {"", "\n", "# x\n"}) {
    EXPECT_THAT(RunAlmcfg({"check", "-"}, content).out, HasSubstr("[no-record]")) << content;
    EXPECT_EQ(Exit({"check", "--strict", "-"}, content), 1) << content;
  }
  EXPECT_EQ(Exit({"check", "--strict", "/dev/null"}), 1);
  EXPECT_THAT(RunAlmcfg({"check", "-"}, kError).out, Not(HasSubstr("[no-record]")));
}

TEST(EndlessLoad, IsReportedByLookupAndDiffInEveryFormat) {
  const TempFile endless(kGood + std::string(1023, 'x') + "\n");
  const TempFile good(kGood);
  const Outcome text = RunAlmcfg({"lookup", endless.path(), "A", "B", "C", "7"});
  EXPECT_EQ(text.exitCode, 1);
  EXPECT_THAT(text.out, HasSubstr("load:      NEVER ENDS at " + endless.path() + ":2"));
  const json place{{"file", endless.path()}, {"line", 2}};
  EXPECT_EQ(
      json::parse(
          RunAlmcfg({"lookup", "--format", "json", endless.path(), "A", "B", "C", "7"}).out)["endlessLine"],
      place);
  const Outcome diff = RunAlmcfg({"diff", good.path(), endless.path()});
  EXPECT_EQ(diff.exitCode, 1);
  EXPECT_THAT(diff.out,
              HasSubstr("restart:   NEVER COMES UP: its load does not end at " + endless.path() + ":2\n"));
  const json answer = json::parse(RunAlmcfg({"diff", "--format", "json", good.path(), endless.path()}).out);
  EXPECT_EQ(answer["endlessLine"], (json{{"running", nullptr}, {"new", place}}));
  EXPECT_EQ(answer["restart"], nullptr);
}

TEST(Diff, DistinguishesARewrittenValueFromAChangedAnswer) {
  const TempFile running("A\tB\tC\t7\t5\n");
  const TempFile rewritten("A\tB\tC\t7\t05\n");
  const Outcome outcome = RunAlmcfg({"diff", running.path(), rewritten.path()});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, testing::StartsWith("rewritten: \"A\", \"B\", \"C\", \"7\"\n"));
  EXPECT_THAT(outcome.out, HasSubstr("0 answers changed, 0 keys added, 1 value rewritten, "));
}

TEST(Diff, CountsDeletionsAlone) {
  const TempFile running(kGood + "B\tB\tC\t7\t1\n");
  const TempFile fresh(kGood);
  const Outcome outcome = RunAlmcfg({"diff", "--format", "json", running.path(), fresh.path()});
  EXPECT_EQ(outcome.exitCode, 1);
  const json answer = json::parse(outcome.out);
  EXPECT_EQ(answer["changes"][0]["kind"], "stays");
  EXPECT_EQ(answer["reload"], (json{{"changed", 0}, {"added", 0}, {"rewritten", 0}, {"staying", 1}}));
  EXPECT_EQ(answer["restart"], (json{{"changed", 0}, {"added", 0}, {"rewritten", 0}, {"removed", 1}}));
}

TEST(CheckSarif, HasARuleForEveryRuleAndColumnsInCharacters) {
  const json log = json::parse(RunAlmcfg({"check", "--format", "sarif", "-"}, "\xC3\x9C\tB\tC\t07\t1\n").out);
  EXPECT_EQ(log["version"], "2.1.0");
  const json& run = log["runs"][0];
  EXPECT_EQ(run["tool"]["driver"]["rules"].size(), almcfg::kRuleCount);
  EXPECT_EQ(run["columnKind"], "unicodeCodePoints");
  const json& result = run["results"][1];
  EXPECT_EQ(result["ruleId"], "number-never-matches");
  EXPECT_EQ(run["tool"]["driver"]["rules"][result["ruleIndex"].get<std::size_t>()]["id"], result["ruleId"]);
  EXPECT_EQ(result["level"], "warning");
  const json& region = result["locations"][0]["physicalLocation"]["region"];
  EXPECT_EQ(region["startLine"], 1);
  EXPECT_EQ(region["startColumn"], 7);
  EXPECT_EQ(region["endColumn"], 9);
  EXPECT_EQ(run["invocations"][0]["executionSuccessful"], true);
}

TEST(CheckSarif, WritesPathsAsUris) {
  const json log = json::parse(RunAlmcfg({"check", "--format", "sarif", "/no/such/a b%\xFF"}).out);
  EXPECT_EQ(log["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
            "/no/such/a%20b%25%FF");
  EXPECT_EQ(log["runs"][0]["invocations"][0]["executionSuccessful"], false);
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

TEST(Show, NamesTheLineThatNoLoadGetsPast) {
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

TEST(Lookup, AnswersWithTheLineThatServesAndThoseItReplaced) {
  const TempFile file("A\tB\tC\t7\t1\nA/X\tB\tC\t7\t2\n");
  const Outcome outcome = RunAlmcfg({"lookup", file.path(), "A", "B", "C", "7"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.out,
            "key:       \"A\", \"B\", \"C\", \"7\"\nanswer:    result 0, value 2\nserved by: " + file.path() +
                ":2: A/X→B→C→7→2\nreplaced:  " + file.path() + ":1: value \"1\"\n");
}

TEST(Lookup, SaysThatAMissingKeyGetsASuccessfulZeroAndWhatIsNear) {
  const Outcome outcome = RunAlmcfg({"lookup", "-", "a", "B", "C", "7"}, kGood + "X\tB\tC\t7\t9\n");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "key:       \"a\", \"B\", \"C\", \"7\"\n"
            "answer:    result 0, value 0: NO LINE serves this key; the caller gets a successful 0\n"
            "near:      <stdin>:1: column 1 is \"A\", not \"a\" (another case)\n"
            "             A→B→C→7→1\n");
}

TEST(Lookup, SaysWhenTheValueIsNotAnInteger) {
  const Outcome outcome =
      RunAlmcfg({"lookup", "--format", "json", "-", "A", "B", "C", "7"}, "A\tB\tC\t7\t15x\n");
  EXPECT_EQ(outcome.exitCode, 1);
  const json answer = json::parse(outcome.out);
  EXPECT_EQ(answer["result"], 1);
  EXPECT_EQ(answer["value"], nullptr);
  EXPECT_EQ(answer["servedBy"]["value"], "15x");
}

TEST(Lookup, TakesNegativeNumbersAndKeysThatLookLikeOptions) {
  EXPECT_EQ(Exit({"lookup", "-", "A", "B", "C", "-7"}, "A\tB\tC\t-7\t1\n"), 0);
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

TEST(Lookup, DoesNotSayThatALineReplacesItself) {
  const TempFile file("A\tB\tC\t7\t1\nA/A\tB\tC\t7\t2\n");
  const json answer =
      json::parse(RunAlmcfg({"lookup", "--format", "json", file.path(), "A", "B", "C", "7"}).out);
  EXPECT_EQ(answer["servedBy"]["line"], 2);
  ASSERT_EQ(answer["replaced"].size(), 1U);
  EXPECT_EQ(answer["replaced"][0],
            (json{{"file", file.path()}, {"line", 1}, {"value", "1"}, {"text", "A\tB\tC\t7\t1"}}));
  EXPECT_EQ(RunAlmcfg({"show", "-"}, "A/A\tB\tC\t7\t2\n").out,
            "#key1\tkey2\tkey3\tnumber\tvalue\tsource\nA\tB\tC\t7\t2\t<stdin>:1\n");
}

TEST(Lookup, NamesQuotedLinesAsNear) {
  const Outcome outcome = RunAlmcfg({"lookup", "-", "A", "B", "C", "7"}, "\"A\"\tB\tC\t7\t1\n");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out,
              HasSubstr("near:      <stdin>:1: column 1 is \"\"A\"\", not \"A\" (in quotation marks)\n"));
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

TEST(CommandLine, TakesEveryFileNameUnchanged) {
  for (const std::string name : {"[x]", "[x,y]", "[]", "{}", "%%", "++", "\"\"", "''", "x=y", "check"}) {
    const Outcome outcome = RunAlmcfg({"check", name});
    EXPECT_EQ(outcome.exitCode, 2) << name;
    EXPECT_THAT(outcome.out, testing::StartsWith(name + ":1:1: error: No such file or directory"));
  }
}

TEST(CommandLine, TakesOptionsBeforeBetweenAndAfterFiles) {
  const TempFile file(kGood);
  const std::string all =
      RunAlmcfg({"check", "--format", "json", "--strict", file.path(), "-"}, kWarning).out;
  EXPECT_EQ(json::parse(all)["totals"]["files"], 2);
  EXPECT_EQ(json::parse(all)["exitCode"], 1);
  EXPECT_EQ(RunAlmcfg({"check", file.path(), "--format", "json", "-", "--strict"}, kWarning).out, all);
  EXPECT_EQ(RunAlmcfg({"check", file.path(), "-", "--strict", "--format=json"}, kWarning).out, all);
  EXPECT_EQ(RunAlmcfg({"check", "--strict", "--format=json", "--", file.path(), "-"}, kWarning).out, all);
}

TEST(Diff, KnowsThatDeletedKeysStayUntilARestart) {
  const TempFile running("A\tB\tC\t7\t1\nB\tB\tC\t7\t1\nC\tB\tC\t7\t1\n");
  const TempFile fresh("A\tB\tC\t7\t1\nB\tB\tC\t7\t2\nD\tB\tC\t7\t1\n");
  const Outcome outcome = RunAlmcfg({"diff", running.path(), fresh.path()});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out,
            "changed:   \"B\", \"B\", \"C\", \"7\"\n             was \"1\" by " + running.path() +
                ":2\n             now \"2\" by " + fresh.path() +
                ":2\nadded:     \"D\", \"B\", \"C\", \"7\"\n             now \"1\" by " + fresh.path() +
                ":3\nstays:     \"C\", \"B\", \"C\", \"7\"\n             was \"1\" by " + running.path() +
                ":3\n             and remains in force until a restart\n"
                "reload:    1 answer changed, 1 key added, 1 deleted key stays in force\n"
                "restart:   the same, and 1 deleted key ends: its callers then get a successful 0\n");
}

TEST(Diff, IsCleanWhenNothingChanges) {
  const TempFile one("A/B\tB\tC\t7\t1\n");
  const TempFile two("B\tB\tC\t7\t1\n# the same\nA\tB\tC\t7\t1\n");
  EXPECT_EQ(Exit({"diff", one.path(), two.path()}), 0);
}

TEST(HostileInput, EndsWithAnAnswerInEveryFormat) {
  const std::vector<std::string> inputs{
      "",
      "\n",
      "\r\r\r",
      std::string(5000, '\r'),
      std::string(100000, '\0'),
      std::string(3000, '\n'),
      std::string("\xFF\xFE"
                  "A\0\t\0B\0\n\0",
                  10),
      std::string(200, '\t') + "\n" + std::string(200, '/') + "\n",
      almcfg_test::ReadFile(ALMCFG_PROGRAM).substr(0, 200000),
  };
  for (const std::string& input : inputs) {
    for (const std::string format : {"text", "json", "sarif"}) {
      const Outcome outcome = RunAlmcfg({"check", "--format", format, "-"}, input);
      EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1)
          << outcome.exitCode << ' ' << input.substr(0, 20);
      EXPECT_TRUE(format == "text" || json::accept(outcome.out)) << format << ' ' << input.substr(0, 20);
    }
    for (const std::string format : {"tsv", "json", "html"}) {
      const Outcome outcome = RunAlmcfg({"show", "--format", format, "-"}, input);
      EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1)
          << outcome.exitCode << ' ' << input.substr(0, 20);
    }
  }
}

TEST(HostileInput, OfAFileWithoutLineFeedsTakesNoMemoryForIt) {
  const TempFile file("");
  ASSERT_EQ(truncate(file.path().c_str(), off_t{64} << 20), 0);
  const Outcome outcome = RunAlmcfg({"check", file.path()});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, HasSubstr("67,108,864 bytes"));
}

TEST(HostileInput, MayBeADirectoryADeviceOrASilentPipe) {
  const TempFile pipe("");
  unlink(pipe.path().c_str());
  ASSERT_EQ(mkfifo(pipe.path().c_str(), 0600), 0);
  for (const std::string& path : {std::string("/"), std::string("/dev/zero"), pipe.path()}) {
    EXPECT_EQ(Exit({"check", path}), 2) << path;
    EXPECT_EQ(Exit({"show", path}), 2) << path;
    EXPECT_EQ(Exit({"lookup", path, "A", "B", "C", "7"}), 2) << path;
    EXPECT_EQ(Exit({"diff", path, path}), 2) << path;
  }
}

}  // namespace
