#ifndef SRC_LOG_LOGMSG_H_
#define SRC_LOG_LOGMSG_H_

#include "framework/log_service.h"
#include "src/log/messages.h"

/// The library's ordinary messages; debug messages go through `LogMgr`.
///
/// All messages use one logger, which the first message fetches from the log service and which is never
/// released. Without a log service or a logger the message is dropped, and the next one tries again. The
/// logger belongs to the log service and must stay usable as long as this library is loaded.
///
/// Threads: any. The logger is read and written without a lock: concurrent first messages may each fetch a
/// logger, and the last one stored is used. `_g_actualmutex` is held while the library's null interface is
/// created and during the search for an interface, never during a call into the log service.
///
/// Errors: a missing log service, a failed lookup, and an exception of `GetLogger` only drop the message. Any
/// other exception of the lookup ends the process. Exceptions of the registry and of the logger reach the
/// caller.
namespace NS_ASCII {

/// Sends the message.
void LogMessage(const messages::Message& message);

/// Sends the message's text as a printf format with its one value, a NUL-terminated text. The log service
/// formats them.
void LogFormatted(const messages::Message& message, const char* value);

/// Fetches a logger for the three names; null when there is none.
NS_LOG_SERVICE1::Logger* ObtainLogger(const char* bundle, const char* service, const char* channel);

}  // namespace NS_ASCII

#endif  // SRC_LOG_LOGMSG_H_
