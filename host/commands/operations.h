#ifndef HOST_OPERATIONS_H_
#define HOST_OPERATIONS_H_

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/value.h"

/// The operations that `call` knows, as a table. To add one, add a row in operations.cpp.
namespace host {

/// What an operation is called on: the interface for an operation of the interface, the function's address
/// for an exported text function.
struct Target {
  NS_ASCII::AsciiUtilInterface* interface = nullptr;
  void* function = nullptr;
};

struct Answer {
  Value result;
  std::vector<std::pair<std::string, Value>> outs;  ///< name and value, in the order of the signature
};

/// One row.
struct Operation {
  std::string name;
  std::string symbol;  ///< a text function's linker name; empty for an operation of the interface
  Kind result = Kind::kText;
  std::vector<Parameter> in;
  std::vector<Parameter> out;  ///< start as 0 or empty before the call

  /// Calls it. `arguments` has one value of the right kind for each of `in`.
  std::function<Answer(const Target&, const std::vector<Value>&)> invoke;
};

/// All rows: the interface's fourteen operations, then the eight text functions.
const std::vector<Operation>& Operations();

/// The row of that name; throws `UsageError` with a suggestion when there is none.
const Operation& FindOperation(const std::string& name);

/// The names of all rows.
std::vector<std::string> OperationNames();

/// "NAME IN... -> RESULT [OUT...]".
std::string Synopsis(const Operation& operation);

/// Reads the arguments of an operation; throws `UsageError` that says which one is wrong.
std::vector<Value> ParseArguments(const Operation& operation, const std::vector<std::string>& arguments);

}  // namespace host

#endif  // HOST_OPERATIONS_H_
