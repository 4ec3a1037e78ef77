#ifndef HOST_LOG_LEVEL_H_
#define HOST_LOG_LEVEL_H_

#include <string>

namespace host {

/// "0", "1", "2" or "off" as a lowest level to write; throws `UsageError` for anything else.
int ParseLogLevel(const std::string& text);

}  // namespace host

#endif  // HOST_LOG_LEVEL_H_
