// Cuts lines to the width of the terminal. No state, the results are copies; any thread may call.

#include "tools/almcfg/write/snippet.h"

#include <algorithm>

namespace almcfg {
namespace {

constexpr std::size_t kNarrowest = 20;
constexpr std::string_view kEllipsis = "…";

}  // namespace

Snippet MakeSnippet(std::string_view line, std::size_t column, std::size_t length, Blanks blanks,
                    std::size_t width) {
  width = std::max(width, kNarrowest) - 2;    // An ellipsis at each end.
  const std::size_t context = width * 3 / 5;  // columns shown before a caret, when the line is cut there
  const std::size_t begin = column - 1;
  const std::size_t end = begin + std::max<std::size_t>(length, 1);
  std::size_t indent = 0;
  std::size_t marked = 0;
  std::size_t whole = 0;
  ForEachGlyph(line, blanks, [&](const Glyph& glyph) {
    indent += glyph.offset < begin ? glyph.width : 0;
    marked += glyph.offset >= begin && glyph.offset < end ? glyph.width : 0;
    whole += glyph.width;
    return true;
  });
  marked = std::max<std::size_t>(marked, 1);
  // While the caret is near the start of the line, the line is shown from its start.
  const bool isFar = indent > context && whole > width && indent + std::min(marked, context) > width;
  const std::size_t skip = isFar ? indent - context : 0;
  Snippet snippet;
  snippet.text.reserve(std::min(line.size(), width) + 16);  // A mark takes up to three bytes.
  std::size_t at = 0;
  std::size_t dropped = 0;
  ForEachGlyph(line, blanks, [&](const Glyph& glyph) {
    if (at < skip) {
      dropped = at + glyph.width;
    } else if (at + glyph.width <= skip + width) {
      Append(snippet.text, glyph);
    } else {
      snippet.text += kEllipsis;
      return false;
    }
    at += glyph.width;
    return true;
  });
  snippet.indent = indent - std::min(dropped, indent);
  if (dropped != 0) {
    snippet.text.insert(0, kEllipsis);
    ++snippet.indent;
  }
  snippet.width = std::min(marked, width + 1 - std::min(snippet.indent, width));
  return snippet;
}

}  // namespace almcfg
