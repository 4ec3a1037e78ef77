#ifndef TOOLS_ALMCFG_WRITE_JSON_TEXT_H_
#define TOOLS_ALMCFG_WRITE_JSON_TEXT_H_

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

/// JSON from bytes of unknown encoding. Any thread may call; the objects belong to the caller.
namespace almcfg {

/// Members keep their order, as a reader expects them.
using Json = nlohmann::ordered_json;

/// Sets member `name` to `bytes`. A JSON text is Unicode: what is not UTF-8 becomes U+FFFD, and a member
/// NAME + "Hex" then holds all bytes in hexadecimal.
void SetText(Json& object, const char* name, std::string_view bytes);

/// `bytes` as UTF-8, with U+FFFD for each byte that belongs to no character.
std::string ToUtf8(std::string_view bytes);

/// One line; never fails.
std::string Dump(const Json& value);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_JSON_TEXT_H_
