// almcfg's table of a file equals the one of a real load, and every line that is not loaded has a finding.
// Checked with random files.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/almcfg/check_text.h"
#include "tests/almcfg/run_program.h"

namespace {

using almcfg_test::ContentOf;
using almcfg_test::TableOf;
using almcfg_test::TempFile;
using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::LineOutcome;

constexpr int kFiles = 150;
constexpr int kMostLines = 30;

class RandomText {
 public:
  explicit RandomText(unsigned seed) : random_(seed) {}

  std::string File() {
    std::string text;
    for (int line = Upto(kMostLines); line >= 0; --line) {
      text += Line();
      text += Upto(15) == 0 ? "\r\n" : "\n";
    }
    if (Upto(3) == 0) {
      text.pop_back();
    }
    return text;
  }

 private:
  int Upto(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

  std::string Line() {
    switch (Upto(9)) {
      case 0:
        return Noise(Upto(30));
      case 1:
        return std::string(static_cast<std::size_t>(Upto(2)), ' ') + "#" + Columns();
      case 2:
        return Wide();
      default:
        return Columns();
    }
  }

  std::string Columns() {
    std::string line;
    const int columns = Upto(5) == 0 ? Upto(6) : 4;
    for (int i = 0; i <= columns; ++i) {
      line += (i == 0 ? "" : "\t") + Column();
    }
    return line;
  }

  std::string Column() {
    std::string column = Word();
    while (Upto(3) == 0) {
      column += "/" + Word();
    }
    return column;
  }

  std::string Word() {
    static const std::vector<std::string> kWords{"A", "B",   "A ",       " B", "7",         "07",
                                                 "",  "x y", "\xC3\x9C", "#",  "4294967297"};
    return kWords[static_cast<std::size_t>(Upto(Upto(2) == 0 ? 10 : 4))];
  }

  /// Bytes that are difficult to read: blanks, separators, NULs, bytes that are not valid in any encoding.
  std::string Noise(int length) {
    static const std::string kBytes("\t\t\t/ #A7,;\r\0\v\xFF", 14);
    std::string noise;
    while (length-- > 0) {
      noise += kBytes[static_cast<std::size_t>(Upto(13))];
    }
    return noise;
  }

  /// A line that just fits.
  std::string Wide() {
    const std::string columns = "\tB\tC\t7\t1";
    return std::string(static_cast<std::size_t>(1022 - Upto(2)) - columns.size() - 1, 'W') + columns;
  }

  std::mt19937 random_;
};

/// The table after a real load by the bundle.
std::vector<std::string> RealLoad(const std::string& content) {
  const TempFile file(content);
  Alarm_Config_Param table;
  table.LoadConfig(file.path().c_str());
  return ContentOf(table);
}

class Agreement : public testing::TestWithParam<unsigned> {};

TEST_P(Agreement, HoldsForTheTable) {
  RandomText random(GetParam());
  for (int i = 0; i < kFiles / 10; ++i) {
    const std::string content = random.File();
    const std::vector<std::string> entries = RealLoad(content);
    const almcfg::LoadedTable table = TableOf(content);
    EXPECT_EQ(ContentOf(table), entries) << content;
    EXPECT_EQ(table.RecordCount(), entries.size()) << content;
  }
}

/// Whether a finding says that its line, or a part of it, does not reach the table.
bool IsLoss(almcfg::Code code) {
  return almcfg::RuleOf(code).severity == almcfg::Severity::kError ||
         code == almcfg::Code::kIndentedComment || code == almcfg::Code::kByteOrderMark ||
         code == almcfg::Code::kHeaderLine;
}

TEST_P(Agreement, NoLineIsLostWithoutAFinding) {
  RandomText random(GetParam() + 2000);
  for (int i = 0; i < kFiles / 10; ++i) {
    const std::string content = random.File();
    const almcfg::LoadedTable table = TableOf(content);
    const almcfg::SourceText& text = table.Text(0);
    std::vector<bool> isExplained(text.LineCount() + 1);
    for (const almcfg::Finding& finding : almcfg_test::CheckWhole(content)) {
      isExplained[finding.line] = isExplained[finding.line] || IsLoss(finding.code);
    }
    for (almcfg::LineNumber number = 1; number <= text.LineCount(); ++number) {
      const std::string line(text.LineAt(number).Loaded());
      const bool isSilent =
          line.empty() || line[0] == '#' || line.find_first_not_of(" \t\r") == std::string::npos;
      EXPECT_TRUE(isExplained[number] || isSilent || !RealLoad(line + "\n").empty())
          << "line " << number << " of\n"
          << content;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Agreement, testing::Range(1U, 11U));

/// Loads in a thread that never ends, until the table has `count` entries; whether it then holds `expected`.
bool EndlessLoadHolds(const std::string& path, const std::vector<std::string>& expected) {
  static Alarm_Config_Param table;
  std::thread([&path] { table.LoadConfig(path.c_str()); }).detach();
  while (table.Values().size() < expected.size()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // Nothing more must come.
  return ContentOf(table) == expected;
}

TEST(AgreementOnAnOverlongLine, ItsStartIsLoadedAndNothingAfterIt) {
  const std::string endless = "C\tB\tC\t7\t3" + std::string(1020, '3');
  const std::string content = "A\tB\tC\t7\t1\n" + endless + "\nD\tB\tC\t7\t4\n";
  const TempFile file(content);
  const almcfg::LoadedTable table = TableOf(content);
  ASSERT_EQ(table.EndlessLine().line, 2U);
  ASSERT_EQ(table.RecordCount(), 2U);
  const std::vector<std::string> expected = ContentOf(table);
  ASSERT_EQ(expected, (std::vector<std::string>{"C\nB\nC\n7\n" + endless.substr(8, 1022 - 8) + "\n",
                                                "A\nB\nC\n7\n1\n"}));
  const pid_t child = fork();
  if (child == 0) {
    alarm(500);  // Seconds; ends the child when an expected entry never comes.
    _exit(EndlessLoadHolds(file.path(), expected) ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
