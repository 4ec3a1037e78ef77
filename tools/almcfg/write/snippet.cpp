#include "tools/almcfg/snippet.h"

#include <algorithm>
#include <vector>

namespace almcfg {
namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kContext = 60;  // columns shown before a caret, when the line is cut there
constexpr std::string_view kEllipsis = "…";

}  // namespace

Snippet MakeSnippet(std::string_view line, std::size_t column, std::size_t length, Blanks blanks) {
  const std::vector<Glyph> glyphs = Glyphs(line, blanks);
  const std::size_t begin = column - 1;
  const std::size_t end = begin + std::max<std::size_t>(length, 1);
  std::size_t indent = 0;
  std::size_t marked = 0;
  std::size_t whole = 0;
  for (const Glyph& glyph : glyphs) {
    indent += glyph.offset < begin ? glyph.width : 0;
    marked += glyph.offset >= begin && glyph.offset < end ? glyph.width : 0;
    whole += glyph.width;
  }
  marked = std::max<std::size_t>(marked, 1);
  // Keep the start of the line in sight while the caret is near it.
  const bool isFar = indent > kContext && whole > kWidth && indent + std::min(marked, kContext) > kWidth;
  const std::size_t skip = isFar ? indent - kContext : 0;
  Snippet snippet;
  std::size_t at = 0;
  std::size_t dropped = 0;
  for (const Glyph& glyph : glyphs) {
    if (at < skip) {
      dropped = at + glyph.width;
    } else if (at + glyph.width <= skip + kWidth) {
      Append(snippet.text, glyph);
    } else {
      snippet.text += kEllipsis;
      break;
    }
    at += glyph.width;
  }
  snippet.indent = indent - std::min(dropped, indent);
  if (dropped != 0) {
    snippet.text.insert(0, kEllipsis);
    ++snippet.indent;
  }
  snippet.width = std::min(marked, kWidth + 1 - std::min(snippet.indent, kWidth));
  return snippet;
}

}  // namespace almcfg
