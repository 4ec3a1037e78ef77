// The program as users and scripts run it: exit codes, machine formats, and input that nobody meant for it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/finding.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

const std::string kGood = "A\tB\tC\t7\t1\n";
const std::string kWarning = "A\tB\tC\t07\t1\n";
const std::string kError = "A\tB\tC\t7\n";

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
}

TEST(ExitCode, OfCheckTellsFindingsFromNotRunning) {
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
  EXPECT_EQ(MistakeIn({}), "almcfg: COMMAND: one of check|show|lookup|diff is needed");
  EXPECT_EQ(MistakeIn({"chek", "x"}), "almcfg: COMMAND: \"chek\" is none of check|show|lookup|diff");
  EXPECT_EQ(MistakeIn({"-"}), "almcfg: COMMAND: \"-\" is none of check|show|lookup|diff");
  EXPECT_EQ(MistakeIn({"check", ""}), "almcfg: FILE: a name is empty");
  EXPECT_EQ(MistakeIn({"check", "x", "--color"}), "almcfg: --color: one of always|auto|never is needed");
  EXPECT_EQ(MistakeIn({"check", "--color=", "x"}), "almcfg: --color: one of always|auto|never is needed");
}

TEST(CommandLine, NamesAnOptionThatIsUnknownOrInTheWrongPlace) {
  EXPECT_EQ(MistakeIn({"--foo"}),
            "almcfg: COMMAND: one of check|show|lookup|diff is needed; there is no option \"--foo\"");
  EXPECT_EQ(MistakeIn({"--color", "never", "check", "x"}),
            "almcfg: COMMAND: \"--color\" belongs behind it; one of check|show|lookup|diff is needed first");
  EXPECT_EQ(MistakeIn({"lookup", "x", "--foo=1", "-A", "B", "C", "-7"}),
            "almcfg: lookup: it has no option \"--foo=1\"; a file or key that starts with \"-\" goes behind "
            "\"--\"");
}

TEST(CommandLine, MistakesAreOneLineWhateverTheyQuote) {
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
    EXPECT_EQ(almcfg_test::ReadFile(err.path()), "almcfg: the output could not be written\n") << arguments;
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
  EXPECT_EQ(result["totals"],
            (json{{"files", 2}, {"records", 1}, {"errors", 1}, {"warnings", 1}, {"notes", 0}}));
  EXPECT_EQ(result["exitCode"], 2);
}

TEST(CheckSarif, HasARuleForEveryTrapAndColumnsInCharacters) {
  const json log = json::parse(RunAlmcfg({"check", "--format", "sarif", "-"}, "\xC3\x9C\tB\tC\t07\t1\n").out);
  EXPECT_EQ(log["version"], "2.1.0");
  const json& run = log["runs"][0];
  EXPECT_EQ(run["tool"]["driver"]["rules"].size(), almcfg::kTrapCount);
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

TEST(ShowHtml, EscapesWhateverTheFileHolds) {
  const Outcome outcome = RunAlmcfg({"show", "--format", "html", "-"},
                                    "<img src=x>\t\"'&\tC\x1b\t7\t</td>\n<script>x\n</script>\n");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.out, HasSubstr("<td>&lt;img src=x&gt;</td><td>&quot;&#39;&amp;</td><td>C\\x1B</td>"));
  EXPECT_THAT(outcome.out, HasSubstr("&lt;/script&gt;"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("<img")));
  EXPECT_THAT(outcome.out, Not(HasSubstr("<script>x")));
}

TEST(ShowHtml, TakesNothingFromElsewhere) {
  const std::string page = RunAlmcfg({"show", "--format", "html", "-"}, kGood).out;
  for (const std::string reference : {"http:", "https:", "src=", "href=", "@import", "url("}) {
    EXPECT_THAT(page, Not(HasSubstr(reference)));
  }
}

TEST(ShowHtml, PutsABadLineWhereItStands) {
  const std::string page =
      RunAlmcfg({"show", "--format", "html", "-"}, "A\tB\tC\t7\t1\nlost\nZ\tB\tC\t7\t1\n").out;
  EXPECT_LT(page.find("<td>A</td>"), page.find("<td colspan=\"5\">lost</td>"));
  EXPECT_LT(page.find("<td colspan=\"5\">lost</td>"), page.find("<td>Z</td>"));
  EXPECT_NE(page.find("<td>Z</td>"), std::string::npos);
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

TEST(Lookup, SaysWhenTheValueIsNoInteger) {
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

TEST(Lookup, TakesEveryKeyAsItStands) {
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

TEST(Lookup, TakesAnEmptyKeyAsItStands) {
  const Outcome outcome = RunAlmcfg({"lookup", "-", "", "B", "C", "7"}, kGood);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.out, testing::StartsWith("key:       \"\", \"B\", \"C\", \"7\"\n"));
}

TEST(CommandLine, TakesEveryFileNameAsItStands) {
  for (const std::string name : {"[x]", "[x,y]", "[]", "{}", "%%", "++", "\"\"", "''", "x=y", "check"}) {
    const Outcome outcome = RunAlmcfg({"check", name});
    EXPECT_EQ(outcome.exitCode, 2) << name;
    EXPECT_THAT(outcome.out, testing::StartsWith(name + ":1:1: error: No such file or directory"));
  }
}

TEST(CommandLine, TakesOptionsBeforeBetweenAndBehindFiles) {
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
            "changed: \"B\", \"B\", \"C\", \"7\"\n           was \"1\" by " + running.path() +
                ":2\n           now \"2\" by " + fresh.path() +
                ":2\nadded:   \"D\", \"B\", \"C\", \"7\"\n           now \"1\" by " + fresh.path() +
                ":3\nstays:   \"C\", \"B\", \"C\", \"7\"\n           was \"1\" by " + running.path() +
                ":3\n           and remains in force until a restart\n"
                "reload:  1 value changed, 1 key added, 1 deleted key stays in force\n"
                "restart: the same, and 1 deleted key ends: its callers then get a successful 0\n");
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
  EXPECT_THAT(outcome.out, HasSubstr("67,108,864 characters"));
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
