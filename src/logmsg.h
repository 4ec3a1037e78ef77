#ifndef SRC_LOGMSG_H_
#define SRC_LOGMSG_H_

#include "framework/log_service.h"

/// How the library's ordinary messages leave it; debug messages go through `LogMgr`.
///
/// The library shares one logger, fetched from the log service on the first message and kept for good. A
/// log service that is missing, or hands out no logger, drops the message and is asked again by the next.
/// The logger is the log service's: it is never released, and must stay usable as long as this library
/// is loaded.
///
/// Threads: any. The shared logger is read and written without a lock: of several first messages at the
/// same time each may fetch a logger, and the last answer stays; if that was "none", the next message asks
/// again. `_g_actualmutex` is held while the library's null interface is made and while an interface is
/// searched for, never across a call into the log service.
///
/// Errors: a log service that is missing, cannot be looked up, or throws when asked for a logger never
/// reaches the caller; it only costs the message. (An exception that an interface lookup must not let out
/// ends the process.) What the registry or the logger itself throws does reach the caller.
namespace NS_ASCII {

/// Sends `text` (NUL-terminated) from the source unit `tag` and its line `line`.
void LogMessage(const char* tag, int line, int level, const char* text);

/// The same with a printf format and its one value, a NUL-terminated text; the log service formats.
void LogFormatted(const char* tag, int line, int level, const char* format, const char* value);

/// A logger for the three names, fetched afresh; null when there is none.
NS_LOG_SERVICE1::Logger* ObtainLogger(const char* bundle, const char* service, const char* channel);

}  // namespace NS_ASCII

#endif  // SRC_LOGMSG_H_
