#ifndef HOST_PROBLEM_H_
#define HOST_PROBLEM_H_

#include <cstddef>
#include <stdexcept>
#include <string>

#include "host/text_escape.h"

/// How a command says that it could not be done. The message is one line: what, why, and what would be right;
/// what it repeats of an argument or a file may hold control characters, which are therefore shown as \xNN.
/// Thrown by whatever finds out, caught where a command is run.
namespace host {

/// The command was made wrongly; nothing was done. A program run ends with exit code 2.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& message) : std::runtime_error(EscapeControls(message)) {}
};

/// A line that cannot be taken apart.
class LineError : public UsageError {
 public:
  /// `column` is where it is wrong, counted from 1. The message says it in front of the reason.
  LineError(std::size_t column, const std::string& reason)
      : UsageError(Prefix(column) + reason), column_(column), reasonAt_(Prefix(column).size()) {}

  std::size_t Column() const { return column_; }

  /// The message without the column.
  const char* Reason() const { return what() + reasonAt_; }

 private:
  static std::string Prefix(std::size_t column) { return "column " + std::to_string(column) + ": "; }

  std::size_t column_;
  std::size_t reasonAt_;
};

/// The command was right, but failed. A program run ends with exit code 1.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& message) : std::runtime_error(EscapeControls(message)) {}
};

/// Throws a `Failure` that says where in a file, "FILE:LINE:COLUMN: reason"; both are counted from 1.
[[noreturn]] void FailAt(const std::string& file, int line, std::size_t column, const std::string& reason);

/// What the exception that is being handled says, whatever its type.
std::string CurrentExceptionText();

}  // namespace host

#endif  // HOST_PROBLEM_H_
