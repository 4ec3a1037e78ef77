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
/// Ownership: the service object that created an interface keeps it; whoever fetched it from the
/// registry only borrows it, and no longer than the bundle stays loaded.
/// Threads: a derived interface says what its operations allow; these two may be called from any thread.
class PLATFORM_API ServiceInterface {
 public:
  virtual ~ServiceInterface() = default;

  /// The name of the service behind the interface, for people and logs; not the name it is registered by.
  virtual std::string GetSvcName() = 0;

  /// 1 for an interface that does its work, 0 for one that only fills a place.
  virtual std::int64_t IsValid() = 0;
};

/// Forbids derivation from the class that inherits it virtually: the most derived class would have to
/// construct this base, and only the befriended class may.
class PLATFORM_API FinalClass {
 private:
  friend class NULLServiceInterface;
  FinalClass() = default;
};

/// The interface that stands for "none". It has no state, so every instance is as good as another.
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
