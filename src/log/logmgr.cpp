// The log manager and its thread-specific storage of debug positions. The log manager lies in static storage;
// each thread's record belongs to the storage. Any thread may log; logmgr.h says when `Release` may be
// called.

#include "src/log/logmgr.h"

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

#include "src/log/logmsg.h"
#include "src/log/messages.h"

namespace NS_ASCII {
namespace {

using NS_LOG_SERVICE1::PosForDbg;

/// Null until first use. Constant-initialised and trivially destroyed, so it can be read at any time.
std::atomic<LogMgr*> theLogMgr{nullptr};

alignas(LogMgr) unsigned char logMgrPlace[sizeof(LogMgr)];

/// Logs what ACE's own macro would log. The macro's line number would be a source line; log watchers expect
/// 90.
void ReportFailedSlot() {
  const int error = ACE_Log_Msg::last_error_adapter();
  if (ACE_Log_Category_TSS* const log = ACE_Log_Category::ace_lib().per_thr_obj(); log != nullptr) {
    log->conditional_set(messages::kSlotNotSet.tag, messages::kSlotNotSet.number, -1, error);
    log->log(LM_ERROR, "%p\n", messages::kSlotNotSet.text);
  }
}

}  // namespace

/// Exists from the load of the library to its unload. Required: the class has `lock_` and `names_`; no code
/// uses them.
class ModuleState {
 public:
  ModuleState() = default;
  ModuleState(const ModuleState&) = delete;
  ModuleState& operator=(const ModuleState&) = delete;

  /// Frees the thread key: the key's clean-up function is about to be unmapped, and a process has only about
  /// a thousand keys. The rest of the log manager stays usable: this also runs at process exit, when other
  /// threads and later exit handlers may still log.
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
  if (IsClosed() || !EnsureKey()) {
    return nullptr;
  }
  if (PosForDbg* const record = ts_value(); record != nullptr) {
    // After `Close` another library may own the key, and `record` may be that library's value.
    return IsClosed() ? nullptr : record;
  }
  std::unique_ptr<PosForDbg> record(new (std::nothrow) PosForDbg);
  if (record == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  return Store(record.get()) ? record.release() : nullptr;
}

bool PosStorage::EnsureKey() {
  // Acquire: pairs with the release below, after which the key does not change.
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
  if (!IsClosed()) {
    ReportFailedSlot();
  }
  return false;
}

void PosStorage::Close() {
  if (IsClosed() || !hasKey_.load(std::memory_order_acquire)) {
    closed_.store(true, std::memory_order_release);
    return;
  }
  std::unique_ptr<PosForDbg> record(ts_value());
  static_cast<void>(Store(nullptr));
  record.reset();
  // Set before the key is freed, so that a thread whose use of the key fails sees that the storage is closed.
  closed_.store(true, std::memory_order_release);
  ACE_OS::thr_key_detach(key_);
  ACE_OS::thr_keyfree(key_);
  once_ = false;  // The base's destructor must not free it again.
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
  // Without a logger the log manager drops its messages.
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
  const PosForDbg* const record = storage_.Record();
  if (logger_ == nullptr || (record == nullptr && !storage_.IsClosed())) {
    return;
  }
  const PosForDbg position = record == nullptr ? PosForDbg() : *record;
  logger_->Log(position.file, position.func, position.line, 0, message);
}

}  // namespace NS_ASCII
