#include "bench/records.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <random>

namespace bench {
namespace {

/// Spreads numbers over eight digits; one to one below 10^8.
std::size_t Scatter(std::size_t i) { return i * 61803399 % 100000000; }

std::string EightDigits(std::size_t number) {
  std::string digits = std::to_string(number);
  return digits.insert(0, 8 - digits.size(), '0');
}

}  // namespace

NS_ASCII::AlarmConfigRecord RecordOf(std::size_t i) {
  NS_ASCII::AlarmConfigRecord record;
  record.key1 = "NE" + EightDigits(Scatter(i));
  record.key2 = "board" + std::to_string(i % 97);
  record.key3 = "LinkDown" + std::to_string(i % 13);
  record.numKey = std::to_string(i % 1000);
  record.value = std::to_string(i * 7 % 10000);
  return record;
}

std::vector<NS_ASCII::AlarmConfigRecord> Records(std::size_t count) {
  std::vector<NS_ASCII::AlarmConfigRecord> records;
  records.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    records.push_back(RecordOf(i));
  }
  return records;
}

std::vector<NS_ASCII::AlarmConfigRecord> Queries(std::size_t stored, std::size_t count) {
  std::vector<std::size_t> numbers(stored);
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  std::shuffle(numbers.begin(), numbers.end(), std::mt19937_64(42));
  std::vector<NS_ASCII::AlarmConfigRecord> queries;
  queries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    queries.push_back(RecordOf(numbers[i % stored]));
  }
  return queries;
}

std::string FileOf(std::size_t lines, unsigned alternatives) {
  std::string file = "# key1\tkey2\tkey3\tnumber\tvalue\n";
  for (std::size_t i = 0; i < lines; ++i) {
    const NS_ASCII::AlarmConfigRecord record = RecordOf(i);
    std::string key1s = record.key1;
    std::string key2s = record.key2;
    for (unsigned other = 1; other < alternatives; ++other) {
      key1s += '/' + record.key1 + static_cast<char>('a' + other);
      key2s += '/' + record.key2 + static_cast<char>('a' + other);
    }
    file += key1s + '\t' + key2s + '\t' + record.key3 + '\t' + record.numKey + '\t' + record.value + '\n';
  }
  return file;
}

std::string PowerName(std::size_t count) {
  unsigned power = 0;
  for (; count > 1; count /= 10) {
    ++power;
  }
  return "10^" + std::to_string(power);
}

}  // namespace bench
