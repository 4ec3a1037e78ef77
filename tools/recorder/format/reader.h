#ifndef TOOLS_RECORDER_FORMAT_READER_H_
#define TOOLS_RECORDER_FORMAT_READER_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <variant>

#include "tools/recorder/format/values.h"
#include "tools/recorder/format/writer.h"

namespace recording_format {

/// Why a line is not a head, a record or a tail. The line is skipped.
struct Problem {
  std::size_t column = 1;  ///< byte in the line, from 1
  std::string text;        ///< one line, without the place
};

using Line = std::variant<Head, Record, Tail, Problem>;

/// Reads the lines of a recording one at a time.
///
/// A record is returned only when its values have the number and the kinds of its operation's signature:
/// `in`, `before` and `out` are complete, and `result` or `thrown` is present. Unknown members are
/// ignored. A line that is malformed, truncated or too long is a `Problem`, and reading continues.
/// Concatenated files are read like one, so a second head may follow a tail.
///
/// Borrows the stream. Threads: one at a time.
class Reader {
 public:
  /// A line of more than `maxLine` bytes is a problem.
  explicit Reader(std::istream& file, std::size_t maxLine = kMaxLine) : file_(file), maxLine_(maxLine) {}

  /// The next line; empty at the end of the file. A read that fails with `std::ios_base::failure` also ends the
  /// file and sets the stream's `badbit`; other exceptions of the stream's buffer are passed on.
  std::optional<Line> Next();

  /// The number of the line that `Next` returned, from 1.
  [[nodiscard]] std::size_t LineNumber() const { return number_; }

  /// The size in bytes of the lines that `Next` returned, line ends included.
  [[nodiscard]] std::uint64_t BytesRead() const { return bytes_; }

 private:
  std::istream& file_;
  const std::size_t maxLine_;
  std::string text_;
  std::size_t number_ = 0;
  std::uint64_t bytes_ = 0;
};

/// Parses one line, without its line end.
Line ParseLine(const std::string& text);

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_READER_H_
