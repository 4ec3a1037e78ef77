// Compares the manual page, the completion, and every command shown in a page together with its output with
// the program.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/check/finding.h"

namespace {

using almcfg_test::ProjectFolder;
using almcfg_test::ReadFile;
using almcfg_test::RunAlmcfg;
using almcfg_test::TempFile;

const std::vector<std::string> kCommands{"check", "fix", "show", "lookup", "diff", "coverage"};

using Words = std::set<std::string>;

Words Matches(const std::string& text, const std::string& pattern) {
  const std::regex regex(pattern);
  Words words;
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    words.insert(match->str(1));
  }
  return words;
}

std::string HelpOf(const std::string& command) { return RunAlmcfg({command, "--help"}).out; }

/// The options that a help text lists.
Words OptionsIn(const std::string& help) { return Matches(help, "\n  [^\n]*?(--[a-z-]+)"); }

Words Union(Words a, const Words& b) {
  a.insert(b.begin(), b.end());
  return a;
}

/// What to change in `place`, which has the words `has` and shall have `wanted`; empty when they are equal.
std::string Correction(const std::string& place, const Words& has, const Words& wanted) {
  std::string changes;
  for (const std::string& word : wanted) {
    changes += has.count(word) == 0 ? " write " + word + ";" : "";
  }
  for (const std::string& word : has) {
    changes += wanted.count(word) == 0 ? " delete " + word + ";" : "";
  }
  return changes.empty() ? "" : place + ":" + changes;
}

/// What to add to `place`, whose text shall contain `wanted`; empty when it does.
std::string Addition(const std::string& place, const std::string& text, const std::string& wanted) {
  return text.find(wanted) != std::string::npos ? "" : place + ": write\n" + wanted;
}

constexpr const char* kManPage = "docs/man/almcfg.1";
constexpr const char* kCompletion = "tools/almcfg/almcfg.bash";
constexpr const char* kPage = "docs/alarm-config.md";

/// The man page as one reads it, without its markup.
std::string ManPage() {
  const std::string source = ReadFile(ProjectFolder() + kManPage);
  return std::regex_replace(source, std::regex("\\\\"), "");
}

TEST(ManPage, HasExactlyTheOptionsOfTheHelp) {
  Words options = OptionsIn(RunAlmcfg({"--help"}).out);
  for (const std::string& command : kCommands) {
    options = Union(options, OptionsIn(HelpOf(command)));
  }
  EXPECT_EQ(Correction(kManPage, Matches(ManPage(), "(--[a-z-]+)"), options), "");
  EXPECT_THAT(options, testing::IsSupersetOf(Words{"--color", "--format", "--help", "--sort", "--version"}));
}

TEST(ManPage, HasTheOptionsOfEachCommandInItsSynopsis) {
  const std::string page = ManPage();
  for (const std::string& command : kCommands) {
    const std::size_t begin = page.find(".B almcfg " + command + "\n");
    ASSERT_NE(begin, std::string::npos) << kManPage << ", SYNOPSIS: write .B almcfg " << command;
    const std::string synopsis = page.substr(begin, page.find(".br", begin) - begin);
    const std::string help = HelpOf(command);
    const std::string place = kManPage + (", SYNOPSIS of " + command);
    const std::string choices = "([a-z]+(?:\\|[a-z]+)+)";
    EXPECT_EQ(Correction(place, Union(Matches(synopsis, "(--[a-z-]+)"), {"--help"}), OptionsIn(help)), "");
    EXPECT_EQ(Correction(place, Matches(synopsis, choices), Matches(help, choices)), "");
  }
}

/// The names of files and keys in a synopsis, of which each line starts with its font.
std::string ArgumentsIn(const std::string& synopsis) {
  const std::regex line("\n\\.I(R?) ([^\n]*)");
  std::string arguments;
  for (std::sregex_iterator match(synopsis.begin(), synopsis.end(), line), end; match != end; ++match) {
    const std::string words = match->str(2);
    arguments += ' ' + (match->length(1) == 0 ? words : std::regex_replace(words, std::regex(" "), ""));
  }
  return arguments;
}

TEST(ManPage, NamesTheFilesAndKeysOfEachCommandAsItsHelpDoes) {
  const std::string page = ManPage();
  for (const std::string& command : kCommands) {
    const std::size_t begin = page.find(".B almcfg " + command + "\n");
    const std::string arguments = ArgumentsIn(page.substr(begin, page.find(".br", begin) - begin));
    const Words usage = Matches(HelpOf(command), "\nUsage: almcfg " + command + R"( \[OPTIONS\]([^\n]*)\n)");
    EXPECT_EQ(Correction(kManPage + (", SYNOPSIS of " + command), {arguments}, usage), "");
  }
  EXPECT_EQ(Addition("almcfg lookup --help", HelpOf("lookup"), " [OPTIONS] FILE... KEY1 KEY2 KEY3 NUMBER\n"),
            "");
}

TEST(ManPage, NamesEveryRuleInItsClass) {
  const std::string page = ManPage();
  const std::size_t warnings = page.find("\nWarnings:");
  const std::size_t notes = page.find("\nNotes:");
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    const std::size_t at = page.find(rule.name, page.find(".SH FINDINGS"));
    ASSERT_NE(at, std::string::npos) << kManPage << ", FINDINGS: write " << rule.name;
    const auto severity = at < warnings ? almcfg::Severity::kError
                          : at < notes  ? almcfg::Severity::kWarning
                                        : almcfg::Severity::kNote;
    EXPECT_TRUE(severity == rule.severity)
        << kManPage << ", FINDINGS: move " << rule.name << " to the " << NameOf(rule.severity) << "s";
  }
}

TEST(ManPage, DescribesEveryCommandOfTheHelp) {
  EXPECT_EQ(Correction("kCommands of this test", Words(kCommands.begin(), kCommands.end()),
                       Matches(RunAlmcfg({"--help"}).out, "\n  ([a-z]+) ")),
            "");
  for (const std::string& command : kCommands) {
    EXPECT_EQ(Addition(kManPage, ManPage(), ".TP\n.B " + command + "\n"), "");
  }
}

/// What bash offers for the last of `words`.
Words Complete(const std::string& words) {
  const TempFile out("");
  const std::string script =
      "source " + ProjectFolder() + "tools/almcfg/almcfg.bash; COMP_WORDS=(" + words +
      "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _almcfg; printf \"%s\\n\" \"${COMPREPLY[@]}\"";
  EXPECT_EQ(std::system(("bash -c '" + script + "' >" + out.path()).c_str()), 0);
  std::istringstream lines(ReadFile(out.path()));
  Words offered;
  for (std::string line; std::getline(lines, line);) {
    offered.insert(line);
  }
  return offered;
}

TEST(Completion, OffersTheCommandsAndOptionsOfTheHelp) {
  EXPECT_EQ(Correction(kCompletion, Complete("almcfg \"\""),
                       Union(Words(kCommands.begin(), kCommands.end()), {"--help", "--version"})),
            "");
  for (const std::string& command : kCommands) {
    EXPECT_EQ(Correction(kCompletion + (", " + command), Complete("almcfg " + command + " --"),
                         OptionsIn(HelpOf(command))),
              "");
  }
}

TEST(Completion, OffersTheFormatsOfTheHelp) {
  for (const std::string command : {"check", "show", "lookup", "diff", "coverage"}) {
    std::string formats;
    for (const std::string& format : Complete("almcfg " + command + " --format \"\"")) {
      formats += (formats.empty() ? "" : "|") + format;
    }
    EXPECT_EQ(Correction(kCompletion + (", formats of " + command), {formats},
                         Matches(HelpOf(command), "--format ([a-z|]+) ")),
              "");
  }
  EXPECT_EQ(Complete("almcfg show --color a"), (Words{"always", "auto"}));
}

TEST(Page, DescribesEveryRuleInThePartForItsSeverity) {
  const std::string page = ReadFile(ProjectFolder() + kPage);
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    std::string part = std::string("### ") + NameOf(rule.severity) + "s";
    part[4] = static_cast<char>(part[4] - 'a' + 'A');
    const std::size_t begin = page.find("\n" + part + "\n");
    ASSERT_NE(begin, std::string::npos) << kPage << ": write the heading " << part;
    const std::string text = page.substr(begin, page.find("\n### ", begin + 1) - begin);
    EXPECT_NE(text.find("\n#### `" + std::string(rule.name) + "`\n"), std::string::npos)
        << kPage << ", " << part << ": write the section #### `" << rule.name << '`';
  }
}

/// The codes in the first column of the page's table with this heading.
Words CodesInTable(const std::string& page, const std::string& heading) {
  const std::size_t begin = page.find("\n| " + heading + " |");
  std::istringstream table(page.substr(begin, page.find("\n\n", begin + 1) - begin));
  Words codes;
  for (std::string line; std::getline(table, line);) {
    codes = Union(codes, Matches(line.substr(0, line.find('|', 1)), "`([a-z-]+)`"));
  }
  return codes;
}

TEST(Page, ListsTheSafeAndTheUnsafeRepairs) {
  const std::string page = ReadFile(ProjectFolder() + "docs/alarm-config.md");
  Words safe;
  Words unsafe;
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    if (rule.repair == almcfg::Repair::kSafe) {
      safe.insert(rule.name);
    } else if (rule.repair == almcfg::Repair::kUnsafe) {
      unsafe.insert(rule.name);
    }
  }
  EXPECT_EQ(CodesInTable(page, "safe repair of"), safe);
  // These two also have an unsafe case.
  EXPECT_EQ(CodesInTable(page, "unsafe repair of"), Union(unsafe, {"byte-order-mark", "indented-comment"}));
}

/// Splits what a user types at blanks; there is no quoting.
std::vector<std::string> SplitAtBlanks(const std::string& text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

/// Runs every "$ almcfg ..." of a page's blocks and compares what follows; returns how many there were.
int CheckCommandsIn(const std::string& page) {
  const std::string text = ReadFile(ProjectFolder() + page);
  const std::regex block("```\n\\$ almcfg ([^\n]*)\n([^`]*?)```\n");
  int count = 0;
  for (std::sregex_iterator match(text.begin(), text.end(), block), end; match != end; ++match, ++count) {
    EXPECT_EQ(match->str(2), RunAlmcfg(SplitAtBlanks(match->str(1))).out)
        << page << ": write what almcfg " << match->str(1) << " prints now, the second text above";
  }
  return count;
}

TEST(Page, ShowsWhatTheProgramSays) {
  EXPECT_GT(CheckCommandsIn(kPage), static_cast<int>(almcfg::kRuleCount) - 3);
}

/// The block of a page that starts with the line `first`, without its fences.
std::string BlockOf(const std::string& page, const std::string& first) {
  const std::string text = ReadFile(ProjectFolder() + page);
  const std::size_t start = text.find("```sh\n" + first + "\n") + 6;
  return text.substr(start, text.find("```\n", start) - start);
}

TEST(Page, ShowsACommitHookThatKeepsFindingsOutUnderEveryFileName) {
  const TempFile hook(BlockOf(kPage, "#!/bin/bash"));
  const TempFile script(R"(set -e
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    cd "$work"
    export PATH="$(dirname "$2"):$PATH" GIT_CONFIG_GLOBAL=/dev/null GIT_CONFIG_NOSYSTEM=1
    git init -q
    git config user.name tester
    git config user.email tester@example
    install -D "$1" .git/hooks/pre-commit
    for file in AlarmConfig.csv $'\303\204 AlarmConfig.csv'; do
      printf 'A\tB\tC\t07\t1\n' >"$file"
      git add "$file"
      ! git commit -qm warning || exit 1
      printf 'A\tB\tC\t7\t1\n' >"$file"
      git add "$file"
      git commit -qm clean
    done)");
  const std::string command = "bash " + script.path() + " " + hook.path() + " " ALMCFG_PROGRAM " 2>/dev/null";
  EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(Readme, ShowsWhatTheProgramSays) { EXPECT_GT(CheckCommandsIn("README.md"), 0); }

}  // namespace
