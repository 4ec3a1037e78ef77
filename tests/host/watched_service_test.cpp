#include "host/loader/watched_service.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <csignal>
#include <stdexcept>

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
