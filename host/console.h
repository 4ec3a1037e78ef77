#ifndef HOST_CONSOLE_H_
#define HOST_CONSOLE_H_

#include "host/session.h"

namespace host {

/// Reads commands from standard input until its end or `quit`.
///
/// From a terminal: with editing, completion and a history that is kept between runs; a command that goes
/// wrong is reported in one line on standard error, and the console goes on. From anything else: like a
/// command file, so the first command that goes wrong ends it; throws `Failure` then.
void RunConsole(Session& session);

}  // namespace host

#endif  // HOST_CONSOLE_H_
