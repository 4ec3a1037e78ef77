#include "examples/alarm_agent/message_writer.h"

#include <gtest/gtest.h>

#include "examples/alarm_agent/setup_error.h"
#include "tests/agent/temp_dir.h"

namespace alarm_agent {
namespace {

TEST(MessageWriter, WritesALineForEachMessageAtOnce) {
  const TempDir dir;
  MessageWriter writer(dir / "out");
  EXPECT_TRUE(writer.Write("one"));
  EXPECT_TRUE(writer.Write(""));
  EXPECT_EQ(dir.Read("out"), "one\n\n");
  EXPECT_EQ(writer.Lost(), 0U);
}

TEST(MessageWriter, KeepsWhatIsThere) {
  const TempDir dir;
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
