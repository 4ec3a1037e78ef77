#ifndef TOOLS_RECORDER_RECORDING_FILE_H_
#define TOOLS_RECORDER_RECORDING_FILE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

#include "tools/recorder/format/values.h"

namespace recorder {

/// The file that a recording is written to.
///
/// An existing regular file of that name is renamed to FILE.1 first and replaces an older FILE.1. A new file
/// has mode 0600, because it contains alarm texts. With a limit, when the next line would exceed it, the file
/// gets its tail and is renamed to FILE.1, and a new file is created. So at most twice the limit is on the
/// disk, unless a single record, or the file that existed before, is larger. A character device is written to
/// directly; anything else, such as a directory or a symbolic link, is refused.
///
/// Failures throw `std::system_error` whose text names the file. After a failure only `Written` and the destructor,
/// which closes the file, may be called. Threads: one at a time.
class RecordingFile {
 public:
  /// Creates the file and writes the head. `limit` is in bytes; 0: none. A line is never split, so a file
  /// that holds a single record may be larger.
  RecordingFile(std::string path, std::uint64_t limit, const recording_format::Head& head);
  ~RecordingFile();
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;

  /// Appends the line of one record; rotates first when the line does not fit. It may stay in memory until
  /// `Flush`.
  void Add(std::string_view line);

  /// Writes the lines that are still in memory.
  void Flush();

  /// Counts dropped records; the tail of the current file contains their number.
  void CountDropped(std::uint64_t records) { dropped_ += records; }

  /// Writes the tail and closes the file.
  void Finish();

  /// How many records were written, those of earlier files and of a block that was written in part included.
  [[nodiscard]] std::uint64_t Written() const { return written_; }

 private:
  void Open();
  void Append(std::string_view line);
  void CountWritten(std::size_t bytes);
  [[noreturn]] void Fail(const char* action) const;

  const std::string path_;
  const std::uint64_t limit_;
  recording_format::Head head_;
  int fd_ = -1;
  std::string pending_;        ///< lines that are not written yet
  std::uint64_t size_ = 0;     ///< of the current file, the pending lines included
  std::uint64_t records_ = 0;  ///< in the current file, the pending ones included
  std::uint64_t dropped_ = 0;  ///< while the current file was written
  std::uint64_t added_ = 0;    ///< in all files
  std::uint64_t written_ = 0;  ///< in all files, without the pending ones
};

/// The present time in UTC, as "2026-11-22T02:15:48.123Z".
std::string TimeNow();

/// The checksum of the alarm configuration in `configDir`, see cksum.h.
std::string AlarmConfigCksum(const std::string& configDir);

}  // namespace recorder

#endif  // TOOLS_RECORDER_RECORDING_FILE_H_
