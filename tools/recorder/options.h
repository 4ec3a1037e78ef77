#ifndef TOOLS_RECORDER_OPTIONS_H_
#define TOOLS_RECORDER_OPTIONS_H_

#include <bitset>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "tools/recorder/format/operations.h"

namespace recorder {

/// The recorder cannot start. The message says what is wrong and what to write instead. It repeats arguments
/// unchanged, so it is one line if they are.
class SetupError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

using OperationSet = std::bitset<recording_format::kSignatures.size()>;

/// The arguments of the recorder's service configurator directive.
struct Options {
  std::string output;       ///< --output FILE
  OperationSet operations;  ///< --operations NAME,...; all when it is not given
  std::uint64_t every = 1;  ///< --every N: each Nth call of an operation is recorded
  std::uint64_t limit = 0;  ///< --limit BYTES: size at which the file is rotated; 0: never
};

/// Parses the arguments. The first is already an option: the service configurator passes no program name.
/// Throws `SetupError` for an unknown option or operation, a missing value, a number that is malformed or 0,
/// an option given twice, and when there is no --output. Any thread may call it.
Options ParseOptions(int argc, const char* const argv[]);

}  // namespace recorder

#endif  // TOOLS_RECORDER_OPTIONS_H_
