#ifndef TOOLS_RECORDER_RECORDER_LOG_H_
#define TOOLS_RECORDER_RECORDER_LOG_H_

#include <string>

namespace recorder {

/// Sends one line to the log service, with the tag "ii_ascii_recorder" at level 2. Without a log service, and
/// when that fails, the message is dropped. Threads: any.
void Log(const std::string& text) noexcept;

}  // namespace recorder

#endif  // TOOLS_RECORDER_RECORDER_LOG_H_
