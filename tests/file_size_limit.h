#ifndef TESTS_FILE_SIZE_LIMIT_H_
#define TESTS_FILE_SIZE_LIMIT_H_

#include <sys/resource.h>

#include <cerrno>
#include <system_error>

/// Limits the size of the files that the process writes, in bytes, while the object exists: further writes fail, as on a
/// full disk. A write beyond the limit also raises SIGXFSZ.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    const bool known = getrlimit(RLIMIT_FSIZE, &before_) == 0;
    const rlimit limit{bytes, before_.rlim_max};
    if (!known || setrlimit(RLIMIT_FSIZE, &limit) != 0) {
      throw std::system_error(errno, std::generic_category(), "RLIMIT_FSIZE");
    }
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};

#endif  // TESTS_FILE_SIZE_LIMIT_H_
