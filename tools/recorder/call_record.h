#ifndef TOOLS_RECORDER_CALL_RECORD_H_
#define TOOLS_RECORDER_CALL_RECORD_H_

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeinfo>

#include "tools/recorder/byte_buffer.h"
#include "tools/recorder/format/values.h"
#include "tools/recorder/recording.h"

namespace recorder {

/// The start of a record in the queue. The values follow: the arguments, the out values at the start unless
/// all are 0 or empty, the result or the exception's type and text, the out values at the end. Booleans take
/// a byte, integers eight; a text is preceded by its size, a list or a map by the number of its elements, each
/// in four bytes.
struct RecordHeader {
  recording_format::Operation operation;
  bool hasBefore;
  bool hasThrown;
  std::int32_t thread;
  std::int64_t start;     ///< nanoseconds since the recording began
  std::int64_t duration;  ///< in nanoseconds
};

/// The record of one call, copied on the calling thread: `Begin` before the call, `Returned` or `Threw` after
/// it. Throws nothing; when memory runs out or the record is larger than the queue, it is counted as dropped.
class CallRecord {
 public:
  explicit CallRecord(Recording& recording) noexcept
      : recording_(recording), bytes_(recording.LargestRecord()) {}
  CallRecord(const CallRecord&) = delete;
  CallRecord& operator=(const CallRecord&) = delete;

  /// Copies the arguments and starts the clock. Must be called before the operation: an argument may refer to an
  /// element of an out value, which the operation changes.
  template <class... In, class... Out>
  void Begin(recording_format::Operation operation, const std::tuple<const In&...>& in,
             const std::tuple<const Out&...>& out) noexcept {
    header_.operation = operation;
    header_.hasBefore = !std::apply([](const auto&... values) { return (IsInitial(values) && ...); }, out);
    Try([&] {
      bytes_.Append(header_);
      AppendAll(in);
      if (header_.hasBefore) {
        AppendAll(out);
      }
    });
    start_ = Recording::Clock::now();
  }

  template <class Result, class... Out>
  void Returned(const Result& result, const std::tuple<const Out&...>& out) noexcept {
    const auto end = Recording::Clock::now();
    Try([&] {
      AppendValue(result);
      AppendAll(out);
    });
    HandOver(end);
  }

  /// `type` and `what` may be null.
  template <class... Out>
  void Threw(const std::type_info* type, const char* what, const std::tuple<const Out&...>& out) noexcept {
    const auto end = Recording::Clock::now();
    header_.hasThrown = true;
    Try([&] {
      AppendThrown(type, what);
      AppendAll(out);
    });
    HandOver(end);
  }

 private:
  template <class T>
  static bool IsInitial(const T& value) {
    if constexpr (std::is_integral_v<T>) {
      return value == 0;
    } else {
      return value.empty();
    }
  }

  template <class... T>
  void AppendAll(const std::tuple<const T&...>& values) {
    std::apply([&](const auto&... each) { (AppendValue(each), ...); }, values);
  }

  template <class T>
  void AppendValue(const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      bytes_.Append(value);
    } else if constexpr (std::is_integral_v<T>) {
      bytes_.Append(std::int64_t{value});
    } else {
      bytes_.AppendText(value);
    }
  }
  void AppendValue(const recording_format::TextList& list);
  void AppendValue(const recording_format::TextMap& map);

  /// Runs `append`, unless an earlier one failed.
  template <class Function>
  void Try(Function append) noexcept {
    try {
      if (isComplete_) {
        append();
      }
    } catch (...) {
      isComplete_ = false;
    }
  }

  void AppendThrown(const std::type_info* type, const char* what);
  void HandOver(Recording::Clock::time_point end) noexcept;

  Recording& recording_;
  RecordHeader header_{};
  ByteBuffer bytes_;
  Recording::Clock::time_point start_;
  bool isComplete_ = true;
};

/// Removes the first record from `records` and appends it to `line` as a line of the file.
void FormatRecord(std::string_view& records, std::string& line);

}  // namespace recorder

#endif  // TOOLS_RECORDER_CALL_RECORD_H_
