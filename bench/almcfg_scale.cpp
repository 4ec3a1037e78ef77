// How almcfg scales: the time and memory that `almcfg check` takes for a file, beside the bundle's own load
// of it.
//
//   almcfg_scale ALMCFG ROUNDS FILE...
//
// Each contestant is a process of its own. The load is timed from call to return; the check from fork to
// exit, its output going nowhere. The best of the rounds counts, and they take turns, so that a busy machine
// disturbs both.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "src/almconfig.h"

namespace {

struct Cost {
  double seconds = 1e9;  ///< of a processor, the system's part included
  double megabytes = 0;  ///< at the most
};

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Runs `work` in a process of its own, which it must end.
Cost Measure(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(2);
  }
  rusage usage{};
  int status = 0;
  wait4(child, &status, 0, &usage);
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) {
    std::fprintf(stderr, "almcfg_scale: a contestant failed\n");
    std::exit(2);
  }
  return {Seconds(usage.ru_utime) + Seconds(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) * 1024 / 1e6};
}

Cost Load(const std::string& file) {
  return Measure([&file] {
    NS_ASCII::Alarm_Config_Param table;
    table.LoadConfig(file.c_str());
    _exit(0);
  });
}

Cost Check(const std::string& almcfg, const std::string& file) {
  return Measure([&] {
    dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
    execl(almcfg.c_str(), "almcfg", "check", file.c_str(), nullptr);
  });
}

void KeepBest(Cost& best, const Cost& cost) {
  best.seconds = std::min(best.seconds, cost.seconds);
  best.megabytes = std::max(best.megabytes, cost.megabytes);
}

double MegabytesOf(const std::string& file) {
  struct stat status;
  return stat(file.c_str(), &status) == 0 ? static_cast<double>(status.st_size) / 1e6 : 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: almcfg_scale ALMCFG ROUNDS FILE...\n");
    return 2;
  }
  std::printf("%-28s %8s | %8s %8s | %8s %8s | %10s %12s\n", "file", "MB", "load s", "load MB", "check s",
              "check MB", "time/load", "memory/file");
  for (int i = 3; i < argc; ++i) {
    const std::string file = argv[i];
    Cost load;
    Cost check;
    for (int round = std::atoi(argv[2]); round > 0; --round) {
      KeepBest(load, Load(file));
      KeepBest(check, Check(argv[1], file));
    }
    const double size = MegabytesOf(file);
    const std::string name = file.substr(file.rfind('/') + 1);
    std::printf("%-28s %8.1f | %8.2f %8.1f | %8.2f %8.1f | %10.2f %12.2f\n", name.c_str(), size, load.seconds,
                load.megabytes, check.seconds, check.megabytes, check.seconds / load.seconds,
                check.megabytes / size);
    std::fflush(stdout);
  }
  return 0;
}
