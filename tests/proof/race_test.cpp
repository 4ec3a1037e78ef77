// Concurrent uses, checked by ThreadSanitizer and by their answers: first uses of everything that is made on
// first use, and lookups while the configuration is loaded again with other values.
//
// Not covered: the first lookups of a log service that is not in the registry. They read the registry's
// buffer without its lock, as the platform requires.

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "src/interface/asciiutilifimpl.h"
#include "src/log/logmgr.h"
#include "src/service/asciiutilsvc.h"
#include "tests/handover.h"
#include "tests/recording_fixture.h"
#include "tests/temp_directory.h"

namespace {

constexpr int kThreads = 8;

/// Runs `action` on several threads that start it together.
void Together(const std::function<void(int thread)>& action) {
  std::atomic<int> ready{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&action, &ready, i] {
      ++ready;
      while (ready < kThreads) {
        std::this_thread::yield();
      }
      action(i);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

class Races : public recording::FrameworkTest {
 protected:
  std::size_t CallsOf(const std::string& start) const {
    std::size_t count = 0;
    for (const std::string& call : framework.Calls()) {
      count += call.rfind(start, 0) == 0 ? 1U : 0U;
    }
    return count;
  }

  NS_ASCII::AsciiUtilInterfaceImpl util;
};

TEST_F(Races, TheFirstMessagesOfManyThreadsAllArrive) {
  framework.intItems["IsTransQuelt"] = 0;
  Together([this](int) { EXPECT_FALSE(util.IsTransQueltEnabled()); });
  EXPECT_EQ(framework.Messages().size(), static_cast<std::size_t>(kThreads));
  const std::size_t asked = CallsOf("GetLogger(");
  EXPECT_GE(asked, 1U);
  EXPECT_LE(asked, static_cast<std::size_t>(kThreads));
}

TEST_F(Races, TheFirstDebugMessagesOfManyThreadsMakeOneLogManager) {
  std::vector<NS_ASCII::LogMgr*> managers(kThreads);
  Together([&](int thread) {
    EXPECT_EQ(util.WriteDbgLog("position"), 0);
    managers[static_cast<std::size_t>(thread)] = NS_ASCII::LogMgr::Instance();
  });
  EXPECT_EQ(framework.Messages().size(), static_cast<std::size_t>(kThreads));
  EXPECT_EQ(CallsOf("GetLogger(\"ii_ascii_bundle\""), 1U);
  for (const NS_ASCII::LogMgr* const manager : managers) {
    EXPECT_EQ(manager, managers.front());
  }
}

TEST_F(Races, TheFirstLookupsOfManyThreadsMakeOneStore) {
  Together([this](int) {
    std::int64_t value = 99;
    const int number = 7;
    EXPECT_EQ(util.GetAlmCfgValue(value, "A", "B", "C", number), 0);
    EXPECT_EQ(value, 0);
  });
}

TEST_F(Races, WhatOneThreadMadeIsWholeForAnotherWithoutSynchronisation) {
  framework.intItems["IsTransQuelt"] = 1;
  framework.logger = [] { return new recording::Logger; };
  framework.SetRecording(false);  // Its journal has a lock.
  HandOver([this] { EXPECT_TRUE(util.IsTransQueltEnabled()); },
           [this] { EXPECT_TRUE(util.IsTransQueltEnabled()); });
  HandOver([] { EXPECT_NE(NS_ASCII::LogMgr::Instance(), nullptr); },
           [this] { EXPECT_EQ(util.WriteDbgLog("the other thread's log manager"), 0); });
  NS_ASCII::LogMgr::Release();
  EXPECT_NE(NS_ASCII::LogMgr::Instance(), nullptr);
  HandOver([this] { EXPECT_EQ(util.WriteDbgLog("the first use of the thread key"), 0); },
           [this] { EXPECT_EQ(util.WriteDbgLog("the second"), 0); });
}

TEST_F(Races, EverythingFirstUsedAtOnce) {
  framework.intItems["IsTransQuelt"] = 1;
  Together([this](int thread) {
    std::int64_t value = 99;
    const int number = 7;
    switch (thread % 4) {
      case 0:
        EXPECT_TRUE(util.IsTransQueltEnabled());
        break;
      case 1:
        EXPECT_EQ(util.WriteDbgLog("position"), 0);
        break;
      case 2:
        EXPECT_EQ(util.GetAlmCfgValue(value, "A", "B", "C", number), 0);
        break;
      default:
        EXPECT_EQ(util.GetTimeStamp().size(), 19U);
        break;
    }
  });
}

// --- Reload

constexpr int kRounds = 60;
constexpr int kKeys = 40;

/// Every key with the round's number as its value; each round has more keys than the one before, so the table
/// grows.
std::string ContentOf(int round) {
  std::string content;
  for (int key = 0; key < kKeys + 10 * round; ++key) {
    const std::string number = std::to_string(key);
    content += "key" + number + "/other" + number + "\tB\tC\t7\t" + std::to_string(round) + '\n';
  }
  return content;
}

TEST_F(Races, ALookupDuringReloadsAnswersAnOlderValueOrTheNewest) {
  const TempDirectory directory;
  framework.cfgDir = directory.path().string() + "/";
  framework.SetRecording(false);
  NS_ASCII::ii_ascii_util service;
  std::atomic<int> begun{0};  // The newest round that may be seen.
  std::atomic<int> ended{0};  // The oldest round that may be seen.
  std::atomic<bool> done{false};

  std::vector<std::thread> readers;
  for (int reader = 0; reader < 3; ++reader) {
    readers.emplace_back([&, reader] {
      std::vector<std::int64_t> seen(kKeys, 0);
      for (int i = reader; !done; ++i) {
        const auto key = static_cast<std::size_t>(i % kKeys);
        const std::int64_t oldest = ended;
        std::int64_t value = -1;
        const int number = 7;
        ASSERT_EQ(util.GetAlmCfgValue(value, "key" + std::to_string(key), "B", "C", number), 0);
        ASSERT_GE(value, oldest) << "an old value after a load was over";
        ASSERT_LE(value, begun) << "a value that was never there";
        ASSERT_GE(value, seen[key]) << "an older value after a newer one";
        seen[key] = value;
      }
    });
  }
  for (int round = 1; round <= kRounds; ++round) {
    directory.Write("ii_asciiagent_bundle/AlarmConfig.csv", ContentOf(round));
    begun = round;
    ASSERT_EQ(service.init(0, nullptr), 0);
    ended = round;
  }
  done = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
}

}  // namespace
