// Finds the value of a key in a text of key=value pairs, without copying. Pure functions; results are views
// into the caller's text. Any thread may call them.

#include "src/interface/keyvalue.h"

#include <algorithm>
#include <cstddef>

#include "src/text/strfunctions.h"

namespace NS_ASCII {
namespace {

/// The offset of the "=" if the first pair of `text`, which starts without blanks, has this key; otherwise
/// npos.
std::size_t FindEqualsOf(std::string_view key, std::string_view text) {
  std::size_t end = key.size();
  // Few pairs have a "=" here, so most keys need not be compared.
  if (end >= text.size() || (text[end] != '=' && text[end] != '\0') || text.substr(0, end) != key) {
    return std::string_view::npos;
  }
  if (text[end] == '\0') {
    end = text.find_first_of("=,", end);  // The key's bytes after the NUL are ignored.
  }
  return end < text.size() && text[end] == '=' ? end : std::string_view::npos;
}

}  // namespace

std::string_view FindValue(std::string_view key, std::string_view text) {
  const auto endsKey = [](char c) { return c == '\0' || c == '=' || c == ','; };
  const auto* const end = std::find_if(key.begin(), key.end(), endsKey);
  if (end == key.begin() || (end != key.end() && *end != '\0')) {
    return {};
  }
  key = key.substr(0, static_cast<std::size_t>(end - key.begin()));
  for (;;) {
    const std::string_view pair = TrimLeftView(text);
    if (const std::size_t equals = FindEqualsOf(key, pair); equals != std::string_view::npos) {
      const std::string_view rest = pair.substr(equals + 1);
      const std::string_view value = TrimRightView(rest.substr(0, rest.find(',')));
      return IsNonEmptyCString(value) ? value : TrimRightView(rest);
    }
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) {
      return {};
    }
    text.remove_prefix(comma + 1);
  }
}

}  // namespace NS_ASCII
