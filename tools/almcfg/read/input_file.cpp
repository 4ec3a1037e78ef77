#include "tools/almcfg/source_text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <system_error>

#include "tools/almcfg/progress.h"

namespace almcfg {
namespace {

constexpr std::size_t kReadBytes = std::size_t{1} << 18;

[[noreturn]] void ThrowErrno(int error, Obstacle obstacle) {
  throw ReadError(std::generic_category().message(error), obstacle);
}

}  // namespace

/// Closes what it opened; standard input stays open.
class InputFile {
 public:
  /// Without blocking, since opening a pipe that has no writer would wait for one.
  explicit InputFile(const std::string& path)
      : isOpened_(path != "-"),
        fd_(isOpened_ ? open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK) : STDIN_FILENO) {
    if (fd_ < 0) {
      ThrowErrno(errno, Obstacle::kNotOpened);
    }
  }
  ~InputFile() {
    if (isOpened_) {
      close(fd_);
    }
  }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  [[nodiscard]] int fd() const { return fd_; }

  /// By its name, that is. The number does not tell: without a standard input it is 0 as well.
  [[nodiscard]] bool isOpened() const { return isOpened_; }

 private:
  bool isOpened_;
  int fd_;
};

namespace {

bool IsEndlessDevice(int fd, const struct stat& status) {
  const bool isNull = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
  return S_ISBLK(status.st_mode) || (S_ISCHR(status.st_mode) && !isNull && isatty(fd) == 0);
}

void RefuseWhatIsNoText(int fd) {
  struct stat status;
  if (fstat(fd, &status) != 0) {
    ThrowErrno(errno, Obstacle::kNoInput);
  }
  if (S_ISDIR(status.st_mode)) {
    ThrowErrno(EISDIR, Obstacle::kDirectory);
  }
  if (IsEndlessDevice(fd, status)) {
    throw ReadError("It is a device, not a file", Obstacle::kDevice);
  }
}

/// Up to `size` bytes, waiting for them; 0 at the end.
std::size_t ReadSome(const InputFile& file, char* buffer, std::size_t size) {
  for (;;) {
    const ssize_t count = read(file.fd(), buffer, size);
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno == EAGAIN) {
      pollfd waiting{file.fd(), POLLIN, 0};
      poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      ThrowErrno(errno, file.isOpened() ? Obstacle::kReadFailed : Obstacle::kNoInput);
    }
  }
}

/// Whether this is a pipe that was opened by its name and has neither bytes nor, by now, a writer that left.
bool IsSilentPipe(const InputFile& file) {
  struct stat status;
  pollfd waiting{file.fd(), POLLIN, 0};
  return file.isOpened() && fstat(file.fd(), &status) == 0 && S_ISFIFO(status.st_mode) &&
         poll(&waiting, 1, 0) == 0;
}

}  // namespace

SourceText SourceText::Read(const std::string& path, Progress& progress) {
  const InputFile file(path);
  RefuseWhatIsNoText(file.fd());
  SourceText text(NameOf(path));
  text.ReadAll(file, progress);
  return text;
}

Line SourceText::line(LineNumber number) const {
  const std::uint64_t word = lines_[number - 1];
  const std::uint64_t start = word >> kLengthBits;
  const std::size_t kept = word & ((1U << kLengthBits) - 1);
  const std::string_view text(&chunks_[start / kChunkBytes][start % kChunkBytes], kept);
  if (kept == kLongestLine) {
    const auto found =
        std::lower_bound(overlong_.begin(), overlong_.end(), std::pair{number, std::uint64_t{0}});
    if (found != overlong_.end() && found->first == number) {
      return {text, found->second};
    }
  }
  return {text, kept};
}

void SourceText::ReadAll(const InputFile& file, Progress& progress) {
  const std::unique_ptr<char[]> buffer(new char[kReadBytes]);
  if (IsSilentPipe(file)) {
    // A pipe with a writer that has nothing to say yet reads as "try again".
    const ssize_t count = read(file.fd(), buffer.get(), kReadBytes);
    if (count == 0) {
      throw ReadError("Nothing writes to this pipe", Obstacle::kSilentPipe);
    }
    Take(buffer.get(), count < 0 ? 0 : static_cast<std::size_t>(count));
  }
  while (const std::size_t count = ReadSome(file, buffer.get(), kReadBytes)) {
    Take(buffer.get(), count);
    progress.Show(name_, "read", lineCount());
  }
  endsWithLineFeed_ = length_ == 0;
  if (!endsWithLineFeed_) {
    EndLine();
  }
}

void SourceText::Take(const char* bytes, std::size_t count) {
  const char* const end = bytes + count;
  while (bytes != end) {
    const auto* const feed =
        static_cast<const char*>(std::memchr(bytes, '\n', static_cast<std::size_t>(end - bytes)));
    const char* const stop = feed == nullptr ? end : feed;
    Keep(bytes, static_cast<std::size_t>(stop - bytes));
    if (feed == nullptr) {
      return;
    }
    EndLine();
    bytes = feed + 1;
  }
}

void SourceText::Keep(const char* bytes, std::size_t count) {
  if (used_ + kLongestLine + 1 > kChunkBytes) {
    chunks_.emplace_back(new char[kChunkBytes]);
    used_ = 0;
  }
  const std::size_t room = std::min(count, kLongestLine - kept_);
  std::memcpy(&chunks_.back()[used_ + kept_], bytes, room);
  kept_ += room;
  length_ += count;
}

void SourceText::EndLine() {
  if (lines_.size() == std::numeric_limits<LineNumber>::max()) {
    throw ReadError("It has more lines than can be counted", Obstacle::kTooManyLines);
  }
  const std::uint64_t start = (chunks_.size() - 1) * kChunkBytes + used_;
  chunks_.back()[used_ + kept_] = '\0';
  lines_.push_back(start << kLengthBits | kept_);
  if (length_ > kLongestLine) {
    overlong_.emplace_back(lineCount(), length_);
  }
  used_ += kept_ + 1;
  kept_ = 0;
  length_ = 0;
}

}  // namespace almcfg
