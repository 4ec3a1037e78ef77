// The log service and its loggers, which it never releases. Any thread may log.

#include "host/platform/log_service.h"

#include <cstdarg>
#include <map>
#include <tuple>

#include "framework/interface_registry.h"
#include "host/base/mutex.h"
#include "host/platform/log_format.h"
#include "host/platform/log_sink.h"

namespace host {
namespace {

using NS_LOG_SERVICE1::Logger;
using Names = std::tuple<std::string, std::string, std::string>;

struct Loggers {
  Mutex lock;
  /// A logger that its client deletes removes its entry.
  std::map<Names, Logger*> byNames HOST_THREAD_SAFETY(guarded_by(lock));
};

Loggers& TheLoggers() {
  static auto& loggers = *new Loggers;
  return loggers;
}

class HostLogger : public Logger {
 public:
  explicit HostLogger(Names names) : names_(std::move(names)) {}
  HostLogger(const HostLogger&) = delete;
  HostLogger& operator=(const HostLogger&) = delete;

  ~HostLogger() override {
    Loggers& loggers = TheLoggers();
    const MutexLock guard(loggers.lock);
    loggers.byNames.erase(names_);
  }

  int Log(const std::string& file, const std::string& func, int line, int level,
          const std::string& message) override {
    WriteLog({std::chrono::system_clock::now(), level, file, func, line, message});
    return 0;
  }

  int LogF(const std::string& file, const std::string& func, int line, int level, const char* format,
           ...) override {
    std::va_list values;
    va_start(values, format);
    const std::string text = FormatText(format, values);
    va_end(values);
    return HostLogger::Log(file, func, line, level, text);
  }

 private:
  const Names names_;
};

class LogInterface : public NS_LOG_SERVICE1::LogSvcInterface {
 public:
  std::string GetSvcName() override { return "BundleHostLog"; }
  std::int64_t IsValid() override { return 1; }

  Logger* GetLogger(const std::string& bundle, const std::string& service,
                    const std::string& channel) override {
    Loggers& loggers = TheLoggers();
    const MutexLock guard(loggers.lock);
    Logger*& logger = loggers.byNames[{bundle, service, channel}];
    if (logger == nullptr) {
      logger = new HostLogger({bundle, service, channel});
    }
    return logger;
  }
};

}  // namespace

LogService::LogService() : ServiceObjectBase("bundle_host", "log") {
  interface_ = new LogInterface;
  NS_BUNDLEMGR1::SetIFBuf("LogSvcInterface", interface_);
}

LogService::~LogService() = default;

}  // namespace host
