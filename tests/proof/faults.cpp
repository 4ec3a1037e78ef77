// Makes allocations, locks and thread keys fail. It replaces operator new, and works in any
// thread.

#include "tests/proof/faults.h"

#include <ace/OS_NS_Thread.h>
#include <ace/Recursive_Thread_Mutex.h>
#include <ace/Static_Object_Lock.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

#include "framework/interface_registry.h"

namespace faults {
namespace {

// Counts down to the allocation that fails; 0 for none.
thread_local std::size_t allocationsLeft = 0;
thread_local bool allocationFailed = false;
std::atomic<std::size_t> liveAllocations{0};

bool IsDueToFail() {
  if (allocationsLeft == 0 || --allocationsLeft != 0) {
    return false;
  }
  allocationFailed = true;
  return true;
}

struct State {
  std::atomic<bool> on{false};
  std::atomic<int> hits{0};
};
std::array<State, kFaults> states;

State& StateOf(Fault fault) { return states[static_cast<std::size_t>(fault)]; }

std::function<void()> beforeLock;
std::atomic<bool> isBeforeLockDue{false};

}  // namespace

AllocationFails::AllocationFails(std::size_t nth) {
  allocationFailed = false;
  allocationsLeft = nth;
}
AllocationFails::~AllocationFails() { allocationsLeft = 0; }
bool AllocationFails::happened() const { return allocationFailed; }

std::size_t LiveAllocations() { return liveAllocations; }

Failing::Failing(Fault fault) : fault_(fault) {
  StateOf(fault_).hits = 0;
  StateOf(fault_).on = true;
}
Failing::~Failing() { StateOf(fault_).on = false; }
int Failing::hits() const { return StateOf(fault_).hits; }

BeforeLock::BeforeLock(std::function<void()> action) {
  beforeLock = std::move(action);
  isBeforeLockDue = true;
}
BeforeLock::~BeforeLock() { isBeforeLockDue = false; }
bool BeforeLock::happened() const { return !isBeforeLockDue; }

/// The action that the next lock runs.
void NoteLock() {
  if (isBeforeLockDue.exchange(false)) {
    beforeLock();
  }
}

/// Whether this call of the wrapped function must fail.
bool IsFailing(Fault fault) {
  State& state = StateOf(fault);
  if (state.on) {
    ++state.hits;
    return true;
  }
  return false;
}

void* Allocate(std::size_t bytes) noexcept {
  void* const memory = IsDueToFail() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  liveAllocations += memory == nullptr ? 0 : 1;
  return memory;
}

void Free(void* memory) noexcept {
  liveAllocations -= memory == nullptr ? 0 : 1;
  std::free(memory);
}

}  // namespace faults

// --- Memory

void* operator new(std::size_t bytes) {
  void* const memory = faults::Allocate(bytes);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}
void* operator new[](std::size_t bytes) { return ::operator new(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  return faults::Allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  return faults::Allocate(bytes);
}
void operator delete(void* memory) noexcept { faults::Free(memory); }
void operator delete[](void* memory) noexcept { faults::Free(memory); }
void operator delete(void* memory, std::size_t /*bytes*/) noexcept { faults::Free(memory); }
void operator delete[](void* memory, std::size_t /*bytes*/) noexcept { faults::Free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { faults::Free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { faults::Free(memory); }

// --- Wrapped functions: __real_X is the function, __wrap_X what the bundle's objects call in its place

using faults::Fault;

extern "C" {

int __real__ZN6ACE_OS10mutex_lockEP15pthread_mutex_t(ACE_mutex_t* mutex);
int __wrap__ZN6ACE_OS10mutex_lockEP15pthread_mutex_t(ACE_mutex_t* mutex);
int __wrap__ZN6ACE_OS10mutex_lockEP15pthread_mutex_t(ACE_mutex_t* mutex) {
  faults::NoteLock();
  Fault fault = Fault::kStorageLock;
  if (mutex == &NS_BUNDLEMGR1::_g_actualmutex.lock()) {
    fault = Fault::kGlobalLock;
  } else if (mutex == &ACE_Static_Object_Lock::instance()->lock()) {
    fault = Fault::kStaticObjectLock;
  }
  return faults::IsFailing(fault) ? -1 : __real__ZN6ACE_OS10mutex_lockEP15pthread_mutex_t(mutex);
}

using CleanUp = void(void*);
int __real__ZN6ACE_OS13thr_keycreateEPjPFvPvE(ACE_thread_key_t* key, CleanUp* cleanUp);
int __wrap__ZN6ACE_OS13thr_keycreateEPjPFvPvE(ACE_thread_key_t* key, CleanUp* cleanUp);
int __wrap__ZN6ACE_OS13thr_keycreateEPjPFvPvE(ACE_thread_key_t* key, CleanUp* cleanUp) {
  return faults::IsFailing(Fault::kKeyCreation) ? -1
                                                : __real__ZN6ACE_OS13thr_keycreateEPjPFvPvE(key, cleanUp);
}

int __real__ZN6ACE_OS15thr_setspecificEjPv(ACE_thread_key_t key, void* value);
int __wrap__ZN6ACE_OS15thr_setspecificEjPv(ACE_thread_key_t key, void* value);
int __wrap__ZN6ACE_OS15thr_setspecificEjPv(ACE_thread_key_t key, void* value) {
  if (faults::IsFailing(Fault::kSlotStore)) {
    errno = ENOMEM;
    return -1;
  }
  return __real__ZN6ACE_OS15thr_setspecificEjPv(key, value);
}

}  // extern "C"
