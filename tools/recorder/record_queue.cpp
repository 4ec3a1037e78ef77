// The bounded queue between calling threads and the writer. The queue owns both buffers; one lock protects
// them. Any thread may push, one thread takes.

#include "tools/recorder/record_queue.h"

#include <algorithm>
#include <chrono>

namespace recorder {
namespace {

/// The longest time for which `Take` waits. A killed process loses the records of about this time at most.
constexpr std::chrono::milliseconds kInterval{100};

/// The writer is woken when this many bytes are queued. That costs a caller a few nanoseconds per call on average,
/// and the part of the buffers that is used stays in the processor's cache.
constexpr std::size_t kBatch = std::size_t{512} << 10;

}  // namespace

void RecordQueue::Open(std::size_t capacity) {
  const std::lock_guard<std::mutex> guard(lock_);
  records_.clear();
  records_.reserve(capacity);
  taken_.reserve(capacity);
  capacity_ = capacity;
  batch_ = std::min(kBatch, capacity / 2);
  dropped_ = 0;
  isOpen_ = true;
}

void RecordQueue::Push(std::string_view record) noexcept {
  {
    const std::lock_guard<std::mutex> guard(lock_);
    const std::size_t before = records_.size();
    if (!isOpen_) {
      return;
    }
    if (record.size() > capacity_ - before) {
      ++dropped_;
      return;
    }
    records_ += record;  // Fits the reserved memory, so nothing is thrown.
    if (before >= batch_ || records_.size() < batch_) {
      return;
    }
  }
  wake_.notify_one();
}

void RecordQueue::Drop() noexcept {
  const std::lock_guard<std::mutex> guard(lock_);
  ++dropped_;
}

void RecordQueue::Close() noexcept {
  const std::lock_guard<std::mutex> guard(lock_);
  isOpen_ = false;
  wake_.notify_one();
}

RecordQueue::Batch RecordQueue::Take() {
  taken_.clear();
  std::unique_lock<std::mutex> guard(lock_);
  wake_.wait_for(guard, kInterval, [this] { return !isOpen_ || records_.size() >= batch_; });
  records_.swap(taken_);
  const Batch batch{taken_, dropped_, !isOpen_};
  dropped_ = 0;
  return batch;
}

void RecordQueue::Release() noexcept {
  std::string records;
  std::string taken;
  const std::lock_guard<std::mutex> guard(lock_);  // Released before the memory is freed.
  records_.swap(records);
  taken_.swap(taken);
  capacity_ = 0;
}

}  // namespace recorder
