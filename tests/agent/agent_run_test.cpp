// The agent's threads when something fails: a thread that cannot be created, a feed that cannot be read.
// No thread may be left running, and the failure must be reported.

#include "examples/alarm_agent/agent_run.h"

#include <ace/Log_Msg.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <limits>
#include <system_error>

#include "examples/alarm_agent/unique_fd.h"
#include "src/interface/asciiutilifimpl.h"
#include "tests/temp_directory.h"

namespace {

/// How many more threads can be created before `pthread_create` fails.
std::atomic<int> threadsLeft{std::numeric_limits<int>::max()};

}  // namespace

// Replaces the C library's function, also for calls from the C++ library.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* argument) noexcept {
  static const auto create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  return threadsLeft-- > 0 ? create(thread, attributes, run, argument) : EAGAIN;
}

namespace alarm_agent {
namespace {

AgentOptions Options(const TempDirectory& dir, const std::string& feed, int workers) {
  AgentOptions options;
  options.feed = feed;
  options.out = dir / "out";
  options.workers = workers;
  return options;
}

// The two threads that run wait for the pipe.
TEST(AgentRun, EndsItsThreadsWhenTheSystemRefusesOne) {
  const TempDirectory dir;
  NS_ASCII::AsciiUtilInterfaceImpl util;
  const std::string pipe = dir / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const UniqueFd writer(::open(pipe.c_str(), O_RDWR | O_CLOEXEC));
  threadsLeft = 2;
  EXPECT_THROW(AgentRun(Options(dir, pipe, 3), util), std::system_error);
  threadsLeft = std::numeric_limits<int>::max();
}

// /proc/self/mem can be opened, but reading it at 0 fails, where nothing is mapped. Standard error is a pipe,
// so that the test can wait for the report.
TEST(AgentRun, ReportsAFeedThatCannotBeRead) {
  const TempDirectory dir;
  NS_ASCII::AsciiUtilInterfaceImpl util;
  ACE_LOG_MSG->open("agent_run_test", ACE_Log_Msg::STDERR);
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const UniqueFd reader(ends[0]);
  const UniqueFd writer(ends[1]);
  const UniqueFd standardError(::dup(STDERR_FILENO));
  ::dup2(writer.get(), STDERR_FILENO);
  AgentRun run(Options(dir, "/proc/self/mem", 1), util);
  pollfd report{reader.get(), POLLIN, 0};
  const int ready = ::poll(&report, 1, 300'000);
  ::dup2(standardError.get(), STDERR_FILENO);
  ASSERT_EQ(ready, 1) << "nothing was reported";
  char text[256] = {};
  EXPECT_GT(::read(reader.get(), text, sizeof text - 1), 0);
  EXPECT_STREQ(
      text, "alarm_agent_example: the feed \"/proc/self/mem\" cannot be read further: Input/output error\n");
}

}  // namespace
}  // namespace alarm_agent
