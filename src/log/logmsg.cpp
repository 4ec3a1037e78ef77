#include "src/logmsg.h"

#include <ace/Guard_T.h>

#include <atomic>
#include <new>
#include <string>

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"

namespace NS_ASCII {
namespace {

using NS_BUNDLEMGR1::InterfaceRef;
using NS_BUNDLEMGR1::NULLServiceInterface;
using NS_LOG_SERVICE1::Logger;
using NS_LOG_SERVICE1::LogSvcInterface;

constexpr const char* kFunctionName = "unknown";

/// The shared logger; null until one could be obtained. Release/acquire, so that a thread that finds it
/// also finds what its maker wrote into it.
std::atomic<Logger*> sharedLogger{nullptr};

/// The library's null interface. A plain pointer, because lookups carry its address; it is only touched
/// with the atomic operations below.
NULLServiceInterface* nullInterface = nullptr;

/// The null interface is never destroyed. Living here instead of on the heap, it leaves nothing behind
/// when the library is unloaded.
alignas(NULLServiceInterface) unsigned char nullInterfacePlace[sizeof(NULLServiceInterface)];

void MakeNullInterfaceReady() {
  if (__atomic_load_n(&nullInterface, __ATOMIC_ACQUIRE) != nullptr) {
    return;
  }
  // A lock that cannot be taken does not stop the creation.
  const ACE_Guard<ACE_Thread_Mutex> guard(NS_BUNDLEMGR1::_g_actualmutex);
  if (__atomic_load_n(&nullInterface, __ATOMIC_RELAXED) == nullptr) {
    __atomic_store_n(&nullInterface, new (nullInterfacePlace) NULLServiceInterface, __ATOMIC_RELEASE);
  }
}

/// Null when the names cannot be built or the service throws: both count as "no logger".
Logger* AskForLogger(LogSvcInterface& service, const char* bundle, const char* name, const char* channel) {
  try {
    return service.GetLogger(bundle, name, channel);
  } catch (...) {
    return nullptr;
  }
}

Logger* SharedLogger() {
  Logger* logger = sharedLogger.load(std::memory_order_acquire);
  if (logger == nullptr) {
    logger = ObtainLogger("ii_asciiagent_bundle", "ii_asciiagent_bundle", "debug");
    sharedLogger.store(logger, std::memory_order_release);
  }
  return logger;
}

}  // namespace

Logger* ObtainLogger(const char* bundle, const char* service, const char* channel) {
  try {
    MakeNullInterfaceReady();
    InterfaceRef ref;
    ref.buffer = NS_BUNDLEMGR1::CheckIFBuf("LogSvcInterface");
    ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
    ref.nullInterface = &nullInterface;
    auto* const logService = NS_BUNDLEMGR1::FetchInterface<LogSvcInterface>(ref);
    return logService == nullptr ? nullptr : AskForLogger(*logService, bundle, service, channel);
  } catch (NS_BUNDLEMGR1::InterfaceNotExistException&) {
    return nullptr;
  }
}

void LogMessage(const char* tag, int line, int level, const char* text) {
  if (Logger* const logger = SharedLogger(); logger != nullptr) {
    logger->Log(tag, kFunctionName, line, level, text);
  }
}

void LogFormatted(const char* tag, int line, int level, const char* format, const char* value) {
  if (Logger* const logger = SharedLogger(); logger != nullptr) {
    logger->LogF(tag, kFunctionName, line, level, format, value);
  }
}

}  // namespace NS_ASCII
