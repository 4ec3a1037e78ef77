#ifndef HOST_COMMANDS_SESSION_H_
#define HOST_COMMANDS_SESSION_H_

#include <ostream>
#include <streambuf>
#include <string>
#include <utility>

#include "host/loader/loader.h"

namespace host {

/// Forwards what is written to `target`, which is borrowed, and keeps a copy.
class CopyingBuffer : public std::streambuf {
 public:
  explicit CopyingBuffer(std::ostream& target) : target_(target) {}

  std::string copy;

 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    copy.append(text, static_cast<std::size_t>(size));
    return target_.write(text, size) ? size : 0;
  }
  int_type overflow(int_type c) override {
    const char byte = traits_type::to_char_type(c);
    return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
  }
  int sync() override { return target_.flush() ? 0 : -1; }

 private:
  std::ostream& target_;
};

/// The state that commands share. The loader and the output stream are borrowed. Threads: the program's main
/// thread.
struct Session {
  Session(Loader& itsLoader, std::ostream& target) : loader(itsLoader), printed(target), out(&printed) {}

  Loader& loader;
  CopyingBuffer printed;       ///< its copy holds what the last command wrote to `out`
  std::ostream out;            ///< the commands' output
  std::string problem;         ///< the last command's problem; empty when it succeeded
  bool quitRequested = false;  ///< set by `quit`
  bool echo = false;           ///< print each line of a command file before running it
  bool keepGoing = false;      ///< report and count failing commands of a file, and run the next
  bool hasConsole = false;     ///< a console is running; `call` also prints the log records of the call
  int runDepth = 0;            ///< nesting depth of command files
};

/// Gives a variable another value until the end of a scope, also when an exception ends it.
template <class T>
class Temporarily {
 public:
  Temporarily(T& variable, T value) : variable_(variable), before_(std::exchange(variable, value)) {}
  ~Temporarily() { variable_ = before_; }
  Temporarily(const Temporarily&) = delete;
  Temporarily& operator=(const Temporarily&) = delete;

 private:
  T& variable_;
  const T before_;
};

}  // namespace host

#endif  // HOST_COMMANDS_SESSION_H_
