// Sends messages of the recorder to the platform's log service, which owns the logger. Any thread may call.

#include "tools/recorder/recorder_log.h"

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "framework/log_service.h"

namespace recorder {

void Log(const std::string& text) noexcept {
  constexpr const char* kName = "ii_ascii_recorder";
  constexpr int kLevel = 2;
  try {
    NS_BUNDLEMGR1::InterfaceRef ref;
    ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface");
    ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
    auto* const service = NS_BUNDLEMGR1::FetchInterface<NS_LOG_SERVICE1::LogSvcInterface>(ref);
    if (service == nullptr) {
      return;
    }
    if (auto* const logger = service->GetLogger(kName, kName, "debug"); logger != nullptr) {
      logger->Log(kName, "unknown", 0, kLevel, text);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): without a working log service the message is dropped.
  }
}

}  // namespace recorder
