// The main function of programs whose tests each need their own process, because the library keeps the
// objects that its first message and its first debug log create until the process ends. Each selected test
// runs in its own child process; a single test, as ctest runs them, runs in this process.

#include <fnmatch.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Whether `name` is one of the patterns, which are separated by ':'.
bool IsIn(const std::string& patterns, const std::string& name) {
  std::istringstream list(patterns);
  for (std::string pattern; std::getline(list, pattern, ':');) {
    if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) {
      return true;
    }
  }
  return false;
}

/// The names of the tests that the filter, WANTED[-UNWANTED], selects.
std::vector<std::string> SelectedTests(const std::string& filter) {
  const std::size_t dash = std::min(filter.find('-'), filter.size());
  const std::string wanted = dash == 0 ? "*" : filter.substr(0, dash);
  const std::string unwanted = dash == filter.size() ? "" : filter.substr(dash + 1);
  std::vector<std::string> names;
  const testing::UnitTest& program = *testing::UnitTest::GetInstance();
  for (int i = 0; i < program.total_test_suite_count(); ++i) {
    const testing::TestSuite& suite = *program.GetTestSuite(i);
    for (int j = 0; j < suite.total_test_count(); ++j) {
      const std::string name = std::string(suite.name()) + '.' + suite.GetTestInfo(j)->name();
      if (IsIn(wanted, name) && !IsIn(unwanted, name)) {
        names.push_back(name);
      }
    }
  }
  return names;
}

}  // namespace

int main(int argc, char* argv[]) {
  testing::InitGoogleTest(&argc, argv);
  const std::vector<std::string> tests = SelectedTests(testing::GTEST_FLAG(filter));
  if (testing::GTEST_FLAG(list_tests) || tests.size() == 1) {
    return RUN_ALL_TESTS();
  }
  std::vector<std::string> failed;
  for (const std::string& test : tests) {
    const pid_t child = fork();
    if (child == 0) {
      testing::GTEST_FLAG(filter) = test;
      testing::GTEST_FLAG(brief) = true;
      return RUN_ALL_TESTS();
    }
    int status = -1;
    if (waitpid(child, &status, 0) != child || status != 0) {
      failed.push_back(test);
      if (testing::GTEST_FLAG(fail_fast)) {
        break;
      }
    }
  }
  std::printf("%zu tests, each in a process of its own, %zu failed\n", tests.size(), failed.size());
  for (const std::string& test : failed) {
    std::printf("[  FAILED  ] %s\n", test.c_str());
  }
  return failed.empty() ? 0 : 1;
}
