// Lines of a feed, wherever the chunks that are read end. A pipe that has no writer must neither block the
// opening nor keep the agent from finishing.

#include "examples/alarm_agent/feed_reader.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <optional>
#include <thread>

#include "examples/alarm_agent/setup_error.h"
#include "tests/temp_directory.h"

namespace alarm_agent {
namespace {

using testing::ElementsAre;

std::optional<std::string> NextText(FeedReader& reader) {
  FeedLine line;
  return reader.Next(line) ? std::optional(line.text) : std::nullopt;
}

std::vector<std::string> AllTexts(FeedReader& reader) {
  std::vector<std::string> texts;
  while (const auto text = NextText(reader)) texts.push_back(*text);
  return texts;
}

std::vector<std::string> TextsOf(const std::string& content) {
  const TempDirectory dir;
  FeedReader reader(dir.Write("feed", content));
  return AllTexts(reader);
}

std::string ComplaintAbout(const std::string& path) {
  try {
    FeedReader reader(path);
  } catch (const SetupError& error) {
    return error.what();
  }
  return "none";
}

/// A named pipe with a reader and, once asked for, a writer.
struct Pipe {
  TempDirectory dir;
  std::string path = dir / "pipe";
  UniqueFd writer;
  FeedReader reader;

  Pipe() : writer(Make(path)), reader(path) {}
  void Write(const std::string& text) const {
    ASSERT_EQ(::write(writer.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

 private:
  // Opened for reading and writing, so that opening does not wait and the pipe does not end.
  static int Make(const std::string& path) {
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    return ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  }
};

TEST(FeedReader, ReadsLinesWithTheirNumbers) {
  const TempDirectory dir;
  FeedReader reader(dir.Write("feed", "a\nb\n"));
  FeedLine line;
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line.number, 1U);
  EXPECT_EQ(line.text, "a");
  ASSERT_TRUE(reader.Next(line));
  EXPECT_EQ(line.number, 2U);
  EXPECT_EQ(line.text, "b");
  EXPECT_TRUE(line.isWhole);
  EXPECT_FALSE(reader.Next(line));
  EXPECT_FALSE(reader.Next(line));
  EXPECT_EQ(reader.Problem(), "");
}

TEST(FeedReader, AnEmptyFeedHasNoLine) { EXPECT_THAT(TextsOf(""), ElementsAre()); }

TEST(FeedReader, TheLastLineNeedsNoLineFeed) { EXPECT_THAT(TextsOf("a\nb"), ElementsAre("a", "b")); }

TEST(FeedReader, AnEmptyLineIsALine) { EXPECT_THAT(TextsOf("\n\na\n\n"), ElementsAre("", "", "a", "")); }

TEST(FeedReader, ACarriageReturnStaysInTheText) { EXPECT_THAT(TextsOf("a\r\n"), ElementsAre("a\r")); }

TEST(FeedReader, LinesThatStraddleChunksAreWhole) {
  std::string content;
  for (int i = 0; i < 30'000; ++i) content += "line " + std::to_string(i) + "\n";
  ASSERT_GT(content.size(), 4U * 65536U);
  const std::vector<std::string> texts = TextsOf(content);
  ASSERT_EQ(texts.size(), 30'000U);
  for (int i = 0; i < 30'000; ++i) {
    ASSERT_EQ(texts[static_cast<std::size_t>(i)], "line " + std::to_string(i));
  }
}

TEST(FeedReader, ALineOverTheLimitIsCutAndMarkedAndTheNextOneIsWhole) {
  const TempDirectory dir;
  const std::string longest(FeedReader::kMaxLine, 'x');
  FeedReader reader(
      dir.Write("feed", longest + "\n" + longest + "y\n" + longest + longest + longest + "\nz\n"));
  FeedLine line;
  ASSERT_TRUE(reader.Next(line));
  EXPECT_TRUE(line.isWhole);
  EXPECT_EQ(line.text, longest);
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(reader.Next(line));
    EXPECT_FALSE(line.isWhole);
    EXPECT_EQ(line.text, longest);
  }
  ASSERT_TRUE(reader.Next(line));
  EXPECT_TRUE(line.isWhole);
  EXPECT_EQ(line.number, 4U);
  EXPECT_EQ(line.text, "z");
}

TEST(FeedReader, ALineThatWasCutStaysMarkedWhenItsEndIsInTheNextChunk) {
  const TempDirectory dir;
  FeedReader reader(dir.Write("feed", std::string(2 * FeedReader::kMaxLine, 'x') + "\n"));
  FeedLine line;
  ASSERT_TRUE(reader.Next(line));
  EXPECT_FALSE(line.isWhole);
}

TEST(FeedReader, AFeedThatDoesNotExistIsRefused) {
  EXPECT_EQ(ComplaintAbout("/nowhere/feed.txt"),
            "the feed \"/nowhere/feed.txt\" cannot be opened: No such file or directory");
}

TEST(FeedReader, AStandardInputThatIsClosedIsRefusedByItsName) {
  const int input = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  EXPECT_EQ(ComplaintAbout(""), "the feed \"standard input\" cannot be opened: Bad file descriptor");
  dup2(input, STDIN_FILENO);
  close(input);
}

TEST(FeedReader, ADirectoryIsRefused) {
  const TempDirectory dir;
  EXPECT_EQ(ComplaintAbout(dir / "."),
            "the feed \"" + (dir / ".") + "\" is a directory; a file or a pipe is needed");
}

TEST(FeedReader, AFeedThatCannotBeReadFurtherSaysWhy) {
  // /proc/self/mem can be opened, but reading it at 0 fails, where nothing is mapped.
  FeedReader reader("/proc/self/mem");
  EXPECT_EQ(NextText(reader), std::nullopt);
  EXPECT_EQ(reader.Problem(), "the feed \"/proc/self/mem\" cannot be read further: Input/output error");
}

TEST(FeedReader, AFinishStillReadsAFileToItsEnd) {
  const TempDirectory dir;
  FeedReader reader(dir.Write("feed", "a\nb\nc\n"));
  EXPECT_EQ(NextText(reader), "a");
  reader.Finish();
  EXPECT_THAT(AllTexts(reader), ElementsAre("b", "c"));
}

TEST(FeedReader, AFinishReadsWhatThePipeHoldsAndWaitsForNothing) {
  Pipe pipe;
  pipe.Write("a\nb\nhalf");
  pipe.reader.Finish();
  EXPECT_THAT(AllTexts(pipe.reader), ElementsAre("a", "b", "half"));
}

TEST(FeedReader, AFinishEndsAnEmptyPipeAtOnce) {
  Pipe pipe;
  pipe.reader.Finish();
  EXPECT_THAT(AllTexts(pipe.reader), ElementsAre());
}

TEST(FeedReader, OpensAPipeWithoutWaitingForAWriter) {
  const TempDirectory dir;
  const std::string path = dir / "pipe";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  auto opened = std::async(std::launch::async, [&] { FeedReader reader(path); });
  EXPECT_EQ(opened.wait_for(std::chrono::seconds(300)), std::future_status::ready);
  const UniqueFd writer(::open(path.c_str(), O_RDWR | O_CLOEXEC));  // Releases a reader that waits.
}

TEST(FeedReader, AFinishEndsAWait) {
  Pipe pipe;
  std::promise<void> hasFirst;
  std::vector<std::string> texts;
  std::thread reading([&] {
    texts.push_back(NextText(pipe.reader).value_or("none"));
    hasFirst.set_value();
    while (const auto text = NextText(pipe.reader)) texts.push_back(*text);
  });
  pipe.Write("a\n");
  hasFirst.get_future().wait();
  pipe.reader.Finish();
  reading.join();
  EXPECT_THAT(texts, ElementsAre("a"));
}

TEST(FeedReader, RecognisesItsOwnFile) {
  const TempDirectory dir;
  const FeedReader reader(dir.Write("feed", ""));
  const UniqueFd same(::open((dir / "feed").c_str(), O_RDONLY));
  const UniqueFd other(::open(dir.Write("other", "").c_str(), O_RDONLY));
  EXPECT_TRUE(reader.IsSameFile(same.get()));
  EXPECT_FALSE(reader.IsSameFile(other.get()));
}

}  // namespace
}  // namespace alarm_agent
