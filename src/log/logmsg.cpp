// Sends the library's messages to the platform's log service. The shared logger belongs to the log service
// and is never released; the null interface lies in static storage. Any thread may call.

#include "src/log/logmsg.h"

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

/// The shared logger; null until one was obtained. Release/acquire, so that a thread that reads it also sees
/// the logger's own initialisation.
std::atomic<Logger*> sharedLogger{nullptr};

/// The library's null interface, one of the arguments of a lookup, although no lookup reads it. A plain
/// pointer, because `InterfaceRef` takes its address; it is accessed only through the atomic operations
/// below.
NULLServiceInterface* nullInterface = nullptr;

/// Required: the null interface is never destroyed. It lies in static storage, so unloading leaks nothing.
alignas(NULLServiceInterface) unsigned char nullInterfacePlace[sizeof(NULLServiceInterface)];

void EnsureNullInterface() {
  if (__atomic_load_n(&nullInterface, __ATOMIC_ACQUIRE) != nullptr) {
    return;
  }
  // Required: created even if locking fails.
  const ACE_Guard<ACE_Thread_Mutex> guard(NS_BUNDLEMGR1::_g_actualmutex);
  if (__atomic_load_n(&nullInterface, __ATOMIC_RELAXED) == nullptr) {
    __atomic_store_n(&nullInterface, new (nullInterfacePlace) NULLServiceInterface, __ATOMIC_RELEASE);
  }
}

/// Null when the names cannot be built or the service throws.
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
    EnsureNullInterface();
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

void LogMessage(const messages::Message& message) {
  if (Logger* const logger = SharedLogger(); logger != nullptr) {
    logger->Log(message.tag, kFunctionName, message.number, message.level, message.text);
  }
}

void LogFormatted(const messages::Message& message, const char* value) {
  if (Logger* const logger = SharedLogger(); logger != nullptr) {
    logger->LogF(message.tag, kFunctionName, message.number, message.level, message.text, value);
  }
}

}  // namespace NS_ASCII
