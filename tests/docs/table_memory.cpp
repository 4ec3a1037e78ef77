// Prints how much memory the alarm table takes for tables of several sizes: `table_memory`. With --map also
// the memory of an ordinary map with the same records, as the C library reports it.
//
// A record here has keys of 7, 7, 4 and 1 characters and one of 100 values.

#include <malloc.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "src/alarmconfig/almconfig.h"
#include "src/alarmconfig/almtable.h"

namespace {

using NS_ASCII::AlarmConfigRecord;

AlarmConfigRecord RecordOf(unsigned number) {
  char key1[16];
  char key2[16];
  std::snprintf(key1, sizeof key1, "NE%05u", number / 20);
  std::snprintf(key2, sizeof key2, "ALARM%02u", number % 20);
  return {key1, key2, std::to_string(number % 10), "LINK", std::to_string(number % 100)};
}

std::size_t TableBytes(unsigned records) {
  NS_ASCII::AlarmTable table;
  for (unsigned i = 0; i < records; ++i) {
    const AlarmConfigRecord record = RecordOf(i);
    table.Insert({record.key1, record.key2, record.key3, record.numKey}, record.value);
  }
  return table.ReservedBytes();
}

struct Before {
  bool operator()(const AlarmConfigRecord& a, const AlarmConfigRecord& b) const {
    return NS_ASCII::ComesBefore({a.key1, a.key2, a.key3, a.numKey}, {b.key1, b.key2, b.key3, b.numKey});
  }
};

std::size_t MapBytes(unsigned records) {
  const std::size_t before = mallinfo2().uordblks;
  std::map<AlarmConfigRecord, std::string, Before> map;
  for (unsigned i = 0; i < records; ++i) {
    const AlarmConfigRecord record = RecordOf(i);
    map[record] = record.value;
  }
  return mallinfo2().uordblks - before;
}

}  // namespace

int main(int argc, char* argv[]) {
  const bool withMap = argc == 2 && std::strcmp(argv[1], "--map") == 0;
  for (const unsigned records : {1000U, 10000U, 100000U, 1000000U}) {
    std::printf("%u %zu", records, TableBytes(records));
    if (withMap) {
      std::printf(" %zu", MapBytes(records));
    }
    std::printf("\n");
  }
  return 0;
}
