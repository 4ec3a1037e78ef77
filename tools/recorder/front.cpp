// The operations of the recorder's interface: each forwards its call and records it. The implementation is
// borrowed. Any thread may call at any time.

#include "tools/recorder/front.h"

#include <cxxabi.h>

#include <exception>
#include <typeinfo>

#include "tools/recorder/call_record.h"

namespace recorder {
namespace {

using NS_ASCII::ListMap;
using recording_format::Operation;

/// Arguments of a call, as references to constants.
template <class... T>
std::tuple<const T&...> In(const T&... values) {
  return {values...};
}
template <class... T>
std::tuple<const T&...> Out(const T&... values) {
  return {values...};
}

}  // namespace

template <class Call, class... In, class... Out>
auto Front::Forward(Operation operation, const std::tuple<const In&...>& in,
                    const std::tuple<const Out&...>& out, Call call) {
  AsciiUtilInterface& target = *target_.load(std::memory_order_acquire);
  if (!recording_.Wants(operation)) {
    return call(target);
  }
  CallRecord record(recording_);
  record.Begin(operation, in, out);
  try {
    auto result = call(target);
    record.Returned(result, out);
    return result;
  } catch (const std::exception& error) {
    record.Threw(&typeid(error), error.what(), out);
    throw;
  } catch (abi::__forced_unwind&) {
    throw;  // The thread is being cancelled; the operation did not throw.
  } catch (...) {
    record.Threw(abi::__cxa_current_exception_type(), nullptr, out);
    throw;
  }
}

std::string Front::GetSvcName() {
  return Forward(Operation::kGetSvcName, In(), Out(),
                 [](AsciiUtilInterface& target) { return target.GetSvcName(); });
}

std::int64_t Front::IsValid() {
  return Forward(Operation::kIsValid, In(), Out(),
                 [](AsciiUtilInterface& target) { return target.IsValid(); });
}

bool Front::Str2Num(const std::string& text, int& value, int base) {
  return Forward(Operation::kStr2Num, In(text, base), Out(value),
                 [&](AsciiUtilInterface& target) { return target.Str2Num(text, value, base); });
}

std::string Front::GetTimeStamp() {
  return Forward(Operation::kGetTimeStamp, In(), Out(),
                 [](AsciiUtilInterface& target) { return target.GetTimeStamp(); });
}

bool Front::IsTransQueltEnabled() {
  return Forward(Operation::kIsTransQueltEnabled, In(), Out(),
                 [](AsciiUtilInterface& target) { return target.IsTransQueltEnabled(); });
}

std::int64_t Front::GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                                   const std::string& key3, const int& numKey) {
  return Forward(
      Operation::kGetAlmCfgValue, In(key1, key2, key3, numKey), Out(value),
      [&](AsciiUtilInterface& target) { return target.GetAlmCfgValue(value, key1, key2, key3, numKey); });
}

std::string Front::ToUpper(const std::string& text) {
  return Forward(Operation::kToUpper, In(text), Out(),
                 [&](AsciiUtilInterface& target) { return target.ToUpper(text); });
}

bool Front::IsContain(const std::string& sub, const std::string& text) {
  return Forward(Operation::kIsContain, In(sub, text), Out(),
                 [&](AsciiUtilInterface& target) { return target.IsContain(sub, text); });
}

bool Front::IsKeyValueAboveOne(const std::string& key, const std::string& text) {
  return Forward(Operation::kIsKeyValueAboveOne, In(key, text), Out(),
                 [&](AsciiUtilInterface& target) { return target.IsKeyValueAboveOne(key, text); });
}

std::string Front::GetKeyValue(const std::string& key, const std::string& text) {
  return Forward(Operation::kGetKeyValue, In(key, text), Out(),
                 [&](AsciiUtilInterface& target) { return target.GetKeyValue(key, text); });
}

std::int64_t Front::ParseListMap(ListMap& map, const std::string& text) {
  return Forward(Operation::kParseListMap, In(text), Out(map),
                 [&](AsciiUtilInterface& target) { return target.ParseListMap(map, text); });
}

std::int64_t Front::GetMapList(const ListMap& map, const std::string& name, std::vector<std::string>& items) {
  return Forward(Operation::kGetMapList, In(map, name), Out(items),
                 [&](AsciiUtilInterface& target) { return target.GetMapList(map, name, items); });
}

std::int64_t Front::SplitStr(const std::string& text, const std::string& separator,
                             std::vector<std::string>& pieces) {
  return Forward(Operation::kSplitStr, In(text, separator), Out(pieces),
                 [&](AsciiUtilInterface& target) { return target.SplitStr(text, separator, pieces); });
}

std::int64_t Front::WriteDbgLog(const std::string& message) {
  return Forward(Operation::kWriteDbgLog, In(message), Out(),
                 [&](AsciiUtilInterface& target) { return target.WriteDbgLog(message); });
}

}  // namespace recorder
