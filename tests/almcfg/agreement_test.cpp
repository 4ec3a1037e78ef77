// What the checker says about a file is what a load of it does: the same lines stored, logged and dropped,
// the same table. Random files go to both.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/almcfg/desk.h"
#include "tests/almcfg/run_program.h"
#include "tools/almcfg/desk_platform.h"

namespace {

using almcfg::BundleLog;
using almcfg_test::ContentOf;
using almcfg_test::TempFile;
using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::LineFate;

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

  /// Whatever breaks readers: blanks, separators, NULs, bytes of no encoding.
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

/// Notes what became of each line, and how the bundle's messages went.
class Fates : public almcfg::LineObserver {
 public:
  struct OneLine {
    std::string text;
    LineFate fate;
  };

  void OnLine(const almcfg::LoadedFiles& /*files*/, const almcfg::TakenLine& taken) override {
    lines.push_back({std::string(taken.line.text), taken.fate});
    if (taken.fate == LineFate::kLogged) {
      messages.push_back(std::to_string(taken.message.line) + ' ' + taken.message.text);
    }
  }
  void OnEnd(const almcfg::SourceText& /*text*/) override {}

  std::vector<OneLine> lines;
  std::vector<std::string> messages;
};

/// What one real load does.
struct RealLoad {
  explicit RealLoad(const std::string& content) {
    const TempFile file(content);
    BundleLog().clear();
    Alarm_Config_Param table;
    table.LoadConfig(file.path().c_str());
    entries = ContentOf(table);
    for (const almcfg::LoggedMessage& message : BundleLog()) {
      messages.push_back(std::to_string(message.line) + ' ' + message.text);
    }
    BundleLog().clear();
  }

  std::vector<std::string> entries;
  std::vector<std::string> messages;
};

/// What the checker makes of a file. Its records go to `table`, if there is one.
struct Checked {
  explicit Checked(const std::string& content, Alarm_Config_Param* table = nullptr)
      : file(content), desk(fates, progress, table) {
    desk.Load(almcfg::SourceText::Read(file.path(), progress));
  }

  const TempFile file;
  almcfg::Progress progress{false};
  Fates fates;
  almcfg::LoadedFiles desk;
};

class Agreement : public testing::TestWithParam<unsigned> {};

TEST_P(Agreement, HoldsForTheTableAndEveryMessage) {
  RandomText random(GetParam());
  for (int i = 0; i < kFiles / 10; ++i) {
    const std::string content = random.File();
    const RealLoad real(content);
    Alarm_Config_Param table;
    const Checked checked(content, &table);
    EXPECT_EQ(ContentOf(table), real.entries) << content;
    EXPECT_EQ(checked.desk.recordCount(), real.entries.size()) << content;
    EXPECT_EQ(checked.fates.messages, real.messages) << content;
  }
}

TEST_P(Agreement, HoldsForEachLineOnItsOwn) {
  RandomText random(GetParam() + 1000);
  for (int i = 0; i < kFiles / 10; ++i) {
    const Checked checked(random.File());
    for (const Fates::OneLine& line : checked.fates.lines) {
      const RealLoad real(line.text + "\n");
      const bool isSilent = line.fate == LineFate::kDropped || line.fate == LineFate::kSkipped;
      EXPECT_EQ(real.entries.empty(), line.fate != LineFate::kStored) << line.text;
      EXPECT_EQ(real.messages.size(), line.fate == LineFate::kLogged ? 1U : 0U) << line.text;
      EXPECT_EQ(real.entries.empty() && real.messages.empty(), isSilent) << line.text;
    }
  }
}

/// Whether a finding says that its line, or a part of it, does not reach the table.
bool IsLoss(almcfg::Code code) {
  return almcfg::TrapOf(code).severity == almcfg::Severity::kError ||
         code == almcfg::Code::kIndentedComment || code == almcfg::Code::kByteOrderMark;
}

TEST_P(Agreement, NoLineIsLostWithoutAFinding) {
  RandomText random(GetParam() + 2000);
  for (int i = 0; i < kFiles / 10; ++i) {
    const std::string content = random.File();
    const Checked checked(content);
    const std::vector<Fates::OneLine>& lines = checked.fates.lines;
    std::vector<bool> isExplained(lines.size() + 1);
    for (const almcfg::Finding& finding : almcfg_test::CheckWhole(content)) {
      isExplained[finding.line] = isExplained[finding.line] || IsLoss(finding.code);
    }
    for (std::size_t number = 1; number <= lines.size(); ++number) {
      const Fates::OneLine& line = lines[number - 1];
      const bool isBlank = line.text.find_first_not_of(" \t\r") == std::string::npos;
      const bool isLost = line.fate == LineFate::kLogged || (line.fate == LineFate::kDropped && !isBlank);
      EXPECT_TRUE(isExplained[number] || !isLost) << "line " << number << " of\n" << content;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Agreement, testing::Range(1U, 11U));

/// Loads in a thread that never ends, until the table has `count` entries; whether it then holds `expected`.
bool EndlessLoadHolds(const std::string& path, const std::vector<std::string>& expected) {
  static Alarm_Config_Param table;
  std::thread([&path] { table.LoadConfig(path.c_str()); }).detach();
  for (int i = 0; i < 500 && table.values().size() < expected.size(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // For what must not come.
  return ContentOf(table) == expected;
}

TEST(AgreementOnAnOverlongLine, ItsStartIsLoadedAndNothingBehindIt) {
  const std::string endless = "C\tB\tC\t7\t3" + std::string(1020, '3');
  Alarm_Config_Param table;
  const Checked checked("A\tB\tC\t7\t1\n" + endless + "\nD\tB\tC\t7\t4\n", &table);
  ASSERT_EQ(checked.desk.endlessLine().line, 2U);
  ASSERT_EQ(checked.desk.recordCount(), 2U);
  const std::vector<std::string> expected = ContentOf(table);
  ASSERT_EQ(expected, (std::vector<std::string>{"C\nB\nC\n7\n" + endless.substr(8, 1022 - 8) + "\n",
                                                "A\nB\nC\n7\n1\n"}));
  const pid_t child = fork();
  if (child == 0) {
    _exit(EndlessLoadHolds(checked.file.path(), expected) ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
