// Finds the value of a key in a text of key=value pairs, without copying. Pure functions; results are views
// into the caller's text. Any thread may call them.

#include "src/interface/keyvalue.h"

#include <algorithm>
#include <cstddef>

#include "src/text/strfunctions.h"

namespace NS_ASCII {
namespace {

/// Whether the key may start at `at`: the first byte matches, and "=" or NUL is at the key's length.
bool MayStart(std::string_view key, const char* at) {
  const char after = at[key.size()];
  return (*at == key.front()) & ((after == '=') | (after == '\0'));
}

/// How many bytes of a text are examined at a time.
constexpr unsigned char kBlock = 32;

/// The offset of the first place in the block where the key may start; `kBlock` if there is none. Compilers
/// vectorise the loop because its length is constant and it has no exits.
unsigned char FirstPlaceIn(const char* block, std::string_view key) {
  unsigned char first = kBlock;
  for (unsigned char i = 0; i < kBlock; ++i) {
    const unsigned char place = MayStart(key, block + i) ? i : kBlock;
    first = std::min(first, place);
  }
  return first;
}

/// The first place from `pos` on, but before `end`, where the key may start; `end` if there is none.
std::size_t FindPlace(std::string_view key, std::string_view text, std::size_t pos, std::size_t end) {
  for (; end - pos >= kBlock; pos += kBlock) {
    if (const unsigned char first = FirstPlaceIn(text.data() + pos, key); first != kBlock) {
      return pos + first;
    }
  }
  while (pos != end && !MayStart(key, text.data() + pos)) {
    ++pos;
  }
  return pos;
}

/// Whether the trimmed pair that contains `pos` starts there.
bool StartsPair(std::string_view text, std::size_t pos) {
  while (pos > 0 && IsWhiteSpace(text[pos - 1])) {
    --pos;
  }
  return pos == 0 || text[pos - 1] == ',';
}

/// The offset of the "=" if `text` starts with a pair that has this key; otherwise npos. `text` must be
/// longer than `key`.
std::size_t FindEqualsOf(std::string_view key, std::string_view text) {
  std::size_t end = key.size();
  if (text.substr(0, end) != key) {
    return std::string_view::npos;
  }
  if (text[end] == '\0') {
    end = text.find_first_of("=,", end);  // A key ends at its first NUL; skips the rest up to the "=".
  }
  return end < text.size() && text[end] == '=' ? end : std::string_view::npos;
}

/// The value at the start of `rest`, the text after a pair's "=".
std::string_view ValueIn(std::string_view rest) {
  const std::string_view value = TrimRightView(rest.substr(0, rest.find(',')));
  return IsNonEmptyCString(value) ? value : TrimRightView(rest);
}

}  // namespace

std::string_view FindValue(std::string_view key, std::string_view text) {
  const auto endsKey = [](char c) { return c == '=' || c == ',' || c == '\0'; };
  const auto length = static_cast<std::size_t>(std::find_if(key.begin(), key.end(), endsKey) - key.begin());
  if (length == 0 || IsWhiteSpace(key.front()) || (length < key.size() && key[length] != '\0')) {
    return {};  // No trimmed pair has such a key.
  }
  key = key.substr(0, length);
  const std::size_t end = text.size() - std::min(text.size(), key.size());
  for (std::size_t pos = 0; (pos = FindPlace(key, text, pos, end)) != end; ++pos) {
    if (StartsPair(text, pos)) {
      if (const std::size_t equals = FindEqualsOf(key, text.substr(pos)); equals != std::string_view::npos) {
        return ValueIn(text.substr(pos + equals + 1));
      }
    }
  }
  return {};
}

}  // namespace NS_ASCII
