#ifndef FRAMEWORK_SERVICE_OBJECT_BASE_H_
#define FRAMEWORK_SERVICE_OBJECT_BASE_H_

#include <ace/Service_Object.h>

#include "framework/service_interface.h"
#include "framework/visibility.h"

namespace NS_BUNDLEMGR1 {

/// The base of the service objects that bundles' factories return.
///
/// ACE's service configurator calls `init` and `fini` and destroys the object through the bundle's
/// exterminator. From construction to destruction the framework lists it among its bundle's service objects
/// and calls `GetInterface` on it.
///
/// Binary contract: after the destructor pair, the 19 operations of `ACE_Event_Handler` and
/// `suspend`/`resume` of `ACE_Service_Object`, this class's virtual operations follow in the order below.
///
/// Ownership: the object owns the interface it points to, until `RemoveInterface` destroys it.
/// Threads: the framework constructs, calls and destroys service objects one at a time. `GetName` and
/// `GetInterface` may be called from any thread between construction and destruction.
class PLATFORM_API ServiceObjectBase : public ACE_Service_Object {
 public:
  /// `bundle` and `service` are NUL-terminated names that must outlive the object; only the pointers are
  /// stored. From here on the framework lists the object as `service` of `bundle`.
  ServiceObjectBase(const char* bundle, const char* service);

  /// Calls `UnRegistSvc` if the object is still listed, and destroys the interface.
  ~ServiceObjectBase() override;

  ServiceObjectBase(const ServiceObjectBase&) = delete;
  ServiceObjectBase& operator=(const ServiceObjectBase&) = delete;

  /// Removes the object from its bundle's list and its interface from the interface registry; destroys
  /// neither. Returns 0, or -1 when it was not listed.
  virtual int UnRegistSvc();

  /// The service name given at construction.
  [[nodiscard]] virtual const char* GetName() const;

  /// A hook for derived classes, which the framework may call; does nothing here.
  virtual void SvcHook();

  /// The interface that the object publishes; null when it has none.
  virtual ServiceInterface* GetInterface();

  /// Creates the object's interface, stores it and returns it; registers nothing. The base returns null.
  virtual ServiceInterface* CreateInterface();

  /// Destroys the interface, if there is one, and sets the pointer to null. Does not change the registry.
  virtual void RemoveInterface();

 protected:
  /// The interface that `GetInterface` returns and `RemoveInterface` destroys; null at first.
  ServiceInterface* interface_ = nullptr;

 private:
  const char* name_;
};

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_SERVICE_OBJECT_BASE_H_
