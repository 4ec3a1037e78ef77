#include "src/urlcodec.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "framework/platform_util.h"
#include "src/strfunctions.h"

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

constexpr bool IsKept(unsigned c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '*';
}

/// A byte's own code. All four bytes are written and only the length counted, which saves a decision per
/// byte. The length of CR and LF is 0, because what they become depends on the byte behind; their texts say
/// how they start.
struct ByteCode {
  char text[3];
  unsigned char length;
};

constexpr bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

constexpr std::array<ByteCode, 256> MakeByteCodes() {
  std::array<ByteCode, 256> codes{};
  for (unsigned c = 0; c < 256; ++c) {
    if (IsKept(c) || c == ' ') {
      codes[c] = {{c == ' ' ? '+' : static_cast<char>(c), 0, 0}, 1};
    } else if (c > 0x0F) {
      codes[c] = {{'%', kHexDigits[c >> 4], kHexDigits[c & 0x0F]}, 3};
    } else {
      codes[c] = {{'%', kHexDigits[c], 0},
                  static_cast<unsigned char>(IsLineEnd(static_cast<char>(c)) ? 0 : 2)};
    }
  }
  return codes;
}

constexpr std::array<ByteCode, 256> kByteCodes = MakeByteCodes();

const ByteCode& CodeOf(char c) { return kByteCodes[static_cast<unsigned char>(c)]; }

char* Append(std::string_view text, char* out) { return out + text.copy(out, text.size()); }

/// How far the encoder is: what it reads next and where it writes next.
struct Progress {
  const char* in;
  char* out;
};

/// Whether the byte's code starts with a '%'. So does that of the NUL behind a text's last byte, "%0", and
/// that is as good as the end of the text.
bool IsEscaped(char c) { return CodeOf(c).text[0] == '%'; }

/// Encodes the LF at `at.in`, and all LFs that follow at once before `end`.
inline Progress EncodeLineFeeds(Progress at, const char* end) {
  for (; at.in[1] == '\n' && at.in + 1 != end; ++at.in) {
    at.out = Append(kLineEnd, at.out);
  }
  return {at.in + 1, Append(IsEscaped(at.in[1]) ? kLineEnd : "%a", at.out)};
}

/// Encodes the CR at `at.in`, with the byte behind it, if the two make a line end.
inline Progress EncodeCarriageReturn(Progress at) {
  const ByteCode& next = CodeOf(at.in[1]);
  if (next.text[1] != 'a') {  // Only what starts with "%a" has an 'a' there.
    return {at.in + 1, Append("%d", at.out)};
  }
  at.out = Append(kLineEnd, at.out);
  *at.out = next.text[2];  // The second digit of 0xA0 to 0xAF; not counted for a LF, which has none.
  return {at.in + 2, at.out + (next.length == 3 ? 1 : 0)};
}

/// Encodes the byte at `at.in`, no CR or LF, which has `code`.
inline Progress EncodeByte(Progress at, const ByteCode& code) {
  std::memcpy(at.out, &code, sizeof code);
  return {at.in + 1, at.out + code.length};
}

/// Encodes the bytes before `end`, and one more if a CR takes that in.
inline Progress EncodeBytes(Progress at, const char* end) {
  while (at.in < end) {
    const ByteCode& code = CodeOf(*at.in);
    if (code.length != 0) {
      at = EncodeByte(at, code);
    } else {
      at = *at.in == '\r' ? EncodeCarriageReturn(at) : EncodeLineFeeds(at, end);
    }
  }
  return at;
}

/// Runs of bytes that need no escape are encoded and decoded this many at a time. The loops over them are
/// plain, of constant length and without exits, so that they become a few vector instructions; hence the
/// arithmetic.
constexpr std::size_t kRun = 32;

bool IsRun(const char* in) {
  unsigned char simple = 0;
  for (std::size_t i = 0; i < kRun; ++i) {
    const auto c = static_cast<unsigned char>(in[i]);
    const auto letter = static_cast<unsigned char>((c | 0x20) - 'a');
    const auto digit = static_cast<unsigned char>(c - '0');
    simple = static_cast<unsigned char>(simple + (letter < 26) + (digit < 10) + (c == ' ') + (c == '-') +
                                        (c == '.') + (c == '_') + (c == '*'));
  }
  return simple == kRun;
}

void EncodeRun(const char* in, char* out) {
  for (std::size_t i = 0; i < kRun; ++i) {
    out[i] = in[i] == ' ' ? '+' : in[i];
  }
}

bool HasLineEnd(const char* in) {
  unsigned char lineEnds = 0;
  for (std::size_t i = 0; i < kRun; ++i) {
    lineEnds = static_cast<unsigned char>(lineEnds + IsLineEnd(in[i]));
  }
  return lineEnds != 0;
}

/// How many bytes are encoded into a buffer at a time, and how long their codes can get: that of a LF is
/// longest, and a CR at the end may bring one character of a byte behind the block.
constexpr std::size_t kEncoderBlock = 1024;
constexpr std::size_t kEncoderBuffer = kEncoderBlock * kLineEnd.size() + 1;

/// Encodes a block of the text that ends at `textEnd`, where a NUL stands.
Progress EncodeBlock(Progress at, const char* textEnd) {
  const char* const end = at.in + std::min(static_cast<std::size_t>(textEnd - at.in), kEncoderBlock);
  while (end - at.in >= static_cast<std::ptrdiff_t>(kRun)) {
    const char* const runEnd = at.in + kRun;
    // The ends are a cheap first look.
    if (CodeOf(at.in[0]).length == 1 && CodeOf(at.in[kRun - 1]).length == 1 && IsRun(at.in)) {
      EncodeRun(at.in, at.out);
      at = {runEnd, at.out + kRun};
    } else if (HasLineEnd(at.in)) {
      at = EncodeBytes(at, runEnd);
    } else {
      while (at.in != runEnd) {
        at = EncodeByte(at, CodeOf(*at.in));
      }
    }
  }
  return EncodeBytes(at, end);
}

/// What a byte means to the extraction of a hexadecimal integer. Digits mean their value, 0 to 15.
enum Meaning : unsigned char { kDigit15 = 15, kSpace, kMinus, kOther };

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

/// Reads the escape text (at most two characters, but not two digits) as the stream extraction of a
/// hexadecimal `int` does, and stores the low eight bits in `byte`; leaves `byte` alone when there is nothing
/// but white space.
void ReadEscape(std::string_view escape, unsigned char& byte) {
  if (escape.empty()) {
    return;
  }
  const unsigned char first = kMeanings[static_cast<unsigned char>(escape[0])];
  const unsigned char second = escape.size() > 1 ? kMeanings[static_cast<unsigned char>(escape[1])]
                                                 : static_cast<unsigned char>(kOther);
  if (first == kSpace && (escape.size() == 1 || second == kSpace)) {
    return;
  }
  if (first <= kDigit15) {
    byte = first;
  } else if (first != kOther && second <= kDigit15) {
    byte = first == kMinus ? static_cast<unsigned char>(-second) : second;
  } else {
    byte = 0;
  }
}

/// What a byte that is no '%' stands for.
constexpr char Unescaped(char c) { return c == '+' ? ' ' : c; }

/// Decodes a run of bytes without a '%'; does nothing when there are some among them, and returns how many.
/// `out` may lie at `in` or before it.
std::size_t DecodeRun(const char* in, char* out) {
  std::array<char, kRun> run;
  std::memcpy(run.data(), in, kRun);
  unsigned char percents = 0;
  for (const char c : run) {
    percents = static_cast<unsigned char>(percents + (c == '%'));
  }
  if (percents != 0) {
    return percents;
  }
  for (char& c : run) {
    c = Unescaped(c);
  }
  std::memcpy(out, run.data(), kRun);
  return 0;
}

/// A run with so many percents is the start of text in which looking for runs without any does not pay, and
/// this much of it is decoded byte by byte before the next look.
constexpr std::size_t kManyPercents = 3;
constexpr std::size_t kEscapedStretch = 16 * kRun;

/// How far the decoder is, and the byte that the last escape stood for.
struct Decoder {
  const char* in;
  char* out;
  unsigned char byte;
};

/// Decodes the escape behind the '%' at `at.in`.
Decoder DecodeEscape(Decoder at, const char* textEnd) {
  const std::string_view rest(at.in + 1, static_cast<std::size_t>(textEnd - at.in - 1));
  if (rest.empty()) {
    return {textEnd, at.out, at.byte};  // A '%' with nothing behind it stands for nothing.
  }
  std::string_view escape = rest.substr(0, 2);
  escape = escape.substr(0, escape.find('%'));
  ReadEscape(escape, at.byte);
  *at.out = static_cast<char>(at.byte);
  return {at.in + 1 + escape.size(), at.out + 1, at.byte};
}

/// Decodes the bytes before `stop`, or as far as an escape that is not two digits. At least two bytes follow
/// `stop`, so that no escape needs a look at the end of the text.
inline Decoder DecodeWellFormed(Decoder at, const char* stop) {
  auto [in, out, byte] = at;
  while (in < stop) {
    if (*in != '%') {
      *out++ = Unescaped(*in++);
      continue;
    }
    const unsigned first = kMeanings[static_cast<unsigned char>(in[1])];
    const unsigned second = kMeanings[static_cast<unsigned char>(in[2])];
    if ((first | second) > kDigit15) {
      break;
    }
    byte = static_cast<unsigned char>(first << 4 | second);
    *out++ = static_cast<char>(byte);
    in += 3;
  }
  return {in, out, byte};
}

/// Decodes at least the bytes before `stop`, in a text that ends at `textEnd`.
Decoder DecodeBytes(Decoder at, const char* stop, const char* textEnd) {
  const char* const wellFormedStop = std::min(stop, textEnd - std::min(textEnd - at.in, std::ptrdiff_t{2}));
  while (at.in < stop) {
    at = DecodeWellFormed(at, wellFormedStop);
    if (at.in >= stop) {
      break;
    }
    if (*at.in == '%') {
      at = DecodeEscape(at, textEnd);
    } else {
      *at.out++ = Unescaped(*at.in++);
    }
  }
  return at;
}

std::string Convert(const std::string& text) {
  std::string converted;
  // What the converter leaves is the result, whatever it reports.
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
  const char* const end = latin.data() + latin.size();
  std::array<char, kEncoderBuffer> buffer;
  text.clear();  // Its memory serves for the result, as far as it goes.
  for (const char* in = latin.data(); in != end;) {
    const Progress behind = EncodeBlock({in, buffer.data()}, end);
    const auto length = static_cast<std::size_t>(behind.out - buffer.data());
    if (text.capacity() - text.size() < length) {
      // One allocation, as a rule: the rest is taken to become longer by as much as this block did.
      const auto rest = static_cast<std::size_t>(end - behind.in);
      const auto done = static_cast<std::size_t>(behind.in - in);  // Never 0, which the analyzer cannot see.
      text.reserve(text.size() + length + rest * length / done);   // NOLINT(clang-analyzer-core.DivideZero)
    }
    text.append(buffer.data(), length);
    in = behind.in;
  }
  return text;
}

std::string GetURLDecoding(std::string text) {
  // Decoded text is never longer than what it came from, so it is written over it.
  Decoder at{text.data(), text.data(), 0};
  const char* const end = at.in + text.size();
  while (at.in != end) {
    const std::size_t left = static_cast<std::size_t>(end - at.in);
    // Less than a run is decoded byte by byte, as if it had a '%'.
    const std::size_t percents = left < kRun ? 1 : DecodeRun(at.in, at.out);
    if (percents == 0) {
      at.in += kRun;
      at.out += kRun;
    } else {
      at = DecodeBytes(at, at.in + std::min(left, percents < kManyPercents ? kRun : kEscapedStretch), end);
    }
  }
  text.resize(static_cast<std::size_t>(at.out - text.data()));
  return text;
}

std::string SetURLDecoding(std::string text) {
  const std::size_t percents = CountOf('%', text);
  if (percents == 0) {
    return text;
  }
  std::string escaped;
  escaped.reserve(text.size() + 2 * percents);
  std::size_t pos = 0;
  for (std::size_t percent = text.find('%'); percent != std::string::npos; percent = text.find('%', pos)) {
    escaped.append(text, pos, percent - pos);
    escaped += "%25";
    pos = percent + 1;
  }
  escaped.append(text, pos);
  return escaped;
}

}  // namespace NS_ASCII
