#ifndef SRC_LOG_LOGMGR_H_
#define SRC_LOG_LOGMGR_H_

#include <ace/Copy_Disabled.h>
#include <ace/TSS_T.h>

#include <atomic>
#include <string>

#include "framework/log_service.h"

namespace NS_ASCII {

/// The thread-specific storage of debug positions: one record for each thread, created on the thread's first
/// access and destroyed when the thread ends.
///
/// The thread key's clean-up is code of this library, so the key must not outlive the library's mapping:
/// `Close` frees it.
class PosStorage : public ACE_TSS<NS_LOG_SERVICE1::PosForDbg> {
 public:
  PosStorage() = default;
  ~PosStorage() override;

  /// The calling thread's record, created if it is missing. Null when the storage is closed, or when the
  /// record cannot be created or stored; a failed store is reported to ACE's error log.
  NS_LOG_SERVICE1::PosForDbg* Record();

  /// Destroys the calling thread's record and frees the thread key. Records of other threads stay allocated:
  /// without the key they cannot be reached. A second call does nothing.
  void Close();

  [[nodiscard]] bool IsClosed() const { return closed_.load(std::memory_order_acquire); }

 private:
  /// Creates the thread key if there is none yet; false when that fails.
  bool EnsureKey();
  [[nodiscard]] bool Store(NS_LOG_SERVICE1::PosForDbg* record) const;

  std::atomic<bool> hasKey_{false};  // Used instead of the base's `once_`, which it reads unlocked.
  std::atomic<bool> closed_{false};
};

/// Logs messages with the calling thread's debug position, through a logger of its own. Nothing sets a
/// position, so file and function are always empty.
///
/// Required: there is one log manager, created on first use, and only `Release` destroys it. It lies in
/// static storage. At unload and at process exit only its thread key is freed (see `ModuleState` in
/// logmgr.cpp); messages after that are logged with an empty position.
///
/// Ownership: `Release` destroys the logger. Nothing in the library calls `Release`, so in production the
/// logger stays with the log service.
/// Threads: `Instance` and `LogPos` from any thread; `Release` only while no other thread uses either.
class LogMgr : private ACE_Copy_Disabled {
 public:
  /// The log manager, created on first use under ACE's static object lock, which is held while the logger is
  /// fetched. Null when that lock cannot be taken.
  static LogMgr* Instance();

  /// Destroys the log manager, if there is one, and its logger. The next `Instance` creates a new log
  /// manager.
  static void Release();

  /// Logs `message` at level 0 with the calling thread's position. The message is dropped when there is no
  /// logger or the thread's record cannot be created. The logger is fetched only once, when the log manager
  /// is created.
  void LogPos(const std::string& message);

 private:
  friend class ModuleState;

  LogMgr();
  ~LogMgr();

  /// Fetches the logger and returns whether there is one.
  bool ObtainOwnLogger();

  PosStorage storage_;
  NS_LOG_SERVICE1::Logger* logger_ = nullptr;
};

}  // namespace NS_ASCII

#endif  // SRC_LOG_LOGMGR_H_
