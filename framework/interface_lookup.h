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

/// How one bundle finds another one's interface: by name in the registry, else by type among the service
/// objects of the loaded bundles.
namespace NS_BUNDLEMGR1 {

/// What one lookup works on. Everything is borrowed.
struct InterfaceRef {
  /// The registry's buffer for the wanted name, from `CheckIFBuf`; null when the name has none. A lookup
  /// that finds an interface elsewhere appends it here, so that the next one takes the fast path.
  std::vector<ServiceInterface*>* buffer = nullptr;

  /// Serialises searches; in production always `_g_actualmutex`. Never null.
  ACE_Thread_Mutex* lock = nullptr;

  /// The bundle to search; empty for every loaded bundle.
  std::string bundleName;

  /// The service object to search in each bundle; empty for every one of them.
  std::string serviceName;

  /// Where the caller keeps its null interface; carried along, not used by a lookup.
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
  // Thrown by its name, since its code is set before; streams may throw while copied.
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

/// Searches `bundles` in order. The first match goes into an empty buffer and the search goes on; a match
/// that cannot be cached, because there is no buffer or it is filled by now, is returned at once. So with
/// two matches and an empty buffer the first is cached and the second returned, which is kept as it is. Null
/// when nothing was returned at once.
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
    // Asked again, since no lock keeps the buffer as it was.
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
  return FirstOf<T>(*ref.buffer);
}

/// Ends the process the way an exception does that a function has not announced: through the handler
/// that the process installed for it. Only an `InterfaceNotExistException` thrown by that handler may
/// take the place of the original one.
[[noreturn]] inline void EndThroughUnexpected() {
  try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    std::unexpected();  // Deprecated with exception lists, but still the handler's only door.
#pragma GCC diagnostic pop
  } catch (InterfaceNotExistException&) {
    throw;
  } catch (...) {
    std::terminate();
  }
}

}  // namespace lookup_detail

/// Finds an interface of type `T`, first in `ref.buffer` (no lock taken), then among the service objects
/// of the bundles that `ref` names (under `ref.lock`).
///
/// Returns the interface, borrowed; null when the lock cannot be taken or the buffer's first element is
/// not a `T`, which callers treat like a missing interface. `out`, when given, receives a copy of the
/// buffer whenever the result is taken from it; it is left alone when a search answers directly.
///
/// Throws `InterfaceNotExistException` when there is no such interface, and nothing else: any other
/// exception on the way ends the process through the unexpected-exception handler.
/// Threads: any, at the same time; at most one of several first lookups fills an empty buffer. The others
/// look at the buffer without the lock meanwhile, so a platform whose first lookups may meet should hand out
/// null instead of an empty buffer.
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
