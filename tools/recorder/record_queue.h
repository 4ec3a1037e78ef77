#ifndef TOOLS_RECORDER_RECORD_QUEUE_H_
#define TOOLS_RECORDER_RECORD_QUEUE_H_

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

namespace recorder {

/// A bounded queue of records from the calling threads to the writer's thread.
///
/// Records are copied into one buffer, which the writer exchanges for an empty one; so a caller holds the
/// lock only while it copies and never waits for the disk. A record that does not fit is dropped and counted.
/// Threads: any may push; one takes. `Open` and `Release` are called while no thread takes.
class RecordQueue {
 public:
  /// Opens the empty queue with space for `capacity` bytes. Throws `std::bad_alloc`.
  void Open(std::size_t capacity);

  /// Appends a record. Drops and counts it when it does not fit; ignores it when the queue is closed.
  void Push(std::string_view record) noexcept;

  /// Counts a record that could not be built as dropped.
  void Drop() noexcept;

  /// Closes the queue: later records are ignored, queued ones are still delivered.
  void Close() noexcept;

  /// The records of one `Take`.
  struct Batch {
    std::string_view records;   ///< valid until the next `Take`
    std::uint64_t dropped = 0;  ///< records dropped since the last batch
    bool isLast = false;        ///< the queue is closed; no further batch follows
  };

  /// Waits until the queue has a batch of records or is closed, 100 ms at most, and returns its records.
  Batch Take();

  /// Frees the memory of a closed queue.
  void Release() noexcept;

 private:
  std::mutex lock_;
  std::condition_variable wake_;
  std::string records_;  ///< filled by `Push`
  std::string taken_;    ///< what the last `Take` returned; has the capacity of `records_`
  std::size_t capacity_ = 0;
  std::size_t batch_ = 0;  ///< `Take` is woken when this many bytes are queued
  std::uint64_t dropped_ = 0;
  bool isOpen_ = false;
};

}  // namespace recorder

#endif  // TOOLS_RECORDER_RECORD_QUEUE_H_
