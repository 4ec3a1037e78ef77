#ifndef SRC_ALARMCONFIG_ALMHASH_H_
#define SRC_ALARMCONFIG_ALMHASH_H_

#include <sys/random.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The hash of the alarm table and its text pools. Values differ between processes and between tables, so
/// they must never be stored or decide an order. Any thread may call; each `TextHash` belongs to one thread.
namespace NS_ASCII {

/// The secret of a hash table. The author of a file does not know it and so cannot choose keys that collide.
struct HashKey {
  std::uint64_t first = 0x9E3779B97F4A7C15U;
  std::uint64_t second = 0xD1B54A32D192ED03U;
};

/// A random key; the default key if the system has no random bytes yet, early at boot.
inline HashKey RandomHashKey() {
  HashKey key;
  static_cast<void>(getrandom(&key, sizeof key, GRND_NONBLOCK));
  return key;
}

/// Hashes a sequence of texts; ("ab", "c") and ("a", "bc") differ. Copies nothing of the texts.
class TextHash {
 public:
  explicit TextHash(const HashKey& key) : key_(key), state_(key.second) {}

  TextHash& Add(std::string_view text) {
    const char* p = text.data();
    std::size_t left = text.size();
    for (; left > 2 * kWord; p += 2 * kWord, left -= 2 * kWord) {
      state_ = Folded(Load<std::uint64_t>(p) ^ key_.first, Load<std::uint64_t>(p + kWord) ^ state_);
    }
    // The last 0 to 16 bytes as two words, which may overlap.
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    if (left >= kWord) {
      a = Load<std::uint64_t>(p);
      b = Load<std::uint64_t>(p + left - kWord);
    } else if (left >= kWord / 2) {
      a = Load<std::uint32_t>(p);
      b = Load<std::uint32_t>(p + left - kWord / 2);
    } else if (left > 0) {
      const auto byte = [p](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(p[i])}; };
      a = byte(0) << 16 | byte(left / 2) << 8 | byte(left - 1);
    }
    // Added after the multiplication: before it, the size and the text's bytes could cancel out.
    state_ = Folded(a ^ key_.first, b ^ state_) + text.size();
    return *this;
  }

  [[nodiscard]] std::uint32_t Value() const {
    return static_cast<std::uint32_t>(Folded(state_ ^ key_.first, key_.second | 1));
  }

 private:
  static constexpr std::size_t kWord = sizeof(std::uint64_t);

  template <class T>
  static T Load(const char* p) {
    T word;
    std::memcpy(&word, p, sizeof word);
    return word;
  }

  /// The two halves of the 128-bit product, combined by XOR.
  static std::uint64_t Folded(std::uint64_t a, std::uint64_t b) {
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  HashKey key_;
  std::uint64_t state_;
};

}  // namespace NS_ASCII

#endif  // SRC_ALARMCONFIG_ALMHASH_H_
