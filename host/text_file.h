#ifndef HOST_TEXT_FILE_H_
#define HOST_TEXT_FILE_H_

#include <fstream>
#include <string>
#include <string_view>

/// What the readers of text files have in common.
namespace host {

/// Some editors put it at the start of a file, where it would belong to the first word.
inline constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
inline constexpr const char* kByteOrderMarkProblem = "a byte order mark; save the file without one";

inline constexpr const char* kNulProblem = "a NUL byte; this is a file of text lines";

/// Opens the file for reading. Throws `Failure` when that cannot be done, or it is a directory.
std::ifstream OpenTextFile(const std::string& file);

}  // namespace host

#endif  // HOST_TEXT_FILE_H_
