// The recorder as a library, loaded and removed by ACE's service configurator between the bundle and callers.

#include <ace/DLL_Manager.h>
#include <ace/Service_Config.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "framework/interface_registry.h"
#include "host/platform/config_items.h"
#include "host/platform/log_service.h"
#include "host/platform/log_sink.h"
#include "tests/recorder/recorded_calls.h"
#include "tests/temp_directory.h"

namespace {

using NS_ASCII::AsciiUtilInterface;

int Load(const std::string& name, const std::string& arguments) {
  const std::string directive =
      "dynamic " + name + " Service_Object * " + name + ":_make_" + name + "() \"" + arguments + "\"";
  return ACE_Service_Config::process_directive(directive.c_str());
}

int Remove(const std::string& name) {
  return ACE_Service_Config::process_directive(("remove " + name).c_str());
}

AsciiUtilInterface* Fetch() {
  const auto* const buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  return buffer == nullptr || buffer->empty() ? nullptr : dynamic_cast<AsciiUtilInterface*>(buffer->front());
}

class RecorderLoadTest : public testing::Test {
 protected:
  RecorderLoadTest() {
    ACE_DLL_Manager::instance()->unload_policy(ACE_DLL_UNLOAD_POLICY_PER_PROCESS);
    host::SetConfigDir(dir_.path().string());
    EXPECT_EQ(Load("ii_ascii_util", ""), 0);
  }
  ~RecorderLoadTest() override {
    Remove("ii_ascii_recorder");
    Remove("ii_ascii_util");
  }

  int LoadRecorder() const { return Load("ii_ascii_recorder", "--output " + output_); }

  const TempDirectory dir_;
  const std::string output_ = dir_.path() / "calls.jsonl";
  const host::LogOutput log_{dir_.path() / "log"};
  const host::LogService logService_;
};

TEST_F(RecorderLoadTest, RecordsFromTheLoadToTheRemoval) {
  ASSERT_EQ(LoadRecorder(), 0);
  EXPECT_EQ(Fetch()->ToUpper("abc"), "ABC");
  EXPECT_EQ(Remove("ii_ascii_recorder"), 0);
  EXPECT_EQ(Fetch()->ToUpper("abc"), "ABC");
  const auto recorded = recorder_test::ReadRecording(output_);
  EXPECT_EQ(recorded.records.size(), 1U);
  ASSERT_EQ(recorded.heads.size(), 1U);
  EXPECT_NE(recorded.heads[0].library.find("libii_ascii_util.so"), std::string::npos);
}

TEST_F(RecorderLoadTest, CallersAreAnsweredWhileItIsRemovedAndLoadedAgain) {
  ASSERT_EQ(LoadRecorder(), 0);
  AsciiUtilInterface& held = *Fetch();
  std::atomic<bool> isOver = false;
  std::vector<std::thread> callers;
  for (int thread = 0; thread < 8; ++thread) {
    callers.emplace_back([&held, &isOver, thread] {
      const std::string name = "b" + std::to_string(thread);
      while (!isOver) {
        ASSERT_EQ(held.ToUpper(name), "B" + std::to_string(thread));
      }
    });
  }
  for (int round = 0; round < 5; ++round) {
    EXPECT_EQ(Remove("ii_ascii_recorder"), 0);
    EXPECT_EQ(LoadRecorder(), 0);
  }
  isOver = true;
  for (std::thread& caller : callers) {
    caller.join();
  }
  EXPECT_EQ(recorder_test::ReadRecording(output_ + ".1").problems, 0U);
}

TEST_F(RecorderLoadTest, AProcessThatIsKilledLeavesAReadableFile) {
  const pid_t child = ::fork();
  if (child == 0) {
    LoadRecorder();
    AsciiUtilInterface& util = *Fetch();
    while (true) {
      util.ToUpper("abc");
    }
  }
  // Until a block was written.
  while (!std::filesystem::exists(output_) || std::filesystem::file_size(output_) < 100000) {
    ASSERT_EQ(::waitpid(child, nullptr, WNOHANG), 0);
    std::this_thread::yield();
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  const auto recorded = recorder_test::ReadRecording(output_);
  EXPECT_EQ(recorded.heads.size(), 1U);
  EXPECT_GT(recorded.records.size(), 500U);
  EXPECT_TRUE(recorded.tails.empty());
  EXPECT_LE(recorded.problems, 1U);
}

}  // namespace
