// Formats the lines of a recording as JSON. No state; the lines belong to the caller. Any thread may call.

#include "tools/recorder/format/writer.h"

#include <array>
#include <charconv>

namespace recording_format {
namespace {

constexpr bool IsPlain(unsigned char byte) {
  return byte >= 0x20 && byte <= 0x7E && byte != '"' && byte != '\\';
}

/// The length of the prefix that needs no escape. Whole blocks are tested without a branch, so that the
/// compiler uses vector instructions: alarm texts rarely need an escape.
std::size_t PlainPrefix(std::string_view text) {
  constexpr std::size_t kBlock = 16;
  std::size_t size = 0;
  for (; text.size() - size >= kBlock; size += kBlock) {
    bool isPlain = true;
    for (std::size_t at = size; at < size + kBlock; ++at) {
      isPlain &= IsPlain(static_cast<unsigned char>(text[at]));
    }
    if (!isPlain) {
      break;
    }
  }
  while (size < text.size() && IsPlain(static_cast<unsigned char>(text[size]))) {
    ++size;
  }
  return size;
}

void AppendEscaped(std::string& line, unsigned char byte) {
  if (byte == '"' || byte == '\\') {
    line += '\\';
    line += static_cast<char>(byte);
    return;
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  line += "\\u00";
  line += kDigits[byte >> 4U];
  line += kDigits[byte & 0xFU];
}

}  // namespace

void AppendText(std::string& line, std::string_view text) {
  line += '"';
  while (true) {
    const std::size_t plain = PlainPrefix(text);
    line += text.substr(0, plain);
    if (plain == text.size()) {
      break;
    }
    AppendEscaped(line, static_cast<unsigned char>(text[plain]));
    text.remove_prefix(plain + 1);
  }
  line += '"';
}

void AppendInteger(std::string& line, std::int64_t value) {
  std::array<char, 20> digits;  // "-9223372036854775808"
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  line.append(digits.data(), end);
}

std::string HeadLine(const Head& head) {
  std::string line = R"({"recording":1,"time":)";
  AppendText(line, head.time);
  line += R"(,"operations":[)";
  const char* separator = "";
  for (const std::string& operation : head.operations) {
    line += separator;
    AppendText(line, operation);
    separator = ",";
  }
  line += R"(],"every":)";
  AppendInteger(line, head.every);
  line += R"(,"library":)";
  AppendText(line, head.library);
  line += R"(,"build_id":)";
  AppendText(line, head.buildId);
  line += R"(,"config_dir":)";
  AppendText(line, head.configDir);
  line += R"(,"alarm_config":)";
  AppendText(line, head.alarmConfig);
  line += "}\n";
  return line;
}

std::string TailLine(const Tail& tail) {
  std::string line = R"({"end":)";
  AppendText(line, tail.time);
  line += R"(,"records":)";
  AppendInteger(line, tail.records);
  line += R"(,"dropped":)";
  AppendInteger(line, tail.dropped);
  line += "}\n";
  return line;
}

}  // namespace recording_format
