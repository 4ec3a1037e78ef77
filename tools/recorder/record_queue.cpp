// The bounded queue between calling threads and the writer. The queue owns both buffers; one lock protects
// them. Any thread may push, one thread takes.

#include "tools/recorder/record_queue.h"

#include <chrono>

namespace recorder {
namespace {

/// The longest time between two calls of the writer for records. A killed process loses at most the records
/// of about this time.
constexpr std::chrono::milliseconds kInterval{100};

}  // namespace

void RecordQueue::Open(std::size_t capacity) {
  const std::lock_guard<std::mutex> guard(lock_);
  records_.clear();
  records_.reserve(capacity);
  taken_.reserve(capacity);
  capacity_ = capacity;
  dropped_ = 0;
  isOpen_ = true;
}

void RecordQueue::Push(std::string_view record) noexcept {
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
  if (before < capacity_ / 2 && records_.size() >= capacity_ / 2) {
    wake_.notify_one();
  }
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
  wake_.wait_for(guard, kInterval, [this] { return !isOpen_ || records_.size() >= capacity_ / 2; });
  records_.swap(taken_);
  const Batch batch{taken_, dropped_, !isOpen_};
  dropped_ = 0;
  return batch;
}

void RecordQueue::Release() noexcept {
  const std::lock_guard<std::mutex> guard(lock_);
  records_ = std::string();
  taken_ = std::string();
  capacity_ = 0;
}

}  // namespace recorder
