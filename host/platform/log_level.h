#ifndef HOST_PLATFORM_LOG_LEVEL_H_
#define HOST_PLATFORM_LOG_LEVEL_H_

#include <string>

#include "framework/visibility.h"

/// The lowest level that the log writes. State: of the process. Threads: any.
namespace host {

/// A level above all that callers use: no record is written.
inline constexpr int kLogOff = 1'000'000;

/// Records below `level` are not written. Initially 0: all records are written.
PLATFORM_API void SetLogLevel(int level);
PLATFORM_API int LogLevel();

/// Parses "0", "1", "2" or "off"; throws `UsageError` for any other text.
PLATFORM_API int ParseLogLevel(const std::string& text);

}  // namespace host

#endif  // HOST_PLATFORM_LOG_LEVEL_H_
