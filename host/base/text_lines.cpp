// Reads a file or a borrowed stream line by line and adds the place to problems. One thread at a time.

#include "host/base/text_lines.h"

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/base/problem.h"

namespace host {

TextLines::TextLines(const std::string& file) : stream_(file_), name_(file) {
  // Opening a directory succeeds; only reading it would fail.
  if (std::error_code none; std::filesystem::is_directory(file, none)) {
    throw Failure(file + ": is a directory; a file is needed");
  }
  file_.open(file);
  if (!file_) {
    throw Failure(file + ": cannot be opened: " + std::generic_category().message(errno));
  }
}

TextLines::TextLines(std::istream& stream, std::string name) : stream_(stream), name_(std::move(name)) {}

bool TextLines::Next(std::string& line) {
  constexpr int kEnd = std::istream::traits_type::eof();
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  line.clear();
  ++number_;
  int c = stream_.get();
  const bool isLine = c != kEnd;
  for (; c != kEnd && c != '\n'; c = stream_.get()) {
    if (c == '\0') {
      Fail(line.size(), "a NUL byte; expected a text file");
    }
    if (line.size() == kLongestLine) {
      Fail(line.size(), "the line is longer than 16 MiB; expected a text file");
    }
    line += static_cast<char>(c);
  }
  if (stream_.bad()) {
    throw Failure(name_ + ": cannot be read");
  }
  if (number_ == 1 && line.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    Fail(0, "a byte order mark; save the file without one");
  }
  return isLine;
}

void TextLines::Fail(std::size_t offset, const std::string& reason) const {
  throw Failure(Place(offset) + reason);
}

std::string TextLines::Place(std::size_t offset) const {
  return name_ + ":" + std::to_string(number_) + ":" + std::to_string(offset + 1) + ": ";
}

}  // namespace host
