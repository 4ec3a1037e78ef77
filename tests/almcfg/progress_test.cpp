// The progress line on a terminal: when it appears, and that it is removed before anything else is written.

#include "tools/almcfg/write/progress.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/commands.h"

namespace {

using almcfg::Progress;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
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

TEST(Progress, ShowsTheProgressInOneLineThatIsOverwritten) {
  Progress progress(true, kAtOnce, kAtOnce);
  EXPECT_EQ(Written([&] { progress.Show("a\tb", "read", 1234567); }), "\r\x1b[Ka→b: 1,234,567 lines read");
  EXPECT_EQ(Written([&] { progress.Show("a", "checked", 2); }), "\r\x1b[Ka: 2 lines checked");
}

TEST(Progress, IsErasedOnce) {
  Progress progress(true, kAtOnce, kAtOnce);
  Written([&] { progress.Show("a", "read", 1); });
  EXPECT_EQ(Written([&] { progress.Hide(); }), "\r\x1b[K");
  EXPECT_EQ(Written([&] { progress.Hide(); }), "");
}

TEST(Progress, IsErasedAtTheEnd) {
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

/// What a terminal shows at the end: "\r\x1b[K" erases the line that it is on.
std::string ScreenAfter(const std::string& written) {
  std::string screen;
  for (std::size_t from = 0; from < written.size();) {
    const std::size_t erase = std::min(written.find("\r\x1b[K", from), written.size());
    screen += written.substr(from, erase - from);
    if (erase != written.size()) {
      screen.erase(screen.rfind('\n') + 1);
    }
    from = erase + 4;
  }
  return screen;
}

/// What is written when a command runs with both outputs on one terminal and progress is shown at once.
std::string WrittenBy(const almcfg::Options& options,
                      int (*run)(const almcfg::Options&, const almcfg::Outputs&)) {
  return Written([&] {
    Progress progress(true, kAtOnce, kAtOnce);
    run(options, {std::cerr, std::cerr, progress, {}, true});
  });
}

TEST(Progress, IsNeverLeftBeforeWhatACommandWrites) {
  std::string lines = "lost\n";
  for (int i = 0; i < 5000; ++i) {
    lines += "A\tB\tC\t" + std::to_string(i) + "\t1\n";
  }
  const almcfg_test::TempFile bad(lines + "A/\tB\tC\t07\t1\n" + std::string(1023, 'x') + "\nlost\n");
  const almcfg_test::TempFile good(lines);
  const almcfg_test::TempFile calls("A\tB\tC\t7\njunk\n");
  almcfg::Options options;
  options.key1 = "A";
  options.calls = calls.path();
  const auto expectNoProgress = [&](auto run, const std::vector<std::string>& files) {
    options.files = files;
    const std::string written = WrittenBy(options, run);
    EXPECT_THAT(written, HasSubstr(" lines "));
    for (const std::string done : {"read", "parsed", "checked"}) {
      EXPECT_THAT(ScreenAfter(written), Not(HasSubstr(" lines " + done))) << files[0];
    }
  };
  for (const std::string& second : {good.path(), bad.path(), std::string("/no/such")}) {
    for (auto* const run :
         {almcfg::RunCheck, almcfg::RunShow, almcfg::RunLookup, almcfg::RunDiff, almcfg::RunCoverage}) {
      expectNoProgress(run, {good.path(), second});
    }
  }
  expectNoProgress(almcfg::RunShow, {bad.path(), good.path()});
  expectNoProgress(almcfg::RunFix, {bad.path()});
  options.calls = "/no/such";
  expectNoProgress(almcfg::RunCoverage, {good.path()});
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
      alarm(500);  // Seconds, as in run_program.cpp.
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
