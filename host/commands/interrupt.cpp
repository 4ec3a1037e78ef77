// The signal handlers and the number of the stored signal, which belongs to the process. Handlers run on
// any thread; the other functions belong to the main thread.

#include "host/commands/interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace host {
namespace {

std::atomic<int> stopSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "the handler may use it");

/// A pipe that receives a byte for each signal, so that a signal just before `poll` also ends the wait.
std::array<int, 2> wakeUp{-1, -1};

void OnSignal(int signal) {
  const int savedError = errno;
  const int before = stopSignal.load();
  if (before == 0 || (before == SIGINT && signal != SIGINT)) {
    stopSignal = signal;
    static_cast<void>(write(wakeUp[1], "", 1));
  } else {
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(raise(signal));  // Delivered when this handler returns.
  }
  errno = savedError;
}

}  // namespace

void CatchStopSignals() {
  if (pipe2(wakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
    throw Failure(std::string("cannot create a pipe: ") + std::strerror(errno));
  }
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;  // The code of a bundle might not handle EINTR.
  constexpr std::array<int, 3> kStopSignals{SIGINT, SIGTERM, SIGHUP};
  for (const int signal : kStopSignals) {
    sigaddset(&action.sa_mask, signal);  // A second one is delivered after the first is stored.
  }
  for (const int signal : kStopSignals) {
    struct sigaction before {};
    sigaction(signal, &action, &before);
    if (before.sa_handler == SIG_IGN) {
      sigaction(signal, &before, nullptr);
    }
  }
}

int StopSignal() { return stopSignal; }

bool ForgetInterrupt() {
  int expected = SIGINT;
  stopSignal.compare_exchange_strong(expected, 0);
  return stopSignal == 0;
}

bool WaitForInput(int descriptor) {
  std::array<pollfd, 2> waits{{{descriptor, POLLIN, 0}, {wakeUp[0], POLLIN, 0}}};
  while (stopSignal == 0) {
    if (poll(waits.data(), waits.size(), -1) > 0 && waits[0].revents != 0) {
      break;
    }
    // The bytes of signals that were cleared or that a forked child received, which shares the pipe.
    char bytes[16];
    while (read(wakeUp[0], bytes, sizeof bytes) > 0) {
    }
  }
  return stopSignal == 0;
}

Interrupted::Interrupted(const std::string& place)
    : Failure(place + "interrupted by SIG" + sigabbrev_np(stopSignal)) {}

void ThrowIfInterrupted() {
  if (stopSignal != 0) {
    throw Interrupted();
  }
}

}  // namespace host
