#ifndef HOST_BASE_MUTEX_H_
#define HOST_BASE_MUTEX_H_

#include <mutex>

/// An attribute of Clang's thread-safety analysis; nothing for other compilers. Builds by Clang fail when data with
/// guarded_by(MUTEX) is used while MUTEX is not locked.
#ifdef __clang__
#define HOST_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define HOST_THREAD_SAFETY(attribute)
#endif

namespace host {

/// A `std::mutex` that the analysis knows; libstdc++ declares no attributes.
class HOST_THREAD_SAFETY(capability("mutex")) Mutex {
 public:
  void lock() HOST_THREAD_SAFETY(acquire_capability()) { mutex_.lock(); }
  void unlock() HOST_THREAD_SAFETY(release_capability()) { mutex_.unlock(); }

 private:
  std::mutex mutex_;
};

/// Holds a `Mutex` from construction to destruction.
class HOST_THREAD_SAFETY(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) HOST_THREAD_SAFETY(acquire_capability(mutex)) : mutex_(mutex) {
    mutex_.lock();
  }
  ~MutexLock() HOST_THREAD_SAFETY(release_capability()) { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace host

#endif  // HOST_BASE_MUTEX_H_
