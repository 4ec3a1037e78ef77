// The percent encoder, the percent decoder, the escaper of percent signs and the conversion to ISO-8859-1. No
// function keeps state, so any thread may call them.

#include "ascii_util/text_functions.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "framework/platform_util.h"

// Required: the result is as if three replacements were made in the encoded text, in this order: "%d%a" by
// "%0d%0a", "%a%" by "%0d%0a%", a final "%a" by "%0d%0a". For single bytes that means:
//
//   CR: "%d", unless the escape of the next byte starts with "%a" (LF, or 0xA0 to 0xAF). Then the two escapes
//   together become "%0d%0a" and, for 0xA0 to 0xAF, the third character of the second escape.
//   LF that does not follow such a CR: "%0d%0a" when it is the last byte or an escape follows, otherwise
//   "%a".
//
// Each code depends on its byte and the next one, so one pass is enough.

namespace NS_ASCII {
namespace {

constexpr std::string_view kLineEnd = "%0d%0a";

/// The code of one byte. CR and LF have `length` 0, because their code depends on the next byte; their `text`
/// is the start of their escape, which a preceding CR or LF examines.
struct ByteCode {
  char text[3];
  unsigned char length;
};

constexpr bool IsKept(unsigned c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '*';
}

constexpr std::array<ByteCode, 256> MakeByteCodes() {
  constexpr char kHexDigits[] = "0123456789abcdef";
  std::array<ByteCode, 256> codes{};
  for (unsigned c = 0; c < 256; ++c) {
    if (IsKept(c)) {
      codes[c] = {{static_cast<char>(c)}, 1};
    } else if (c > 0x0F) {
      codes[c] = {{'%', kHexDigits[c >> 4], kHexDigits[c & 0x0F]}, 3};
    } else {
      codes[c] = {{'%', kHexDigits[c]}, 2};
    }
  }
  codes[' '] = {{'+'}, 1};
  codes['\r'].length = 0;
  codes['\n'].length = 0;
  return codes;
}

constexpr std::array<ByteCode, 256> kByteCodes = MakeByteCodes();

const ByteCode& CodeOf(char c) { return kByteCodes[static_cast<unsigned char>(c)]; }

/// How many bytes are encoded into a buffer at a time. An LF has the longest code; the CR at the end of a
/// block may add one character of the byte after it.
constexpr std::size_t kEncoderBlock = 1024;
constexpr std::size_t kEncoderBuffer = kEncoderBlock * kLineEnd.size() + 1;

char* Append(std::string_view text, char* out) { return out + text.copy(out, text.size()); }

/// Encodes the CR or LF at `in`, and the byte after a CR if both become one line end. Moves `in` past them
/// and returns the end of the output. At the end of the text the next byte is the terminating NUL, whose code
/// starts with '%' like that of any escaped byte.
char* EncodeLineEnd(const char*& in, char* out) {
  const char lineEnd = *in++;
  const ByteCode& next = CodeOf(*in);
  if (lineEnd == '\n') {
    return Append(next.text[0] == '%' ? kLineEnd : "%a", out);
  }
  if (next.text[1] != 'a') {
    return Append("%d", out);
  }
  ++in;
  out = Append(kLineEnd, out);
  if (next.length == 3) {
    *out++ = next.text[2];
  }
  return out;
}

/// The class of a byte when a stream extracts a hexadecimal integer. A digit's class is its value, 0 to 15.
constexpr unsigned char kLastDigit = 15;
constexpr unsigned char kMinus = 16;
constexpr unsigned char kOther = 17;
constexpr unsigned char kSpace = 18;
constexpr unsigned char kNone = 19;  ///< A '%' or the end of the text, which end the preceding escape.

constexpr std::array<unsigned char, 256> MakeEscapeClasses() {
  std::array<unsigned char, 256> classes{};
  for (unsigned char& other : classes) {
    other = kOther;
  }
  for (unsigned char digit = 0; digit <= kLastDigit; ++digit) {
    classes[static_cast<unsigned char>("0123456789abcdef"[digit])] = digit;
    classes[static_cast<unsigned char>("0123456789ABCDEF"[digit])] = digit;
  }
  // Each '+' of the text is replaced by a blank before escapes are read.
  for (const char space : {' ', '\t', '\n', '\v', '\f', '\r', '+'}) {
    classes[static_cast<unsigned char>(space)] = kSpace;
  }
  classes['-'] = kMinus;
  classes['%'] = kNone;
  return classes;
}

constexpr std::array<unsigned char, 256> kEscapeClasses = MakeEscapeClasses();

unsigned ClassOf(char c) { return kEscapeClasses[static_cast<unsigned char>(c)]; }

/// The value of an escape whose two characters are of these classes, not both digits, as stream extraction of
/// a hexadecimal `int` reads them; `previous` when there is nothing but white space: extraction then leaves
/// its variable unchanged.
unsigned UnusualEscapeValue(unsigned first, unsigned second, unsigned previous) {
  if (first <= kLastDigit) {
    return first;
  }
  if (first >= kSpace && second >= kSpace) {
    return previous;
  }
  if (first == kOther || second > kLastDigit) {
    return 0;
  }
  return first == kMinus ? 0 - second : second;
}

std::string Convert(const std::string& text) {
  std::string converted;
  // Required: the converter's output is the result, also when the converter reports a failure.
  static_cast<void>(KelpGlobalUtils::KelpCodeSetConvert("UTF-8", "ISO-8859-1", text, converted));
  return converted;
}

}  // namespace

std::string utf8toiso8859(std::string text) { return Convert(text); }

std::string GetURLEncoding(std::string text) {
  if (text.empty()) {
    return text;
  }
  const std::string latin = Convert(text);
  std::string encoded;
  // Each code is copied with all its four bytes, but `out` advances by its length only.
  std::array<char, kEncoderBuffer + sizeof(ByteCode)> buffer;
  const char* const end = latin.data() + latin.size();
  for (const char* in = latin.data(); in != end;) {
    char* out = buffer.data();
    const char* const stop = in + std::min(static_cast<std::size_t>(end - in), kEncoderBlock);
    while (in < stop) {
      const ByteCode& code = CodeOf(*in);
      if (code.length != 0) {
        std::memcpy(out, &code, sizeof code);
        out += code.length;
        ++in;
      } else {
        out = EncodeLineEnd(in, out);
      }
    }
    encoded.append(buffer.data(), static_cast<std::size_t>(out - buffer.data()));
  }
  return encoded;
}

std::string GetURLDecoding(std::string text) {
  // Decoded text is never longer than encoded text, so the text is decoded in place.
  char* out = text.data();
  const char* in = text.data();
  const char* const end = in + text.size();
  unsigned value = 0;
  while (in != end) {
    const char c = *in++;
    if (c != '%') {
      *out++ = c == '+' ? ' ' : c;
    } else if (in != end) {  // A '%' at the very end is dropped.
      const unsigned first = ClassOf(in[0]);
      unsigned second = ClassOf(in[1]);  // The terminating NUL is of class kOther.
      if ((first | second) <= kLastDigit) {
        value = first << 4 | second;
        in += 2;
      } else {
        second = first == kNone || in + 1 == end ? kNone : second;
        in += first == kNone ? 0 : second == kNone ? 1 : 2;
        value = UnusualEscapeValue(first, second, value);
      }
      *out++ = static_cast<char>(value);
    }
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

std::string SetURLDecoding(std::string text) {
  if (text.find('%') == std::string::npos) {
    return text;
  }
  const auto percents = std::count(text.begin(), text.end(), '%');
  std::string escaped(text.size() + 2 * static_cast<std::size_t>(percents), '\0');
  char* out = escaped.data();
  for (const char c : text) {
    *out++ = c;
    if (c == '%') {
      out = Append("25", out);
    }
  }
  return escaped;
}

}  // namespace NS_ASCII
