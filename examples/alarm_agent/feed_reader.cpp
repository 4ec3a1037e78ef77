// Reads a feed line by line and waits for more on a pipe. The object owns its descriptors. One thread at a time
// reads; any thread may call `Finish`.

#include "examples/alarm_agent/feed_reader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "examples/alarm_agent/setup_error.h"

namespace alarm_agent {
namespace {

std::string ErrorText(int error) { return std::generic_category().message(error); }

struct stat StatOf(int fd) {
  struct stat status = {};
  static_cast<void>(::fstat(fd, &status));
  return status;
}

int OpenFeed(const std::string& path, const std::string& name) {
  // Non-blocking, so that a named pipe without a writer does not block the process.
  const int fd = path.empty() ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                              : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    throw SetupError("the feed \"" + name + "\" cannot be opened: " + ErrorText(errno));
  }
  return fd;
}

void AppendUpTo(std::size_t limit, std::string_view text, FeedLine& line) {
  const std::size_t space = limit - line.text.size();
  line.isWhole = line.isWhole && text.size() <= space;
  line.text.append(text.substr(0, space));
}

}  // namespace

FeedReader::FeedReader(const std::string& path)
    : name_(path.empty() ? "standard input" : path),
      fd_(OpenFeed(path, name_)),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wake_.get() < 0) {
    throw SetupError("no event counter for the feed: " + ErrorText(errno));
  }
  if (S_ISDIR(StatOf(fd_.get()).st_mode)) {
    throw SetupError("the feed \"" + name_ + "\" is a directory; a file or a pipe is needed");
  }
}

bool FeedReader::Next(FeedLine& line) {
  line = {++number_, {}, true};
  bool hasBegun = false;
  while (!rest_.empty() || Fill()) {
    hasBegun = true;
    const std::size_t end = rest_.find('\n');
    AppendUpTo(kMaxLine, rest_.substr(0, end), line);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (end != std::string_view::npos) {
      break;
    }
  }
  return hasBegun;
}

void FeedReader::Finish() {
  finishing_ = true;
  const std::uint64_t one = 1;
  // Fails only when the counter is full, and then it is readable, which is what is needed.
  static_cast<void>(!::write(wake_.get(), &one, sizeof one));
}

bool FeedReader::IsSameFile(int fd) const {
  const struct stat mine = StatOf(fd_.get());
  const struct stat other = StatOf(fd);
  return S_ISREG(mine.st_mode) && mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

bool FeedReader::Fill() {
  while (!ended_) {
    const bool isReady = WaitForInput();
    if (finishing_ && !remaining_) {
      remaining_ = Held();
    }
    if (!isReady && !remaining_) {
      continue;  // A signal came.
    }
    const std::size_t wanted = isReady ? Allowance() : 0;
    const ssize_t got = wanted == 0 ? 0 : ::read(fd_.get(), chunk_.data(), wanted);
    if (got > 0) {
      rest_ = {chunk_.data(), static_cast<std::size_t>(got)};
      remaining_ = remaining_ ? std::optional(*remaining_ - rest_.size()) : std::nullopt;
      return true;
    }
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) {
      continue;
    }
    if (got < 0) {
      problem_ = "the feed \"" + name_ + "\" cannot be read further: " + ErrorText(errno);
    }
    ended_ = true;
  }
  return false;
}

bool FeedReader::WaitForInput() const {
  std::array<pollfd, 2> sources = {{{fd_.get(), POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
  return ::poll(sources.data(), sources.size(), -1) > 0 && sources[0].revents != 0;
}

std::size_t FeedReader::Allowance() const {
  return static_cast<std::size_t>(std::min<std::uint64_t>(chunk_.size(), remaining_.value_or(chunk_.size())));
}

std::uint64_t FeedReader::Held() const {
  const struct stat status = StatOf(fd_.get());
  if (S_ISREG(status.st_mode)) {
    const off_t at = ::lseek(fd_.get(), 0, SEEK_CUR);
    return status.st_size > at ? static_cast<std::uint64_t>(status.st_size - at) : 0;
  }
  int held = 0;
  return ::ioctl(fd_.get(), FIONREAD, &held) == 0 && held > 0 ? static_cast<std::uint64_t>(held) : 0;
}

}  // namespace alarm_agent
