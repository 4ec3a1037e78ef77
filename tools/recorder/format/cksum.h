#ifndef TOOLS_RECORDER_FORMAT_CKSUM_H_
#define TOOLS_RECORDER_FORMAT_CKSUM_H_

#include <string>

namespace recording_format {

/// The checksum and the size of a file, as the POSIX utility cksum prints them: "3915528286 1024". Empty when
/// the file cannot be read. It detects another version of a configuration, not a forged one. Threads: any.
std::string Cksum(const std::string& path);

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_CKSUM_H_
