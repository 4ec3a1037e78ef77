#ifndef HOST_PROBLEM_H_
#define HOST_PROBLEM_H_

#include <stdexcept>
#include <string>

/// How a command says that it could not be done. The message is one line: what, why, and what would be right.
/// Thrown by whatever finds out, caught where a command is run.
namespace host {

/// The command was made wrongly; nothing was done. A program run ends with exit code 2.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The command was right, but failed. A program run ends with exit code 1.
class Failure : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace host

#endif  // HOST_PROBLEM_H_
