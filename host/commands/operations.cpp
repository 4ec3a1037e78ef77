// The table of operations and the conversion of their arguments. The table is made on first use and never
// changes; callees are borrowed for a call. Main thread only.

#include "host/commands/operations.h"

#include <array>
#include <tuple>
#include <type_traits>

#include "ascii_util/text_functions.h"
#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "host/base/problem.h"
#include "host/base/suggest.h"

namespace host {
namespace {

using NS_ASCII::AsciiUtilInterface;
using NS_ASCII::ListMap;

template <class T>
using Plain = std::remove_cv_t<std::remove_reference_t<T>>;

template <class T>
inline constexpr bool kIsOut = std::is_lvalue_reference_v<T> && !std::is_const_v<std::remove_reference_t<T>>;

template <class T>
constexpr Kind KindOf() {
  if constexpr (std::is_same_v<T, bool>) {
    return Kind::kBoolean;
  } else if constexpr (std::is_integral_v<T>) {
    return Kind::kInteger;
  } else if constexpr (std::is_same_v<T, std::string>) {
    return Kind::kText;
  } else if constexpr (std::is_same_v<T, TextList>) {
    return Kind::kList;
  } else {
    static_assert(std::is_same_v<T, ListMap>);
    return Kind::kMap;
  }
}

template <class T>
Value ToValue(T value) {
  if constexpr (KindOf<T>() == Kind::kInteger) {
    return std::int64_t{value};
  } else {
    return value;
  }
}

template <class T>
T FromValue(const Value& value) {
  if constexpr (KindOf<T>() == Kind::kInteger) {
    return static_cast<T>(std::get<std::int64_t>(value));
  } else {
    return std::get<T>(value);
  }
}

/// Builds rows for operations with the parameter types `Args`.
template <class Result, class... Args>
class RowMaker {
 public:
  using Names = std::array<Parameter, sizeof...(Args)>;

  template <class Call>
  static Operation Make(std::string name, const Names& names, Call call) {
    Operation row;
    row.name = std::move(name);
    row.result = KindOf<Result>();
    AddParameters(row, names, std::index_sequence_for<Args...>());
    row.invoke = [call, outs = row.out](const Target& target, const std::vector<Value>& arguments) {
      return Invoke(call, outs, target, arguments, std::index_sequence_for<Args...>());
    };
    return row;
  }

 private:
  template <std::size_t... At>
  static void AddParameters([[maybe_unused]] Operation& row, [[maybe_unused]] Names names,
                            std::index_sequence<At...> /*at*/) {
    ((names[At].kind = KindOf<Plain<Args>>(), (kIsOut<Args> ? row.out : row.in).push_back(names[At])), ...);
  }

  /// `next` is the index of the next argument, `nextOut` that of the next out value's initial value.
  template <class T>
  static void TakeArgument(T& holder, bool isOut, const std::vector<Value>& arguments, std::size_t& next,
                           std::size_t& nextOut) {
    if (!isOut) {
      holder = FromValue<T>(arguments.at(next++));
    } else if (nextOut < arguments.size()) {
      holder = FromValue<T>(arguments[nextOut++]);
    }
  }

  template <class Call, std::size_t... At>
  static Answer Invoke(const Call& call, const std::vector<Parameter>& outs, const Target& target,
                       const std::vector<Value>& arguments, std::index_sequence<At...> /*at*/) {
    std::tuple<Plain<Args>...> holders{};
    [[maybe_unused]] std::size_t next = 0;
    [[maybe_unused]] std::size_t nextOut = sizeof...(Args) - outs.size();
    (TakeArgument(std::get<At>(holders), kIsOut<Args>, arguments, next, nextOut), ...);
    Answer answer{ToValue(call(target, static_cast<Args>(std::get<At>(holders))...)), {}};
    [[maybe_unused]] const auto addOut = [&](bool isOut, Value value) {
      if (isOut) {
        answer.outs.emplace_back(outs.at(answer.outs.size()).name, std::move(value));
      }
    };
    (addOut(kIsOut<Args>, ToValue(std::get<At>(holders))), ...);
    return answer;
  }
};

/// A row for an operation of the interface: kinds and directions come from its signature.
template <class Class, class Result, class... Args>
Operation Row(const char* name, Result (Class::*operation)(Args...),
              const typename RowMaker<Result, Args...>::Names& names = {}) {
  return RowMaker<Result, Args...>::Make(name, names, [operation](const Target& target, Args... args) {
    return (target.interface->*operation)(static_cast<Args>(args)...);
  });
}

template <class Function>
struct TextFunction;

template <class Result, class Argument>
struct TextFunction<Result (*)(Argument)> {
  /// A row for an exported text function. Its symbol is looked up in the loaded libraries at each call.
  static Operation Row(const std::string& name, const Parameter& parameter) {
    using Function = Result (*)(Argument);
    Operation row =
        RowMaker<Result, Argument>::Make(name, {parameter}, [](const Target& target, Argument argument) {
          return reinterpret_cast<Function>(target.function)(static_cast<Argument>(argument));
        });
    // Mangled names omit the return type; when only the result is a std::string, the name has the tag
    // [abi:cxx11].
    const std::string text = "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";
    const std::string end = std::is_same_v<Argument, int>   ? "B5cxx11Ei"
                            : std::is_reference_v<Argument> ? "ERK" + text
                                                            : "E" + text;
    row.symbol = "_ZN8NS_ASCII" + std::to_string(name.size()) + name + end;
    return row;
  }
};

std::vector<Operation> MakeTable() {
  using I = AsciiUtilInterface;
  const Parameter text{"text"};
  const Parameter key{"key"};
  const Parameter value{"value"};
  const Parameter separator{"separator", Kind::kText, false};
  using TakesReference = TextFunction<decltype(&NS_ASCII::Trim)>;
  using TakesValue = TextFunction<decltype(&NS_ASCII::StrToUpper)>;
  using TakesInt = TextFunction<decltype(&NS_ASCII::Num2Str)>;
  return {
      Row("GetSvcName", &I::GetSvcName),
      Row("IsValid", &I::IsValid),
      Row("Str2Num", &I::Str2Num, {text, value, {"base"}}),
      Row("GetTimeStamp", &I::GetTimeStamp),
      Row("IsTransQueltEnabled", &I::IsTransQueltEnabled),
      Row("GetAlmCfgValue", &I::GetAlmCfgValue, {value, {"key1"}, {"key2"}, {"key3"}, {"numKey"}}),
      Row("ToUpper", &I::ToUpper, {text}),
      Row("IsContain", &I::IsContain, {Parameter{"sub"}, text}),
      Row("IsKeyValueAboveOne", &I::IsKeyValueAboveOne, {key, text}),
      Row("GetKeyValue", &I::GetKeyValue, {key, text}),
      Row("ParseListMap", &I::ParseListMap, {Parameter{"map"}, text}),
      Row("GetMapList", &I::GetMapList, {Parameter{"map"}, {"name"}, {"items"}}),
      Row("SplitStr", &I::SplitStr, {text, separator, {"pieces"}}),
      Row("WriteDbgLog", &I::WriteDbgLog, {Parameter{"message"}}),
      TakesReference::Row("Trim", text),
      TakesValue::Row("StrToUpper", text),
      TakesValue::Row("StrToLower", text),
      TakesInt::Row("Num2Str", {"number"}),
      TakesValue::Row("GetURLEncoding", text),
      TakesValue::Row("GetURLDecoding", text),
      TakesValue::Row("SetURLDecoding", text),
      TakesValue::Row("utf8toiso8859", text),
  };
}

const char* KindName(Kind kind) {
  constexpr std::array<const char*, 5> kNames{"boolean", "integer", "text", "list", "map"};
  return kNames.at(static_cast<std::size_t>(kind));
}

}  // namespace

NS_ASCII::AsciiUtilInterface* FetchAsciiUtil() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  try {
    auto* const interface = NS_BUNDLEMGR1::FetchInterface<AsciiUtilInterface>(ref);
    if (interface == nullptr) {
      throw Failure("the interface registered as AsciiUtilInterface is of another type");
    }
    return interface;
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException&) {
    throw Failure(
        "no AsciiUtilInterface is registered; load a bundle that registers it, such as libii_ascii_util.so");
  }
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> table = MakeTable();
  return table;
}

const Operation& FindOperation(const std::string& name) {
  if (const Operation* const operation = FindNamed(Operations(), name)) {
    return *operation;
  }
  throw UsageError("no operation '" + name + "'" +
                   DidYouMean(name, NamesOf(Operations()), "; 'help call' lists them"));
}

std::string Synopsis(const Operation& operation) {
  std::string text = operation.name;
  for (const Parameter& parameter : operation.in) {
    text += " " + parameter.name + ":" + KindName(parameter.kind);
  }
  text += std::string(" -> ") + KindName(operation.result);
  for (const Parameter& parameter : operation.out) {
    text += ", " + parameter.name + ":" + KindName(parameter.kind);
  }
  return text;
}

std::vector<Value> ParseArguments(const Operation& operation, const Words& words, std::size_t first) {
  const std::size_t count = words.size() - first;
  if (count != operation.in.size()) {
    throw UsageError(operation.name + " takes " + std::to_string(operation.in.size()) +
                         (operation.in.size() == 1 ? " argument, not " : " arguments, not ") +
                         std::to_string(count) + ": " + Synopsis(operation),
                     first - 1);
  }
  std::vector<Value> values;
  for (std::size_t at = 0; at < count; ++at) {
    try {
      values.push_back(ParseValue(operation.in[at], words[first + at]));
    } catch (const UsageError& error) {
      throw UsageError(operation.name + ": argument " + std::to_string(at + 1) + ", " + error.what(),
                       first + at);
    }
  }
  return values;
}

}  // namespace host
