#ifndef HOST_BASE_TEXT_LINES_H_
#define HOST_BASE_TEXT_LINES_H_

#include <cstddef>
#include <fstream>
#include <istream>
#include <string>

#include "framework/visibility.h"

namespace host {

/// Reads command files, svc.conf and config_items.ini line by line, and reports problems as
/// "FILE:LINE:COLUMN: reason", line and column counted from 1. One thread at a time per object.
class PLATFORM_API TextLines {
 public:
  /// Longer lines are rejected, so that endless input such as a device cannot fill the memory.
  static constexpr std::size_t kLongestLine = std::size_t{16} << 20;

  /// Opens `file`. Throws `Failure` when it cannot be opened or is a directory.
  explicit TextLines(const std::string& file);

  /// Reads from `stream`, which must outlive this object; messages show `name` as the file.
  TextLines(std::istream& stream, std::string name);

  /// Reads the next line into `line` (out), without its LF; returns false at the end. Throws `Failure` for a
  /// byte order mark at the start, a NUL byte, a line over `kLongestLine`, and a read error.
  bool Next(std::string& line);

  /// Throws `Failure` with `Place(offset)` and the reason.
  [[noreturn]] void Fail(std::size_t offset, const std::string& reason) const;

  /// "FILE:LINE:COLUMN: " of the byte at `offset` (from 0) in the line last read.
  std::string Place(std::size_t offset) const;

 private:
  std::ifstream file_;
  std::istream& stream_;
  const std::string name_;
  int number_ = 0;
};

}  // namespace host

#endif  // HOST_BASE_TEXT_LINES_H_
