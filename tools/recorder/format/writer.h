#ifndef TOOLS_RECORDER_FORMAT_WRITER_H_
#define TOOLS_RECORDER_FORMAT_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tools/recorder/format/values.h"

/// Writes the lines of a recording: one JSON object per line, in ASCII.
///
/// Each byte of a text is written as the JSON character with its number: 0x20 to 0x7E unchanged, except '"'
/// and '\', which follow a '\'; every other byte as \u00NN. So every byte string can be read back unchanged.
///
/// Every function may throw `std::bad_alloc`. Threads: any.
namespace recording_format {

/// The longest line of a recording, in bytes.
inline constexpr std::size_t kMaxLine = std::size_t{128} << 20;

void AppendText(std::string& line, std::string_view text);
void AppendInteger(std::string& line, std::int64_t value);

/// The first and the last line of a file, each with its line end.
std::string HeadLine(const Head& head);
std::string TailLine(const Tail& tail);

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_WRITER_H_
