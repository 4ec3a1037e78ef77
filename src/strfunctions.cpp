#include "src/strfunctions.h"

#include <ctype.h>

#include <algorithm>
#include <charconv>
#include <functional>

#include "src/casemap.h"

namespace NS_ASCII {
namespace {

/// Long runs of blanks are passed in blocks, small ones behind large ones. A loop of constant length without
/// exits becomes a few vector instructions, and a count is the form in which compilers see that.
constexpr std::size_t kSmallBlock = 32;
constexpr std::size_t kLargeBlock = 128;

/// A tab and a CR differ in one bit, so that one comparison finds both.
constexpr int kTabOrReturn = '\t' ^ '\r';
static_assert((kTabOrReturn & (kTabOrReturn - 1)) == 0 && ('\t' & kTabOrReturn) == 0);

template <std::size_t kSize>
bool IsBlankBlock(const char* block) {
  unsigned char blanks = 0;
  for (std::size_t i = 0; i < kSize; ++i) {
    const char c = block[i];
    blanks = static_cast<unsigned char>(blanks + ((c == ' ') | (c == '\n') | ((c & ~kTabOrReturn) == '\t')));
  }
  return blanks == kSize;
}

template <std::size_t kSize>
void RemoveLeadingBlocks(std::string_view& text) {
  while (text.size() >= kSize && IsBlankBlock<kSize>(text.data())) {
    text.remove_prefix(kSize);
  }
}

template <std::size_t kSize>
void RemoveTrailingBlocks(std::string_view& text) {
  while (text.size() >= kSize && IsBlankBlock<kSize>(text.data() + text.size() - kSize)) {
    text.remove_suffix(kSize);
  }
}

/// `text` without the blocks of blanks that it starts with. Not inlined, so that usual texts, which have
/// none, pay for no more than a look.
[[gnu::noinline]] std::string_view WithoutLeadingBlocks(std::string_view text) {
  if (IsBlank(text.front())) {
    RemoveLeadingBlocks<kLargeBlock>(text);
    RemoveLeadingBlocks<kSmallBlock>(text);
  }
  return text;
}

/// The same for those that it ends with.
[[gnu::noinline]] std::string_view WithoutTrailingBlocks(std::string_view text) {
  if (IsBlank(text.back())) {
    RemoveTrailingBlocks<kLargeBlock>(text);
    RemoveTrailingBlocks<kSmallBlock>(text);
  }
  return text;
}

inline std::string_view WithoutLeading(std::string_view text) {
  // The far end of a block is a cheap first look.
  if (text.size() >= kSmallBlock && IsBlank(text[kSmallBlock - 1])) {
    text = WithoutLeadingBlocks(text);
  }
  return TrimLeftView(text);
}

inline std::string_view WithoutTrailing(std::string_view text) {
  if (text.size() >= kSmallBlock && IsBlank(text[text.size() - kSmallBlock])) {
    text = WithoutTrailingBlocks(text);
  }
  return TrimRightView(text);
}

}  // namespace

bool IsElementOf(const std::string& text, const std::vector<std::string>& list) {
  // Pointers into different objects are only ordered by std::less.
  const std::less<const std::string*> less;
  return !list.empty() && !less(&text, &list.front()) && !less(&list.back(), &text);
}

std::size_t CountOf(char wanted, std::string_view text) {
  std::size_t count = 0;
  // Counts of a byte's size make vector instructions of the inner loop.
  for (constexpr std::size_t kMost = 255; !text.empty(); text.remove_prefix(std::min(kMost, text.size()))) {
    unsigned char inBlock = 0;
    for (const char c : text.substr(0, kMost)) {
      inBlock = static_cast<unsigned char>(inBlock + (c == wanted));
    }
    count += inBlock;
  }
  return count;
}

std::string TrimLeft(const std::string& text) { return std::string(WithoutLeading(text)); }

std::string TrimRight(const std::string& text) { return std::string(WithoutTrailing(text)); }

std::string Trim(const std::string& text) { return std::string(WithoutTrailing(WithoutLeading(text))); }

std::string StrToUpper(std::string text) {
  MapCase(text, UnsignedCase(*__ctype_toupper_loc(), BuiltInLocale().__ctype_toupper, kPlainUpper));
  return text;
}

std::string StrToLower(std::string text) {
  MapCase(text, UnsignedCase(*__ctype_tolower_loc(), BuiltInLocale().__ctype_tolower, kPlainLower));
  return text;
}

std::string Num2Str(int number) {
  // The longest one makes room for any. Its length is constant, so that it is written without a call, and
  // unlike resize(), erase() cuts it without one.
  std::string text("-2147483648");
  const std::to_chars_result end = std::to_chars(text.data(), text.data() + text.size(), number);
  text.erase(static_cast<std::size_t>(end.ptr - text.data()));
  return text;
}

}  // namespace NS_ASCII
