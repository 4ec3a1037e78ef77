// The progress line on a terminal: when it appears and that it is removed.

#include "tools/almcfg/write/progress.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace {

using almcfg::Progress;
using testing::EndsWith;
using testing::StartsWith;

constexpr Progress::Clock::duration kAtOnce{0};
constexpr Progress::Clock::duration kNever = std::chrono::hours(1);

/// What `job` writes to standard error.
template <class Job>
std::string Written(const Job& job) {
  testing::internal::CaptureStderr();
  job();
  return testing::internal::GetCapturedStderr();
}

TEST(Progress, SaysHowFarTheJobIsInOneLineThatIsWrittenOver) {
  Progress progress(true, kAtOnce, kAtOnce);
  EXPECT_EQ(Written([&] { progress.Show("a\tb", "read", 1234567); }), "\r\x1b[Ka→b: 1,234,567 lines read");
  EXPECT_EQ(Written([&] { progress.Show("a", "checked", 2); }), "\r\x1b[Ka: 2 lines checked");
}

TEST(Progress, IsTakenAwayOnce) {
  Progress progress(true, kAtOnce, kAtOnce);
  Written([&] { progress.Show("a", "read", 1); });
  EXPECT_EQ(Written([&] { progress.Hide(); }), "\r\x1b[K");
  EXPECT_EQ(Written([&] { progress.Hide(); }), "");
}

TEST(Progress, IsTakenAwayAtTheEnd) {
  EXPECT_THAT(Written([] { Progress(true, kAtOnce, kAtOnce).Show("a", "read", 1); }),
              EndsWith("read\r\x1b[K"));
}

TEST(Progress, ShowsNothingOfAShortJob) {
  EXPECT_EQ(Written([] { Progress(true, kNever, kAtOnce).Show("a", "read", 1); }), "");
}

TEST(Progress, WaitsBetweenTwoLines) {
  Progress progress(true, kAtOnce, kNever);
  EXPECT_NE(Written([&] { progress.Show("a", "read", 1); }), "");
  EXPECT_EQ(Written([&] { progress.Show("a", "read", 2); }), "");
}

TEST(Progress, ShowsNothingWhereThereIsNoTerminal) {
  EXPECT_EQ(Written([] { Progress(false, kAtOnce, kAtOnce).Show("a", "read", 1); }), "");
}

/// The checker, reading a pipe, with its messages on a terminal.
class SlowCheck {
 public:
  SlowCheck() {
    int terminal = -1;
    int input[2] = {-1, -1};
    EXPECT_EQ(openpty(&screen_, &terminal, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(pipe(input), 0);
    child_ = fork();
    if (child_ == 0) {
      alarm(30);
      const bool isReady = dup2(input[0], STDIN_FILENO) >= 0 && dup2(terminal, STDERR_FILENO) >= 0 &&
                           dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO) >= 0;
      close(input[1]);
      if (isReady) {
        execl(ALMCFG_PROGRAM, "almcfg", "show", "-", nullptr);
      }
      _exit(127);
    }
    close(terminal);
    close(input[0]);
    input_ = input[1];
  }
  ~SlowCheck() {
    close(screen_);
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }

  /// Feeds lines until the screen shows `text`; false when the program ends before.
  bool FeedUntil(const std::string& text) {
    const std::string line = "A\tB\tC\t7\t1\n";
    while (shown_.find(text) == std::string::npos) {
      pollfd waiting{screen_, POLLIN, 0};
      if (poll(&waiting, 1, 20) > 0 && !TakeFromScreen()) {
        return false;
      }
      if (write(input_, line.data(), line.size()) < 0) {
        return false;
      }
    }
    return true;
  }

  /// Ends the input and returns all that was shown.
  std::string Finish() {
    close(input_);
    while (TakeFromScreen()) {
    }
    return shown_;
  }

 private:
  bool TakeFromScreen() {
    char buffer[4096];
    const ssize_t count = read(screen_, buffer, sizeof buffer);
    shown_.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    return count > 0;
  }

  int screen_ = -1;
  int input_ = -1;
  pid_t child_ = -1;
  std::string shown_;
};

TEST(Progress, AppearsOnTheTerminalOfALongRunAndIsErasedAtItsEnd) {
  SlowCheck check;
  EXPECT_TRUE(check.FeedUntil(" lines read"));
  const std::string shown = check.Finish();
  EXPECT_THAT(shown, StartsWith("\r\x1b[K<stdin>: "));
  EXPECT_THAT(shown, EndsWith(" lines read\r\x1b[K"));
}

}  // namespace
