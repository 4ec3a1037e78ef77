#ifndef SRC_ALMHASH_H_
#define SRC_ALMHASH_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The hash of the alarm table. Not for storage: it may differ between machines of different byte order.
namespace NS_ASCII {

/// Mixes several texts into one hash value, in place. It keeps nothing of the texts and is its owner's alone.
/// The low eight bits of each text's length are mixed in, so that ("ab", "c") and ("a", "bc") differ.
class TextHash {
 public:
  void Add(std::string_view text) {
    // Does not depend on `state_`, so that the processor can work on several texts at a time.
    const char* const p = text.data();
    std::uint64_t mixed = std::uint64_t{text.size()} << 56;
    if (text.size() < kWord) {
      mixed ^= ShortWord(p, text.size());
    } else {
      // The last word may overlap the one before.
      const std::size_t last = text.size() - kWord;
      for (std::size_t i = 0; i < last; i += kWord) {
        mixed = Mixed(mixed ^ Load<std::uint64_t>(p + i));
      }
      mixed ^= Load<std::uint64_t>(p + last);
    }
    state_ = (state_ << 23 | state_ >> 41) + mixed * kOdd;
  }

  [[nodiscard]] std::uint32_t value() const { return static_cast<std::uint32_t>(Mixed(state_)); }

 private:
  template <class T>
  static T Load(const char* p) {
    T word;
    std::memcpy(&word, p, sizeof word);
    return word;
  }

  /// The bytes of a text of fewer than eight as one number. Two overlapping loads replace a loop over bytes.
  static std::uint64_t ShortWord(const char* p, std::size_t size) {
    if (size >= 4) {
      return std::uint64_t{Load<std::uint32_t>(p)} << 32 | Load<std::uint32_t>(p + size - 4);
    }
    if (size == 0) {
      return 0;
    }
    const auto byte = [p](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(p[i])}; };
    return byte(0) << 16 | byte(size / 2) << 8 | byte(size - 1);
  }

  /// Multiplication carries every bit upwards, the shift brings the upper half back down.
  static std::uint64_t Mixed(std::uint64_t word) {
    word *= kOdd;
    return word ^ word >> 32;
  }

  static constexpr std::size_t kWord = sizeof(std::uint64_t);
  static constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;

  std::uint64_t state_ = 0x2545F4914F6CDD1DU;
};

}  // namespace NS_ASCII

#endif  // SRC_ALMHASH_H_
