#ifndef TESTS_RANDOM_TEXT_H_
#define TESTS_RANDOM_TEXT_H_

#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Random input for tests that compare with the literal rules. Seeds are fixed, so a failure can be repeated;
/// the environment variable ASCII_UTIL_TRIALS multiplies the number of trials for a longer search.
namespace testing_text {

inline int Trials(int usual) {
  const char* const factor = std::getenv("ASCII_UTIL_TRIALS");
  return factor == nullptr ? usual : usual * std::atoi(factor);
}

class RandomText {
 public:
  explicit RandomText(unsigned seed) : engine_(seed) {}

  std::size_t Below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine_);
  }

  /// Up to `longest` characters of `alphabet`.
  std::string Of(std::string_view alphabet, std::size_t longest) {
    std::string text(Below(longest + 1), '\0');
    for (char& c : text) {
      c = alphabet[Below(alphabet.size())];
    }
    return text;
  }

  /// Up to `mostStretches` stretches of up to `longest` characters; the characters of each stretch come from
  /// one of the `alphabets`.
  std::string Patchwork(const std::vector<std::string_view>& alphabets, std::size_t mostStretches,
                        std::size_t longest) {
    std::string text;
    for (std::size_t left = Below(mostStretches + 1); left > 0; --left) {
      text += Of(alphabets[Below(alphabets.size())], longest);
    }
    return text;
  }

  /// Up to `longest` bytes of any value.
  std::string Bytes(std::size_t longest) {
    std::string text(Below(longest + 1), '\0');
    for (char& c : text) {
      c = static_cast<char>(Below(256));
    }
    return text;
  }

 private:
  std::mt19937 engine_;
};

/// Calls `visit` with every text over `alphabet` of at most `longest` characters, shortest first.
template <class Visit>
void ForEachText(std::string_view alphabet, std::size_t longest, Visit visit) {
  for (std::size_t length = 0; length <= longest; ++length) {
    std::string digits(length, '\0');
    for (;;) {
      std::string text(length, '\0');
      for (std::size_t i = 0; i < length; ++i) {
        text[i] = alphabet[static_cast<unsigned char>(digits[i])];
      }
      visit(text);
      std::size_t i = 0;
      while (i < length && static_cast<unsigned char>(digits[i]) + 1U == alphabet.size()) {
        digits[i++] = '\0';
      }
      if (i == length) {
        break;
      }
      ++digits[i];
    }
  }
}

}  // namespace testing_text

#endif  // TESTS_RANDOM_TEXT_H_
