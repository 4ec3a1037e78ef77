// The file of messages: each is written at once, and one that cannot be written is counted with the
// reason.

#include "examples/alarm_agent/message_writer.h"

#include <gtest/gtest.h>

#include <csignal>

#include "examples/alarm_agent/setup_error.h"
#include "tests/file_size_limit.h"
#include "tests/temp_directory.h"

namespace alarm_agent {
namespace {

TEST(MessageWriter, WritesALineForEachMessageAtOnce) {
  const TempDirectory dir;
  MessageWriter writer(dir / "out");
  EXPECT_TRUE(writer.Write("one"));
  EXPECT_TRUE(writer.Write(""));
  EXPECT_EQ(dir.Read("out"), "one\n\n");
  EXPECT_EQ(writer.Lost(), 0U);
}

TEST(MessageWriter, KeepsWhatIsThere) {
  const TempDirectory dir;
  dir.Write("out", "before\n");
  MessageWriter(dir / "out").Write("after");
  EXPECT_EQ(dir.Read("out"), "before\nafter\n");
}

TEST(MessageWriter, CountsWhatItCannotWriteAndSaysWhy) {
  MessageWriter writer("/dev/full");
  EXPECT_FALSE(writer.Write("one"));
  EXPECT_FALSE(writer.Write("two"));
  EXPECT_EQ(writer.Lost(), 2U);
  EXPECT_EQ(writer.Problem(), "messages cannot be written to \"/dev/full\": No space left on device");
}

// The system writes up to the limit and fails the next call.
TEST(MessageWriter, CountsAMessageThatIsWrittenInPart) {
  const TempDirectory dir;
  MessageWriter writer(dir / "out");
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  {
    const FileSizeLimit limit(10);
    EXPECT_FALSE(writer.Write("twenty characters ab"));
  }
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(dir.Read("out"), "twenty cha");
  EXPECT_EQ(writer.Lost(), 1U);
  EXPECT_EQ(writer.Problem(), "messages cannot be written to \"" + dir / "out" + "\": File too large");
}

TEST(MessageWriter, AFileThatCannotBeOpenedIsRefused) {
  try {
    MessageWriter writer("/nowhere/out.txt");
    FAIL() << "opened";
  } catch (const SetupError& error) {
    EXPECT_STREQ(error.what(),
                 "the message file \"/nowhere/out.txt\" cannot be opened: No such file or directory");
  }
}

}  // namespace
}  // namespace alarm_agent
