#ifndef EXAMPLES_ALARM_AGENT_MESSAGE_WRITER_H_
#define EXAMPLES_ALARM_AGENT_MESSAGE_WRITER_H_

#include <cstdint>
#include <string>

#include "examples/alarm_agent/unique_fd.h"

namespace alarm_agent {

/// Writes messages, one per line, to a file or to standard output, without buffering.
///
/// Ownership: owns its descriptor, for standard output a duplicate.
/// Threads: one at a time.
class MessageWriter {
 public:
  /// Opens the file `path` for appending and creates it when it is missing; an empty `path` means standard
  /// output. Throws `SetupError` when it cannot be opened.
  explicit MessageWriter(const std::string& path);

  /// Writes one message. False when it cannot be written; it then counts as lost.
  bool Write(const std::string& message);

  [[nodiscard]] std::uint64_t Lost() const { return lost_; }
  /// Why the last lost message was lost.
  [[nodiscard]] const std::string& Problem() const { return problem_; }
  [[nodiscard]] int Descriptor() const { return fd_.get(); }

 private:
  const std::string name_;
  const UniqueFd fd_;
  std::uint64_t lost_ = 0;
  std::string problem_;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_MESSAGE_WRITER_H_
