#ifndef TESTS_PROOF_FAULTS_H_
#define TESTS_PROOF_FAULTS_H_

#include <cstddef>
#include <functional>

/// Everything outside the bundle that a test can make fail, by name. A fault ends with its object, so no test
/// leaves one set. Failures of the platform are set in the recording framework instead.
///
/// In a program that links this file, memory management is replaced, and the linker redirects calls of the
/// bundle's objects to the functions below (--wrap; see CMakeLists.txt in this folder). The bundle contains
/// nothing of it.
namespace faults {

/// The `nth` allocation of the calling thread from now on (1 is the next one) fails, once: with
/// `std::bad_alloc`, or a null pointer where the caller asked for that. One at a time in a thread.
class AllocationFails {
 public:
  explicit AllocationFails(std::size_t nth);
  ~AllocationFails();
  AllocationFails(const AllocationFails&) = delete;
  AllocationFails& operator=(const AllocationFails&) = delete;

  /// Whether that allocation has failed.
  [[nodiscard]] bool happened() const;
};

/// How many allocations of the whole program are not freed yet.
std::size_t LiveAllocations();

enum class Fault {
  kGlobalLock,        ///< taking the framework's global mutex
  kStaticObjectLock,  ///< taking ACE's static object lock
  kStorageLock,       ///< taking any other lock: the one of the thread-specific storage
  kKeyCreation,       ///< creating a thread key
  kSlotStore,         ///< storing a thread's record; sets the error number to ENOMEM
};
constexpr std::size_t kFaults = 5;

/// While it exists, every call of the bundle's objects to the named function fails, on every thread.
class Failing {
 public:
  explicit Failing(Fault fault);
  ~Failing();
  Failing(const Failing&) = delete;
  Failing& operator=(const Failing&) = delete;

  /// How many calls have failed.
  [[nodiscard]] int hits() const;

 private:
  Fault fault_;
};

/// Runs `action` once, right before the bundle's objects take their next lock, as if another thread had taken
/// it first. Locks that the action takes do not run it again.
class BeforeLock {
 public:
  explicit BeforeLock(std::function<void()> action);
  ~BeforeLock();
  BeforeLock(const BeforeLock&) = delete;
  BeforeLock& operator=(const BeforeLock&) = delete;

  /// Whether `action` has run.
  [[nodiscard]] bool happened() const;
};

}  // namespace faults

#endif  // TESTS_PROOF_FAULTS_H_
