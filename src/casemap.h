#ifndef SRC_CASEMAP_H_
#define SRC_CASEMAP_H_

#include <ctype.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Case mapping of whole texts, the same as the C library's byte by byte in the locale in force.
///
/// Nearly all text is ASCII, nearly every locale maps ASCII as the "C" locale does, and UTF-8 locales map
/// other single bytes to themselves. A text for which that holds is mapped without looking its bytes up.
/// Whether it holds is established anew for each text: the locale may be another one next time, at the same
/// address. Only the built-in "C" locale, which few services ever leave, is known by the address of its
/// tables.
///
/// The loops here are plain and without exits, so that they become vector instructions.
namespace NS_ASCII {

/// Shorter texts are looked up byte by byte: to find out whether the locale is a plain one would cost more
/// than it saves. (The built-in one is recognised at no cost, for texts of any length.)
inline constexpr std::size_t kShortText = 32;

/// `c` in the other case if it is one of the 26 letters from `firstLetter` on, else `c`.
constexpr char FlipLetter(char c, char firstLetter) {
  return static_cast<char>(c ^ (static_cast<unsigned char>(c - firstLetter) < 26 ? 0x20 : 0));
}

/// The "C" locale's mapping of the bytes 0 to 255: the 26 letters from `firstLetter` on change case.
struct PlainCase {
  char firstLetter;
  std::array<std::int32_t, 256> mapped;
};

constexpr PlainCase MakePlainCase(char firstLetter) {
  PlainCase plain{firstLetter, {}};
  for (std::size_t c = 0; c < plain.mapped.size(); ++c) {
    plain.mapped[c] = static_cast<unsigned char>(FlipLetter(static_cast<char>(c), firstLetter));
  }
  return plain;
}

inline constexpr PlainCase kPlainUpper = MakePlainCase('a');
inline constexpr PlainCase kPlainLower = MakePlainCase('A');

/// The "C" locale that is part of the C library. It is no copy: nobody frees it, and its tables never change.
inline const __locale_struct& BuiltInLocale() {
  static const locale_t builtIn = newlocale(LC_ALL_MASK, "C", nullptr);
  return *builtIn;
}

inline bool IsAscii(std::string_view text) {
  unsigned char bits = 0;
  for (const char c : text) {
    bits = static_cast<unsigned char>(bits | static_cast<unsigned char>(c));
  }
  return bits < 0x80;
}

/// Case mapping of characters taken as unsigned, by the C library's `table` for the locale in force;
/// `builtIn` is that of the built-in locale, and `plain` what it says.
class UnsignedCase {
 public:
  UnsignedCase(const std::int32_t* table, const std::int32_t* builtIn, const PlainCase& plain)
      : table_(table), builtIn_(builtIn), plain_(plain) {}

  char operator()(char c) const { return static_cast<char>(table_[static_cast<unsigned char>(c)]); }

  [[nodiscard]] const PlainCase& plain() const { return plain_; }
  [[nodiscard]] bool IsBuiltIn() const { return table_ == builtIn_; }
  [[nodiscard]] bool IsPlain(bool ascii) const {
    return std::equal(table_, table_ + (ascii ? 128 : 256), plain_.mapped.begin());
  }

 private:
  const std::int32_t* table_;
  const std::int32_t* builtIn_;
  const PlainCase& plain_;
};

/// Upper case for characters taken as signed, which is how far down the C library's tables reach.
class SignedUpper {
 public:
  char operator()(char c) const {
    const int code = static_cast<signed char>(c);  // NOLINT(bugprone-signed-char-misuse,cert-str34-c)
    return IsLower(code) ? static_cast<char>(upper_[code]) : c;
  }

  [[nodiscard]] static const PlainCase& plain() { return kPlainUpper; }
  [[nodiscard]] bool IsBuiltIn() const {
    return classes_ == BuiltInLocale().__ctype_b && upper_ == BuiltInLocale().__ctype_toupper;
  }

  [[nodiscard]] bool IsPlain(bool ascii) const {
    const auto mapped = kPlainUpper.mapped.begin();
    int common = _ISlower;
    for (int letter = 'a'; letter <= 'z'; ++letter) {
      common &= classes_[letter];
    }
    // -128 to -2 stand for the bytes 128 to 254. -1 is no character to the C library and never changes.
    return common != 0 && std::equal(mapped, mapped + 128, upper_) &&
           (ascii || std::equal(mapped + 128, mapped + 255, upper_ - 128));
  }

 private:
  [[nodiscard]] bool IsLower(int code) const { return (classes_[code] & _ISlower) != 0; }

  const unsigned short* classes_ = *__ctype_b_loc();
  const std::int32_t* upper_ = *__ctype_toupper_loc();
};

/// Maps `text` in place. `mapper(c)` is what becomes of one character, `mapper.IsBuiltIn()` whether the
/// built-in locale is in force, and `mapper.IsPlain(ascii)` whether all bytes, or at least the ASCII ones,
/// are mapped as `mapper.plain()` says. Inline, so that the two letters are constants in the loop.
template <class Mapper>
inline void MapCase(std::string& text, const Mapper& mapper) {
  if (mapper.IsBuiltIn() ||
      (text.size() >= kShortText && (mapper.IsPlain(false) || (mapper.IsPlain(true) && IsAscii(text))))) {
    const char firstLetter = mapper.plain().firstLetter;
    for (char& c : text) {
      c = FlipLetter(c, firstLetter);
    }
  } else {
    std::transform(text.begin(), text.end(), text.begin(), mapper);
  }
}

}  // namespace NS_ASCII

#endif  // SRC_CASEMAP_H_
