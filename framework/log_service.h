#ifndef FRAMEWORK_LOG_SERVICE_H_
#define FRAMEWORK_LOG_SERVICE_H_

#include <cstdint>
#include <string>

#include "framework/service_interface.h"
#include "framework/visibility.h"

/// The platform's log service, registered in the interface registry as "LogSvcInterface".
///
/// Binary contract: operations are called by their slot in the virtual table, counted from 1 with the two
/// destructor entries included. `ReservedN` fills slot N, whose framework operation is unknown.
///
/// Texts are byte strings. `file` is the name of a source unit, `func` the name of a function, `line` the
/// number of a source line, `level` a small number whose meaning the service defines.
/// Threads: any.
namespace NS_LOG_SERVICE1 {

/// Writes messages. Obtained from the log service.
class PLATFORM_API Logger {
 public:
  virtual ~Logger() = default;
  virtual void Reserved3() {}
  virtual void Reserved4() {}
  virtual void Reserved5() {}
  virtual void Reserved6() {}

  /// Slot 7. Writes one message. Callers of this project ignore the result.
  virtual int Log(const std::string& file, const std::string& func, int line, int level,
                  const std::string& message) = 0;

  /// Slot 8. Writes one message from a printf format, NUL-terminated, and its values. A malformed format must
  /// be harmless.
  virtual int LogF(const std::string& file, const std::string& func, int line, int level, const char* format,
                   ...) = 0;
};

/// The log service.
class PLATFORM_API LogSvcInterface : public NS_BUNDLEMGR1::ServiceInterface {
 public:
  virtual void Reserved5() {}
  virtual void Reserved6() {}

  /// Slot 7. A logger for the three names (bundle, service and channel); null when there is none. It stays
  /// usable until the process ends; the service defines whether the caller may destroy it.
  virtual Logger* GetLogger(const std::string& bundle, const std::string& service,
                            const std::string& channel) = 0;
};

/// A thread's debug position: the source position that the thread last set for its debug messages.
struct PLATFORM_API PosForDbg {
  std::string file;       ///< source file name
  std::string func;       ///< function name
  std::int32_t line = 0;  ///< source line
};

}  // namespace NS_LOG_SERVICE1

#endif  // FRAMEWORK_LOG_SERVICE_H_
