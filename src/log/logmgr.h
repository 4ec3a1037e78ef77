#ifndef SRC_LOGMGR_H_
#define SRC_LOGMGR_H_

#include <ace/Copy_Disabled.h>
#include <ace/TSS_T.h>

#include <atomic>
#include <string>

#include "framework/log_service.h"

namespace NS_ASCII {

/// The thread-specific storage of debug positions: one record a thread, made on the thread's first access
/// and destroyed when the thread ends.
///
/// The thread key's clean-up is code of this library. So the key must not outlive the library's mapping,
/// and `Close` gives it back.
class PosStorage : public ACE_TSS<NS_LOG_SERVICE1::PosForDbg> {
 public:
  PosStorage() = default;
  ~PosStorage() override;

  /// The calling thread's record; null when it cannot be made or stored (the latter is reported to ACE's
  /// error log), or the storage is closed.
  NS_LOG_SERVICE1::PosForDbg* Record();

  /// Frees the thread key and the calling thread's record. Records of other threads stay allocated: with the
  /// key gone nobody can reach them. To be called while no other thread is in this library; a second call
  /// does nothing.
  void Close();

 private:
  bool HasKey();
  [[nodiscard]] bool Store(NS_LOG_SERVICE1::PosForDbg* record) const;

  std::atomic<bool> hasKey_{false};  // The base's own flag is read without its lock, so it is not asked.
  std::atomic<bool> closed_{false};
};

/// Logs messages with the calling thread's debug position, through a logger of its own. Nothing sets a
/// position, so that file and function are always empty.
///
/// There is one log manager, made on first use and, `Release` aside, never destroyed: neither by the service
/// object nor at unload. Its place is static storage, so it goes with the library's mapping. Only its thread
/// key is given back at unload (see the module state in logmgr.cpp).
///
/// Ownership: the logger counts as its own, and `Release` destroys it. Nothing in the library calls
/// `Release`, so in production the log service keeps it.
/// Threads: `Instance` and `LogPos` from any thread; `Release` only while no other thread uses either.
class LogMgr : private ACE_Copy_Disabled {
 public:
  /// The log manager, made on first use under ACE's static object lock, which is held while the logger is
  /// asked for. Null when that lock cannot be taken.
  static LogMgr* Instance();

  /// Destroys the log manager, if there is one, and its logger. The next `Instance` makes a new one.
  static void Release();

  /// Logs `message` at level 0 with the calling thread's position. Dropped when there is no record for the
  /// thread, or no logger: it is asked for once, when the log manager is made.
  void LogPos(const std::string& message);

 private:
  friend class ModuleState;

  LogMgr();
  ~LogMgr();

  /// Fetches the logger; whether there is one now.
  bool ObtainOwnLogger();

  PosStorage storage_;
  NS_LOG_SERVICE1::Logger* logger_ = nullptr;
};

}  // namespace NS_ASCII

#endif  // SRC_LOGMGR_H_
