// Locks, thread keys, thread slots, the formatter, the logger and the platform's text functions, each failing.
// The result of each operation changes only as documented, and everything works again after the failure.

#include <cerrno>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "src/interface/asciiutilifimpl.h"
#include "src/log/logmgr.h"
#include "src/service/asciiutilsvc.h"
#include "tests/ace_log.h"
#include "tests/proof/faults.h"
#include "tests/recording_fixture.h"

namespace {

using faults::Failing;
using faults::Fault;
using recording::Message;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class FailingSurroundings : public recording::FrameworkTest {
 protected:
  FailingSurroundings() { framework.intItems["IsTransQuelt"] = 1; }

  /// One message through the shared logger.
  void SendMessage() { EXPECT_TRUE(util.IsTransQueltEnabled()); }

  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Message& message : framework.Messages()) {
      texts.push_back(message.text);
    }
    return texts;
  }

  NS_ASCII::AsciiUtilInterfaceImpl util;
};

// --- Locks

TEST_F(FailingSurroundings, AGlobalLockThatFailsDoesNotStopTheMessage) {
  const Failing fault(Fault::kGlobalLock);
  SendMessage();
  EXPECT_EQ(fault.hits(), 1);
  EXPECT_THAT(Texts(), ElementsAre("Trans QueltTools "));
}

TEST_F(FailingSurroundings, AGlobalLockThatFailsDuringASearchCountsAsNoLogService) {
  recording::Bundle bundle("bundle");
  NS_ASCII::ii_ascii_util service;
  bundle.objects["service"] = &service;
  framework.bundles = {&bundle};
  framework.Unregister("LogSvcInterface");
  framework.ForgetCalls();
  const Failing fault(Fault::kGlobalLock);
  SendMessage();
  EXPECT_EQ(fault.hits(), 2);  // The null interface, the search.
  EXPECT_THAT(framework.Calls(), Contains(StartsWith("GetAllBundles(")));
  EXPECT_THAT(framework.Calls(), Not(Contains(StartsWith("GetServiceObjects("))));
}

TEST_F(FailingSurroundings, AStaticObjectLockThatFailsDropsTheDebugMessage) {
  {
    const Failing fault(Fault::kStaticObjectLock);
    EXPECT_EQ(NS_ASCII::LogMgr::Instance(), nullptr);
    EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
    EXPECT_EQ(fault.hits(), 2);
    EXPECT_THAT(framework.Calls(), IsEmpty());
  }
  EXPECT_EQ(util.WriteDbgLog("logged"), 0);
  EXPECT_THAT(Texts(), ElementsAre("logged"));
}

TEST_F(FailingSurroundings, AStaticObjectLockThatFailsKeepsTheLogManagerFromItsRelease) {
  framework.logger = [] { return new recording::Logger; };
  NS_ASCII::LogMgr* const manager = NS_ASCII::LogMgr::Instance();
  {
    const Failing fault(Fault::kStaticObjectLock);
    NS_ASCII::LogMgr::Release();
    EXPECT_EQ(fault.hits(), 1);
    EXPECT_EQ(NS_ASCII::LogMgr::Instance(), manager);
  }
  EXPECT_THAT(framework.Calls(), Not(Contains("~Logger()")));
  NS_ASCII::LogMgr::Release();
  EXPECT_THAT(framework.Calls(), Contains("~Logger()"));
}

// --- Thread-specific storage

TEST_F(FailingSurroundings, AStorageLockThatFailsDropsTheDebugMessage) {
  {
    const Failing fault(Fault::kStorageLock);
    EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
    EXPECT_EQ(fault.hits(), 1);
  }
  EXPECT_EQ(util.WriteDbgLog("logged"), 0);
  EXPECT_THAT(Texts(), ElementsAre("logged"));
}

TEST_F(FailingSurroundings, AThreadKeyThatCannotBeCreatedDropsTheDebugMessage) {
  {
    const Failing fault(Fault::kKeyCreation);
    EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
    EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
    EXPECT_EQ(fault.hits(), 2) << "a failure is not remembered";
  }
  EXPECT_EQ(util.WriteDbgLog("logged"), 0);
  EXPECT_THAT(Texts(), ElementsAre("logged"));
}

TEST_F(FailingSurroundings, AThreadSlotThatCannotBeStoredIsReportedThroughAce) {
  EXPECT_EQ(util.WriteDbgLog("key made"), 0);
  std::thread([&] {
    AceLog aceLog;
    std::size_t live = 0;
    {
      const Failing fault(Fault::kSlotStore);
      for (int call = 1; call <= 3; ++call) {
        EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
        EXPECT_EQ(fault.hits(), call);
        ASSERT_EQ(aceLog.entries.size(), 1U);
        EXPECT_EQ(aceLog.entries[0].text,
                  "Error: ACE_Thread::setspecific() failed!: Cannot allocate memory\n");
        EXPECT_EQ(aceLog.entries[0].file, "logmgr");
        EXPECT_EQ(aceLog.entries[0].line, 90);
        EXPECT_EQ(aceLog.entries[0].priority, LM_ERROR);
        aceLog.entries = {};
        if (call == 2) {
          live = faults::LiveAllocations();  // ACE has made its objects for this thread.
        }
      }
      EXPECT_EQ(faults::LiveAllocations(), live) << "the record is destroyed again";
    }
    EXPECT_EQ(util.WriteDbgLog("logged"), 0);
  }).join();
  EXPECT_THAT(Texts(), ElementsAre("key made", "logged"));
}

TEST_F(FailingSurroundings, ARecordThatFindsNoMemorySetsTheErrorNumber) {
  EXPECT_EQ(util.WriteDbgLog("key made"), 0);
  std::thread([&] {
    const faults::AllocationFails noMemory(1);
    errno = 0;
    EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
    EXPECT_EQ(errno, ENOMEM);
  }).join();
}

// A new thread for each, because ACE makes its log's objects once for each thread.
TEST_F(FailingSurroundings, AThreadSlotThatCannotBeStoredGoesUnreportedWhenThereIsNoMemoryEither) {
  EXPECT_EQ(util.WriteDbgLog("key made"), 0);
  const Failing fault(Fault::kSlotStore);
  for (const std::size_t nth : {1U, 2U}) {  // The record, ACE's log.
    std::thread([&] {
      const AceLog aceLog;
      const faults::AllocationFails noMemory(nth);
      EXPECT_EQ(util.WriteDbgLog("dropped"), 0);
      EXPECT_TRUE(noMemory.happened());
      EXPECT_EQ(fault.hits(), static_cast<int>(nth) - 1);
      EXPECT_THAT(aceLog.entries, IsEmpty());
    }).join();
  }
  EXPECT_THAT(Texts(), ElementsAre("key made"));
}

// --- The platform

TEST_F(FailingSurroundings, AFormatterThatFailsWithoutALogServiceIsAnEmptyStamp) {
  framework.sprintfResult = -22;
  framework.Unregister("LogSvcInterface");
  EXPECT_EQ(util.GetTimeStamp(), "");
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(FailingSurroundings, WhatALoggerThrowsReachesTheCaller) {
  framework.On("Log", [] { throw std::runtime_error("disk full"); });
  EXPECT_THROW(util.IsTransQueltEnabled(), std::runtime_error);
  EXPECT_THROW(util.WriteDbgLog("x"), std::runtime_error);
  framework.On("Log", [] {});
  SendMessage();
}

TEST_F(FailingSurroundings, WhatThePlatformThrowsReachesTheCallerAndLeavesTheValueAlone) {
  framework.trim = [](const std::string&) -> std::string { throw std::runtime_error("platform"); };
  std::int64_t value = 99;
  const int number = 7;
  EXPECT_THROW(util.GetAlmCfgValue(value, "A", "B", "C", number), std::runtime_error);
  EXPECT_EQ(value, 99);
}

}  // namespace
