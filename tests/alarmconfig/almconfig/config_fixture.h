#ifndef TESTS_ALARMCONFIG_ALMCONFIG_CONFIG_FIXTURE_H_
#define TESTS_ALARMCONFIG_ALMCONFIG_CONFIG_FIXTURE_H_

#include <string>
#include <vector>

#include "src/alarmconfig/almconfig.h"
#include "tests/recording_fixture.h"
#include "tests/temp_directory.h"

/// Helpers for the tests of the alarm configuration.
namespace config_test {

/// The message about a bad text. Its conversion is written backwards; operators search logs for this text.
inline recording::Message BadLine(int line, const std::string& text) {
  return {"almconfig", "unknown", line, 1, "almconfig.cfg file error. line=s%", text};
}

/// All entries in the store's order, as "key1|key2|key3|numKey=value".
inline std::vector<std::string> Entries(const NS_ASCII::Alarm_Config_Param& config) {
  std::vector<std::string> entries;
  config.Values().ForEach([&entries](const NS_ASCII::AlarmKey& key, std::string_view value) {
    entries.push_back(std::string(key.key1) + '|' + std::string(key.key2) + '|' + std::string(key.key3) +
                      '|' + std::string(key.numKey) + '=' + std::string(value));
  });
  return entries;
}

class AlarmConfigTest : public recording::FrameworkTest {
 protected:
  /// Loads a file of that content and expects the result 0.
  void Load(const std::string& content) {
    EXPECT_EQ(config.LoadConfig(directory.Write("AlarmConfig.csv", content).c_str()), 0);
  }

  /// The value of the key; "(none)" when there is none.
  std::string Value(const NS_ASCII::AlarmConfigRecord& key) const {
    std::string value = "(none)";
    const int result = config.GetValue(key, value);
    EXPECT_EQ(result, value == "(none)" ? -1 : 0);
    return value;
  }

  TempDirectory directory;
  NS_ASCII::Alarm_Config_Param config;
};

}  // namespace config_test

#endif  // TESTS_ALARMCONFIG_ALMCONFIG_CONFIG_FIXTURE_H_
