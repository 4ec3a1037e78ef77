#include "src/urlcodec.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "framework/platform_util.h"

// The encoder's rules for line ends were once three text replacements over the finished text: "%d%a" to
// "%0d%0a", then "%a%" to "%0d%0a%", then a final "%a" to "%0d%0a". Seen byte by byte they are two:
//
//   CR, when the next byte's escape starts with "%a" (LF, or 0xA0 to 0xAF), makes "%0d%0a" together with
//   that start;
//   LF that no CR took makes "%0d%0a" when it is the last byte or an escape follows, "%a" otherwise.
//
// Both look one byte ahead and never back, so one pass suffices.

namespace NS_ASCII {
namespace {

constexpr std::string_view kLineEnd = "%0d%0a";
constexpr char kHexDigits[] = "0123456789abcdef";

constexpr bool IsKept(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '*';
}

constexpr bool IsEscaped(unsigned char c) { return !IsKept(c) && c != ' '; }

/// Whether the byte's escape starts with "%a".
constexpr bool StartsWithA(unsigned char c) { return c == '\n' || (c >= 0xA0 && c <= 0xAF); }

/// Appends the byte's own code, line ends not considered.
void AppendCode(unsigned char c, std::string& out) {
  if (IsKept(c)) {
    out += static_cast<char>(c);
  } else if (c == ' ') {
    out += '+';
  } else {
    out += '%';
    if (c > 0x0F) {
      out += kHexDigits[c >> 4];
    }
    out += kHexDigits[c & 0x0F];
  }
}

/// What a byte means to the extraction of a hexadecimal integer.
enum Meaning : unsigned char { kDigit0 = 0, kDigit15 = 15, kSpace, kMinus, kOther };

constexpr std::array<unsigned char, 256> MakeMeanings() {
  std::array<unsigned char, 256> meanings{};
  for (unsigned c = 0; c < 256; ++c) {
    meanings[c] = kOther;
  }
  for (unsigned digit = 0; digit < 10; ++digit) {
    meanings['0' + digit] = static_cast<unsigned char>(digit);
  }
  for (unsigned digit = 10; digit < 16; ++digit) {
    meanings['a' + digit - 10] = static_cast<unsigned char>(digit);
    meanings['A' + digit - 10] = static_cast<unsigned char>(digit);
  }
  for (const char space : {' ', '\t', '\n', '\v', '\f', '\r'}) {
    meanings[static_cast<unsigned char>(space)] = kSpace;
  }
  meanings['+'] = kSpace;  // Every plus of the text is a space before escapes are read.
  meanings['-'] = kMinus;
  return meanings;
}

constexpr std::array<unsigned char, 256> kMeanings = MakeMeanings();

/// Reads the escape text (at most two characters) as the stream extraction of a hexadecimal `int` does, and
/// stores the low eight bits in `byte`; leaves `byte` alone when there is nothing but white space.
void ReadEscape(std::string_view escape, unsigned char& byte) {
  if (escape.empty()) {
    return;
  }
  const unsigned char first = kMeanings[static_cast<unsigned char>(escape[0])];
  const unsigned char second = escape.size() > 1 ? kMeanings[static_cast<unsigned char>(escape[1])]
                                                 : static_cast<unsigned char>(kOther);
  if (first <= kDigit15) {
    byte = second <= kDigit15 ? static_cast<unsigned char>(first << 4 | second) : first;
  } else if (first == kSpace && (escape.size() == 1 || second == kSpace)) {
    return;
  } else if (first != kOther && second <= kDigit15) {
    byte = first == kMinus ? static_cast<unsigned char>(-second) : second;
  } else {
    byte = 0;
  }
}

}  // namespace

std::string utf8toiso8859(std::string text) {
  std::string converted;
  // What the converter leaves is the result, whatever it reports.
  static_cast<void>(KelpGlobalUtils::KelpCodeSetConvert("UTF-8", "ISO-8859-1", text, converted));
  return converted;
}

std::string GetURLEncoding(std::string text) {
  if (text.empty()) {
    return text;
  }
  const std::string latin = utf8toiso8859(std::move(text));
  std::string encoded;
  encoded.reserve(latin.size());
  for (std::size_t i = 0; i < latin.size(); ++i) {
    const auto c = static_cast<unsigned char>(latin[i]);
    const bool last = i + 1 == latin.size();
    const unsigned char next = last ? '\0' : static_cast<unsigned char>(latin[i + 1]);
    if (c == '\r' && !last && StartsWithA(next)) {
      encoded += kLineEnd;
      if (next != '\n') {
        encoded += kHexDigits[next & 0x0F];
      }
      ++i;
    } else if (c == '\n' && (last || IsEscaped(next))) {
      encoded += kLineEnd;
    } else {
      AppendCode(c, encoded);
    }
  }
  return encoded;
}

std::string GetURLDecoding(std::string text) {
  // Decoded text is never longer than what it came from, so it is written over it.
  std::size_t out = 0;
  unsigned char byte = 0;
  for (std::size_t in = 0; in < text.size();) {
    const char c = text[in++];
    if (c != '%') {
      text[out++] = c == '+' ? ' ' : c;
      continue;
    }
    if (in == text.size()) {
      break;  // A '%' with nothing behind it stands for nothing.
    }
    std::string_view escape = std::string_view(text).substr(in, 2);
    escape = escape.substr(0, escape.find('%'));
    ReadEscape(escape, byte);
    in += escape.size();
    text[out++] = static_cast<char>(byte);
  }
  text.resize(out);
  return text;
}

std::string SetURLDecoding(std::string text) {
  std::size_t percents = 0;
  for (const char c : text) {
    percents += c == '%' ? 1U : 0U;
  }
  if (percents == 0) {
    return text;
  }
  std::string escaped;
  escaped.reserve(text.size() + 2 * percents);
  for (const char c : text) {
    escaped += c;
    if (c == '%') {
      escaped += "25";
    }
  }
  return escaped;
}

}  // namespace NS_ASCII
