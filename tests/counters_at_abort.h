#ifndef TESTS_COUNTERS_AT_ABORT_H_
#define TESTS_COUNTERS_AT_ABORT_H_

#include <csignal>

extern "C" void __gcov_dump() __attribute__((weak));

/// In a build for coverage makes this process write its counters when it aborts; in any other build does
/// nothing. For the child of a death test: the process still ends by the same signal.
inline void KeepCountersAtAbort() {
  if (__gcov_dump != nullptr) {
    std::signal(SIGABRT, [](int) { __gcov_dump(); });
  }
}

#endif  // TESTS_COUNTERS_AT_ABORT_H_
