#include "src/logmgr.h"

#include <ace/Guard_T.h>
#include <ace/Recursive_Thread_Mutex.h>
#include <ace/Static_Object_Lock.h>
#include <ace/Thread_Mutex.h>

#include <map>
#include <new>

#include "src/logmsg.h"

namespace NS_ASCII {
namespace {

using NS_LOG_SERVICE1::PosForDbg;

/// Null until first use. Constant-initialised and trivially destroyed, so it can be read at any time.
std::atomic<LogMgr*> theLogMgr{nullptr};

alignas(LogMgr) unsigned char logMgrPlace[sizeof(LogMgr)];

}  // namespace

/// What exists from the load of the library to its unload. The lock and its map are part of the library's
/// given shape; nothing uses them.
class ModuleState {
 public:
  ModuleState() = default;
  ModuleState(const ModuleState&) = delete;
  ModuleState& operator=(const ModuleState&) = delete;

  /// At unload the thread key must go: its clean-up is about to be unmapped, and a process has only some
  /// thousand keys. Everything else of the log manager stays as it is.
  ~ModuleState() {
    if (LogMgr* const manager = theLogMgr.load(std::memory_order_acquire); manager != nullptr) {
      manager->storage_.Close();
    }
  }

 private:
  ACE_Thread_Mutex lock_;
  std::map<int, std::string> names_;
};

namespace {
ModuleState moduleState;
}  // namespace

PosForDbg* PosStorage::Record() const {
  // The key's number may belong to somebody else by now.
  return closed_.load(std::memory_order_acquire) ? nullptr : ts_get();
}

void PosStorage::Close() {
  closed_.store(true, std::memory_order_release);
  if (!once_) {
    return;
  }
  PosForDbg* const record = ts_value();
  ts_value(nullptr);
  delete record;
  ACE_OS::thr_key_detach(key_);
  ACE_OS::thr_keyfree(key_);
  once_ = false;  // So the storage's own destructor has no key to free.
}

LogMgr* LogMgr::Instance() {
  if (LogMgr* const manager = theLogMgr.load(std::memory_order_acquire); manager != nullptr) {
    return manager;
  }
  const ACE_Guard<ACE_Recursive_Thread_Mutex> guard(*ACE_Static_Object_Lock::instance());
  if (guard.locked() && theLogMgr.load(std::memory_order_relaxed) == nullptr) {
    theLogMgr.store(new (logMgrPlace) LogMgr, std::memory_order_release);
  }
  return theLogMgr.load(std::memory_order_acquire);
}

void LogMgr::Release() {
  if (theLogMgr.load(std::memory_order_acquire) == nullptr) {
    return;
  }
  const ACE_Guard<ACE_Recursive_Thread_Mutex> guard(*ACE_Static_Object_Lock::instance());
  if (!guard.locked()) {
    return;
  }
  if (LogMgr* const manager = theLogMgr.load(std::memory_order_relaxed); manager != nullptr) {
    manager->~LogMgr();
    theLogMgr.store(nullptr, std::memory_order_release);
  }
}

LogMgr::LogMgr() {
  // A log manager without a logger is a valid one: it drops what it is given.
  static_cast<void>(ObtainOwnLogger());
}

LogMgr::~LogMgr() {
  delete logger_;
  logger_ = nullptr;
}

bool LogMgr::ObtainOwnLogger() {
  logger_ = ObtainLogger("ii_ascii_bundle", "QueltAni", "corbaoper");
  return logger_ != nullptr;
}

void LogMgr::LogPos(const std::string& message) {
  const PosForDbg* const position = storage_.Record();
  if (position == nullptr || logger_ == nullptr) {
    return;
  }
  logger_->Log(position->file, position->func, position->line, 0, message);
}

}  // namespace NS_ASCII
