#ifndef TESTS_ALARMCONFIG_ALMTABLE_ANSWERS_H_
#define TESTS_ALARMCONFIG_ALMTABLE_ANSWERS_H_

#include <string>
#include <string_view>
#include <vector>

#include "src/alarmconfig/almtable.h"

/// The contents of a table, as texts for comparison.
namespace almtable_test {

/// The value that a lookup finds; "(none)" when it finds nothing.
inline std::string Answer(const NS_ASCII::AlarmTable& table, const NS_ASCII::AlarmKey& key) {
  return std::string(table.Find(key).value_or("(none)"));
}

/// Every entry, as "key1/key2/key3/numKey=value", in the table's order.
inline std::vector<std::string> AllOf(const NS_ASCII::AlarmTable& table) {
  std::vector<std::string> all;
  table.ForEach([&all](const NS_ASCII::AlarmKey& key, std::string_view value) {
    all.push_back(std::string(key.key1) + '/' + std::string(key.key2) + '/' + std::string(key.key3) + '/' +
                  std::string(key.numKey) + '=' + std::string(value));
  });
  return all;
}

}  // namespace almtable_test

#endif  // TESTS_ALARMCONFIG_ALMTABLE_ANSWERS_H_
