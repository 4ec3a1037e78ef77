#ifndef FRAMEWORK_BUNDLE_MGR_H_
#define FRAMEWORK_BUNDLE_MGR_H_

#include <list>
#include <map>
#include <string>

#include "framework/service_object_base.h"
#include "framework/visibility.h"

/// The part of the framework's bundle manager that an interface lookup uses.
///
/// Binary contract: an operation is called by its slot in the virtual table, counted from 1 with the two
/// destructor entries included. `ReservedN` fills slot N, whose framework operation is unknown.
///
/// Ownership: bundles and service objects belong to the framework; returned pointers are borrowed.
/// Threads: any.
namespace NS_BUNDLEMGR1 {

/// One loaded bundle.
class PLATFORM_API Bundle {
 public:
  virtual ~Bundle() = default;
  virtual void Reserved3() {}
  virtual void Reserved4() {}
  virtual void Reserved5() {}
  virtual void Reserved6() {}
  virtual void Reserved7() {}
  virtual void Reserved8() {}
  virtual void Reserved9() {}
  virtual void Reserved10() {}
  virtual void Reserved11() {}
  virtual void Reserved12() {}

  /// Slot 13. Adds the bundle's service objects to `objects`, by service name.
  virtual void GetServiceObjects(std::map<std::string, ServiceObjectBase*>& objects) = 0;
};

/// All loaded bundles.
class PLATFORM_API BundleMgr {
 public:
  /// The one bundle manager of the process; never null.
  static BundleMgr* Instance();

  virtual ~BundleMgr() = default;
  virtual void Reserved3() {}
  virtual void Reserved4() {}
  virtual void Reserved5() {}
  virtual void Reserved6() {}

  /// Slot 7. The bundle of that name; null when none is loaded.
  virtual Bundle* GetBundle(const std::string& name) = 0;

  virtual void Reserved8() {}
  virtual void Reserved9() {}

  /// Slot 10. Appends every loaded bundle to `bundles`.
  virtual void GetAllBundles(std::list<Bundle*>& bundles) = 0;
};

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_BUNDLE_MGR_H_
