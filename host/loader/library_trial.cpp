// Starts the child process that loads a library, reads its report and stops it after the limit. The
// process owns the name of the trial program. One thread at a time.

#include "host/loader/library_trial.h"

#include <fcntl.h>
#include <link.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "host/base/problem.h"
#include "host/loader/call_watch.h"
#include "host/loader/mapped_library.h"

namespace host {
namespace {

constexpr const char* kTrialOption = "--try-library";

// The first byte of the child's report. A NUL byte ends the report.
constexpr char kLoaded = 'L';  // the path follows
constexpr char kFailed = 'F';  // the reason follows

constexpr const char* kCutShort = " is cut short (is it still being written?)";

std::string trialProgram;

using Clock = std::chrono::steady_clock;

/// Owns a file descriptor and closes it.
struct Descriptor {
  int value = -1;
  Descriptor() = default;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Close(); }
  void Close() {
    if (value >= 0) {
      close(std::exchange(value, -1));
    }
  }
};

/// Whether the file ends before its section headers, which linkers write last. Where only a part of the last page
/// is missing, the dynamic linker loads the file with zeros in place of that part.
bool IsCutShort(const std::string& path) {
  ElfW(Ehdr) header{};
  std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
  return std::filesystem::file_size(path) < header.e_shoff + std::size_t{header.e_shentsize} * header.e_shnum;
}

/// Loads the library in this process. Returns the report without its NUL.
std::string Report(const std::string& library) {
  try {
    const LibraryHandle handle = LibraryHandle::Load(library);
    const std::string path = handle.Path();
    return IsCutShort(path) ? kFailed + ("cannot be loaded: " + path) + ": the file" + kCutShort
                            : kLoaded + path;
  } catch (const std::exception& failure) {
    return kFailed + std::string(failure.what());
  }
}

/// Returns the path in a report, empty when the linker found no such library. Throws the reported `Failure`.
std::string Evaluate(const std::string& library, const std::string& report) {
  if (report.front() == kLoaded) {
    return report.substr(1);
  }
  const std::string notFound = library + ": cannot open shared object file: No such file or directory";
  if (report.find(notFound) != std::string::npos) {
    return {};
  }
  throw Failure(report.substr(1));
}

/// Reads up to the NUL byte or the end; returns false when the deadline passes first.
bool ReadReport(int from, Clock::time_point deadline, std::string& report) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wanted{from, POLLIN, 0};
    const int ready = poll(&wanted, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
    if (ready == 0) {
      return false;
    }
    char bytes[4096];
    const ssize_t count = ready < 0 ? -1 : read(from, bytes, sizeof bytes);
    if (count > 0) {
      report.append(bytes, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return true;
    }
    if (const std::size_t end = report.find('\0'); end != std::string::npos) {
      report.erase(end);
      return true;
    }
  }
}

pid_t StartTrial(const std::string& library, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  std::string words[] = {trialProgram, kTrialOption, library};
  char* const argv[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t child = -1;
  const int error = posix_spawn(&child, trialProgram.c_str(), &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw Failure("cannot be tried: " + trialProgram + ": " + std::generic_category().message(error));
  }
  return child;
}

/// The message for a child that ended without a report.
std::string WhyEnded(int status) {
  if (!WIFSIGNALED(status)) {
    return "cannot be loaded: a constructor ends the process, with exit code " +
           std::to_string(WEXITSTATUS(status));
  }
  const int signal = WTERMSIG(status);
  const bool isCrash = signal != SIGINT && signal != SIGTERM && signal != SIGHUP;
  return "cannot be loaded: the process that tries it ends by " + SignalName(signal) +
         (isCrash ? std::string("; a constructor crashes, or the file") + kCutShort : "");
}

}  // namespace

void RunLibraryTrial(int argc, const char* const* argv) {
  if (argc != 3 || std::strcmp(argv[1], kTrialOption) != 0) {
    // The path, not the link: executing /proc/self/exe under valgrind would start valgrind.
    std::error_code none;
    const std::string program = std::filesystem::read_symlink("/proc/self/exe", none).string();
    SetTrialProgram(std::filesystem::exists(program, none) ? program : "/proc/self/exe");
    return;
  }
  // A crash must end the child by its signal, also with a sanitizer, which installs handlers of its own.
  for (const int crash : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
    static_cast<void>(signal(crash, SIG_DFL));
  }
  // Output of constructors is discarded here; it appears when the library is loaded for use.
  const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  const std::string report = Report(argv[2]);
  // `_exit` skips destructors: only loading is tried.
  _exit(write(output, report.c_str(), report.size() + 1) < 0 ? 1 : 0);
}

void SetTrialProgram(const std::string& program) { trialProgram = program; }

std::string TryLibrary(const std::string& library, std::chrono::milliseconds limit) {
  if (trialProgram.empty()) {
    return Evaluate(library, Report(library));
  }
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw Failure("cannot be tried: " + std::generic_category().message(errno));
  }
  Descriptor input;
  Descriptor output;
  input.value = ends[0];
  output.value = ends[1];
  const pid_t child = StartTrial(library, output.value);
  output.Close();
  std::string report;
  const bool ended = ReadReport(input.value, Clock::now() + limit, report);
  if (!ended) {
    kill(child, SIGKILL);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (!ended) {
    throw Failure("cannot be loaded: a constructor was still running after " +
                  std::to_string(limit.count() / 1000) + " s");
  }
  if (report.empty()) {
    throw Failure(WhyEnded(status));
  }
  return Evaluate(library, report);
}

}  // namespace host
