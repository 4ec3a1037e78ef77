#ifndef HOST_BASE_PROBLEM_H_
#define HOST_BASE_PROBLEM_H_

#include <cstddef>
#include <stdexcept>
#include <string>

#include "framework/visibility.h"
#include "host/base/text_escape.h"

/// The exceptions that report why a command failed. The message is one line: what failed, why, and what to
/// do. Control characters that it repeats from an argument or a file are shown as \xNN. Threads: any.
namespace host {

/// The base class of `UsageError` and `Failure`.
class PLATFORM_API Problem : public std::runtime_error {
 public:
  explicit Problem(const std::string& message, std::size_t word)
      : std::runtime_error(EscapeControls(message)), word_(word) {}

  /// The index of the wrong word on the command line; 0, the index of the command's name, means the whole
  /// line.
  [[nodiscard]] std::size_t Word() const { return word_; }

 private:
  std::size_t word_;
};

/// The command is invalid; nothing was done. On the program's command line it gives exit code 2.
class PLATFORM_API UsageError : public Problem {
 public:
  explicit UsageError(const std::string& message, std::size_t word = 0) : Problem(message, word) {}
};

/// A line that cannot be parsed.
class PLATFORM_API LineError : public UsageError {
 public:
  /// `column` is the position of the error, counted from 1. The message is "column COLUMN: REASON".
  LineError(std::size_t column, const std::string& reason)
      : UsageError(Prefix(column) + reason), column_(column), reasonAt_(Prefix(column).size()) {}

  [[nodiscard]] std::size_t Column() const { return column_; }

  /// The message without the column.
  [[nodiscard]] const char* Reason() const { return what() + reasonAt_; }

 private:
  static std::string Prefix(std::size_t column) { return "column " + std::to_string(column) + ": "; }

  std::size_t column_;
  std::size_t reasonAt_;
};

/// The command is valid, but failed. On the program's command line it gives exit code 1.
class PLATFORM_API Failure : public Problem {
 public:
  explicit Failure(const std::string& message, std::size_t word = 0) : Problem(message, word) {}
};

/// Calls `take` and returns its result. Adds `index`, as the wrong word, to a `UsageError` or `Failure` of
/// `take`.
template <class Take>
decltype(auto) AtWord(std::size_t index, Take take) {
  try {
    return take();
  } catch (const UsageError& problem) {
    throw UsageError(problem.what(), index);
  } catch (const Failure& problem) {
    throw Failure(problem.what(), index);
  }
}

/// The message of the exception that is being handled. To be called in a catch block; accepts any type.
PLATFORM_API std::string CurrentExceptionText();

}  // namespace host

#endif  // HOST_BASE_PROBLEM_H_
