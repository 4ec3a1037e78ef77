#ifndef BENCH_BY_HAND_H_
#define BENCH_BY_HAND_H_

#include <array>
#include <charconv>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The operations as a caller would write them by hand: short, inlined into the caller, on string views.
/// Exact for the inputs of the benchmarks; rare cases (embedded NULs, odd escapes) are left out.
namespace bench::by_hand {

inline std::string_view View(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

inline bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

inline std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) {
    text.remove_prefix(1);
  }
  return text;
}

inline std::string_view Trim(std::string_view text) {
  text = TrimLeft(text);
  while (!text.empty() && IsWhiteSpace(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// Calls `use` with each piece of `text` between separators, found by `memchr`, until `use` returns false.
template <class Use>
void ForEachPiece(std::string_view text, char separator, Use use) {
  const char* const end = text.data() + text.size();
  for (const char* pos = text.data();;) {
    const auto* const found =
        static_cast<const char*>(std::memchr(pos, separator, static_cast<std::size_t>(end - pos)));
    if (!use(View(pos, found == nullptr ? end : found)) || found == nullptr) {
      return;
    }
    pos = found + 1;
  }
}

inline std::string GetKeyValue(std::string_view key, std::string_view text) {
  std::string_view value;
  ForEachPiece(text, ',', [&](std::string_view pair) {
    pair = TrimLeft(pair);
    if (pair.size() <= key.size() || pair[key.size()] != '=' ||
        std::memcmp(pair.data(), key.data(), key.size()) != 0) {
      return true;
    }
    value = Trim(pair.substr(key.size() + 1));
    if (value.empty()) {
      value = Trim(View(pair.data() + key.size() + 1, text.data() + text.size()));
    }
    return false;
  });
  return std::string(value);
}

inline std::vector<std::string> SplitStr(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  ForEachPiece(text, separator, [&](std::string_view piece) {
    pieces.emplace_back(Trim(piece));
    return true;
  });
  return pieces;
}

inline std::vector<std::string> SplitStr(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  const char* pos = text.data();
  const char* const end = pos + text.size();
  while (const void* const at =
             memmem(pos, static_cast<std::size_t>(end - pos), separator.data(), separator.size())) {
    pieces.emplace_back(Trim(View(pos, static_cast<const char*>(at))));
    pos = static_cast<const char*>(at) + separator.size();
  }
  pieces.emplace_back(Trim(View(pos, end)));
  return pieces;
}

using ListMap = std::map<std::string, std::vector<std::string>>;

inline ListMap ParseListMap(std::string_view text) {
  ListMap map;
  ForEachPiece(text, ',', [&](std::string_view entry) {
    entry = Trim(entry);
    const std::size_t equals = entry.find('=');
    const bool named = equals != std::string_view::npos;
    const auto [place, inserted] =
        map.try_emplace(std::string(named ? entry.substr(0, equals) : std::string_view()));
    if (inserted) {
      place->second =
          SplitStr(named ? entry.substr(equals + 1) : std::string_view(), place->first == "PATH" ? '-' : '|');
    }
    return true;
  });
  return map;
}

inline std::string ToUpper(std::string text) {
  for (char& c : text) {
    c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return text;
}

inline std::string ToLower(std::string text) {
  for (char& c : text) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return text;
}

inline std::string GetTimeStamp() {
  const std::time_t now = std::time(nullptr);
  std::tm utc;
  gmtime_r(&now, &utc);
  std::array<char, 20> stamp;
  return {stamp.data(), std::strftime(stamp.data(), stamp.size(), "%Y-%m-%dT%H:%M:%S", &utc)};
}

/// The whole of `text` as an integer; false when something else follows it.
inline std::pair<bool, int> Str2Num(std::string_view text) {
  int value = 0;
  const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
  return {result.ptr == text.data() + text.size(), value};
}

/// The ISO-8859-1 character at `pos`, which moves to the next; '?' for one that the code set lacks.
inline unsigned char NextLatin1(const std::string& text, std::size_t& pos) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(pos);
  if (lead < 0x80) {
    ++pos;
    return lead;
  }
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  const bool known = lead < 0xC4;
  const auto character =
      static_cast<unsigned char>(known ? (lead & 3U) << 6U | (byte(pos + 1) & 0x3FU) : '?');
  pos += length;
  return character;
}

inline std::string Utf8ToLatin1(const std::string& text) {
  std::string latin1;
  latin1.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    latin1 += static_cast<char>(NextLatin1(text, pos));
  }
  return latin1;
}

/// Whether the encoding keeps a character.
inline constexpr std::array<bool, 256> kKept = [] {
  std::array<bool, 256> kept{};
  for (const char c :
       std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._*")) {
    kept[static_cast<unsigned char>(c)] = true;
  }
  return kept;
}();

/// Converts and encodes in one pass.
inline std::string GetURLEncoding(const std::string& text) {
  constexpr const char* kHex = "0123456789abcdef";
  std::string out(text.size() * 6, '\0');
  char* end = out.data();
  for (std::size_t pos = 0; pos < text.size();) {
    const unsigned char c = NextLatin1(text, pos);
    if (kKept[c]) {
      *end++ = static_cast<char>(c);
    } else if (c == ' ') {
      *end++ = '+';
    } else if (c == '\n' && end - out.data() >= 2 && std::memcmp(end - 2, "%d", 2) == 0) {
      std::memcpy(end - 2, "%0d%0a", 6);
      end += 4;
    } else {
      // A line feed before another escape becomes a carriage return and a line feed.
      if (end - out.data() >= 2 && std::memcmp(end - 2, "%a", 2) == 0) {
        std::memcpy(end - 2, "%0d%0a", 6);
        end += 4;
      }
      *end++ = '%';
      if (c >= 16) {
        *end++ = kHex[c >> 4U];
      }
      *end++ = kHex[c & 15U];
    }
  }
  if (end - out.data() >= 2 && std::memcmp(end - 2, "%a", 2) == 0) {
    std::memcpy(end - 2, "%0d%0a", 6);
    end += 4;
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

inline int HexDigit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

inline std::string GetURLDecoding(const std::string& text) {
  std::string out(text.size(), '\0');
  char* end = out.data();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      *end++ = static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      *end++ = text[i] == '+' ? ' ' : text[i];
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
  return out;
}

inline std::string SetURLDecoding(const std::string& text) {
  std::string out;
  out.reserve(text.size() + text.size() / 2);
  for (const char c : text) {
    if (c == '%') {
      out += "%25";
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace bench::by_hand

#endif  // BENCH_BY_HAND_H_
