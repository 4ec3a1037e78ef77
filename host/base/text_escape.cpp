// Escapes bytes as \xNN and back. No state, the results are copies; any thread may call.

#include "host/base/text_escape.h"

#include <charconv>

namespace host {
namespace {

void AppendEscape(std::string& out, char c) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  out += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
}

template <class IsPlain>
std::string EscapeUnless(IsPlain isPlain, std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    if (isPlain(c)) {
      out += c;
    } else {
      AppendEscape(out, c);
    }
  }
  return out;
}

}  // namespace

std::string EscapeBytes(std::string_view text) {
  return EscapeUnless([](char c) { return c >= ' ' && c <= '~' && c != '\\'; }, text);
}

std::string EscapeValue(std::string_view text) {
  constexpr std::string_view kBlank = "\\x20";
  std::string out = EscapeBytes(text);
  if (!out.empty() && out.back() == ' ') {
    out.replace(out.size() - 1, 1, kBlank);
  }
  if (!out.empty() && out.front() == ' ') {
    out.replace(0, 1, kBlank);
  }
  return out;
}

std::string EscapeControls(std::string_view text) {
  return EscapeUnless([](char c) { return static_cast<unsigned char>(c) >= ' ' && c != '\x7f'; }, text);
}

std::string EscapeEach(std::string_view special, std::string_view text) {
  return EscapeUnless([special](char c) { return special.find(c) == std::string_view::npos; }, text);
}

std::string UnescapeBytes(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view rest = text.substr(at);
    unsigned char byte = 0;
    if (rest.size() >= 4 && rest[0] == '\\' && rest[1] == 'x' &&
        std::from_chars(&rest[2], &rest[2] + 2, byte, 16).ptr == &rest[2] + 2) {
      out += static_cast<char>(byte);
      at += 3;
    } else {
      out += text[at];
    }
  }
  return out;
}

std::string OneLine(std::string_view message) {
  constexpr std::size_t kLongest = 2000;
  if (message.size() > kLongest) {
    const std::size_t half = kLongest / 2;
    return OneLine(message.substr(0, half)) + "..." + OneLine(message.substr(message.size() - half));
  }
  return EscapeControls(message);
}

}  // namespace host
