// Objects that are created or destroyed once, while another thread does the same: it acts between the first
// check, which takes no lock, and the second check under the lock.

#include <algorithm>
#include <string>
#include <thread>

#include "src/interface/asciiutilifimpl.h"
#include "src/log/logmgr.h"
#include "src/log/logmsg.h"
#include "tests/proof/faults.h"
#include "tests/recording_fixture.h"

namespace {

class Overtaken : public recording::FrameworkTest {
 protected:
  Overtaken() { framework.intItems["IsTransQuelt"] = 1; }

  /// The log manager destroys its logger.
  void GiveLoggersAway() {
    framework.logger = [] { return new recording::Logger; };
  }

  std::ptrdiff_t CallsOf(const std::string& start) const {
    const std::vector<std::string> calls = framework.Calls();
    return std::count_if(calls.begin(), calls.end(),
                         [&start](const std::string& call) { return call.rfind(start, 0) == 0; });
  }

  NS_ASCII::AsciiUtilInterfaceImpl util;
};

/// Runs all of `work` on another thread, right before the next lock is taken.
template <class Work>
faults::BeforeLock OtherThreadFirst(Work work) {
  return faults::BeforeLock([work] { std::thread(work).join(); });
}

TEST_F(Overtaken, AFirstMessageIsSentLikeThatOfTheOtherThread) {
  {
    const auto other = OtherThreadFirst([this] { EXPECT_TRUE(util.IsTransQueltEnabled()); });
    EXPECT_TRUE(util.IsTransQueltEnabled());
    EXPECT_TRUE(other.happened());
  }
  EXPECT_EQ(framework.Messages().size(), 2U);
}

TEST_F(Overtaken, AFirstDebugMessageGoesToTheLogManagerOfTheOtherThread) {
  GiveLoggersAway();
  NS_ASCII::LogMgr* theirs = nullptr;
  {
    const auto other = OtherThreadFirst([&theirs] { theirs = NS_ASCII::LogMgr::Instance(); });
    EXPECT_EQ(NS_ASCII::LogMgr::Instance(), theirs);
    EXPECT_TRUE(other.happened());
  }
  EXPECT_NE(theirs, nullptr);
  EXPECT_EQ(CallsOf("GetLogger("), 1);
  NS_ASCII::LogMgr::Release();
}

TEST_F(Overtaken, AReleaseLeavesTheDestructionToTheOtherThread) {
  GiveLoggersAway();
  ASSERT_NE(NS_ASCII::LogMgr::Instance(), nullptr);
  {
    const auto other = OtherThreadFirst([] { NS_ASCII::LogMgr::Release(); });
    NS_ASCII::LogMgr::Release();
    EXPECT_TRUE(other.happened());
  }
  EXPECT_EQ(CallsOf("~Logger()"), 1);
}

TEST_F(Overtaken, NoLockIsTakenWhereNothingIsToBeMadeOrDestroyed) {
  {
    const faults::BeforeLock lock([] {});
    NS_ASCII::LogMgr::Release();
    EXPECT_FALSE(lock.happened());
  }
  EXPECT_TRUE(util.IsTransQueltEnabled());
  const auto common = framework.logger;
  GiveLoggersAway();
  EXPECT_EQ(util.WriteDbgLog("makes the log manager, the key and the record"), 0);
  framework.logger = common;
  {
    const faults::BeforeLock lock([] {});
    EXPECT_NE(NS_ASCII::ObtainLogger("a", "b", "c"), nullptr);
    EXPECT_TRUE(util.IsTransQueltEnabled());
    EXPECT_EQ(util.WriteDbgLog("finds them"), 0);
    EXPECT_FALSE(lock.happened());
  }
  NS_ASCII::LogMgr::Release();
}

}  // namespace
