#ifndef EXAMPLES_ALARM_AGENT_FEED_READER_H_
#define EXAMPLES_ALARM_AGENT_FEED_READER_H_

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "examples/alarm_agent/feed_line.h"
#include "examples/alarm_agent/unique_fd.h"

namespace alarm_agent {

/// Reads a feed line by line: a file, a pipe, a terminal.
///
/// A file is read to its end. On a pipe or a terminal the reader waits for more until the writer closes it or
/// `Finish` is called. The last line needs no line feed; an empty line is a line.
///
/// Ownership: owns its descriptor, for standard input a duplicate.
/// Threads: one at a time calls `Next` and `Problem`; any thread calls `Finish`.
class FeedReader {
 public:
  /// The longest line that is kept whole. Alarms are far shorter; the limit bounds the memory that a feed
  /// without line feeds takes.
  static constexpr std::size_t kMaxLine = 65536;

  /// Opens the file `path`, standard input when that is empty. Throws `SetupError` when it cannot be read.
  explicit FeedReader(const std::string& path);

  /// Moves the next line into `line`. Returns false at the end of the feed, and in every later call.
  bool Next(FeedLine& line);

  /// Ends the reading: `Next` still returns what the feed holds now, then false. Wakes a waiting `Next`. Cannot
  /// be undone.
  void Finish();

  /// Why reading failed; empty when it did not.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

  /// Whether `fd` refers to the same regular file.
  [[nodiscard]] bool IsSameFile(int fd) const;

 private:
  /// Waits for the next chunk and reads it; false when there is none.
  bool Fill();
  /// Waits until the feed can be read or `Finish` is called. Returns whether it can be read; false also after
  /// a signal.
  [[nodiscard]] bool WaitForInput() const;
  /// The most bytes that the next read may take.
  [[nodiscard]] std::size_t Allowance() const;
  /// How many bytes can be read without waiting.
  [[nodiscard]] std::uint64_t Held() const;

  const std::string name_;
  const UniqueFd fd_;
  const UniqueFd wake_;  ///< an event counter, written by `Finish`, so that a wait ends

  // Set by any thread; everything below is the reading thread's.
  std::atomic<bool> finishing_ = false;

  std::array<char, 65536> chunk_;
  std::string_view rest_;                   ///< the unread end of `chunk_`
  std::optional<std::uint64_t> remaining_;  ///< bytes that may still be read after `Finish`
  std::uint64_t number_ = 0;
  bool ended_ = false;
  std::string problem_;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_FEED_READER_H_
