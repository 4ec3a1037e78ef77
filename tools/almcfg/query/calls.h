#ifndef TOOLS_ALMCFG_QUERY_CALLS_H_
#define TOOLS_ALMCFG_QUERY_CALLS_H_

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "src/alarmconfig/almrecord.h"
#include "tools/almcfg/commands.h"

/// Reads what callers asked for: a recording or a list of queries. Used by `almcfg coverage` and `almcfg show`.
/// Threads: one reads; then any number may call `CountOf`.
namespace almcfg {

/// The arguments of one call of GetAlmCfgValue.
struct Query {
  std::string key1;
  std::string key2;
  std::string key3;
  int number = 0;
};

inline bool operator<(const Query& a, const Query& b) {
  return std::tie(a.key1, a.key2, a.key3, a.number) < std::tie(b.key1, b.key2, b.key3, b.number);
}

/// The queries of a file, each with how often it was made.
struct Calls {
  std::map<Query, std::uint64_t> counts;
  std::int64_t every = 1;     ///< the recording has each Nth call
  std::uint64_t dropped = 0;  ///< calls of any operation that the recorder dropped
};

/// How often the key was asked for.
std::uint64_t CountOf(const Calls& calls, const NS_ASCII::AlarmKey& key);

/// Reads `options.calls`: a recording, which starts with "{", or a list of queries, one per line: KEY1, KEY2,
/// KEY3, NUMBER and optionally a count, separated by TABs; "#" starts a comment line. Bad lines are reported
/// on the error stream and skipped. Returns false, after a message, when the file cannot be read or holds no
/// query.
bool ReadCalls(const Options& options, const Outputs& outputs, Calls& calls);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_QUERY_CALLS_H_
