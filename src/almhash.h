#ifndef SRC_ALMHASH_H_
#define SRC_ALMHASH_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The hash of the alarm table. Not for storage: it may differ between machines of different byte order.
namespace NS_ASCII {

/// Mixes several texts into one hash value, in place. ("ab", "c") and ("a", "bc") differ, because each text
/// ends with its length.
class TextHash {
 public:
  void Add(std::string_view text) {
    const char* p = text.data();
    std::size_t left = text.size();
    for (; left >= sizeof(std::uint64_t); p += sizeof(std::uint64_t), left -= sizeof(std::uint64_t)) {
      Mix(Load<std::uint64_t>(p));
    }
    Mix(Tail(p, left) ^ (std::uint64_t{text.size()} << 56));
  }

  [[nodiscard]] std::uint32_t value() const { return static_cast<std::uint32_t>(state_ ^ (state_ >> 29)); }

 private:
  template <class T>
  static T Load(const char* p) {
    T word;
    std::memcpy(&word, p, sizeof word);
    return word;
  }

  /// The last `left` bytes, fewer than eight, as one number. Two overlapping loads replace a loop over bytes.
  static std::uint64_t Tail(const char* p, std::size_t left) {
    if (left >= 4) {
      return std::uint64_t{Load<std::uint32_t>(p)} << 32 | Load<std::uint32_t>(p + left - 4);
    }
    if (left == 0) {
      return 0;
    }
    const auto byte = [p](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(p[i])}; };
    return byte(0) << 16 | byte(left / 2) << 8 | byte(left - 1);
  }

  void Mix(std::uint64_t word) {
    // Multiplication carries every bit upwards, the shift brings the upper half back down.
    state_ = (state_ ^ word) * 0x9E3779B97F4A7C15U;
    state_ ^= state_ >> 32;
  }

  std::uint64_t state_ = 0x2545F4914F6CDD1DU;
};

}  // namespace NS_ASCII

#endif  // SRC_ALMHASH_H_
