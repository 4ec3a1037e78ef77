// Random files, compared with the literal rules.

#include <fstream>
#include <string>
#include <vector>

#include "tests/alarmconfig/almconfig/config_fixture.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using config_test::AlarmConfigTest;
using config_test::BadLine;
using config_test::Entries;
using recording::Message;

class RandomFiles : public AlarmConfigTest {};

std::vector<std::string> EntriesOf(const literal::AlarmConfig& config) {
  std::vector<std::string> entries;
  for (const auto& [key, value] : config.valueMap) {
    entries.push_back(key.key1 + '|' + key.key2 + '|' + key.key3 + '|' + key.numKey + '=' + value);
  }
  return entries;
}

std::string RandomLine(testing_text::RandomText& random) {
  if (random.Below(5) == 0) {
    return random.Of({"A/\t #\r\0", 7}, 16);
  }
  std::string line;
  const std::size_t columns = random.Below(20) == 0 ? random.Below(8) : 5;
  for (std::size_t column = 0; column < columns; ++column) {
    line += (column == 0 ? "" : "\t") + random.Of("ab", 1) + random.Of("AB", 1) + random.Of("//ab 7", 4);
  }
  return line + (random.Below(4) == 0 ? "\r" : "");
}

TEST_F(RandomFiles, AreReadAsTheLiteralRulesSay) {
  testing_text::RandomText random(61);
  literal::AlarmConfig rules;
  for (int trial = 0; trial < testing_text::Trials(60); ++trial) {
    std::string content;
    for (std::size_t lines = random.Below(60); lines > 0; --lines) {
      content += RandomLine(random) + '\n';
    }
    content += random.Below(2) == 0 ? RandomLine(random) : "";
    framework.ForgetCalls();
    rules.complaints.clear();
    Load(content);
    std::ifstream file(directory.path() / "AlarmConfig.csv");
    rules.LoadConfig(file);
    ASSERT_EQ(Entries(config), EntriesOf(rules)) << recording::Quoted(content);
    std::vector<Message> expected;
    for (const literal::Complaint& complaint : rules.complaints) {
      expected.push_back(BadLine(complaint.line, complaint.text.c_str()));
    }
    ASSERT_EQ(framework.Messages(), expected) << recording::Quoted(content);
    ASSERT_EQ(config.ThirdColumns().size(), rules.key3Set.size());
    for (const std::string& text : rules.key3Set) {
      ASSERT_TRUE(config.ThirdColumns().Contains(text));
    }
  }
  EXPECT_GT(Entries(config).size(), 100U);
}

}  // namespace
