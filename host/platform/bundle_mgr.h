#ifndef HOST_PLATFORM_BUNDLE_MGR_H_
#define HOST_PLATFORM_BUNDLE_MGR_H_

#include <string>
#include <vector>

#include "framework/bundle_mgr.h"

/// The list of existing service objects by bundle. The bundle's name is stored here and not in
/// `ServiceObjectBase`, whose layout is fixed. Objects are borrowed.
///
/// Lookups find a bundle while it has a service object. Its `Bundle` object is never destroyed, because a
/// lookup collects bundles before it takes the lock under which it queries them.
///
/// Threads: any. Objects are listed and unlisted under `_g_actualmutex`, so a search that holds it finds no
/// object whose base class is destroyed. It may find one whose derived class is being constructed or
/// destroyed: callers must not search by type while a bundle that could match is loaded or unloaded.
namespace host {

/// One existing service object.
struct ServiceEntry {
  std::string bundle;
  std::string service;
  NS_BUNDLEMGR1::ServiceObjectBase* object = nullptr;  ///< borrowed, until it is unlisted
};

/// Lists `object` as `service` of `bundle`. When two have the same names, lookups find the one listed last.
PLATFORM_API void ListService(const std::string& bundle, const std::string& service,
                              NS_BUNDLEMGR1::ServiceObjectBase* object);

/// Removes the object from the list; returns false when it is not listed.
PLATFORM_API bool UnlistService(const NS_BUNDLEMGR1::ServiceObjectBase* object);

/// Whether the object is listed. The pointer is compared, never dereferenced, so it may dangle.
PLATFORM_API bool IsListed(const NS_BUNDLEMGR1::ServiceObjectBase* object);

/// All existing service objects, by bundle, then in the order of construction.
PLATFORM_API std::vector<ServiceEntry> ListServices();

}  // namespace host

#endif  // HOST_PLATFORM_BUNDLE_MGR_H_
