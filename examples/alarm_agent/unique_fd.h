#ifndef EXAMPLES_ALARM_AGENT_UNIQUE_FD_H_
#define EXAMPLES_ALARM_AGENT_UNIQUE_FD_H_

#include <unistd.h>

namespace alarm_agent {

/// Owns a file descriptor and closes it. A negative number means none. Threads: any may call `get`; one
/// constructs and destroys it.
class UniqueFd {
 public:
  explicit UniqueFd(int fd) : fd_(fd) {}
  ~UniqueFd() {
    if (fd_ >= 0) ::close(fd_);
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;

  [[nodiscard]] int get() const { return fd_; }

 private:
  const int fd_;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_UNIQUE_FD_H_
