// The command table: a line is checked completely before anything runs.

#include "host/commands/command.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/base/problem.h"
#include "host/commands/script.h"
#include "host/platform/config_items.h"

namespace {

using host::ParseCommand;
using host::Words;

/// Returns "WORD: message" for the problem that parsing throws; WORD is the index of the wrong word.
std::string ProblemOf(const Words& words) {
  try {
    ParseCommand(words);
  } catch (const host::UsageError& problem) {
    return std::to_string(problem.Word()) + ": " + problem.what();
  }
  return "none";
}

class CommandLine : public testing::Test {
 protected:
  /// Returns the output of the line, or "! message" when it fails.
  std::string Run(const std::string& line) {
    out_.str("");
    try {
      host::RunLine(session_, line);
    } catch (const host::Problem& problem) {
      return std::string("! ") + problem.what();
    }
    return out_.str();
  }

  host::Loader loader_;
  std::ostringstream out_;
  host::Session session_{loader_, out_};
};

TEST(ParseCommand, FindsWhatIsWrongWithoutRunningAnything) {
  EXPECT_EQ(ProblemOf({"set", "NeverSet", "x"}),
            "2: set: 'x' is not an integer from -2147483648 to 2147483647");
  EXPECT_EQ(ProblemOf({"set", "NeverSet", "1"}), "none");
  for (const std::string& name : host::ItemNames()) {
    EXPECT_NE(name, "NeverSet");
  }
}

TEST(ParseCommand, SaysHowManyArgumentsACommandTakes) {
  EXPECT_EQ(ProblemOf({"set", "A"}), "0: set takes 2 arguments, not 1: set ITEM INTEGER");
  EXPECT_EQ(ProblemOf({"quit", "now"}), "0: quit takes 0 arguments, not 1: quit");
  EXPECT_EQ(ProblemOf({"log", "0", "1"}), "0: log takes 0 to 1 arguments, not 2: log [LEVEL]");
  EXPECT_EQ(ProblemOf({"load"}), "0: load takes 1 or more arguments, not 0: load LIBRARY [ARGUMENT...]");
}

TEST(ParseCommand, NamesTheWrongWordOfACommandWithinACommand) {
  EXPECT_EQ(ProblemOf({"time", "5", "call", "Str2Num", "1", "ten"}),
            "5: Str2Num: argument 2, base: 'ten' is not an integer from -2147483648 to 2147483647");
  EXPECT_EQ(ProblemOf({"call", "--json", "Nope"}), "2: no operation 'Nope'; 'help call' lists them");
}

TEST(Commands, EachHasItsNameOnceAndALineOfHelp) {
  for (const host::Command& command : host::Commands()) {
    EXPECT_EQ(&host::FindCommand(command.name), &command) << command.name;
    EXPECT_FALSE(command.summary.empty()) << command.name;
    EXPECT_LE(command.minArguments, command.maxArguments) << command.name;
    EXPECT_TRUE(command.details.empty() || command.details.back() == '\n') << command.name;
    EXPECT_EQ(ProblemOf({command.name, "--help"}), "none") << command.name;
  }
}

TEST_F(CommandLine, AParsedCommandMayRunAgain) {
  const host::Action action = ParseCommand({"log"});
  action(session_);
  action(session_);
  EXPECT_EQ(out_.str(), "log level: 0\nlog level: 0\n");
}

TEST_F(CommandLine, ExpectLooksAtWhatTheLastCommandPrinted) {
  EXPECT_EQ(Run("log"), "log level: 0\n");
  EXPECT_EQ(Run("expect 'level: 0'"), "");
  EXPECT_EQ(Run("expect 'log level'"), "");
  EXPECT_EQ(Run("expect 'og level'"), "! expected 'og level', but the last command printed 'log level: 0'");
  EXPECT_EQ(Run("set A 1"), "");
  EXPECT_EQ(Run("expect 'level: 0'"), "! expected 'level: 0', but the last command printed nothing");
}

TEST_F(CommandLine, ExpectErrorLooksAtTheMessageWithoutItsColumn) {
  EXPECT_EQ(Run("unset  Nothing"), "! column 8: unset: there is no item 'Nothing'; 'items' lists them");
  EXPECT_EQ(Run("expect-error \"unset: there is no item 'Nothing'\""), "");
  EXPECT_EQ(Run("expect-error column").substr(0, 31), "! expected the error 'column', ");
  EXPECT_EQ(Run("log"), "log level: 0\n");
  EXPECT_EQ(Run("expect-error item"), "! expected the error 'item', but the last command succeeded");
}

TEST_F(CommandLine, TheSummariesInTheHelpFitEightyColumns) {
  std::istringstream help(Run("help"));
  std::size_t lines = 0;
  for (std::string line; std::getline(help, line); ++lines) {
    EXPECT_TRUE(line.size() <= 80 || line.compare(0, 14, "  replay FILE ") == 0) << line;
  }
  EXPECT_GT(lines, host::Commands().size());
  EXPECT_NE(help.str().find("\n  set ITEM INTEGER   set a"), std::string::npos);
  EXPECT_NE(help.str().find("\n  load LIBRARY [ARGUMENT...]\n                     load a"),
            std::string::npos);
}

TEST_F(CommandLine, QuitOnlyRequestsTheEnd) {
  EXPECT_EQ(Run("quit"), "");
  EXPECT_TRUE(session_.quitRequested);
}

}  // namespace
