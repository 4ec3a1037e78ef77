#include "bench/texts.h"

#include <array>
#include <cstdint>

namespace bench {
namespace {

constexpr std::array<const char*, 24> kWords = {
    "alarm", "raised", "on",        "Port",     "the",     "link",   "down",     "since",
    "Node",  "of",     "threshold", "exceeded", "Power",   "supply", "A",        "temperature",
    "is",    "above",  "limit",     "Board",    "cleared", "by",     "operator", "fan"};

/// A small generator of our own, so that texts do not depend on a library's.
class Random {
 public:
  std::size_t Below(std::size_t limit) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::size_t>(state_ >> 33) % limit;
  }

 private:
  std::uint64_t state_ = 42;
};

}  // namespace

std::string Words(std::size_t bytes) {
  Random random;
  std::string text;
  while (text.size() < bytes) {
    text += kWords[random.Below(kWords.size())];
    text += ' ';
  }
  text.resize(bytes);
  text.back() = 'x';
  return text;
}

std::string Lines(std::size_t bytes, const std::string& lineEnd) {
  constexpr std::size_t kWordsPerLine = 8;
  Random random;
  std::string text;
  for (std::size_t words = 1; text.size() < bytes; ++words) {
    text += kWords[random.Below(kWords.size())];
    text += words % kWordsPerLine == 0 ? lineEnd : " ";
  }
  text.resize(bytes);
  text.back() = 'x';
  return text;
}

std::string Dense(std::size_t bytes) {
  const std::string marks = "/:?&=#%+<>\"{}|\xC4\xD6\xDC\xDF\xE4\xE9\xF1\xFC,;@$a7";
  Random random;
  std::string text;
  while (text.size() < bytes) {
    text += marks[random.Below(marks.size())];
  }
  text.back() = '/';
  return text;
}

std::string Blanks(std::size_t bytes) {
  const std::string blanks = " \t\n\r";
  Random random;
  std::string text;
  while (text.size() < bytes) {
    text += blanks[random.Below(blanks.size())];
  }
  return text;
}

std::string Replaced(const std::string& text, const std::string& from, const std::string& to) {
  std::string result;
  std::size_t pos = 0;
  for (std::size_t at; (at = text.find(from, pos)) != std::string::npos; pos = at + from.size()) {
    result.append(text, pos, at - pos);
    result += to;
  }
  return result.append(text, pos);
}

std::string SizeName(std::size_t bytes) {
  constexpr std::size_t kKi = 1024;
  if (bytes % (kKi * kKi) == 0) {
    return std::to_string(bytes / (kKi * kKi)) + " MiB";
  }
  return bytes % kKi == 0 ? std::to_string(bytes / kKi) + " KiB" : std::to_string(bytes) + " B";
}

}  // namespace bench
