#ifndef TOOLS_RECORDER_FORMAT_OPERATIONS_H_
#define TOOLS_RECORDER_FORMAT_OPERATIONS_H_

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

/// The recorded operations of the interface and their signatures. Constants; any thread may read them.
namespace recording_format {

enum class Operation : unsigned char {
  kGetSvcName,
  kIsValid,
  kStr2Num,
  kGetTimeStamp,
  kIsTransQueltEnabled,
  kGetAlmCfgValue,
  kToUpper,
  kIsContain,
  kIsKeyValueAboveOne,
  kGetKeyValue,
  kParseListMap,
  kGetMapList,
  kSplitStr,
  kWriteDbgLog
};

/// The kinds of values, one letter each: 'b' boolean, 'n' 32-bit integer, 'i' 64-bit integer, 't' text,
/// 'l' list of texts, 'm' map of lists.
struct Signature {
  std::string_view name;
  char result;
  std::string_view in;   ///< parameters that are not out values
  std::string_view out;  ///< out values
};

/// In the order of `Operation`.
inline constexpr std::array<Signature, 14> kSignatures{{
    {"GetSvcName", 't', "", ""},
    {"IsValid", 'i', "", ""},
    {"Str2Num", 'b', "tn", "n"},
    {"GetTimeStamp", 't', "", ""},
    {"IsTransQueltEnabled", 'b', "", ""},
    {"GetAlmCfgValue", 'i', "tttn", "i"},
    {"ToUpper", 't', "t", ""},
    {"IsContain", 'b', "tt", ""},
    {"IsKeyValueAboveOne", 'b', "tt", ""},
    {"GetKeyValue", 't', "tt", ""},
    {"ParseListMap", 'i', "t", "m"},
    {"GetMapList", 'i', "mt", "l"},
    {"SplitStr", 'i', "tt", "l"},
    {"WriteDbgLog", 'i', "t", ""},
}};

constexpr const Signature& SignatureOf(Operation operation) {
  return kSignatures[static_cast<std::size_t>(operation)];
}

/// The operation of that name; empty when there is none.
constexpr std::optional<Operation> FindOperation(std::string_view name) {
  for (std::size_t at = 0; at < kSignatures.size(); ++at) {
    if (kSignatures[at].name == name) {
      return static_cast<Operation>(at);
    }
  }
  return std::nullopt;
}

}  // namespace recording_format

#endif  // TOOLS_RECORDER_FORMAT_OPERATIONS_H_
