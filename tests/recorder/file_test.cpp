// The file of a recording: creation, rotation, end, and the files that are refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

#include "tests/temp_directory.h"
#include "tools/recorder/format/reader.h"
#include "tools/recorder/recording_file.h"

namespace {

using recorder::RecordingFile;
using recording_format::Head;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

std::string Content(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

std::string RefusalOf(const std::string& path) {
  try {
    const RecordingFile file(path, 0, Head());
    return "accepted";
  } catch (const std::system_error& error) {
    return error.what();
  }
}

class RecordingFileTest : public testing::Test {
 protected:
  /// "HEAD", "TAIL records dropped", or the line itself.
  static std::vector<std::string> Lines(const std::string& path) {
    std::istringstream file(Content(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      const recording_format::Line parsed = recording_format::ParseLine(line);
      if (std::holds_alternative<Head>(parsed)) {
        lines.emplace_back("HEAD");
      } else if (const auto* const tail = std::get_if<recording_format::Tail>(&parsed)) {
        lines.push_back("TAIL " + std::to_string(tail->records) + " " + std::to_string(tail->dropped));
      } else {
        lines.push_back(line);
      }
    }
    return lines;
  }

  const TempDirectory dir_;
  const std::string path_ = dir_.path() / "calls.jsonl";
};

TEST_F(RecordingFileTest, HoldsTheHeadTheLinesAndTheTail) {
  RecordingFile file(path_, 0, Head());
  file.Add("one\n");
  file.Add("two\n");
  file.CountDropped(3);
  file.Finish();
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD", "one", "two", "TAIL 2 3"}));
  EXPECT_EQ(file.Written(), 2U);
}

TEST_F(RecordingFileTest, IsWrittenByAFlush) {
  RecordingFile file(path_, 0, Head());
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD"}));
  file.Add("one\n");
  file.Flush();
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD", "one"}));
}

TEST_F(RecordingFileTest, OnlyItsOwnerMayReadIt) {
  const mode_t before = ::umask(0);
  const RecordingFile file(path_, 0, Head());
  ::umask(before);
  struct stat found {};
  ASSERT_EQ(::stat(path_.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777U, 0600U);
}

TEST_F(RecordingFileTest, AFileThatIsThereIsKeptUnderAnotherName) {
  dir_.Write("calls.jsonl", "yesterday");
  dir_.Write("calls.jsonl.1", "the day before");
  RecordingFile(path_, 0, Head()).Finish();
  EXPECT_EQ(Content(path_ + ".1"), "yesterday");
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD", "TAIL 0 0"}));
}

TEST_F(RecordingFileTest, IsRotatedBeforeItIsLargerThanTheLimit) {
  RecordingFile file(path_, 900, Head());
  const std::string line = std::string(249, 'x') + '\n';
  for (int i = 0; i < 5; ++i) {
    file.Add(line);
    file.CountDropped(1);
  }
  file.Finish();
  const std::string text(249, 'x');
  EXPECT_EQ(Lines(path_ + ".1"), (std::vector<std::string>{"HEAD", text, text, "TAIL 2 2"}));
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD", text, "TAIL 1 1"}));
  EXPECT_LE(std::filesystem::file_size(path_ + ".1"), 900U);
  EXPECT_EQ(file.Written(), 5U);
}

TEST_F(RecordingFileTest, ARecordThatIsLargerThanTheLimitHasAFileOfItsOwn) {
  RecordingFile file(path_, 1, Head());
  file.Add("one\n");
  file.Add("two\n");
  file.Finish();
  EXPECT_EQ(Lines(path_ + ".1"), (std::vector<std::string>{"HEAD", "one", "TAIL 1 0"}));
  EXPECT_EQ(Lines(path_), (std::vector<std::string>{"HEAD", "two", "TAIL 1 0"}));
}

TEST_F(RecordingFileTest, TheHeadOfEachFileHasTheChecksumOfTheConfigurationAtThatTime) {
  Head head;
  head.configDir = dir_.path().string() + "/";
  dir_.Write("ii_asciiagent_bundle/AlarmConfig.csv", "123456789");
  RecordingFile file(path_, 1, head);
  file.Add("one\n");
  dir_.Write("ii_asciiagent_bundle/AlarmConfig.csv", "");
  file.Add("two\n");
  file.Finish();
  EXPECT_THAT(Content(path_ + ".1"), HasSubstr(R"("alarm_config":"930766865 9")"));
  EXPECT_THAT(Content(path_), HasSubstr(R"("alarm_config":"4294967295 0")"));
}

TEST_F(RecordingFileTest, WhatIsNotARegularFileIsRefusedAndLeftAlone) {
  EXPECT_EQ(RefusalOf(dir_.path()), dir_.path().string() + ": not a regular file: Invalid argument");
  std::filesystem::create_symlink(dir_.Write("target", "kept"), path_);
  EXPECT_THAT(RefusalOf(path_), HasSubstr("not a regular file"));
  EXPECT_EQ(Content(dir_.path() / "target"), "kept");
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
}

TEST_F(RecordingFileTest, AFileThatCannotBeCreatedIsRefusedWithTheReason) {
  const std::string path = dir_.path() / "absent/calls.jsonl";
  EXPECT_EQ(RefusalOf(path), path + ": cannot create: No such file or directory");
}

TEST_F(RecordingFileTest, AFullDiskIsReportedWithTheReason) {
  EXPECT_EQ(RefusalOf("/dev/full"), "/dev/full: cannot write: No space left on device");
}

TEST_F(RecordingFileTest, ADeviceIsWrittenToDirectly) {
  RecordingFile file("/dev/null", 10, Head());
  file.Add("one\n");
  file.Finish();
  EXPECT_FALSE(std::filesystem::exists("/dev/null.1"));
}

TEST_F(RecordingFileTest, TheTimeIsUtcToTheMillisecond) {
  ::setenv("TZ", "FIVE-05:00", 1);
  ::tzset();
  const std::time_t before = std::time(nullptr);
  const std::string now = recorder::TimeNow();
  std::tm time{};
  const char* const rest = ::strptime(now.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
  ASSERT_NE(rest, nullptr) << now;
  EXPECT_THAT(rest, testing::MatchesRegex("\\.[0-9][0-9][0-9]Z"));
  EXPECT_GE(::timegm(&time), before);
  EXPECT_LE(::timegm(&time), std::time(nullptr) + 1);  // time() may be a tick late.
  ::unsetenv("TZ");
  ::tzset();
}

}  // namespace
