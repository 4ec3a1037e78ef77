// Escapes and marks characters for the terminal. No state; glyphs refer to the argument. Any thread may
// call.

#include "tools/almcfg/write/printable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace almcfg {
namespace {

constexpr std::size_t kQuotedWidth = 48;
constexpr std::size_t kExcerptWidth = 90;

unsigned char ByteAt(std::string_view text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

/// The code point of the valid UTF-8 character at the start of `text`.
std::uint32_t CodePoint(std::string_view text, std::size_t length) {
  constexpr std::array<unsigned, 5> kLeadBits{0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t code = ByteAt(text, 0) & kLeadBits[length];
  for (std::size_t i = 1; i < length; ++i) {
    code = code << 6 | (ByteAt(text, i) & 0x3FU);
  }
  return code;
}

bool IsBetween(std::uint32_t code, std::uint32_t first, std::uint32_t last) {
  return first <= code && code <= last;
}

/// Control characters, spaces other than the blank, characters without a glyph (the Unicode property
/// Default_Ignorable_Code_Point among them), and characters that change the direction of writing.
bool IsUnprintable(std::uint32_t code) {
  using Range = std::pair<std::uint32_t, std::uint32_t>;
  static constexpr std::array<Range, 22> kRanges{{
      {0, 0x1F},          {0x7F, 0xA0},       {0xAD, 0xAD},     {0x34F, 0x34F},   {0x61C, 0x61C},
      {0x115F, 0x1160},   {0x1680, 0x1680},   {0x17B4, 0x17B5}, {0x180B, 0x180F}, {0x2000, 0x200F},
      {0x2028, 0x202F},   {0x205F, 0x206F},   {0x2800, 0x2800}, {0x3000, 0x3000}, {0x3164, 0x3164},
      {0xFE00, 0xFE0F},   {0xFEFF, 0xFEFF},   {0xFFA0, 0xFFA0}, {0xFFF0, 0xFFFB}, {0x1BCA0, 0x1BCA3},
      {0x1D173, 0x1D17A}, {0xE0000, 0xE0FFF},
  }};
  return std::any_of(kRanges.begin(), kRanges.end(),
                     [code](const Range& range) { return IsBetween(code, range.first, range.second); });
}

/// Columns of a printable character on a terminal: combining marks take none, East Asian wide characters and
/// pictographs two.
std::size_t WidthOf(std::uint32_t code) {
  if (code < 0x300) {
    return 1;
  }
  if (IsBetween(code, 0x300, 0x36F) || IsBetween(code, 0x1AB0, 0x1AFF) || IsBetween(code, 0x1DC0, 0x1DFF) ||
      IsBetween(code, 0x20D0, 0x20FF) || IsBetween(code, 0xFE20, 0xFE2F)) {
    return 0;
  }
  const bool isWide = IsBetween(code, 0x1100, 0x115F) || IsBetween(code, 0x2E80, 0xA4CF) ||
                      IsBetween(code, 0xAC00, 0xD7A3) || IsBetween(code, 0xF900, 0xFAFF) ||
                      IsBetween(code, 0xFE30, 0xFE6F) || IsBetween(code, 0xFF00, 0xFF60) ||
                      IsBetween(code, 0xFFE0, 0xFFE6) || IsBetween(code, 0x1F300, 0x1F64F) ||
                      IsBetween(code, 0x1F900, 0x1F9FF) || IsBetween(code, 0x20000, 0x3FFFD);
  return isWide ? 2 : 1;
}

bool IsEdge(std::string_view text, std::size_t at) {
  return at >= text.size() || text[at] == '\t' || text[at] == '/' || text[at] == '\r';
}

/// Whether the run of blanks around `at` touches an edge or is wider than a word gap.
bool IsMarkedBlank(std::string_view text, std::size_t at) {
  std::size_t first = at;
  while (first > 0 && text[first - 1] == ' ') {
    --first;
  }
  const std::size_t end = std::min(text.find_first_not_of(' ', at), text.size());
  return first == 0 || IsEdge(text, first - 1) || IsEdge(text, end) || end - first > 1;
}

/// The mark that is shown for the byte; empty when the byte has none.
std::string_view MarkFor(std::string_view text, std::size_t at, Blanks blanks) {
  switch (text[at]) {
    case '\t':
      return "→";
    case '\r':
      return "␍";
    case '\0':
      return "␀";
    case ' ':
      return blanks == Blanks::kAll || IsMarkedBlank(text, at) ? "·" : "";
    default:
      return "";
  }
}

bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return almcfg::IsPlain(c); });
}

/// Whether `text` starts with what looks like an escape of this file.
bool StartsWithEscape(std::string_view text) {
  constexpr std::string_view kHex = "0123456789ABCDEFabcdef";
  return text.size() >= 4 && text.substr(0, 2) == "\\x" && kHex.find(text[2]) != std::string_view::npos &&
         kHex.find(text[3]) != std::string_view::npos;
}

std::string Cut(std::string_view text, std::size_t widest) {
  std::string shown;
  std::size_t width = 0;
  ForEachGlyph(text, Blanks::kAtEdges, [&](const Glyph& glyph) {
    width += glyph.width;
    if (width > widest) {
      shown += "…";
      return false;
    }
    Append(shown, glyph);
    return true;
  });
  return shown;
}

}  // namespace

Glyph SpecialGlyph(std::string_view text, std::size_t at, Blanks blanks) {
  const std::string_view rest = text.substr(at);
  const std::string_view mark = MarkFor(text, at, blanks);
  if (!mark.empty() || rest[0] == ' ') {
    return {at, 1, rest.substr(0, 1), mark, false};
  }
  const std::size_t length = Utf8Length(rest);
  const std::string_view bytes = rest.substr(0, std::max<std::size_t>(length, 1));
  if (length != 0) {
    if (const std::uint32_t code = CodePoint(bytes, length);
        !IsUnprintable(code) && !StartsWithEscape(rest)) {
      return {at, WidthOf(code), bytes, {}, false};
    }
  }
  return {at, 4 * bytes.size(), bytes, {}, true};
}

std::size_t Utf8Length(std::string_view text) {
  const unsigned lead = ByteAt(text, 0);
  if (lead < 0x80) {
    return 1;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, i) & 0xC0U) != 0x80) {
      return 0;
    }
  }
  const std::uint32_t code = CodePoint(text, length);
  const bool isTooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  return isTooLong || IsBetween(code, 0xD800, 0xDFFF) || code > 0x10FFFF ? 0 : length;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = Utf8Length(text);
    if (length == 0) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) {
    text.remove_prefix(std::max<std::size_t>(Utf8Length(text), 1));
  }
  return count;
}

void AppendEscaped(std::string& shown, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    shown += {'\\', 'x', kDigits[value >> 4], kDigits[value & 0xF]};
  }
}

std::string Printable(std::string_view text) {
  if (IsPlain(text)) {
    return std::string(text);
  }
  std::string shown;
  ForEachGlyph(text, Blanks::kAtEdges, [&](Glyph glyph) {
    glyph.mark = text[glyph.offset] == ' ' ? std::string_view() : glyph.mark;
    Append(shown, glyph);
    return true;
  });
  return shown;
}

std::string Marked(std::string_view text) { return Cut(text, std::string_view::npos); }

std::string Quoted(std::string_view text) {
  if (text.size() <= kQuotedWidth && IsPlain(text)) {
    return std::string(1, '"').append(text).append(1, '"');
  }
  return '"' + Cut(text, kQuotedWidth) + '"';
}

std::string LineExcerpt(std::string_view text) { return Cut(text, kExcerptWidth); }

std::string Grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3;) {
    at -= 3;
    digits.insert(at, 1, ',');
  }
  return digits;
}

std::string Counted(std::uint64_t number, std::string_view noun) {
  return Grouped(number) + ' ' + std::string(noun) + (number == 1 ? "" : "s");
}

}  // namespace almcfg
