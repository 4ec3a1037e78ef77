// Messages with the thread's debug position: one logger for the process, one record per thread, nothing
// freed twice. Each test releases the log manager at its end.

#include "src/log/logmgr.h"

#include <ace/Log_Category.h>
#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "tests/ace_log.h"
#include "tests/private_member.h"
#include "tests/recording_fixture.h"

namespace private_member {
struct Storage {
  friend constexpr auto Of(Storage);
};
template struct Opened<Storage, &NS_ASCII::LogMgr::storage_>;

struct ObtainOwnLogger {
  friend constexpr auto Of(ObtainOwnLogger);
};
template struct Opened<ObtainOwnLogger, &NS_ASCII::LogMgr::ObtainOwnLogger>;
}  // namespace private_member

namespace {

std::atomic<const void*> watched{nullptr};  ///< the memory whose release the test observes
std::atomic<int> watchedFreed{0};
int freedBeforeKey = 0;  ///< how often `watched` was freed when a thread key was freed
/// The next allocation of a record closes this storage, as if the main thread did so at exit.
std::atomic<NS_ASCII::PosStorage*> closedByNextAllocation{nullptr};

void NoteFreed(const void* piece) noexcept {
  if (piece != nullptr && piece == watched.load()) {
    watched = nullptr;
    ++watchedFreed;
  }
}

}  // namespace

// The linker redirects ACE's release of thread keys to this function (--wrap).
extern "C" int __real__ZN6ACE_OS11thr_keyfreeEj(pthread_key_t);
extern "C" int __wrap__ZN6ACE_OS11thr_keyfreeEj(pthread_key_t key) {
  freedBeforeKey = watchedFreed;
  return __real__ZN6ACE_OS11thr_keyfreeEj(key);
}

// Not inlined: the compiler would otherwise warn about a mismatched pair of new and delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (void* const piece = std::malloc(size); piece != nullptr) {
    return piece;
  }
  throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (NS_ASCII::PosStorage* const storage = closedByNextAllocation.exchange(nullptr); storage != nullptr) {
    storage->Close();
  }
  return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* piece) noexcept {
  NoteFreed(piece);
  std::free(piece);
}
[[gnu::noinline]] void operator delete(void* piece, std::size_t) noexcept {
  NoteFreed(piece);
  std::free(piece);
}

namespace {

using NS_ASCII::LogMgr;
using NS_ASCII::PosStorage;
using NS_LOG_SERVICE1::PosForDbg;
using recording::Message;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr int kMoreThanAllKeys = 1100;  // A process has 1,024.

class LogMgrTest : public recording::FrameworkTest {
 protected:
  LogMgrTest() {
    framework.logger = [this] { return lastLogger = new recording::Logger; };
    // ACE allocates its own thread keys here, so that it does not get a key that a test has freed.
    ACE_Log_Category::ace_lib().per_thr_obj();
  }
  // The log manager owns its logger.
  ~LogMgrTest() override { LogMgr::Release(); }

  recording::Logger* lastLogger = nullptr;
};

class PosStorageTest : public LogMgrTest {};

PosStorage& StorageOf(LogMgr* manager) { return manager->*Of(private_member::Storage()); }

/// The thread key, a protected member of ACE's class.
struct KeyOf : PosStorage {
  static ACE_thread_key_t Storage(const PosStorage& storage) { return storage.*&KeyOf::key_; }
};

/// Runs `work` on a new thread and waits for it.
template <class Work>
void OnAnotherThread(Work work) {
  std::thread(work).join();
}

// --- Instance, LogPos, Release

TEST_F(LogMgrTest, ObtainsALoggerOfItsOwnWhenItIsMade) {
  LogMgr* const manager = LogMgr::Instance();
  ASSERT_NE(manager, nullptr);
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(CheckIFBuf("LogSvcInterface"))",
                                             R"(GetLogger("ii_ascii_bundle", "QueltAni", "corbaoper"))"));
  framework.ForgetCalls();
  EXPECT_EQ(LogMgr::Instance(), manager);
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LogMgrTest, LogsAtLevelZeroWithAnEmptyPosition) {
  LogMgr::Instance()->LogPos("x");
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"", "", 0, 0, "x", {}}));
}

TEST_F(LogMgrTest, LogsThePositionOfTheCallingThread) {
  PosForDbg* const mine = StorageOf(LogMgr::Instance()).Record();
  mine->file = "file";
  mine->func = "func";
  mine->line = 12;
  LogMgr::Instance()->LogPos("here");
  OnAnotherThread([] { LogMgr::Instance()->LogPos("there"); });
  EXPECT_THAT(framework.Messages(),
              ElementsAre(Message{"file", "func", 12, 0, "here", {}}, Message{"", "", 0, 0, "there", {}}));
}

TEST_F(LogMgrTest, DropsMessagesWhenItGotNoLogger) {
  framework.logger = [] { return nullptr; };
  ASSERT_NE(LogMgr::Instance(), nullptr);
  LogMgr::Instance()->LogPos("dropped");
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(LogMgrTest, SaysWhetherItGotALogger) {
  LogMgr* const manager = LogMgr::Instance();
  const auto obtainOwnLogger = Of(private_member::ObtainOwnLogger());
  delete lastLogger;
  EXPECT_TRUE((manager->*obtainOwnLogger)());
  delete lastLogger;
  framework.logger = [] { return nullptr; };
  EXPECT_FALSE((manager->*obtainOwnLogger)());
}

// Unlike the shared logger, a missing logger is not requested again.
TEST_F(LogMgrTest, StaysWithoutALoggerWhenTheLogServiceComesLater) {
  framework.Unregister("LogSvcInterface");
  LogMgr::Instance();
  recording::LogService service;
  framework.Register("LogSvcInterface", &service);
  framework.ForgetCalls();
  LogMgr::Instance()->LogPos("dropped");
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LogMgrTest, LetsWhatTheLoggerThrowsReachTheCaller) {
  framework.On("Log", [] { throw std::runtime_error("logger"); });
  EXPECT_THROW(LogMgr::Instance()->LogPos("x"), std::runtime_error);
}

TEST_F(LogMgrTest, IsOneForThreadsThatStartTogether) {
  std::vector<LogMgr*> seen(4);
  std::vector<std::thread> threads;
  for (LogMgr*& manager : seen) {
    threads.emplace_back([&manager] {
      manager = LogMgr::Instance();
      manager->LogPos("x");
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(seen, ::testing::Each(LogMgr::Instance()));
  EXPECT_THAT(framework.Messages(), SizeIs(4));
}

TEST_F(LogMgrTest, ReleaseDestroysTheLoggerAndTheNextInstanceIsNew) {
  LogMgr::Instance()->LogPos("first");
  framework.ForgetCalls();
  LogMgr::Release();
  EXPECT_THAT(framework.Calls(), ElementsAre("~Logger()"));
  LogMgr::Release();
  EXPECT_THAT(framework.Calls(), SizeIs(1));
  framework.ForgetCalls();
  LogMgr::Instance()->LogPos("second");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(CheckIFBuf("LogSvcInterface"))",
                                             R"(GetLogger("ii_ascii_bundle", "QueltAni", "corbaoper"))",
                                             R"(Log("", "", 0, 0, "second"))"));
}

TEST_F(LogMgrTest, ReleaseWithoutALogManagerDoesNothing) {
  LogMgr::Release();
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LogMgrTest, ReleaseDestroysTheCallingThreadsRecord) {
  watched = StorageOf(LogMgr::Instance()).Record();
  watchedFreed = 0;
  LogMgr::Release();
  EXPECT_EQ(watchedFreed, 1);
}

TEST_F(LogMgrTest, ReleaseGivesTheThreadKeyBack) {
  for (int i = 0; i < kMoreThanAllKeys; ++i) {
    framework.ForgetCalls();
    LogMgr::Instance()->LogPos("x");
    ASSERT_THAT(framework.Messages(), SizeIs(1)) << i;
    LogMgr::Release();
  }
}

// --- The records

TEST_F(PosStorageTest, MakesAnEmptyRecordAndKeepsIt) {
  PosStorage storage;
  PosForDbg* const record = storage.Record();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->file, "");
  EXPECT_EQ(record->func, "");
  EXPECT_EQ(record->line, 0);
  EXPECT_EQ(storage.Record(), record);
}

TEST_F(PosStorageTest, GivesEachThreadARecordOfItsOwn) {
  PosStorage storage;
  PosForDbg* const mine = storage.Record();
  OnAnotherThread([&] {
    EXPECT_NE(storage.Record(), nullptr);
    EXPECT_NE(storage.Record(), mine);
    EXPECT_EQ(storage.Record(), storage.Record());
  });
}

TEST_F(PosStorageTest, DestroysAThreadsRecordWhenTheThreadEnds) {
  PosStorage storage;
  PosForDbg* const mine = storage.Record();
  watchedFreed = 0;
  OnAnotherThread([&] {
    PosForDbg* const record = storage.Record();
    record->file = std::string(100, 'x');  // Leaks when the record is freed without its destructor.
    watched = record;
    EXPECT_EQ(watchedFreed, 0);
  });
  EXPECT_EQ(watchedFreed, 1);
  EXPECT_EQ(storage.Record(), mine);
}

TEST_F(PosStorageTest, CloseFreesTheKeyAndTheCallingThreadsRecordAndEndsTheAccess) {
  for (int i = 0; i < kMoreThanAllKeys; ++i) {
    auto storage = std::make_unique<PosStorage>();
    watched = storage->Record();
    ASSERT_NE(watched.load(), nullptr) << i;
    watchedFreed = 0;
    storage->Close();
    ASSERT_EQ(watchedFreed, 1);
    ASSERT_EQ(storage->Record(), nullptr);
  }
}

TEST_F(PosStorageTest, CloseDestroysTheCallingThreadsRecordBeforeItFreesTheKey) {
  PosStorage storage;
  watched = storage.Record();
  watchedFreed = 0;
  freedBeforeKey = -1;
  storage.Close();
  EXPECT_EQ(freedBeforeKey, 1);
}

// At process exit other threads and later exit handlers still log.
TEST_F(LogMgrTest, LogsWithAnEmptyPositionAfterTheStorageIsClosed) {
  LogMgr* const manager = LogMgr::Instance();
  StorageOf(manager).Record()->file = "file";
  StorageOf(manager).Close();
  manager->LogPos("mine");
  OnAnotherThread([&] { manager->LogPos("another thread's"); });
  EXPECT_THAT(framework.Messages(),
              ElementsAre(Message{"", "", 0, 0, "mine", {}}, Message{"", "", 0, 0, "another thread's", {}}));
}

TEST_F(PosStorageTest, CloseOfAnUnusedStorageEndsTheAccess) {
  PosStorage storage;
  storage.Close();
  EXPECT_EQ(storage.Record(), nullptr);
}

// --- The report of a failed thread slot

void ExpectSlotReport(const std::vector<AceLog::Entry>& entries) {
  ASSERT_THAT(entries, SizeIs(1));
  EXPECT_EQ(entries[0].file, "logmgr");
  EXPECT_EQ(entries[0].line, 90);
  EXPECT_EQ(entries[0].priority, LM_ERROR);
  EXPECT_EQ(entries[0].text, "Error: ACE_Thread::setspecific() failed!: Invalid argument\n");
  EXPECT_EQ(entries[0].status, -1);
}

TEST_F(PosStorageTest, ReportsNothingWhenTheKeyWasFreedMeanwhile) {
  LogMgr* const manager = LogMgr::Instance();
  manager->LogPos("first");
  // The storage cannot reach this thread's record after the other thread has closed it.
  const std::unique_ptr<NS_LOG_SERVICE1::PosForDbg> record(StorageOf(manager).Record());
  OnAnotherThread([&] {
    const AceLog log;
    closedByNextAllocation = &StorageOf(manager);
    manager->LogPos("second");
    EXPECT_EQ(closedByNextAllocation.load(), nullptr);
    EXPECT_THAT(log.entries, IsEmpty());
  });
  EXPECT_THAT(framework.Messages(), SizeIs(2));
}

// The test frees the storage's key, which makes its slots invalid.
TEST_F(PosStorageTest, ReportsASlotThatCannotBeStored) {
  LogMgr* const manager = LogMgr::Instance();
  delete StorageOf(manager).Record();  // This thread's record; without the key ACE cannot reach it.
  OnAnotherThread([&] {
    AceLog log;
    pthread_key_delete(KeyOf::Storage(StorageOf(manager)));
    watchedFreed = 0;
    EXPECT_EQ(StorageOf(manager).Record(), nullptr);
    ExpectSlotReport(log.entries);
    log.entries.clear();
    manager->LogPos("dropped");
    ExpectSlotReport(log.entries);
    EXPECT_THAT(framework.Messages(), IsEmpty());
  });
  const AceLog log;
  LogMgr::Release();
  ExpectSlotReport(log.entries);
}

}  // namespace
