#ifndef TOOLS_RECORDER_RECORDING_H_
#define TOOLS_RECORDER_RECORDING_H_

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "tools/recorder/format/values.h"
#include "tools/recorder/options.h"
#include "tools/recorder/record_queue.h"
#include "tools/recorder/recording_file.h"

namespace recorder {

/// The totals of a finished recording.
struct Totals {
  std::uint64_t records = 0;  ///< in the files
  std::uint64_t dropped = 0;  ///< the queue was full or too small for the record, or memory ran out
  std::string problem;        ///< why the recording stopped early; empty when it did not
};

/// Records calls into a file. One recording runs at a time; another may follow.
///
/// Threads: `Start`, `Stop`, `IsRunning` and `IsAbandoned` one at a time; the functions for calls, from `Wants`
/// on, from any thread at any time, also while a recording is started or stopped. The object must outlive every
/// call.
class Recording {
 public:
  using Clock = std::chrono::steady_clock;

  /// Creates the file and starts the writer's thread. `head` names the implementation; `Start` fills in the
  /// rest of it. `onProblem` is called at most once, on the writer's thread, with one line of text, when the
  /// file cannot be written any more or memory runs out there; recording has then stopped. `capacity` is that of
  /// the queue in bytes; a larger record is dropped. Throws `std::system_error` or `std::bad_alloc`; nothing is
  /// started then.
  void Start(const Options& options, recording_format::Head head, void (*onProblem)(const std::string&),
             std::uint32_t capacity);

  /// Writes the records in the queue, closes the file and ends the writer's thread. Calls that have not ended
  /// yet are left out. Does nothing without a recording.
  Totals Stop();

  [[nodiscard]] bool IsRunning() const { return writer_.joinable(); }

  /// For a forked child, right after the fork: its calls are not recorded, and `Stop` does nothing. The
  /// writer's thread exists in the parent only, and the queue's lock may be held by another thread of it.
  void AbandonAfterFork() noexcept;
  [[nodiscard]] bool IsAbandoned() const { return isAbandoned_; }

  /// Whether this call of the operation is to be recorded. Counts the calls when only each Nth is recorded.
  bool Wants(recording_format::Operation operation) noexcept {
    const auto at = static_cast<unsigned>(operation);
    if ((selected_.load(std::memory_order_acquire) >> at & 1U) == 0) {
      return false;
    }
    const std::uint64_t every = every_.load(std::memory_order_relaxed);
    return every == 1 || calls_[at].fetch_add(1, std::memory_order_relaxed) % every == 0;
  }

  /// When the recording began.
  [[nodiscard]] Clock::time_point Began() const noexcept {
    return Clock::time_point(Clock::duration(began_.load(std::memory_order_relaxed)));
  }

  /// The size of the queue in bytes. A larger record is dropped, so it need not be built.
  [[nodiscard]] std::uint32_t LargestRecord() const noexcept {
    return largest_.load(std::memory_order_relaxed);
  }

  /// Queues the record of a call, in the form of call_record.h, for the writer.
  void Add(std::string_view record) noexcept { queue_.Push(record); }

  /// Counts a call whose record could not be built.
  void Drop() noexcept { queue_.Drop(); }

 private:
  void WriteLines() noexcept;
  void ReportProblem(const std::exception& error) noexcept;
  void WriteBatches();

  std::atomic<std::uint32_t> selected_{0};  ///< a bit for each recorded operation; 0: no recording
  std::atomic<std::uint64_t> every_{1};
  std::atomic<Clock::rep> began_{0};
  std::atomic<std::uint32_t> largest_{0};
  std::array<std::atomic<std::uint64_t>, recording_format::kSignatures.size()> calls_{};

  RecordQueue queue_;
  std::unique_ptr<RecordingFile> file_;  ///< used by the writer's thread while it runs
  Totals totals_;                        ///< likewise
  void (*onProblem_)(const std::string&) = nullptr;
  std::thread writer_;
  bool isAbandoned_ = false;  ///< this process is a forked child of the one that started the recording
};

}  // namespace recorder

#endif  // TOOLS_RECORDER_RECORDING_H_
