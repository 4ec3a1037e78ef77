// Calls of `init` and `fini` in ACE's place: no exception of a bundle may reach ACE, and crash signals get
// their former handlers back.

#include "host/loader/watched_service.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <csignal>
#include <stdexcept>
#include <thread>

#include "host/loader/call_watch.h"

namespace {

struct Calls {
  int initResult = 0;
  int finiResult = 0;
  bool throws = false;
  host::Words seen;
  int finis = 0;
  int destructions = 0;
};
Calls calls;

class Service : public ACE_Service_Object {
 public:
  ~Service() override { ++calls.destructions; }
  int init(int argc, ACE_TCHAR* argv[]) override {
    calls.seen.assign(argv, argv + argc);
    if (calls.throws) throw std::runtime_error("why");
    return calls.initResult;
  }
  int fini() override {
    ++calls.finis;
    if (calls.throws) throw std::runtime_error("why");
    return calls.finiResult;
  }
};

/// Calls `init`, with an argument that must be ignored, and `fini` of the record as ACE does.
host::ServiceProblems Drive(int expectedInit) {
  const auto problems = std::make_shared<host::ServiceProblems>();
  const auto destroy = [](void* object) { delete static_cast<ACE_Service_Object*>(object); };
  auto* const record = new host::WatchedService(new Service, "s", destroy, {"a", "b c"}, problems);
  char word[] = "ace";
  char* argv[] = {word, nullptr};
  EXPECT_EQ(record->init(1, argv), expectedInit);
  record->fini();
  EXPECT_EQ(calls.destructions, 1);
  return *problems;
}

TEST(WatchedService, PassesItsOwnArgumentsToInitAndCallsFiniOnce) {
  calls = {};
  const host::ServiceProblems problems = Drive(0);
  EXPECT_EQ(calls.seen, (host::Words{"a", "b c"}));
  EXPECT_EQ(calls.finis, 1);
  EXPECT_EQ(problems.init + problems.fini, "");
}

TEST(WatchedService, ReportsAPositiveResultOfFiniAsAProblem) {
  calls = {};
  calls.finiResult = 1;
  EXPECT_EQ(Drive(0).fini, "fini returned 1");
}

TEST(WatchedService, CallsNoFiniAfterAFailedInit) {
  calls = {};
  calls.initResult = -1;
  EXPECT_EQ(Drive(-1).init, "init returned -1");
  EXPECT_EQ(calls.finis, 0);
}

TEST(WatchedService, LetsNoExceptionOut) {
  calls = {};
  calls.throws = true;
  EXPECT_EQ(Drive(-1).init, "init threw: why");
}

/// While it exists, no thread can be started: new threads would need a stack that exceeds the address space.
class NoThreads {
 public:
  NoThreads() {
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &before_);
    Set(std::size_t{1} << 60);
  }
  ~NoThreads() { Set(before_); }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  static void Set(std::size_t stackSize) {
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    pthread_setattr_default_np(&attributes);
  }

  std::size_t before_ = 0;
};

TEST(WatchedService, CallsInitAndFiniUnwatchedWhenNoThreadCanBeStarted) {
  calls = {};
  const NoThreads none;
  EXPECT_THROW(std::thread([] {}), std::system_error);
  const host::ServiceProblems problems = Drive(0);
  EXPECT_EQ(calls.finis, 1);
  EXPECT_EQ(problems.init + problems.fini, "");
}

TEST(CallWatch, RestoresTheHandlersWhenNoThreadCanBeStarted) {
  struct sigaction before {};
  struct sigaction after {};
  sigaction(SIGILL, nullptr, &before);
  {
    const NoThreads none;
    const host::CallWatch watch("a test");
  }
  sigaction(SIGILL, nullptr, &after);
  EXPECT_EQ(after.sa_handler, before.sa_handler);
}

TEST(CallWatch, RestoresTheHandlersOfCrashesExceptThoseThatTheCallChanged) {
  const auto handlerOf = [](int number) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    return action.sa_handler;
  };
  const auto before = handlerOf(SIGILL);
  {
    const host::CallWatch watch("a test");
    EXPECT_NE(handlerOf(SIGILL), before);
    std::signal(SIGFPE, SIG_IGN);
  }
  EXPECT_EQ(handlerOf(SIGILL), before);
  EXPECT_EQ(handlerOf(SIGFPE), SIG_IGN);
  std::signal(SIGFPE, SIG_DFL);
}

}  // namespace
