// Writes messages to a file or to standard output and counts lost ones. The object owns its descriptor. One
// thread at a time.

#include "examples/alarm_agent/message_writer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "examples/alarm_agent/setup_error.h"

namespace alarm_agent {
namespace {

constexpr mode_t kReadableByAll = 0644;

int OpenOut(const std::string& path, const std::string& name) {
  const int fd = path.empty()
                     ? ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)
                     : ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kReadableByAll);
  if (fd < 0) {
    throw SetupError("the message file \"" + name +
                     "\" cannot be opened: " + std::generic_category().message(errno));
  }
  return fd;
}

}  // namespace

MessageWriter::MessageWriter(const std::string& path)
    : name_(path.empty() ? "standard output" : path), fd_(OpenOut(path, name_)) {}

bool MessageWriter::Write(const std::string& message) {
  const std::string line = message + '\n';
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t written = ::write(fd_.get(), rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      problem_ = "messages cannot be written to \"" + name_ + "\": " + std::generic_category().message(errno);
      ++lost_;
      return false;
    }
  }
  return true;
}

}  // namespace alarm_agent
