#ifndef BENCH_RECORDS_H_
#define BENCH_RECORDS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "src/almconfig.h"

/// Alarm records to store and to look for. The same on every run and machine.
namespace bench {

/// Record number `i`; records of different numbers below 10^8 have different keys.
NS_ASCII::AlarmConfigRecord RecordOf(std::size_t i);

/// Records 0 to `count` - 1 in their order.
std::vector<NS_ASCII::AlarmConfigRecord> Records(std::size_t count);

/// Keys to look for: `count` of the first `stored` records (all different when `count` is not larger), in
/// random order.
std::vector<NS_ASCII::AlarmConfigRecord> Queries(std::size_t stored, std::size_t count);

/// The lines of a configuration file in which columns 1 and 2 have `alternatives` alternatives each.
std::string FileOf(std::size_t lines, unsigned alternatives);

/// "10^3" for 1000.
std::string PowerName(std::size_t count);

/// The four key fields of a record as views, for tables that look in place; ordered like the alarm table.
struct KeyView {
  std::string_view key1, key2, key3, numKey;

  KeyView(const NS_ASCII::AlarmConfigRecord& record)  // NOLINT(google-explicit-constructor): a view of it
      : key1(record.key1), key2(record.key2), key3(record.key3), numKey(record.numKey) {}
  KeyView(const NS_ASCII::AlarmKey& key)  // NOLINT(google-explicit-constructor): the same thing
      : key1(key.key1), key2(key.key2), key3(key.key3), numKey(key.numKey) {}

  friend bool operator==(const KeyView& a, const KeyView& b) {
    return a.key1 == b.key1 && a.key2 == b.key2 && a.key3 == b.key3 && a.numKey == b.numKey;
  }
};

}  // namespace bench

#endif  // BENCH_RECORDS_H_
