#ifndef HOST_SESSION_H_
#define HOST_SESSION_H_

#include <iosfwd>

#include "host/loader.h"

namespace host {

/// What a command works on. Everything is borrowed.
struct Session {
  Loader& loader;
  std::ostream& out;      ///< where results go
  bool headings = false;  ///< `call` shows its answer in sections, with the log records that it caused
  bool leave = false;     ///< set by `quit`
  bool echo = false;      ///< a file's lines are printed before what they do
};

}  // namespace host

#endif  // HOST_SESSION_H_
