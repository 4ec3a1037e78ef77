// Converts bytes to JSON texts. No state, the results are copies; any thread may call.

#include "tools/almcfg/write/json_text.h"

#include "tools/almcfg/write/printable.h"

namespace almcfg {
namespace {

std::string Hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    hex += {kDigits[value >> 4], kDigits[value & 0xF]};
  }
  return hex;
}

}  // namespace

std::string ToUtf8(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t length = Utf8Length(bytes);
    text += length == 0 ? std::string_view("\xEF\xBF\xBD") : bytes.substr(0, length);
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

void SetText(Json& object, const char* name, std::string_view bytes) {
  if (IsUtf8(bytes)) {
    object[name] = std::string(bytes);
  } else {
    object[name] = ToUtf8(bytes);
    object[std::string(name) + "Hex"] = Hex(bytes);
  }
}

std::string Dump(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

}  // namespace almcfg
