// The command line of almcfg: exit codes, mistakes, and what counts as a file or a key.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"

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

const std::string kCommands = "check|fix|show|lookup|diff|coverage";

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
}

/// The line that says what is wrong with the command line.
std::string MistakeIn(const std::vector<std::string>& arguments) {
  const std::string err = RunAlmcfg(arguments).err;
  return err.substr(0, err.find("\nalmcfg --help describes the commands\n"));
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

TEST(CommandLine, TakesEveryFileNameUnchanged) {
  for (const std::string name : {"[x]", "[x,y]", "[]", "{}", "%%", "++", "\"\"", "''", "x=y", "check"}) {
    const Outcome outcome = RunAlmcfg({"check", name});
    EXPECT_EQ(outcome.exitCode, 2) << name;
    EXPECT_THAT(outcome.out, testing::StartsWith(name + ":1:1: error: No such file or directory"));
  }
}

TEST(CommandLine, TakesEverythingAfterTwoDashesForAFile) {
  for (const std::string name : {"--help", "-h", "--strict", "--"}) {
    const Outcome outcome = RunAlmcfg({"check", "--", name});
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

}  // namespace
