#include "src/logmgr.h"

#include <ace/Guard_T.h>
#include <ace/Log_Category.h>
#include <ace/Log_Msg.h>
#include <ace/Recursive_Thread_Mutex.h>
#include <ace/Static_Object_Lock.h>
#include <ace/Thread.h>
#include <ace/Thread_Mutex.h>

#include <cerrno>
#include <map>
#include <memory>
#include <new>

#include "src/logmsg.h"

namespace NS_ASCII {
namespace {

using NS_LOG_SERVICE1::PosForDbg;

/// Null until first use. Constant-initialised and trivially destroyed, so it can be read at any time.
std::atomic<LogMgr*> theLogMgr{nullptr};

alignas(LogMgr) unsigned char logMgrPlace[sizeof(LogMgr)];

/// ACE's storage has a message of its own for this, but under which line is up to the compiler. Whoever
/// watches the log knows it by this one.
void ReportFailedSlot() {
  const int error = ACE_Log_Msg::last_error_adapter();
  if (ACE_Log_Category_TSS* const log = ACE_Log_Category::ace_lib().per_thr_obj(); log != nullptr) {
    log->conditional_set("logmgr", 90, -1, error);
    log->log(LM_ERROR, "%p\n", "Error: ACE_Thread::setspecific() failed!");
  }
}

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

PosStorage::~PosStorage() { Close(); }

PosForDbg* PosStorage::Record() {
  // The key's number may belong to somebody else by now.
  if (closed_.load(std::memory_order_acquire) || !HasKey()) {
    return nullptr;
  }
  if (PosForDbg* const record = ts_value(); record != nullptr) {
    return record;
  }
  std::unique_ptr<PosForDbg> record(new (std::nothrow) PosForDbg);
  if (record == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  return Store(record.get()) ? record.release() : nullptr;
}

bool PosStorage::HasKey() {
  // Acquire: pairs with the release below, behind which the key does not change.
  if (!hasKey_.load(std::memory_order_acquire)) {
    if (ts_init() != 0 || !once_) {
      return false;
    }
    hasKey_.store(true, std::memory_order_release);
  }
  return true;
}

bool PosStorage::Store(PosForDbg* record) const {
  if (ACE_Thread::setspecific(key_, record) == 0) {
    return true;
  }
  ReportFailedSlot();
  return false;
}

void PosStorage::Close() {
  if (closed_.exchange(true, std::memory_order_acq_rel) || !once_) {
    return;
  }
  const std::unique_ptr<PosForDbg> record(ts_value());
  static_cast<void>(Store(nullptr));
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
