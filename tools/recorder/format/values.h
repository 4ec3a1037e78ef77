#ifndef TOOLS_RECORDER_FORMAT_VALUES_H_
#define TOOLS_RECORDER_FORMAT_VALUES_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/recorder/format/operations.h"

/// The contents of the lines of a recording, as plain values. Texts are byte strings.
namespace recording_format {

using TextList = std::vector<std::string>;
using TextMap = std::map<std::string, TextList>;

/// An argument, a result or an out value: a boolean, an integer, a text, a list or a map.
using Value = std::variant<bool, std::int64_t, std::string, TextList, TextMap>;

/// The first line of a file: what was recorded.
struct Head {
  std::string time;                     ///< when the recording began, in UTC
  std::vector<std::string> operations;  ///< which operations are recorded
  std::int64_t every = 1;               ///< each Nth call of an operation is recorded
  std::string library;                  ///< path of the library that implements the interface
  std::string buildId;                  ///< that library's build id in hexadecimal; empty when it has none
  std::string configDir;                ///< the configuration directory; empty when it is not known
  std::string alarmConfig;              ///< checksum of AlarmConfig.csv, see cksum.h; empty without a file
};

/// An exception that left an operation.
struct Thrown {
  std::string type;  ///< name of the exception's class
  std::string what;  ///< its `what()`; empty for a class that has none
};

/// One call.
struct Record {
  Operation operation{};
  std::vector<Value> in;        ///< the arguments that are not out values, in the order of the signature
  std::vector<Value> before;    ///< the out values at the start of the call
  std::optional<Value> result;  ///< absent when the call threw
  std::optional<Thrown> thrown;
  std::vector<Value> out;     ///< the out values at the end of the call
  std::int64_t thread = 0;    ///< the kernel's id of the calling thread
  std::int64_t start = 0;     ///< nanoseconds from the head's time to the start of the call
  std::int64_t duration = 0;  ///< nanoseconds from the start to the end of the call
};

/// The last line of a file, written when a recording or a rotation closes it.
struct Tail {
  std::string time;          ///< when the file was closed, in UTC
  std::int64_t records = 0;  ///< how many calls the file holds
  std::int64_t dropped = 0;  ///< how many were dropped while it was written
};

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_VALUES_H_
