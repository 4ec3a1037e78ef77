#ifndef FRAMEWORK_PROCESS_EXCEPTION_H_
#define FRAMEWORK_PROCESS_EXCEPTION_H_

#include <cstdint>
#include <exception>
#include <sstream>

#include "framework/visibility.h"

namespace NS_BUNDLEMGR1 {

/// The framework's base exception: two numbers and four texts, whose meaning the thrower defines. `what()` is
/// not overridden.
///
/// Copying moves the unread text of all four streams out of the source, so the copy constructor takes a
/// non-const reference: throw a temporary or a named object, and catch by reference.
///
/// Threads: one thread at a time for each object.
class PLATFORM_API ProcessException : public std::exception {
 public:
  ProcessException() = default;

  /// Copies the numbers and moves the texts out of `other`, whose streams are then empty.
  ProcessException(ProcessException& other) : std::exception(other), code(other.code), detail(other.detail) {
    Drain(other.stream1, stream1);
    Drain(other.stream2, stream2);
    Drain(other.stream3, stream3);
    Drain(other.stream4, stream4);
  }

  ProcessException& operator=(const ProcessException&) = delete;
  ~ProcessException() override = default;

  std::int32_t code = 0;      ///< which failure
  std::int32_t detail = 0;    ///< a second number for the same failure
  std::stringstream stream1;  ///< the first text
  std::stringstream stream2;  ///< the second text
  std::stringstream stream3;  ///< the third text
  std::stringstream stream4;  ///< the fourth text

 private:
  static void Drain(std::stringstream& from, std::stringstream& to) {
    to << from.rdbuf();
    // Inserting from an empty buffer sets failbit; the new stream must be usable.
    to.clear();
  }
};

/// No interface of the wanted name and type exists. A lookup throws it with `kInterfaceNotExist` as its code.
class PLATFORM_API InterfaceNotExistException : public ProcessException {
 public:
  ~InterfaceNotExistException() override = default;
};

/// The code of an `InterfaceNotExistException` that a lookup throws.
inline constexpr std::int32_t kInterfaceNotExist = 0x41180004;

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_PROCESS_EXCEPTION_H_
