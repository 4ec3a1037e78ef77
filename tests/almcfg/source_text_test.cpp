// Reading files and cutting them into lines, and files that cannot be read.

#include "tools/almcfg/read/source_text.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/read/input_file.h"
#include "tools/almcfg/write/progress.h"

namespace {

using almcfg::Obstacle;
using almcfg::SourceText;
using almcfg_test::TempFile;

SourceText Read(const std::string& path) {
  almcfg::Progress progress(false);
  return SourceText::Read(path, path, progress);
}

SourceText TextOf(const std::string& content) { return Read(TempFile(content).path()); }

std::vector<std::string> LinesOf(const SourceText& text) {
  std::vector<std::string> lines;
  for (almcfg::LineNumber number = 1; number <= text.LineCount(); ++number) {
    lines.emplace_back(text.LineAt(number).text);
  }
  return lines;
}

using Lines = std::vector<std::string>;

TEST(SourceText, HasNoLinesWhenTheFileIsEmpty) {
  EXPECT_EQ(TextOf("").LineCount(), 0U);
  EXPECT_TRUE(TextOf("").EndsWithLineFeed());
}

TEST(SourceText, CutsAtLineFeedsOnly) {
  EXPECT_EQ(LinesOf(TextOf("a\r\n\nb\rc\n")), (Lines{"a\r", "", "b\rc"}));
}

TEST(SourceText, KeepsALastLineWithoutLineFeed) {
  const SourceText text = TextOf("a\nb");
  EXPECT_EQ(LinesOf(text), (Lines{"a", "b"}));
  EXPECT_FALSE(text.EndsWithLineFeed());
}

TEST(SourceText, CountsNulsLikeOtherBytesButLoadsUpToThem) {
  const SourceText text = TextOf(std::string("a\0b\n\0c\n", 7));
  EXPECT_EQ(text.LineAt(1).text, std::string("a\0b", 3));
  EXPECT_EQ(text.LineAt(1).Loaded(), "a");
  EXPECT_EQ(text.LineAt(2).Loaded(), "");
}

TEST(SourceText, CountsOnlyLinesThatEndWithCrLf) {
  const SourceText text = TextOf("a\nb\r\n" + std::string(2000, 'x') + "\r\nc\rd\ne\r");
  EXPECT_EQ(text.CrLfLines(), 2U);
  EXPECT_EQ(text.FirstCrLfLine(), 2U);
  EXPECT_EQ(TextOf(std::string(1021, 'x') + "\ry\n").CrLfLines(), 0U);
}

TEST(SourceText, CountsACrLfThatIsReadInTwoPieces) {
  std::string content;
  while (content.size() + 1024 < 262'144) {
    content += "#" + std::string(1000, 'x') + "\n";
  }
  content.append(262'143 - content.size(), 'y');
  EXPECT_EQ(TextOf(content + "\r\n").CrLfLines(), 1U) << "CR is the last byte of a piece";
  EXPECT_EQ(TextOf(content + "y\r\n").CrLfLines(), 1U) << "CR is the first one";
}

TEST(SourceText, TakesALineOf1022CharactersWhole) {
  const std::string line = std::string(1021, 'x') + '\r';
  const SourceText text = TextOf(line + "\n" + line);
  EXPECT_FALSE(text.LineAt(1).IsOverlong());
  EXPECT_FALSE(text.LineAt(2).IsOverlong());
  EXPECT_EQ(text.LineAt(2).text, line);
  const SourceText longer = TextOf(line + "\n" + line + "x\n" + line + "\n");
  EXPECT_FALSE(longer.LineAt(1).IsOverlong());
  EXPECT_TRUE(longer.LineAt(2).IsOverlong());
  EXPECT_FALSE(longer.LineAt(3).IsOverlong());
}

TEST(SourceText, KeepsTheStartAndTheLengthOfALongerLine) {
  const SourceText text = TextOf("a\n" + std::string(1022, 'x') + "\r\nb\n" + std::string(300000, 'y'));
  EXPECT_TRUE(text.LineAt(2).IsOverlong());
  EXPECT_EQ(text.LineAt(2).text, std::string(1022, 'x'));
  EXPECT_EQ(text.LineAt(2).length, 1023U);
  EXPECT_FALSE(text.LineAt(3).IsOverlong());
  EXPECT_EQ(text.LineAt(4).length, 300000U);
}

TEST(SourceText, LosesNothingWhereItsBuffersEnd) {
  std::string content;
  Lines expected;
  for (int i = 0; content.size() < (std::size_t{3} << 20); ++i) {
    expected.push_back(std::to_string(i) + std::string(static_cast<std::size_t>(i % 700), 'z'));
    content += expected.back() + '\n';
  }
  EXPECT_EQ(LinesOf(TextOf(content)), expected);
}

TEST(SourceText, CutsLikeTheStreamThatALoadReads) {
  std::mt19937 random(7);
  for (int round = 0; round < 100; ++round) {
    std::string content;
    for (int i = static_cast<int>(random() % 4000); i > 0; --i) {
      content += "ab\r\0\n\n"[random() % 6];
    }
    const TempFile file(content);
    std::ifstream stream(file.path());
    Lines expected;
    char buffer[1024];
    while (!stream.eof()) {
      stream.getline(buffer, 1023);
      if (stream.gcount() > 0 && !(stream.eof() && stream.fail())) {
        const auto length = static_cast<std::size_t>(stream.gcount()) - (stream.eof() ? 0 : 1);
        expected.emplace_back(buffer, length);
      }
    }
    EXPECT_EQ(LinesOf(Read(file.path())), expected) << round;
  }
}

TEST(SourceText, StaysInPlaceWhenMoved) {
  SourceText first = TextOf("abc\n");
  const char* const before = first.LineAt(1).text.data();
  const SourceText second = std::move(first);
  EXPECT_EQ(second.LineAt(1).text.data(), before);
}

/// How reading the file fails.
almcfg::ReadError ErrorOf(const std::string& path) {
  try {
    Read(path);
  } catch (const almcfg::ReadError& error) {
    return error;
  }
  throw std::logic_error(path + " was read");
}

TEST(SourceText, RefusesWhatIsMissing) {
  const almcfg::ReadError error = ErrorOf("/no/such/file");
  EXPECT_STREQ(error.what(), "No such file or directory");
  EXPECT_EQ(error.obstacle, Obstacle::kNotOpened);
}

TEST(SourceText, RefusesADirectory) { EXPECT_EQ(ErrorOf("/").obstacle, Obstacle::kDirectory); }

TEST(SourceText, RefusesAnEndlessDevice) { EXPECT_EQ(ErrorOf("/dev/zero").obstacle, Obstacle::kDevice); }

TEST(SourceText, RefusesAFileWhoseReadingFails) {
  // It can be opened, but nothing is mapped where it starts.
  EXPECT_EQ(ErrorOf("/proc/self/mem").obstacle, Obstacle::kReadFailed);
}

TEST(SourceText, ReadsTheNullDeviceAsAnEmptyFile) { EXPECT_EQ(Read("/dev/null").LineCount(), 0U); }

TEST(SourceText, RefusesAPipeWithoutAWriterInsteadOfWaiting) {
  const TempFile file("");
  unlink(file.path().c_str());
  ASSERT_EQ(mkfifo(file.path().c_str(), 0600), 0);
  EXPECT_EQ(ErrorOf(file.path()).obstacle, Obstacle::kSilentPipe);
}

/// Root may read everything, so the test runs as another user while this object lives.
class WithoutRights {
 public:
  WithoutRights() : changed_(geteuid() == 0 && seteuid(kUnprivileged) == 0) {}
  ~WithoutRights() { EXPECT_EQ(changed_ ? seteuid(0) : 0, 0); }
  WithoutRights(const WithoutRights&) = delete;
  WithoutRights& operator=(const WithoutRights&) = delete;

 private:
  static constexpr uid_t kUnprivileged = 65534;
  bool changed_;
};

TEST(SourceText, RefusesAFileThatTheUserMayNotRead) {
  const TempFile file("a\n");
  ASSERT_EQ(chmod(file.path().c_str(), 0), 0);
  const WithoutRights unprivileged;
  EXPECT_EQ(ErrorOf(file.path()).obstacle, Obstacle::kNotOpened);
}

}  // namespace
