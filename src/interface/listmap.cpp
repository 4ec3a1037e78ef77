// Splits texts into pieces and looks up lists of a `ListMap`. Functions without state: any thread may call
// them, and all lists and maps belong to the caller.

#include "src/interface/listmap.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "src/text/strfunctions.h"

namespace NS_ASCII {
namespace {

/// The longest separator that is searched for by `find`: several times faster than `memmem` where its first
/// character is rare, but up to this many comparisons for each byte of the text.
constexpr std::size_t kShortSeparator = 8;

/// The offset of the first `separator` in `text` at or after `from`; npos if there is none.
std::size_t FindSeparator(std::string_view text, std::string_view separator, std::size_t from) {
  if (separator.size() == 1) {
    return text.find(separator.front(), from);
  }
  if (separator.size() <= kShortSeparator) {
    return text.find(separator, from);
  }
  // Unlike `find`, `memmem` takes linear time for separators of every length.
  const void* const found =
      memmem(text.data() + from, text.size() - from, separator.data(), separator.size());
  return found == nullptr ? std::string_view::npos
                          : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

/// Reserves space for `count` more strings. Grows at least by a factor of two, so that repeated appending
/// takes linear time.
void ReserveMore(std::size_t count, std::vector<std::string>& list) {
  if (list.capacity() - list.size() < count) {
    list.reserve(std::max(list.size() + count, 2 * list.capacity()));
  }
}

}  // namespace

void AppendPieces(const std::string& text, const std::string& separator, std::vector<std::string>& pieces) {
  if (IsElementOf(text, pieces) || IsElementOf(separator, pieces)) {
    return AppendPieces(std::string(text), std::string(separator), pieces);
  }
  const std::string_view whole = text;
  if (separator.size() == 1) {
    const auto separators = std::count(whole.begin(), whole.end(), separator.front());
    ReserveMore(static_cast<std::size_t>(separators) + 1, pieces);
  }
  std::size_t pos = 0;
  for (std::size_t end; (end = FindSeparator(whole, separator, pos)) != std::string_view::npos;) {
    pieces.emplace_back(TrimView(whole.substr(pos, end - pos)));
    pos = end + separator.size();
  }
  pieces.emplace_back(TrimView(whole.substr(pos)));
}

bool SplitAtFirst(const std::string& source, std::string& head, std::string& tail,
                  const std::string& delimiters) {
  const std::size_t at =
      delimiters.size() == 1 ? source.find(delimiters.front()) : source.find_first_of(delimiters);
  if (at == std::string::npos) {
    return false;
  }
  head.assign(source, 0, at);
  tail = source.substr(at + delimiters.size());
  return true;
}

// Required: "|" is an ordinary character in a path.
const char* ItemSeparator(const std::string& name) {
  return std::strcmp(name.c_str(), "PATH") == 0 ? "-" : "|";
}

bool CopyList(const ListMap& map, const std::string& name, std::vector<std::string>& items) {
  const auto entry = map.find(name);
  if (entry == map.end() || entry->second.empty()) {
    return false;
  }
  std::vector<std::string> copy = entry->second;
  items.swap(copy);  // `items` is unchanged when copying runs out of memory.
  return true;
}

}  // namespace NS_ASCII
