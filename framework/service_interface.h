#ifndef FRAMEWORK_SERVICE_INTERFACE_H_
#define FRAMEWORK_SERVICE_INTERFACE_H_

#include <cstdint>
#include <string>

#include "framework/visibility.h"

namespace NS_BUNDLEMGR1 {

/// The base of every interface that a bundle publishes under a name.
///
/// Binary contract: the slots are destructor (two entries), `GetSvcName`, `IsValid`; a derived interface
/// appends its own operations. Nothing here may be reordered.
///
/// Ownership: an interface belongs to the service object that created it. Callers borrow it from the
/// registry, at most until the bundle is unloaded.
/// Threads: these two operations from any thread; a derived interface documents its own.
class PLATFORM_API ServiceInterface {
 public:
  virtual ~ServiceInterface() = default;

  /// The name of the service, for people and logs; not the name under which the interface is registered.
  virtual std::string GetSvcName() = 0;

  /// 1 for a working interface, 0 for a null interface.
  virtual std::int64_t IsValid() = 0;
};

/// Forbids derivation from `NULLServiceInterface`, like `final` of C++11: the most derived class must
/// construct this virtual base, and only the friend class may.
class PLATFORM_API FinalClass {
 private:
  friend class NULLServiceInterface;
  FinalClass() = default;
};

/// The null interface: the placeholder for a missing interface. It has no state.
class PLATFORM_API NULLServiceInterface : public ServiceInterface, private virtual FinalClass {
 public:
  NULLServiceInterface() = default;
  ~NULLServiceInterface() override = default;
  NULLServiceInterface(const NULLServiceInterface&) = delete;
  NULLServiceInterface& operator=(const NULLServiceInterface&) = delete;

  /// Always "NULLServiceInterface!".
  std::string GetSvcName() override { return "NULLServiceInterface!"; }

  /// Always 0.
  std::int64_t IsValid() override { return 0; }
};

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_SERVICE_INTERFACE_H_
