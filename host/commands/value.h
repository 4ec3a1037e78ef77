#ifndef HOST_COMMANDS_VALUE_H_
#define HOST_COMMANDS_VALUE_H_

#include <cstdint>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include "ascii_util/ascii_util_interface.h"

/// Parses and prints the values of operations' parameters. Any thread may call, with an output stream of its own.
namespace host {

using TextList = std::vector<std::string>;
using Value = std::variant<bool, std::int64_t, std::string, TextList, NS_ASCII::ListMap>;

enum class Kind { kBoolean, kInteger, kText, kList, kMap };

/// A parameter or out value of an operation.
struct Parameter {
  std::string name;
  Kind kind = Kind::kText;
  bool mayBeEmpty = true;  ///< for texts
};

/// Parses the argument of a parameter. \xNN is a byte in every text. An integer must fit 32 bits. A map is
/// NAME=ITEM|ITEM,NAME=ITEM...: a name without "=" has an empty list, and a ',', '|' or '=' inside a text is
/// written as \x2c, \x7c or \x3d. Throws `UsageError` with the parameter, the argument and what was expected.
Value ParseValue(const Parameter& parameter, const std::string& argument);

/// Writes "LABEL: VALUE" for a boolean, a number or a text; a list as "LABEL:" and one item per line,
/// indented by two more blanks; a map as its label and each name with its list:
///
///   LABEL:
///     NAME:
///       ITEM
///
/// Every line starts with `indent` blanks. Texts are escaped by `EscapeValue`.
void PrintValue(std::ostream& out, const std::string& label, const Value& value, std::size_t indent = 0);

}  // namespace host

#endif  // HOST_COMMANDS_VALUE_H_
