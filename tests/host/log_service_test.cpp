// The log's file and its lines, also those of several threads and of ACE itself. Each record must be one
// whole line.

#include "host/platform/log_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ace/Log_Msg.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <thread>

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "host/base/problem.h"
#include "host/platform/log_sink.h"

namespace {

using NS_LOG_SERVICE1::Logger;
using NS_LOG_SERVICE1::LogSvcInterface;

LogSvcInterface* Fetch() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface");
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  return NS_BUNDLEMGR1::FetchInterface<LogSvcInterface>(ref);
}

class LogToFile : public testing::Test {
 protected:
  LogToFile() { host::SetLogLevel(0); }
  ~LogToFile() override { std::remove(file_.c_str()); }

  std::string Written() const {
    std::ostringstream text;
    text << std::ifstream(file_).rdbuf();
    return text.str();
  }

  const std::string file_ = testing::TempDir() + std::to_string(getpid()) + "-log_service_test.log";
  const host::LogService service_;
  Logger* const logger_ = Fetch()->GetLogger("a", "b", "c");
};

TEST_F(LogToFile, ALineShowsTimeLevelTagLineFunctionAndText) {
  const host::LogOutput output(file_);
  logger_->Log("unit", "unknown", 42, 1, "what happened ");
  EXPECT_THAT(
      Written(),
      testing::MatchesRegex(
          "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\\.[0-9]+Z \\[1\\] unit:42 unknown: what happened \n"));
}

TEST_F(LogToFile, EmptyTagAndFunctionAreDashes) {
  EXPECT_THAT(host::LogLine({{}, 0, "", "", 0, "x"}), testing::HasSubstr(" [0] -:0 -: x"));
}

TEST_F(LogToFile, ATextCannotPretendToBeAnotherLine) {
  const host::LogOutput output(file_);
  logger_->Log("unit", "f", 1, 1, std::string("a\nb\0c", 5));
  EXPECT_THAT(Written(), testing::EndsWith(": a\\x0ab\\x00c\n"));
}

TEST_F(LogToFile, AFormatIsFilledInAndABrokenOneIsVerbatim) {
  const host::LogOutput output(file_);
  logger_->LogF("unit", "f", 1, 1, "n=%d", 7);
  logger_->LogF("unit", "f", 1, 1, "almconfig.cfg file error. line=s%", "bad");
  EXPECT_THAT(Written(), testing::HasSubstr(": n=7\n"));
  EXPECT_THAT(Written(), testing::EndsWith(": almconfig.cfg file error. line=s%\n"));
}

TEST_F(LogToFile, RecordsBelowTheLevelAreNotWritten) {
  const host::LogOutput output(file_);
  host::SetLogLevel(1);
  logger_->Log("unit", "f", 1, 0, "low");
  logger_->Log("unit", "f", 1, 1, "high");
  host::SetLogLevel(host::kLogOff);
  logger_->Log("unit", "f", 1, 2, "off");
  EXPECT_THAT(Written(), testing::Not(testing::HasSubstr("low")));
  EXPECT_THAT(Written(), testing::HasSubstr("high"));
  EXPECT_THAT(Written(), testing::Not(testing::HasSubstr("off")));
}

TEST_F(LogToFile, ALongTextIsWhole) {
  const host::LogOutput output(file_);
  const std::string text(50'000, 'x');
  logger_->Log("unit", "f", 1, 1, text);
  EXPECT_THAT(Written(), testing::HasSubstr(": " + text + "\n"));
}

TEST_F(LogToFile, ContainsAcesOwnMessagesToo) {
  const host::LogOutput output(file_);
  ACE_ERROR((LM_ERROR, ACE_TEXT("ace says %d\n"), 7));
  EXPECT_THAT(Written(), testing::HasSubstr(" [-] ACE:0 -: ace says 7\n"));
  logger_->Log("unit", "f", 1, 1, "a record");
  ACE_ERROR((LM_ERROR, ACE_TEXT("after a record\n")));
  EXPECT_THAT(Written(), testing::EndsWith(" [-] ACE:0 -: after a record\n"));
  host::SetLogLevel(host::kLogOff);
  ACE_ERROR((LM_ERROR, ACE_TEXT("at every level\n")));
  EXPECT_THAT(Written(), testing::EndsWith(" [-] ACE:0 -: at every level\n"));
}

TEST_F(LogToFile, ComplaintsOfAceAreCollectedWhenWanted) {
  const host::LogOutput output(file_);
  const host::AceComplaints complaints;
  ACE_ERROR((LM_ERROR, ACE_TEXT("one\n")));
  ACE_ERROR((LM_ERROR, ACE_TEXT("two\n")));
  EXPECT_EQ(complaints.Text(), "one; two");
  EXPECT_EQ(Written(), "");
}

TEST_F(LogToFile, AnOuterCollectorOfComplaintsContinuesAfterTheInnerOne) {
  const host::LogOutput output(file_);
  const host::AceComplaints outer;
  {
    const host::AceComplaints inner;
    ACE_ERROR((LM_ERROR, ACE_TEXT("inner\n")));
    EXPECT_EQ(inner.Text(), "inner");
  }
  ACE_ERROR((LM_ERROR, ACE_TEXT("outer\n")));
  EXPECT_EQ(outer.Text(), "outer");
  EXPECT_EQ(Written(), "");
}

TEST_F(LogToFile, TheFileIsClosedWithItsOutput) {
  const auto openFiles = [] {
    namespace fs = std::filesystem;
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = openFiles();
  {
    const host::LogOutput output(file_);
    EXPECT_EQ(openFiles(), before + 1);
  }
  EXPECT_EQ(openFiles(), before);
}

TEST_F(LogToFile, LinesOfSeveralThreadsAllArriveWhole) {
  const host::LogOutput output(file_);
  std::thread threads[4];
  for (std::thread& thread : threads) {
    thread = std::thread([this] {
      for (int i = 0; i < 250; ++i) logger_->Log("unit", "f", 1, 1, "0123456789");
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::istringstream lines(Written());
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_THAT(line, testing::EndsWith("f: 0123456789"));
  EXPECT_EQ(count, 1000);
}

TEST_F(LogToFile, RecordsMayComeWhileTheOutputChanges) {
  const host::LogCapture capture(false);  // Makes `WriteLog` check for a file at each record.
  std::atomic<bool> done{false};
  std::thread thread([&] {
    while (!done) logger_->Log("unit", "f", 1, 1, "whenever");
  });
  for (int i = 0; i < 200; ++i) {
    const host::LogOutput output(file_);
    EXPECT_TRUE(output.IsComplete());
  }
  done = true;
  thread.join();
}

TEST_F(LogToFile, AFileThatCannotBeOpenedIsAFailure) {
  try {
    const host::LogOutput output("/nonexistent/log");
    FAIL() << "the file's directory does not exist";
  } catch (const host::Failure& problem) {
    EXPECT_STREQ(problem.what(), "/nonexistent/log: cannot be opened for writing: No such file or directory");
  }
}

TEST_F(LogToFile, AFileIsAppendedTo) {
  std::ofstream(file_) << "before\n";
  const host::LogOutput output(file_);
  logger_->Log("unit", "f", 1, 1, "after");
  EXPECT_THAT(Written(), testing::MatchesRegex("before\n[^ ]+ \\[1\\] unit:1 f: after\n"));
}

TEST_F(LogToFile, RecordsThatACaptureCollectsReachTheFileToo) {
  const host::LogOutput output(file_);
  const host::LogCapture capture;
  logger_->Log("unit", "f", 1, 1, "of a console call");
  EXPECT_EQ(capture.Count(), 1U);
  EXPECT_THAT(Written(), testing::HasSubstr("unit:1 f: of a console call\n"));
}

TEST(LogLine, HasUtcTimeToThreeDigitsOfAMillisecond) {
  const char* const zone = std::getenv("TZ");
  const std::string before = zone == nullptr ? "" : zone;
  setenv("TZ", "UTC+5", 1);
  tzset();
  host::LogRecord record;
  record.time = std::chrono::system_clock::time_point(std::chrono::milliseconds(1'000'000'007));
  record.level = 2;
  record.line = 3;
  record.text = "x";
  const std::string line = host::LogLine(record);
  zone == nullptr ? unsetenv("TZ") : setenv("TZ", before.c_str(), 1);
  tzset();
  EXPECT_EQ(line, "1970-01-12T13:46:40.007Z [2] -:3 -: x");
}

TEST(LogOutput, PutsBackTheOutputThatAceHadBefore) {
  const unsigned long flags = ACE_Log_Msg::instance()->flags();
  { const host::LogOutput output(""); }
  EXPECT_EQ(ACE_Log_Msg::instance()->flags(), flags);
  EXPECT_EQ(ACE_Log_Msg::msg_backend(), nullptr);
}

TEST_F(LogToFile, AFileThatCannotBeWrittenIsReportedOnceAndReplacedByStandardError) {
  const host::LogOutput output("/dev/full");
  EXPECT_TRUE(output.IsComplete());
  testing::internal::CaptureStderr();
  logger_->Log("unit", "f", 1, 1, "one");
  logger_->Log("unit", "f", 2, 1, "two");
  EXPECT_THAT(
      testing::internal::GetCapturedStderr(),
      testing::MatchesRegex(
          "bundle_host: /dev/full: cannot be written: No space left on device; the log continues here\n"
          "[^ ]+ \\[1\\] unit:1 f: one\n"
          "[^ ]+ \\[1\\] unit:2 f: two\n"));
  EXPECT_FALSE(output.IsComplete());
}

TEST_F(LogToFile, AFileThatReplacesAnUnwritableOneIsWritten) {
  testing::internal::CaptureStderr();
  {
    const host::LogOutput full("/dev/full");
    logger_->Log("unit", "f", 1, 1, "lost");
  }
  const host::LogOutput output(file_);
  logger_->Log("unit", "f", 1, 1, "kept");
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(Written(), testing::HasSubstr("kept"));
  EXPECT_TRUE(output.IsComplete());
}

TEST_F(LogToFile, ACaptureKeepsRecordsOfEveryLevel) {
  const host::LogOutput output(file_);
  host::SetLogLevel(host::kLogOff);
  const host::LogCapture capture;
  logger_->Log("unit", "f", 9, 0, "seen");
  ASSERT_EQ(capture.Count(), 1U);
  EXPECT_EQ(capture.Records()[0].tag, "unit");
  EXPECT_EQ(capture.Records()[0].line, 9);
  EXPECT_EQ(capture.Records()[0].text, "seen");
}

TEST_F(LogToFile, OneLoggerServesATripleOfNames) {
  EXPECT_EQ(Fetch()->GetLogger("a", "b", "c"), logger_);
  EXPECT_NE(Fetch()->GetLogger("a", "b", "d"), logger_);
}

TEST_F(LogToFile, ALoggerThatAClientDestroysIsReplacedForTheNextOne) {
  delete Fetch()->GetLogger("x", "y", "z");
  Logger* const next = Fetch()->GetLogger("x", "y", "z");
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->Log("unit", "f", 1, 1, "works"), 0);
}

TEST(LogService, ItsLoggersOutliveIt) {
  Logger* logger = nullptr;
  {
    const host::LogService service;
    logger = Fetch()->GetLogger("a", "b", "outlives");
  }
  EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface"), nullptr);
  const host::LogCapture capture;
  logger->Log("unit", "f", 1, 1, "still here");
  EXPECT_EQ(capture.Count(), 1U);
}

}  // namespace
