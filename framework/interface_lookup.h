#ifndef FRAMEWORK_INTERFACE_LOOKUP_H_
#define FRAMEWORK_INTERFACE_LOOKUP_H_

#include <ace/Guard_T.h>
#include <ace/Thread_Mutex.h>

#include <exception>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "framework/bundle_mgr.h"
#include "framework/process_exception.h"
#include "framework/service_interface.h"

/// How a bundle finds an interface: by name in the registry, otherwise by type among the service objects of
/// the loaded bundles.
namespace NS_BUNDLEMGR1 {

/// The arguments of one lookup. All pointers are borrowed.
struct InterfaceRef {
  /// The registry's buffer for the name, from `CheckIFBuf`; null when the name has none. A lookup appends the
  /// interface that it finds to an empty buffer, so that the next lookup takes the fast path.
  std::vector<ServiceInterface*>* buffer = nullptr;

  /// Serialises searches; in production always `_g_actualmutex`. Must be set before a lookup.
  ACE_Thread_Mutex* lock = nullptr;

  /// The bundle to search; empty to search every loaded bundle.
  std::string bundleName;

  /// The service object to examine in each bundle; empty to examine all of them.
  std::string serviceName;

  /// The address of the caller's pointer to its null interface. Part of the framework's arguments; a lookup
  /// does not use it.
  NULLServiceInterface** nullInterface = nullptr;
};

namespace lookup_detail {

inline bool IsFilled(const std::vector<ServiceInterface*>* buffer) {
  return buffer != nullptr && !buffer->empty();
}

/// The first element as a T; null when it is of another type. The buffer must be filled.
template <class T>
T* FirstOf(const std::vector<ServiceInterface*>& buffer) {
  return dynamic_cast<T*>(buffer.front());
}

inline void CopyTo(std::vector<ServiceInterface*>* out, const std::vector<ServiceInterface*>& buffer) {
  if (out != nullptr) *out = buffer;
}

[[noreturn]] inline void ThrowNotExist() {
  InterfaceNotExistException missing;
  missing.code = kInterfaceNotExist;
  // Not a temporary, because `code` is set first. The check also warns because copying the streams may throw.
  throw missing;  // NOLINT(cert-err09-cpp,cert-err60-cpp,cert-err61-cpp,misc-throw-by-value-catch-by-reference)
}

inline std::list<Bundle*> BundlesToSearch(const std::string& name) {
  std::list<Bundle*> bundles;
  if (name.empty()) {
    BundleMgr::Instance()->GetAllBundles(bundles);
  } else if (Bundle* bundle = BundleMgr::Instance()->GetBundle(name); bundle != nullptr) {
    bundles.push_back(bundle);
  }
  return bundles;
}

/// The object's interface as a T; null when there is no object, it has no interface or one of another type.
template <class T>
T* InterfaceOf(ServiceObjectBase* object) {
  return object == nullptr ? nullptr : dynamic_cast<T*>(object->GetInterface());
}

/// Searches `bundles` in order. With an empty buffer, the first match is appended to it and the search
/// continues. A match is returned when there is no buffer, or the buffer is not empty. Required: with an
/// empty buffer and two matches the first is cached and the second is returned. Otherwise returns null.
template <class T>
T* Search(const std::list<Bundle*>& bundles, const std::string& serviceName,
          std::vector<ServiceInterface*>* buffer) {
  for (Bundle* bundle : bundles) {
    std::map<std::string, ServiceObjectBase*> objects;
    bundle->GetServiceObjects(objects);
    const bool all = serviceName.empty();
    const auto last = all ? objects.end() : objects.upper_bound(serviceName);
    for (auto entry = all ? objects.begin() : objects.lower_bound(serviceName); entry != last; ++entry) {
      T* const found = InterfaceOf<T>(entry->second);
      if (found == nullptr) continue;
      if (buffer == nullptr || !buffer->empty()) return found;
      buffer->push_back(found);
    }
  }
  return nullptr;
}

template <class T>
T* Fetch(InterfaceRef& ref, std::vector<ServiceInterface*>* out) {
  if (IsFilled(ref.buffer)) {
    CopyTo(out, *ref.buffer);
    // Checked again: without the lock the buffer may have changed.
    if (IsFilled(ref.buffer)) return FirstOf<T>(*ref.buffer);
  }
  const std::list<Bundle*> bundles = BundlesToSearch(ref.bundleName);
  {
    const ACE_Guard<ACE_Thread_Mutex> guard(*ref.lock);
    if (!guard.locked()) return nullptr;
    if (IsFilled(ref.buffer)) {
      CopyTo(out, *ref.buffer);
      return FirstOf<T>(*ref.buffer);
    }
    if (T* const found = Search<T>(bundles, ref.serviceName, ref.buffer); found != nullptr) return found;
  }
  if (!IsFilled(ref.buffer)) ThrowNotExist();
  CopyTo(out, *ref.buffer);
  // Checked again: the lock is not held any more, so the buffer may have changed.
  if (!IsFilled(ref.buffer)) ThrowNotExist();
  return FirstOf<T>(*ref.buffer);
}

/// Ends the process as a violated exception specification does: calls the unexpected handler that the process
/// installed. If the handler throws an `InterfaceNotExistException`, that exception reaches the caller.
[[noreturn]] inline void EndThroughUnexpected() {
  try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    std::unexpected();  // Deprecated, but nothing else calls the handler.
#pragma GCC diagnostic pop
  } catch (InterfaceNotExistException&) {
    throw;
  } catch (...) {
    std::terminate();
  }
}

}  // namespace lookup_detail

/// Finds an interface of type `T`, first in `ref.buffer` without a lock, then among the service objects of
/// the bundles that `ref` names, under `ref.lock`.
///
/// Returns the interface, borrowed; null when the lock cannot be taken or the buffer's first element is not a
/// `T`, which callers treat like a missing interface. `out`, if not null, receives a copy of the buffer when
/// the result is taken from the buffer, and is unchanged when it is taken from the search.
///
/// Throws only `InterfaceNotExistException`, when there is no such interface. Any other exception ends the
/// process through the unexpected-exception handler.
/// Threads: any. A lookup first reads the buffer without the lock while another lookup may append to it,
/// which is a data race. A platform avoids it if its `CheckIFBuf` returns null instead of an empty buffer.
template <class T>
T* FetchInterface(InterfaceRef& ref, std::vector<ServiceInterface*>* out = nullptr) {
  try {
    return lookup_detail::Fetch<T>(ref, out);
  } catch (InterfaceNotExistException&) {
    throw;
  } catch (...) {
    lookup_detail::EndThroughUnexpected();
  }
}

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_INTERFACE_LOOKUP_H_
