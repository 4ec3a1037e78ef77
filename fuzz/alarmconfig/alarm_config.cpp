// The alarm configuration file.
//
// Holds for every file whose lines are within the limit (required: the load of a longer line never ends):
//   1. the same entries with the same values as the literal rules, in the same order; the same third columns
//   2. the same messages about the same texts, in the same order
//   3. loading once more changes no entry
// Input: the file.

#include <sstream>
#include <string>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "src/alarmconfig/almconfig.h"
#include "tests/literal_rules.h"
#include "tests/recording_framework.h"

namespace {

constexpr std::size_t kLongestLine = 1022;

/// The file up to its first line beyond the limit.
std::string WithinLineLimit(std::string file) {
  std::size_t start = 0;
  while (start < file.size()) {
    const std::size_t end = file.find('\n', start);
    if ((end == std::string::npos ? file.size() : end) - start > kLongestLine) {
      file.resize(start);
      break;
    }
    if (end == std::string::npos) {
      break;
    }
    start = end + 1;
  }
  return file;
}

using Entries = std::vector<std::vector<std::string>>;

Entries EntriesOf(const NS_ASCII::Alarm_Config_Param& config) {
  Entries entries;
  config.Values().ForEach([&entries](const NS_ASCII::AlarmKey& key, std::string_view value) {
    entries.push_back({std::string(key.key1), std::string(key.key2), std::string(key.key3),
                       std::string(key.numKey), std::string(value)});
  });
  return entries;
}

Entries EntriesOf(const literal::AlarmConfig& config) {
  Entries entries;
  for (const auto& [key, value] : config.valueMap) {
    entries.push_back({key.key1, key.key2, key.key3, key.numKey, value});
  }
  return entries;
}

bool SameComplaints(const std::vector<recording::Message>& messages,
                    const std::vector<literal::Complaint>& complaints) {
  if (messages.size() != complaints.size()) {
    return false;
  }
  for (std::size_t i = 0; i < messages.size(); ++i) {
    const recording::Message expected{"almconfig",
                                      "unknown",
                                      complaints[i].line,
                                      1,
                                      "almconfig.cfg file error. line=s%",
                                      complaints[i].text.c_str()};
    if (!(messages[i] == expected)) {
      return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = WithinLineLimit(fuzz::Input(data, size).Rest());
  recording::Framework::Instance().ForgetCalls();

  const fuzz::MemoryFile file(text);
  NS_ASCII::Alarm_Config_Param config;
  fuzz::Expect(config.LoadConfig(file.path().c_str()) == 0, "a load answers 0");
  std::istringstream stream(text);
  literal::AlarmConfig reference;
  reference.LoadConfig(stream);

  const Entries entries = EntriesOf(config);
  fuzz::Expect(entries == EntriesOf(reference), "the entries are those of the literal rules");
  fuzz::Expect(config.ThirdColumns().size() == reference.key3Set.size(), "as many third columns");
  for (const std::string& key3 : reference.key3Set) {
    fuzz::Expect(config.ThirdColumns().Contains(key3), "the same third columns");
  }
  fuzz::Expect(SameComplaints(recording::Framework::Instance().Messages(), reference.complaints),
               "the complaints are those of the literal rules");
  config.LoadConfig(file.path().c_str());
  fuzz::Expect(EntriesOf(config) == entries, "a second load changes nothing");
  return 0;
}
