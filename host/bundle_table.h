#ifndef HOST_BUNDLE_TABLE_H_
#define HOST_BUNDLE_TABLE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "framework/bundle_mgr.h"

/// Which service objects live, and to which bundle each belongs. The bundle name is kept here and not in the
/// object, whose layout is the platform's.
///
/// A bundle exists for lookups while it has a service object. Its `Bundle` itself is kept for the life of the
/// process, because a lookup collects bundles before it takes the lock under which it asks them.
///
/// Threads: any. Listing and unlisting happen under `_g_actualmutex`, so that a search that holds it never
/// meets an object whose base is gone. It may meet one whose own class is just being made or destroyed, as
/// the base is there first and last: nothing may search by type while a bundle is loaded or unloaded that it
/// could find.
namespace host {

/// One living service object.
struct ServiceEntry {
  std::string bundle;
  std::string service;
  NS_BUNDLEMGR1::ServiceObjectBase* object = nullptr;  ///< borrowed, until it is unlisted
};

/// Lists `object` as `service` of `bundle`. Of two with the same names the one listed last is found.
PLATFORM_API void ListService(const std::string& bundle, const std::string& service,
                              NS_BUNDLEMGR1::ServiceObjectBase* object);

/// Takes the object off the list; false when it was not on it.
PLATFORM_API bool UnlistService(const NS_BUNDLEMGR1::ServiceObjectBase* object);

/// Whether the object is on the list. The pointer is only compared, so it may point to nothing.
PLATFORM_API bool IsListed(const NS_BUNDLEMGR1::ServiceObjectBase* object);

/// All living service objects, by bundle, then in the order in which they were made.
PLATFORM_API std::vector<ServiceEntry> ListServices();

/// How many service objects were listed so far, those that are gone included.
PLATFORM_API std::uint64_t ServicesEverListed();

}  // namespace host

#endif  // HOST_BUNDLE_TABLE_H_
