// Reports slow and crashing calls. The object owns the timer's thread and the crash handlers; at most one
// exists at a time.

#include "host/loader/call_watch.h"

#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <array>
#include <iostream>

#include "host/base/text_escape.h"

namespace host {
namespace {

constexpr std::array<int, 5> kCrashSignals{SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV};

/// Read by the signal handler; written before the handlers are installed.
std::array<std::string, kCrashSignals.size()> crashLines;
std::array<struct sigaction, kCrashSignals.size()> previousActions;

void OnCrash(int signal, siginfo_t* info, void* /*context*/) {
  for (std::size_t at = 0; at < kCrashSignals.size(); ++at) {
    if (kCrashSignals[at] == signal) {
      static_cast<void>(!write(STDERR_FILENO, crashLines[at].data(), crashLines[at].size()));
      sigaction(signal, &previousActions[at], nullptr);
    }
  }
  // After a fault, returning executes the instruction again, which raises the signal under the previous
  // handler. A signal that was sent, as by kill or abort, must be raised again.
  if (info->si_code <= 0) {
    static_cast<void>(raise(signal));
  }
}

/// Gives the handlers a stack of their own: a crash may be caused by a stack overflow.
void UseSignalStack() {
  static std::array<char, 65536> memory;
  stack_t current{};
  if (sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE) != 0) {
    stack_t own{};
    own.ss_sp = memory.data();
    own.ss_size = memory.size();
    sigaltstack(&own, nullptr);
  }
}

}  // namespace

CallWatch::CallWatch(const std::string& what, std::chrono::milliseconds limit) noexcept {
  UseSignalStack();
  struct sigaction action {};
  action.sa_sigaction = OnCrash;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  try {
    for (std::size_t at = 0; at < kCrashSignals.size(); ++at) {
      crashLines[at] =
          "bundle_host: crashed in " + OneLine(what) + ": " + SignalName(kCrashSignals[at]) + "\n";
      sigaction(kCrashSignals[at], &action, &previousActions[at]);
    }
    timer_ = std::thread(&CallWatch::ReportWhenSlow, this, what, limit);
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the call matters more than its watch.
  }
}

CallWatch::~CallWatch() {
  {
    const std::lock_guard<std::mutex> guard(lock_);
    hasEnded_ = true;
  }
  ended_.notify_one();
  if (timer_.joinable()) {
    timer_.join();
  }
  for (std::size_t at = 0; at < kCrashSignals.size(); ++at) {
    struct sigaction current {};
    sigaction(kCrashSignals[at], nullptr, &current);
    if (current.sa_sigaction == OnCrash) {
      sigaction(kCrashSignals[at], &previousActions[at], nullptr);
    }
  }
}

void CallWatch::ReportWhenSlow(const std::string& what, std::chrono::milliseconds limit) {
  std::unique_lock<std::mutex> guard(lock_);
  if (!ended_.wait_for(guard, limit, [this] { return hasEnded_; })) {
    std::cerr << "bundle_host: " + OneLine(what) + " is still running after " +
                     std::to_string(limit.count() / 1000) + " s; Ctrl-C twice ends the program\n";
  }
}

std::string SignalName(int signal) {
  const char* const name = sigabbrev_np(signal);
  return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

}  // namespace host
