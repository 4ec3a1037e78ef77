// Lines of the host's files, and what is refused with its place: NUL bytes, byte order marks, lines of
// more than 16 MiB.

#include "host/base/text_lines.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/base/problem.h"

namespace {

using host::TextLines;

/// Returns the lines, each followed by '|', and then the problem.
std::string ReadAll(const std::string& text) {
  std::istringstream stream(text);
  TextLines lines(stream, "f");
  std::string read;
  try {
    for (std::string line; lines.Next(line);) read += line + "|";
  } catch (const host::Failure& problem) {
    read += problem.what();
  }
  return read;
}

TEST(TextLines, AreReadWithoutTheirEnds) {
  EXPECT_EQ(ReadAll(""), "");
  EXPECT_EQ(ReadAll("a"), "a|");
  EXPECT_EQ(ReadAll("a\n"), "a|");
  EXPECT_EQ(ReadAll("\na\r\n\nb"), "|a\r||b|");
}

TEST(TextLines, WithANulByteAreRejectedWhereItIs) {
  EXPECT_EQ(ReadAll(std::string("a\nbc\0d\n", 7)), "a|f:2:3: a NUL byte; expected a text file");
}

TEST(TextLines, WithAByteOrderMarkInTheFirstLineAreRejected) {
  EXPECT_EQ(ReadAll("\xef\xbb\xbf"
                    "a\n"),
            "f:1:1: a byte order mark; save the file without one");
  EXPECT_EQ(ReadAll("\xef\xbb"
                    "a\n"),
            "\xef\xbb"
            "a|");
  EXPECT_EQ(ReadAll("a\n\xef\xbb\xbf"
                    "b"),
            "a|\xef\xbb\xbf"
            "b|");
}

TEST(TextLines, MayHaveSixteenMebibytesAndNoMore) {
  const std::string longest(TextLines::kLongestLine, 'x');
  EXPECT_EQ(ReadAll(longest + "\n").size(), longest.size() + 1);
  EXPECT_EQ(ReadAll("\n" + longest + "x\n"),
            "|f:2:16777217: the line is longer than 16 MiB; expected a text file");
}

TEST(TextLines, ThatCannotBeReadAreAFailure) {
  std::istringstream stream("a\n");
  TextLines lines(stream, "f");
  stream.setstate(std::ios::badbit);
  std::string line;
  try {
    lines.Next(line);
    FAIL() << "the stream is bad";
  } catch (const host::Failure& problem) {
    EXPECT_STREQ(problem.what(), "f: cannot be read");
  }
}

TEST(TextLines, OfADirectoryOrAMissingFileAreAFailure) {
  const auto problemOf = [](const std::string& file) -> std::string {
    try {
      const TextLines lines(file);
      return "";
    } catch (const host::Failure& problem) {
      return problem.what();
    }
  };
  EXPECT_EQ(problemOf("/"), "/: is a directory; a file is needed");
  EXPECT_EQ(problemOf("/nonexistent/a"), "/nonexistent/a: cannot be opened: No such file or directory");
}

TEST(TextLines, ReportTheBytesPlaceInTheLineLastRead) {
  std::istringstream stream("a\nbcd\n");
  TextLines lines(stream, "f");
  std::string line;
  lines.Next(line);
  lines.Next(line);
  EXPECT_EQ(lines.Place(2), "f:2:3: ");
  try {
    lines.Fail(1, "why");
  } catch (const host::Failure& problem) {
    EXPECT_STREQ(problem.what(), "f:2:2: why");
  }
}

}  // namespace
