// Every rule has an example, and the checker's output for it is compared with tests/almcfg/golden. After an
// intended change, tests/almcfg/update_golden.sh writes the new output.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/almcfg/run_program.h"
#include "tools/almcfg/check/finding.h"

namespace {

using almcfg_test::ProjectFolder;
using almcfg_test::ReadFile;
using almcfg_test::RunAlmcfg;

std::vector<std::string> Examples() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(ProjectFolder() + "examples/broken")) {
    if (entry.path().extension() == ".csv") {
      names.push_back(entry.path().stem());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The worst that the example's own finding can be.
int ExpectedExit(const std::string& name) {
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    if (rule.name == name) {
      return rule.severity == almcfg::Severity::kError ? 1 : 0;
    }
  }
  ADD_FAILURE() << name << " is the name of no rule";
  return -1;
}

class BrokenExample : public testing::TestWithParam<std::string> {};

TEST_P(BrokenExample, IsReportedAsInTheGoldenFile) {
  const auto outcome = RunAlmcfg({"check", "examples/broken/" + GetParam() + ".csv"});
  EXPECT_EQ(outcome.out, ReadFile(ProjectFolder() + "tests/almcfg/golden/" + GetParam() + ".txt"))
      << "run tests/almcfg/update_golden.sh ALMCFG and read the difference";
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.exitCode, ExpectedExit(GetParam()));
}

TEST_P(BrokenExample, ShowsTheRuleItIsNamedAfterAndNoOther) {
  const auto outcome = RunAlmcfg({"check", "examples/broken/" + GetParam() + ".csv"});
  std::set<std::string> found;
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    if (outcome.out.find(" [" + std::string(rule.name) + "]\n") != std::string::npos) {
      found.insert(rule.name);
    }
  }
  EXPECT_EQ(found, std::set<std::string>{GetParam()});
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(All, BrokenExample, testing::ValuesIn(Examples()), TestName);

TEST(BrokenExamples, ExistForEveryRuleThatAFileCanShow) {
  const std::vector<std::string> names = Examples();
  const std::set<std::string> examples(names.begin(), names.end());
  for (const almcfg::Rule& rule : almcfg::Rules()) {
    const bool isAboutNoContent =
        rule.code == almcfg::Code::kUnreadableFile || rule.code == almcfg::Code::kDirectory;
    EXPECT_EQ(examples.count(rule.name), isAboutNoContent ? 0U : 1U)
        << (isAboutNoContent ? "delete" : "write") << " examples/broken/" << rule.name << ".csv";
  }
}

}  // namespace
