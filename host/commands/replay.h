#ifndef HOST_COMMANDS_REPLAY_H_
#define HOST_COMMANDS_REPLAY_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "tools/recorder/format/values.h"

/// Makes the calls of a recording again and compares the answers. Threads: as for the commands, the main
/// thread.
namespace host {

struct ReplayOptions {
  std::string file;
  std::vector<std::string> operations;  ///< to replay; empty: all
  std::size_t maxDifferences = 20;      ///< how many differences are kept
  bool compareConfiguration = false;    ///< compare GetAlmCfgValue even if the configuration differs
};

/// The outcome of the calls of one operation.
struct OperationReplay {
  std::size_t same = 0;
  std::size_t different = 0;
  std::size_t notCompared = 0;
  std::vector<std::int64_t> recorded;  ///< durations in nanoseconds in the recording
  std::vector<std::int64_t> replayed;  ///< durations in nanoseconds of the calls that were made

  [[nodiscard]] std::size_t Calls() const { return same + different + notCompared; }
};

/// A call whose answer differs from the recorded one.
struct Difference {
  std::size_t record = 0;  ///< number of the record in the file, from 1
  std::size_t line = 0;    ///< line of the file
  std::string call;        ///< as arguments of the command `call`
  std::string recorded;    ///< the recorded answer, a line for each value
  std::string now;         ///< the answer of the replayed call
};

/// The outcome of a replay.
struct Replay {
  std::string recordedConfiguration;  ///< checksums of AlarmConfig.csv; empty without a file
  std::string currentConfiguration;
  bool isConfigurationSame = true;
  std::array<OperationReplay, recording_format::kSignatures.size()> operations;
  std::size_t differences = 0;
  std::vector<Difference> shown;      ///< the first `ReplayOptions::maxDifferences` of them
  std::size_t problems = 0;           ///< number of malformed lines, which are skipped
  std::vector<std::string> reported;  ///< the first ten of them, as FILE:LINE:COLUMN: reason
};

/// Makes the recorded calls on `interface`, one after the other on this thread. Answers of GetTimeStamp and
/// WriteDbgLog are not compared, nor, unless the options ask for it, those of GetAlmCfgValue when the checksum of
/// AlarmConfig.csv in the configuration directory differs from the recorded one. Calls of `SplitStr` with an
/// empty separator, which would fill the memory, are not made and count as different. Throws `Failure` when the
/// file cannot be read or holds no record, and `Interrupted` after a signal.
Replay ReplayCalls(const ReplayOptions& options, NS_ASCII::AsciiUtilInterface& interface);

}  // namespace host

#endif  // HOST_COMMANDS_REPLAY_H_
