#ifndef HOST_COMMANDS_OPERATIONS_H_
#define HOST_COMMANDS_OPERATIONS_H_

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/base/words.h"
#include "host/commands/value.h"

/// The table of the operations that the command `call` can call. To add one, add a row in operations.cpp.
/// The table is immutable. Threads: as for the commands, the main thread.
namespace host {

/// The callee, borrowed: the interface for an operation of the interface, the address for an exported text
/// function.
struct Target {
  NS_ASCII::AsciiUtilInterface* interface = nullptr;
  void* function = nullptr;
};

/// The result and the out values of a call.
struct Answer {
  Value result;
  std::vector<std::pair<std::string, Value>> outs;  ///< name and value, in the order of the signature
};

/// One row.
struct Operation {
  std::string name;
  std::string symbol;  ///< a text function's mangled name; empty for an operation of the interface
  Kind result = Kind::kText;
  std::vector<Parameter> in;
  std::vector<Parameter> out;  ///< 0 or empty before the call, unless `invoke` receives initial values

  /// Makes the call. The arguments are one value of the declared kind for each of `in`, optionally followed
  /// by the initial value of each of `out`.
  std::function<Answer(const Target&, const std::vector<Value>&)> invoke;
};

/// The interface that is registered as "AsciiUtilInterface"; throws `Failure` when there is none or it is of
/// another type.
NS_ASCII::AsciiUtilInterface* FetchAsciiUtil();

/// All rows: the interface's fourteen operations, then the eight text functions.
const std::vector<Operation>& Operations();

/// The row of that name; throws `UsageError` with a suggestion when there is none.
const Operation& FindOperation(const std::string& name);

/// "NAME IN:KIND... -> KIND, OUT:KIND...": the kind after the arrow is that of the result.
std::string Synopsis(const Operation& operation);

/// Parses the words from `first` on as the arguments of an operation. Throws `UsageError` with the index of
/// the wrong word; for a wrong number of arguments that is the operation's name.
std::vector<Value> ParseArguments(const Operation& operation, const Words& words, std::size_t first);

}  // namespace host

#endif  // HOST_COMMANDS_OPERATIONS_H_
