// The program on a terminal: colors, width, and that bytes of a file do not reach it unescaped.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tests/temp_directory.h"
#include "tools/almcfg/write/printable.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kUnset = nullptr;

/// What sets the terminal's colors and width.
struct Setting {
  const char* term = "xterm";
  const char* noColor = kUnset;
  std::size_t columns = 80;
};

void Set(const char* name, const char* value) {
  if (value == kUnset) {
    unsetenv(name);
  } else {
    setenv(name, value, 1);
  }
}

/// Runs almcfg in `folder` with outputs and input on a terminal, and returns all that it shows.
std::string ShownBy(const std::string& folder, std::vector<std::string> arguments, const Setting& setting) {
  termios raw{};
  cfmakeraw(&raw);
  winsize size{};
  size.ws_row = 24;
  size.ws_col = static_cast<unsigned short>(setting.columns);
  int screen = -1;
  arguments.insert(arguments.begin(), "almcfg");
  std::vector<char*> argv;
  for (std::string& argument : arguments) {
    argv.push_back(argument.data());
  }
  argv.push_back(nullptr);
  const pid_t child = forkpty(&screen, nullptr, &raw, &size);
  if (child == 0) {
    alarm(500);  // Seconds, as in run_program.cpp.
    Set("TERM", setting.term);
    Set("NO_COLOR", setting.noColor);
    if (chdir(folder.c_str()) == 0) {
      execv(ALMCFG_PROGRAM, argv.data());
    }
    _exit(127);
  }
  std::string shown;
  char buffer[4096];
  for (ssize_t count = 0; (count = read(screen, buffer, sizeof buffer)) > 0;) {
    shown.append(buffer, static_cast<std::size_t>(count));
  }
  close(screen);
  waitpid(child, nullptr, 0);
  return shown;
}

class Terminal : public testing::Test {
 protected:
  [[nodiscard]] std::string Shown(const std::vector<std::string>& arguments,
                                  const Setting& setting = {}) const {
    return ShownBy(folder_.path(), arguments, setting);
  }

  [[nodiscard]] bool HasColor(const Setting& setting, const std::vector<std::string>& options = {}) const {
    folder_.Write("lost.csv", "lost\n");
    std::vector<std::string> arguments{"check", "lost.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const std::string shown = Shown(arguments, setting);
    EXPECT_THAT(shown, HasSubstr("too-few-columns"));
    return shown.find('\x1b') != std::string::npos;
  }

  const TempDirectory folder_;
};

TEST_F(Terminal, GetsColors) {
  folder_.Write("lost.csv", "lost\n");
  EXPECT_THAT(Shown({"check", "lost.csv"}),
              testing::StartsWith("\x1b[1mlost.csv:1:1:\x1b[0m \x1b[1;31merror:\x1b[0m the "));
  EXPECT_THAT(Shown({"check", "lost.csv"}), HasSubstr("\n  \x1b[1;32m^~~~\x1b[0m\n"));
}

TEST_F(Terminal, GetsNoColorsWhenNoColorIsSetAndNotEmpty) {
  EXPECT_FALSE(HasColor({"xterm", "1"}));
  EXPECT_FALSE(HasColor({"xterm", "0"}));
  EXPECT_TRUE(HasColor({"xterm", ""}));
}

TEST_F(Terminal, GetsNoColorsWhenItIsDumbOrUnknown) {
  EXPECT_FALSE(HasColor({"dumb"}));
  EXPECT_FALSE(HasColor({kUnset}));
  EXPECT_TRUE(HasColor({"vt100"}));
}

TEST_F(Terminal, ObeysTheColorOptionInEveryEnvironment) {
  EXPECT_FALSE(HasColor({}, {"--color", "never"}));
  EXPECT_TRUE(HasColor({}, {"--color", "auto"}));
  EXPECT_TRUE(HasColor({"dumb", "1"}, {"--color", "always"}));
}

TEST_F(Terminal, GetsLinesThatFitIt) {
  folder_.Write("wide.csv", std::string(300, 'x') + "\tB\tC\t07\t1\n" + std::string(300, 'y') + "\n");
  for (const std::size_t columns : {40U, 80U, 132U}) {
    std::istringstream shown(Shown({"check", "--color", "never", "wide.csv"}, {"xterm", kUnset, columns}));
    std::size_t widest = 0;
    for (std::string line; std::getline(shown, line);) {
      const bool isSource = line.find("xxx") != std::string::npos || line.find("yyy") != std::string::npos;
      widest = isSource ? std::max(widest, almcfg::CharacterCount(line)) : widest;
    }
    EXPECT_LE(widest, columns);
    EXPECT_GT(widest + 4, columns) << "uses the width";
  }
}

TEST_F(Terminal, GetsTheDefaultWidthWhenItHasNone) {
  folder_.Write("wide.csv", std::string(300, 'y') + "\n");
  EXPECT_THAT(Shown({"check", "wide.csv"}, {"dumb", kUnset, 0}),
              HasSubstr("\n  " + std::string(96, 'y') + "…\n"));
}

TEST_F(Terminal, NeverGetsTheBytesOfAFileUnescaped) {
  const std::string hostile = "A\x1b]0;x\x07\x7F\xFF\xC2\x9B";
  folder_.Write("a.csv", hostile + "/\tB\tC" + hostile + "\t7\t" + hostile + "\r\n#" + hostile + "\nlost" +
                             hostile + "\n");
  folder_.Write("b.csv", hostile + "\tB\tC" + hostile + "\t7\tx\n");
  folder_.Write("calls", hostile + "\tB\tC" + hostile + "\t7\n" + hostile + "\tB\tx\t7\n");
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"check", "a.csv"},
                                             {"show", "a.csv"},
                                             {"fix", "a.csv"},
                                             {"fix", "--diff", "a.csv"},
                                             {"lookup", "a.csv", hostile, "b", "C" + hostile, "7"},
                                             {"lookup", "a.csv", hostile, "B", "C" + hostile, "7"},
                                             {"diff", "a.csv", "b.csv"},
                                             {"coverage", "a.csv", "--calls", "calls"}}) {
    const std::string shown = Shown(arguments, {"dumb"});
    EXPECT_THAT(shown, HasSubstr("A\\x1B]0;x\\x07\\x7F\\xFF\\xC2\\x9B")) << testing::PrintToString(arguments);
    for (const std::string bad : {"\x1b", "\x07", "\x7F", "\xFF", "\xC2\x9B"}) {
      EXPECT_THAT(shown, Not(HasSubstr(bad))) << testing::PrintToString(arguments);
    }
  }
}

TEST_F(Terminal, GetsTheRepairedFileWithVisibleTabs) {
  folder_.Write("a.csv", "A,B,C,7,1\r\n# x");
  EXPECT_EQ(Shown({"fix", "--quiet", "a.csv"}), "A→B→C→7→1\n# x\n");
  EXPECT_EQ(almcfg_test::RunIn(folder_.path(), {"fix", "a.csv"}).out, "A\tB\tC\t7\t1\n# x\n");
}

TEST_F(Terminal, GetsTheTableWithTabs) {
  folder_.Write("a.csv", "A \tB\tC\t7\t1\n");
  EXPECT_THAT(Shown({"show", "a.csv"}, {"dumb"}), HasSubstr("\nA \tB\tC\t7\t1\ta.csv:1\n"));
}

}  // namespace
