// Creates, writes, rotates and closes the file of a recording. The object owns the file descriptor. One
// thread at a time.

#include "tools/recorder/recording_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <utility>

#include "tools/recorder/format/cksum.h"
#include "tools/recorder/format/writer.h"

namespace recorder {
namespace {

/// Bytes of the limit that are reserved for the tail, which is shorter.
constexpr std::uint64_t kTailSize = 128;

/// Lines are written in blocks of about this size.
constexpr std::size_t kBlock = std::size_t{256} << 10;

}  // namespace

RecordingFile::RecordingFile(std::string path, std::uint64_t limit, const recording_format::Head& head)
    : path_(std::move(path)), limit_(limit), head_(head) {
  try {
    Open();
  } catch (...) {
    if (fd_ >= 0) {
      ::close(fd_);
    }
    throw;
  }
}

RecordingFile::~RecordingFile() {
  if (fd_ >= 0) {
    ::close(fd_);
  }
}

void RecordingFile::Open() {
  struct stat found {};
  const bool isThere = ::lstat(path_.c_str(), &found) == 0;
  if (isThere && !S_ISREG(found.st_mode) && !S_ISCHR(found.st_mode)) {
    throw std::system_error(EINVAL, std::generic_category(), path_ + ": not a regular file");
  }
  const bool isDevice = isThere && S_ISCHR(found.st_mode);
  if (isThere && !isDevice && ::rename(path_.c_str(), (path_ + ".1").c_str()) != 0) {
    Fail("rename to .1");
  }
  const int flags = O_WRONLY | O_CLOEXEC | O_NOFOLLOW | (isDevice ? 0 : O_CREAT | O_EXCL);
  fd_ = ::open(path_.c_str(), flags, S_IRUSR | S_IWUSR);
  if (fd_ < 0) {
    Fail("create");
  }
  head_.alarmConfig = AlarmConfigCksum(head_.configDir);
  size_ = 0;
  records_ = 0;
  dropped_ = 0;
  Append(recording_format::HeadLine(head_));
  Flush();
}

void RecordingFile::Append(std::string_view line) {
  pending_ += line;
  size_ += line.size();
  if (pending_.size() >= kBlock) {
    Flush();
  }
}

void RecordingFile::Add(std::string_view line) {
  if (limit_ != 0 && records_ != 0 && size_ + line.size() + kTailSize > limit_) {
    Finish();
    Open();  // Renames the file that was finished.
  }
  ++records_;
  ++added_;
  Append(line);
}

void RecordingFile::Finish() {
  Append(recording_format::TailLine(
      {TimeNow(), static_cast<std::int64_t>(records_), static_cast<std::int64_t>(dropped_)}));
  Flush();
  if (::close(std::exchange(fd_, -1)) != 0) {
    Fail("close");
  }
}

void RecordingFile::Flush() {
  std::string_view rest = pending_;
  while (!rest.empty()) {
    const ssize_t size = ::write(fd_, rest.data(), rest.size());
    if (size >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(size));
    } else if (errno != EINTR) {
      const int error = errno;
      CountWritten(pending_.size() - rest.size());
      errno = error;
      Fail("write");
    }
  }
  CountWritten(pending_.size());
  pending_.clear();
}

void RecordingFile::CountWritten(std::size_t bytes) {
  const auto end = pending_.begin() + static_cast<std::ptrdiff_t>(bytes);
  const auto lines = static_cast<std::uint64_t>(std::count(pending_.begin(), end, '\n'));
  written_ += std::min(lines, added_ - written_);  // The head and the tail are lines without a record.
}

void RecordingFile::Fail(const char* action) const {
  throw std::system_error(errno, std::generic_category(), path_ + ": cannot " + action);
}

std::string TimeNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  const std::time_t seconds = milliseconds / 1000;
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  std::array<char, 64> text;
  const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  static_cast<void>(
      std::snprintf(text.data() + size, text.size() - size, ".%03dZ", static_cast<int>(milliseconds % 1000)));
  return text.data();
}

std::string AlarmConfigCksum(const std::string& configDir) {
  return configDir.empty() ? "" : recording_format::Cksum(configDir + "ii_asciiagent_bundle/AlarmConfig.csv");
}

}  // namespace recorder
