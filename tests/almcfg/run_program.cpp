// Starts the built almcfg with temporary files as its standard streams: a pipe could fill up and block it.

#include "tests/almcfg/run_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

namespace almcfg_test {
namespace {

/// Becomes the program; what fails here shows as exit code 127.
[[noreturn]] void Become(const std::string& folder, const std::vector<std::string>& arguments,
                         const std::string& in, const std::string& out, const std::string& err) {
  std::vector<char*> argv{const_cast<char*>("almcfg")};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  const bool isReady = chdir(folder.c_str()) == 0 && dup2(open(in.c_str(), O_RDONLY), STDIN_FILENO) >= 0 &&
                       dup2(open(out.c_str(), O_WRONLY), STDOUT_FILENO) >= 0 &&
                       dup2(open(err.c_str(), O_WRONLY), STDERR_FILENO) >= 0;
  alarm(500);  // Seconds, less than the test's time limit: a program that hangs does not outlive the test.
  if (isReady) {
    execv(ALMCFG_PROGRAM, argv.data());
  }
  _exit(127);
}

}  // namespace

Outcome RunAlmcfg(const std::vector<std::string>& arguments, const std::string& input) {
  return RunIn(PROJECT_FOLDER, arguments, input);
}

Outcome RunIn(const std::string& folder, const std::vector<std::string>& arguments,
              const std::string& input) {
  const TempFile in(input);
  const TempFile out("");
  const TempFile err("");
  const pid_t child = fork();
  if (child == 0) {
    Become(folder, arguments, in.path(), out.path(), err.path());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), ReadFile(out.path()),
          ReadFile(err.path())};
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string ProjectFolder() { return PROJECT_FOLDER "/"; }

}  // namespace almcfg_test
