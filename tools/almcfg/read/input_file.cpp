// Opens, checks and reads files; each is closed with the buffer that reads it. One thread at a time.

#include "tools/almcfg/read/input_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

namespace almcfg {
namespace {

constexpr std::size_t kReadBytes = std::size_t{1} << 18;

[[noreturn]] void ThrowErrno(int error, Obstacle obstacle) {
  throw ReadError(std::generic_category().message(error), obstacle);
}

/// Closes what it opened; standard input stays open.
class InputFile {
 public:
  /// Opens without blocking, since opening a pipe that has no writer would wait for one.
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

  [[nodiscard]] int Descriptor() const { return fd_; }

  /// True when the file was opened by its name. The descriptor does not show it: when standard input is
  /// closed, an opened file may have number 0 too.
  [[nodiscard]] bool IsOpened() const { return isOpened_; }

 private:
  bool isOpened_;
  int fd_;
};

bool IsEndlessDevice(int fd, const struct stat& status) {
  const bool isNull = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
  return S_ISBLK(status.st_mode) || (S_ISCHR(status.st_mode) && !isNull && isatty(fd) == 0);
}

void RequireText(int fd) {
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
    const ssize_t count = read(file.Descriptor(), buffer, size);
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno == EAGAIN) {
      pollfd waiting{file.Descriptor(), POLLIN, 0};
      poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      ThrowErrno(errno, file.IsOpened() ? Obstacle::kReadFailed : Obstacle::kNoInput);
    }
  }
}

/// Whether this is a pipe that was opened by its name and has no bytes. It either has a writer that has not written
/// yet, or has had none since it was opened.
bool IsSilentPipe(const InputFile& file) {
  struct stat status;
  pollfd waiting{file.Descriptor(), POLLIN, 0};
  return file.IsOpened() && fstat(file.Descriptor(), &status) == 0 && S_ISFIFO(status.st_mode) &&
         poll(&waiting, 1, 0) == 0;
}

/// The buffer of a stream, refilled from the file.
class InputBuffer : public std::streambuf {
 public:
  explicit InputBuffer(const std::string& path) : file_(path), bytes_(new char[kReadBytes]) {
    RequireText(file_.Descriptor());
    if (IsSilentPipe(file_)) {
      // A pipe whose writer has not written yet reads as "try again".
      const ssize_t count = read(file_.Descriptor(), bytes_.get(), kReadBytes);
      if (count == 0) {
        throw ReadError("Nothing writes to this pipe", Obstacle::kSilentPipe);
      }
      SetEnd(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
  }

  /// The next bytes, valid until the next call; empty at the end.
  std::string_view Next() {
    underflow();
    const std::string_view bytes(gptr(), static_cast<std::size_t>(egptr() - gptr()));
    SetEnd(0);
    return bytes;
  }

 protected:
  int_type underflow() override {
    if (gptr() == egptr()) {
      SetEnd(ReadSome(file_, bytes_.get(), kReadBytes));
    }
    return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
  }

 private:
  void SetEnd(std::size_t count) { setg(bytes_.get(), bytes_.get(), bytes_.get() + count); }

  const InputFile file_;
  const std::unique_ptr<char[]> bytes_;
};

}  // namespace

void ReadBytes(const std::string& path,
               const std::function<void(const char* bytes, std::size_t count)>& take) {
  InputBuffer input(path);
  for (std::string_view bytes = input.Next(); !bytes.empty(); bytes = input.Next()) {
    take(bytes.data(), bytes.size());
  }
}

std::unique_ptr<std::streambuf> OpenInput(const std::string& path) {
  return std::make_unique<InputBuffer>(path);
}

}  // namespace almcfg
