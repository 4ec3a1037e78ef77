// Splits texts into pieces. Functions without state: any thread may call them, and all texts and lists belong
// to the caller.

#include "src/interface/listmap.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <string_view>

#include "src/text/strfunctions.h"

namespace NS_ASCII {
namespace {

/// The space that a list without memory gets; most texts have fewer pieces, so it is allocated once.
constexpr std::size_t kFirstPieces = 8;

/// Whether `text` is one of the objects in `list`, so that appending to the list may invalidate it. Does not
/// compare texts.
bool IsElementOf(const std::string& text, const std::vector<std::string>& list) {
  // Pointers into different objects are only ordered by std::less.
  const std::less<const std::string*> less;
  return !list.empty() && !less(&text, &list.front()) && !less(&list.back(), &text);
}

/// The offset of the first `separator` in `text` at or after `from`; npos if there is none. Unlike `find` for
/// a string, `memmem` takes linear time.
std::size_t FindSeparator(std::string_view text, std::string_view separator, std::size_t from) {
  if (separator.size() == 1) {
    return text.find(separator.front(), from);
  }
  const void* const found =
      memmem(text.data() + from, text.size() - from, separator.data(), separator.size());
  return found == nullptr ? std::string_view::npos
                          : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace

void AppendPieces(const std::string& text, const std::string& separator, std::vector<std::string>& pieces) {
  if (IsElementOf(text, pieces) || IsElementOf(separator, pieces)) {
    return AppendPieces(std::string(text), std::string(separator), pieces);
  }
  if (pieces.capacity() == 0) {
    pieces.reserve(kFirstPieces);
  }
  const std::string_view whole = text;
  std::size_t pos = 0;
  for (std::size_t end; (end = FindSeparator(whole, separator, pos)) != std::string_view::npos;) {
    pieces.emplace_back(TrimView(whole.substr(pos, end - pos)));
    pos = end + separator.size();
  }
  pieces.emplace_back(TrimView(whole.substr(pos)));
}

}  // namespace NS_ASCII
