#ifndef HOST_TEXT_LINE_H_
#define HOST_TEXT_LINE_H_

#include <cstddef>
#include <istream>
#include <string>

#include "framework/visibility.h"

namespace host {

/// A longer line is a mistake. What never ends its line, such as a device, would else fill the memory.
inline constexpr std::size_t kLongestTextLine = std::size_t{16} << 20;
inline constexpr const char* kLongLineProblem =
    "the line is longer than 16 MiB; this is a file of text lines";

/// Reads the next line into `line` (out), without its LF, as `std::getline` does, but no more of it than one
/// byte beyond `kLongestTextLine`. False at the end, and when reading fails; then `stream` is bad.
PLATFORM_API bool GetTextLine(std::istream& stream, std::string& line);

}  // namespace host

#endif  // HOST_TEXT_LINE_H_
