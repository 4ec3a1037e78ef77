#ifndef TOOLS_ALMCFG_WRITE_PRINTABLE_H_
#define TOOLS_ALMCFG_WRITE_PRINTABLE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Makes bytes of unknown origin printable. No character of a file or a file name may move the cursor, change
/// the direction of writing, or be invisible. Pure functions; any thread may call them.
namespace almcfg {

/// One character of a text, escaped for display. Views into the text.
struct Glyph {
  std::size_t offset = 0;  ///< its first byte in the text
  std::size_t width = 0;   ///< columns that it takes on a terminal
  std::string_view bytes;  ///< its bytes in the text
  std::string_view mark;   ///< shown instead; empty for a character that shows as itself
  bool isEscaped = false;  ///< the bytes are shown as escapes
};

/// Which blanks are shown as a mark.
enum class Blanks { kAtEdges, kAll };

/// Whether the character is shown unchanged in every text.
inline bool IsPlain(char c) { return c > ' ' && c < 0x7F && c != '\\'; }

/// The glyph of the character at `at`, which must not be plain.
Glyph SpecialGlyph(std::string_view text, std::size_t at, Blanks blanks);

/// Calls `visit` with each character of the text until it returns false. A TAB is shown as an arrow, CR and NUL as
/// their symbols. Blanks are shown as dots at the edges of line, columns and alternatives and in runs of two or
/// more; with kAll, everywhere. Other control characters, invisible ones and bytes that are not UTF-8 are escaped
/// as \xNN, and so is a backslash before xNN.
template <class Visit>
void ForEachGlyph(std::string_view text, Blanks blanks, const Visit& visit) {
  for (std::size_t at = 0; at < text.size();) {
    const Glyph glyph =
        IsPlain(text[at]) ? Glyph{at, 1, text.substr(at, 1), {}, false} : SpecialGlyph(text, at, blanks);
    if (!visit(glyph)) {
      return;
    }
    at += glyph.bytes.size();
  }
}

void AppendEscaped(std::string& shown, std::string_view bytes);

/// Appends what is shown for the glyph.
inline void Append(std::string& shown, const Glyph& glyph) {
  if (glyph.isEscaped) {
    AppendEscaped(shown, glyph.bytes);
  } else if (glyph.mark.empty() && glyph.bytes.size() == 1) {
    shown.push_back(glyph.bytes.front());
  } else {
    shown += glyph.mark.empty() ? glyph.bytes : glyph.mark;
  }
}

/// The number of bytes of the UTF-8 character that `text` starts with; 0 when it starts with none. `text` is not
/// empty.
std::size_t Utf8Length(std::string_view text);
bool IsUtf8(std::string_view text);

/// Characters of `text`, a byte that is not UTF-8 counting as one.
std::size_t CharacterCount(std::string_view text);

/// The text with TAB, CR and NUL shown as symbols and other unprintable characters escaped; blanks are unchanged.
std::string Printable(std::string_view text);

/// The text with unprintable and easily overlooked characters marked: TAB, CR, edge blanks and others.
std::string Marked(std::string_view text);

/// The same in double quotes, shortened to fit into a message.
std::string Quoted(std::string_view text);

/// A line as `Marked` shows it, shortened to fit into a report.
std::string LineExcerpt(std::string_view text);

/// "1,234,567".
std::string Grouped(std::uint64_t number);

/// "1 error", "2 errors".
std::string Counted(std::uint64_t number, std::string_view noun);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_PRINTABLE_H_
