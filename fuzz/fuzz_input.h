#ifndef FUZZ_FUZZ_INPUT_H_
#define FUZZ_FUZZ_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// Shared by all fuzz targets: splitting an input into parts and reporting a property that does not hold.
namespace fuzz {

/// An input, read from its start. A text of more than 15 bytes is a copy in memory of its size and a NUL, so that
/// AddressSanitizer reports a read beyond the NUL.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  /// The next byte; 0 when there is none.
  unsigned Byte() {
    if (rest_.empty()) {
      return 0;
    }
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
  }

  /// The text before the next '\xFF', which separates the parts of an input; the rest when there is none.
  std::string Part() {
    const std::size_t end = rest_.find('\xFF');
    std::string part(rest_.substr(0, end));
    part.shrink_to_fit();
    rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
    return part;
  }

  /// The rest of the input.
  std::string Rest() {
    std::string rest(rest_);
    rest.shrink_to_fit();
    rest_ = {};
    return rest;
  }

 private:
  std::string_view rest_;
};

/// Ends the run with the property's name unless `holds` is true.
inline void Expect(bool holds, const char* property) {
  if (!holds) {
    std::fprintf(stderr, "fuzz: does not hold: %s\n", property);
    std::abort();
  }
}

}  // namespace fuzz

/// The target: called once for each input; always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif  // FUZZ_FUZZ_INPUT_H_
