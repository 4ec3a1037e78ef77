#ifndef TESTS_CHILD_PROCESS_H_
#define TESTS_CHILD_PROCESS_H_

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <new>

/// Runs code that may never return in a child process.
namespace child {

/// How a child process ended.
enum class End {
  kReturned,     ///< the work returned
  kEndless,      ///< it used up its second of processor time
  kOutOfMemory,  ///< it used up its memory
  kOther,        ///< it ended in another way, such as a crash
};

constexpr int kReturnedStatus = 0;
constexpr int kOutOfMemoryStatus = 99;

/// Limits this process to `more` bytes of address space beyond its present size.
inline void LimitMemory(std::size_t more) {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t bytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + more;
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_AS, &limit);
}

/// The status of a child that runs `work`, which may call `_exit`. The limit is one of processor time: on a
/// slow machine too, an endless loop reaches it and a few microseconds' work does not.
template <class Work>
int StatusOf(Work work) {
  const pid_t pid = fork();
  if (pid == 0) {
    std::signal(SIGXCPU, SIG_DFL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlimit oneSecond{1, 1};
    setrlimit(RLIMIT_CPU, &oneSecond);
    try {
      work();
    } catch (const std::bad_alloc&) {
      _exit(kOutOfMemoryStatus);
    }
    _exit(kReturnedStatus);
  }
  int status = -1;
  waitpid(pid, &status, 0);
  return status;
}

template <class Work>
End EndOf(Work work) {
  const int status = StatusOf(work);
  if (WIFEXITED(status)) {
    const int code = WEXITSTATUS(status);
    return code == kReturnedStatus      ? End::kReturned
           : code == kOutOfMemoryStatus ? End::kOutOfMemory
                                        : End::kOther;
  }
  const bool outOfTime = WIFSIGNALED(status) && (WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGKILL);
  return outOfTime ? End::kEndless : End::kOther;
}

/// The exit code of a child whose work calls `_exit`; -1 when it ended in any other way.
template <class Work>
int ExitCodeOf(Work work) {
  const int status = StatusOf(work);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace child

#endif  // TESTS_CHILD_PROCESS_H_
