// The recorder as a bundle on the open host's platform: registered for an implementation, and withdrawn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include "framework/bundle_mgr.h"
#include "framework/interface_registry.h"
#include "host/platform/config_items.h"
#include "host/platform/interface_registry.h"
#include "host/platform/log_service.h"
#include "host/platform/log_sink.h"
#include "tests/file_size_limit.h"
#include "tests/recorder/fake_implementation.h"
#include "tests/recorder/recorded_calls.h"
#include "tests/temp_directory.h"
#include "tools/recorder/recorder_service.h"

namespace {

using NS_ASCII::AsciiUtilInterface;
using NS_BUNDLEMGR1::CheckIFBuf;
using NS_BUNDLEMGR1::ServiceInterface;
using recorder_test::ReadRecording;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kName = "AsciiUtilInterface";

/// A bundle with another implementation of the interface.
class FakeBundle : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  FakeBundle() : ServiceObjectBase("fake", "fake") {
    interface_ = new recorder_test::FakeImplementation;
    NS_BUNDLEMGR1::SetIFBuf(kName, interface_);
  }
};

/// The recorder, called as the service configurator calls it.
class Recorder {
 public:
  Recorder() : service_(_make_ii_ascii_recorder(&destroy_)) {}
  ~Recorder() { destroy_(service_); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  int Init(std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
      argv.push_back(argument.data());
    }
    return service_->init(static_cast<int>(argv.size()), argv.data());
  }
  int Fini() { return service_->fini(); }
  NS_BUNDLEMGR1::ServiceObjectBase& Service() {
    return dynamic_cast<NS_BUNDLEMGR1::ServiceObjectBase&>(*service_);
  }

 private:
  ACE_Service_Object_Exterminator destroy_ = nullptr;
  ACE_Service_Object* service_;
};

class RecorderServiceTest : public testing::Test {
 protected:
  static std::vector<ServiceInterface*> Registered() {
    const auto* const buffer = CheckIFBuf(kName);
    return buffer == nullptr ? std::vector<ServiceInterface*>() : *buffer;
  }
  static AsciiUtilInterface& Fetch() { return dynamic_cast<AsciiUtilInterface&>(*Registered().at(0)); }

  /// The recorder's messages in the log service.
  std::vector<std::string> Logged() const {
    std::vector<std::string> texts;
    for (const host::LogRecord& record : capture_.Records()) {
      if (record.tag == "ii_ascii_recorder") {
        texts.push_back(std::to_string(record.level) + " " + record.text);
      }
    }
    return texts;
  }

  /// The messages in ACE's log.
  template <class Action>
  static std::string ComplaintOf(Action action) {
    const host::AceComplaints complaints;
    action();
    return complaints.Text();
  }

  const TempDirectory dir_;
  const std::string output_ = dir_.path() / "calls.jsonl";
  const host::LogOutput aceLog_{dir_.path() / "log"};
  const host::LogService logService_;
  const host::LogCapture capture_;
};

TEST_F(RecorderServiceTest, CallersThatFetchTheInterfaceFromNowOnAreRecorded) {
  const FakeBundle bundle;
  AsciiUtilInterface& before = Fetch();
  Recorder recorder;
  EXPECT_EQ(&Fetch(), &before);
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  EXPECT_NE(&Fetch(), &before);
  EXPECT_EQ(Fetch().ToUpper("recorded"), "<recorded>");
  EXPECT_EQ(before.ToUpper("not recorded"), "<not recorded>");
  EXPECT_EQ(recorder.Fini(), 0);
  const auto recorded = ReadRecording(output_);
  ASSERT_EQ(recorded.records.size(), 1U);
  EXPECT_EQ(std::get<std::string>(recorded.records[0].in[0]), "recorded");
  EXPECT_THAT(Logged(), ElementsAre("2 recording the calls of AsciiUtilInterface to " + output_,
                                    "2 recording ended: 1 calls recorded, 0 dropped"));
}

TEST_F(RecorderServiceTest, CallersFetchTheImplementationAgainAfterFini) {
  const FakeBundle bundle;
  const std::vector<ServiceInterface*> before = Registered();
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  EXPECT_EQ(recorder.Fini(), 0);
  EXPECT_EQ(Registered(), before);
  EXPECT_EQ(NS_BUNDLEMGR1::BundleMgr::Instance()->GetBundle("ii_ascii_recorder"), nullptr);
}

TEST_F(RecorderServiceTest, ItsDestructionDoesWhatFiniDoes) {
  const FakeBundle bundle;
  const std::vector<ServiceInterface*> before = Registered();
  {
    Recorder recorder;
    ASSERT_EQ(recorder.Init({"--output", output_}), 0);
    Fetch().ToUpper("abc");
  }
  EXPECT_EQ(Registered(), before);
  EXPECT_EQ(ReadRecording(output_).tails.size(), 1U);
}

TEST_F(RecorderServiceTest, ACallerThatStillHoldsTheInterfaceReachesTheImplementation) {
  const FakeBundle bundle;
  AsciiUtilInterface* held = nullptr;
  {
    Recorder recorder;
    ASSERT_EQ(recorder.Init({"--output", output_}), 0);
    held = &Fetch();
  }
  EXPECT_EQ(held->ToUpper("abc"), "<abc>");
  EXPECT_THAT(ReadRecording(output_).records, IsEmpty());
}

TEST_F(RecorderServiceTest, ACallerThatStillHoldsTheInterfaceIsRecordedByTheNextRecorder) {
  const FakeBundle bundle;
  AsciiUtilInterface* held = nullptr;
  {
    Recorder recorder;
    ASSERT_EQ(recorder.Init({"--output", output_}), 0);
    held = &Fetch();
  }
  Recorder next;
  ASSERT_EQ(next.Init({"--output", output_}), 0);
  held->ToUpper("abc");
  next.Fini();
  EXPECT_EQ(ReadRecording(output_).records.size(), 1U);
}

TEST_F(RecorderServiceTest, TheHeadNamesTheImplementationsLibraryAndTheConfiguration) {
  host::SetConfigDir(dir_.path().string());
  dir_.Write("ii_asciiagent_bundle/AlarmConfig.csv", "123456789");
  const FakeBundle bundle;
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_, "--operations", "ToUpper", "--every", "2"}), 0);
  recorder.Fini();
  const auto recorded = ReadRecording(output_);
  ASSERT_EQ(recorded.heads.size(), 1U);
  const recording_format::Head& head = recorded.heads[0];
  EXPECT_THAT(head.library, HasSubstr("recorder_service_test"));
  EXPECT_THAT(head.buildId, testing::MatchesRegex("[0-9a-f]{40}"));
  EXPECT_EQ(head.configDir, dir_.path().string() + "/");
  EXPECT_EQ(head.alarmConfig, "930766865 9");
  EXPECT_THAT(head.operations, ElementsAre("ToUpper"));
  EXPECT_EQ(head.every, 2);
  host::SetConfigDir("");
}

TEST_F(RecorderServiceTest, ADiskThatFillsUpIsLoggedAndFailsFini) {
  const FakeBundle bundle;
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  int result = 0;
  std::string complaint;
  {
    const FileSizeLimit limit(4000);
    for (int i = 0; i < 200; ++i) {
      EXPECT_EQ(Fetch().ToUpper("abc"), "<abc>");
    }
    complaint = ComplaintOf([&] { result = recorder.Fini(); });
  }
  EXPECT_EQ(result, -1);
  const std::string problem = output_ + ": cannot write: File too large";
  const std::string totals =
      problem + "; " + std::to_string(ReadRecording(output_).records.size()) + " calls recorded, 0 dropped";
  EXPECT_EQ(complaint, "ii_ascii_recorder: " + totals);
  EXPECT_THAT(Logged(), ElementsAre("2 recording the calls of AsciiUtilInterface to " + output_,
                                    "2 recording stopped: " + problem, "2 " + totals));
}

TEST_F(RecorderServiceTest, AForkedChildIsNotRecordedAndLeavesTheRecordingAlone) {
  const FakeBundle bundle;
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  Fetch().IsValid();
  const pid_t child = ::fork();
  if (child == 0) {
    Fetch().IsValid();
    const bool isQuiet = recorder.Fini() == 0 && Logged().size() == 1;  // The message of the start.
    ::_exit(isQuiet ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  Fetch().IsValid();
  EXPECT_EQ(recorder.Fini(), 0);
  EXPECT_EQ(ReadRecording(output_).records.size(), 2U);
  EXPECT_EQ(ReadRecording(output_).tails.size(), 1U);
}

TEST_F(RecorderServiceTest, WithoutAnInterfaceNothingIsRecorded) {
  Recorder recorder;
  const std::string reason = "there is no AsciiUtilInterface to record; load its bundle before the recorder";
  EXPECT_EQ(ComplaintOf([&] {
              EXPECT_EQ(recorder.Init({"--output", output_}), -1);
            }),
            "ii_ascii_recorder: " + reason);
  EXPECT_THAT(Logged(), ElementsAre("2 " + reason));
  EXPECT_FALSE(std::filesystem::exists(output_));
  EXPECT_EQ(recorder.Fini(), 0);
}

TEST_F(RecorderServiceTest, AFileThatCannotBeWrittenLeavesTheRegistryAlone) {
  const FakeBundle bundle;
  const std::vector<ServiceInterface*> before = Registered();
  Recorder recorder;
  EXPECT_EQ(ComplaintOf([&] {
              EXPECT_EQ(recorder.Init({"--output", "/dev/full"}), -1);
            }),
            "ii_ascii_recorder: /dev/full: cannot write: No space left on device");
  EXPECT_EQ(Registered(), before);
  EXPECT_EQ(recorder.Fini(), 0);
}

TEST_F(RecorderServiceTest, ASecondRecorderIsRefusedAndDoesNotEndTheFirst) {
  const FakeBundle bundle;
  Recorder first;
  ASSERT_EQ(first.Init({"--output", output_}), 0);
  {
    Recorder second;
    EXPECT_EQ(ComplaintOf([&] {
                EXPECT_EQ(second.Init({"--output", output_ + "2"}), -1);
              }),
              "ii_ascii_recorder: a recording is running; unload the recorder first");
  }
  EXPECT_EQ(first.Init({"--output", output_}), -1);
  Fetch().ToUpper("abc");
  first.Fini();
  EXPECT_EQ(ReadRecording(output_).records.size(), 1U);
}

TEST_F(RecorderServiceTest, AnotherBundleMayRegisterAfterTheRecorder) {
  const FakeBundle bundle;
  ServiceInterface* const implementation = Registered().front();
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  const FakeBundle newer;
  ServiceInterface* const newest = Registered().front();
  recorder.Fini();
  EXPECT_THAT(Registered(), ElementsAre(newest, implementation));
}

TEST_F(RecorderServiceTest, ItsInterfaceThatWasNotWithdrawnIsNotRecorded) {
  const FakeBundle bundle;
  AsciiUtilInterface* held = nullptr;
  {
    Recorder recorder;
    ASSERT_EQ(recorder.Init({"--output", output_}), 0);
    held = &Fetch();
  }
  NS_BUNDLEMGR1::SetIFBuf(kName, held);
  Recorder next;
  EXPECT_EQ(
      ComplaintOf([&] {
        EXPECT_EQ(next.Init({"--output", output_}), -1);
      }),
      "ii_ascii_recorder: the platform has not withdrawn the recorder's interface; it cannot record again");
  host::WithdrawInterface(held);
}

TEST_F(RecorderServiceTest, ThePlatformCannotDestroyTheInterface) {
  const FakeBundle bundle;
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  AsciiUtilInterface& held = Fetch();
  recorder.Service().UnRegistSvc();
  recorder.Service().RemoveInterface();
  EXPECT_EQ(recorder.Service().GetInterface(), nullptr);
  EXPECT_EQ(held.ToUpper("abc"), "<abc>");
  EXPECT_EQ(recorder.Fini(), 0);
  EXPECT_EQ(ReadRecording(output_).records.size(), 1U);
}

TEST_F(RecorderServiceTest, AnImplementationThatWasUnloadedIsNotRegisteredAgain) {
  auto bundle = std::make_unique<FakeBundle>();
  Recorder recorder;
  ASSERT_EQ(recorder.Init({"--output", output_}), 0);
  bundle.reset();
  recorder.Fini();
  EXPECT_THAT(Registered(), IsEmpty());
}

}  // namespace
