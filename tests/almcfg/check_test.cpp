// almcfg check as users run it: what is counted, selected and refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"

namespace {

using almcfg_test::Outcome;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;
using testing::HasSubstr;
using testing::Not;

const std::string kGood = "A\tB\tC\t7\t1\n";
const std::string kWarning = "A\tB\tC\t07\t1\n";
const std::string kError = "A\tB\tC\t7\n";

int Exit(const std::vector<std::string>& arguments, const std::string& input = "") {
  return RunAlmcfg(arguments, input).exitCode;
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

TEST(Check, DoesNotConfuseAFileWithAClosedStandardInput) {
  const TempFile file(kGood);
  EXPECT_THAT(CheckWith("<&-", file.path() + " -"),
              HasSubstr("<stdin>:1:1: error: Bad file descriptor: there is nothing to check"));
}

TEST(Check, DoesNotConfuseASilentPipeWithAClosedStandardInput) {
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
  EXPECT_THAT(outcome.out, testing::EndsWith("3 files, 1 key, 2 errors\n"));
}

TEST(Check, SaysThatACleanFileIsClean) {
  EXPECT_EQ(RunAlmcfg({"check", "-"}, kGood).out, "1 file, 1 key, no findings\n");
}

TEST(Check, ColorsOnlyOnRequest) {
  EXPECT_THAT(RunAlmcfg({"check", "-"}, kError).out, Not(HasSubstr("\x1b")));
  EXPECT_THAT(RunAlmcfg({"check", "--color", "always", "-"}, kError).out, HasSubstr("\x1b[1;31merror:"));
}

TEST(Check, SelectsIgnoresAndLimitsFindings) {
  const std::string content = kWarning + kError + kError;
  EXPECT_EQ(Exit({"check", "--ignore", "too-few-columns", "-"}, content), 0);
  EXPECT_EQ(Exit({"check", "--strict", "--ignore", "too-few-columns", "-"}, content), 1);
  EXPECT_EQ(RunAlmcfg({"check", "--select", "edge-blank", "-"}, content).out, "1 file, 1 key, no findings\n");
  const Outcome limited = RunAlmcfg({"check", "--max-findings", "1", "-"}, content);
  EXPECT_EQ(limited.exitCode, 1);
  EXPECT_THAT(limited.out, Not(HasSubstr(" [too-few-columns]")));
  EXPECT_THAT(limited.out, testing::EndsWith("2 more findings\n  too-few-columns: 2\n"
                                             "  number-never-matches: 1\n"
                                             "1 file, 1 key, 2 errors, 1 warning\n"));
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

}  // namespace
