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
/// A file ends where it ends; at a pipe or a terminal the reader waits for more, until the writer closes it
/// or `Finish` is called. The last line counts with or without a line feed, and an empty line is a line.
///
/// Ownership: the descriptor, for standard input a duplicate of it.
/// Threads: one at a time calls `Next` and `Problem`; any thread calls `Finish`.
class FeedReader {
 public:
  /// The longest line that is kept whole. One alarm is far shorter; a feed without line feeds shall not fill
  /// the memory.
  static constexpr std::size_t kMaxLine = 65536;

  /// Opens the file `path`, standard input when that is empty. Throws `SetupError` when it cannot be read.
  explicit FeedReader(const std::string& path);

  /// Moves the next line into `line`. False at the end of the feed, and from then on.
  bool Next(FeedLine& line);

  /// Asks for an end: what the feed holds when this is noticed is still read, but nothing is waited for any
  /// more. A `Next` that waits returns. Cannot be taken back.
  void Finish();

  /// Why the feed ended before its end; empty when it did not.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

  /// Whether both descriptors lead to the same regular file.
  [[nodiscard]] bool IsSameFile(int fd) const;

 private:
  /// Reads the next chunk, waiting for it; false when there is none.
  bool Fill();
  /// Waits until the feed can be read or an end is asked for; whether it can be read. False when a signal
  /// came, too.
  bool WaitForInput() const;
  /// How much the next read may ask for.
  [[nodiscard]] std::size_t Allowance() const;
  /// How many bytes can be read without waiting for somebody to write them.
  [[nodiscard]] std::uint64_t Held() const;

  const std::string name_;
  const UniqueFd fd_;
  const UniqueFd wake_;  ///< an event counter, written by `Finish`, so that a wait ends

  // Set by any thread; everything below is the reading thread's.
  std::atomic<bool> finishing_ = false;

  std::array<char, 65536> chunk_;
  std::string_view rest_;                   ///< what is left of `chunk_`
  std::optional<std::uint64_t> remaining_;  ///< what may still be read, once finishing has been noticed
  std::uint64_t number_ = 0;
  bool ended_ = false;
  std::string problem_;
};

}  // namespace alarm_agent

#endif  // EXAMPLES_ALARM_AGENT_FEED_READER_H_
