#ifndef FRAMEWORK_SERVICE_OBJECT_BASE_H_
#define FRAMEWORK_SERVICE_OBJECT_BASE_H_

#include <ace/Service_Object.h>

#include "framework/service_interface.h"
#include "framework/visibility.h"

namespace NS_BUNDLEMGR1 {

/// The base of every service object that a bundle's factory makes.
///
/// ACE's service configurator drives the object (`init`, `fini`, then destruction through the bundle's
/// exterminator); the framework finds it among its bundle's service objects from construction to
/// destruction and asks it for the interface it publishes.
///
/// Binary contract: behind the destructor pair, the 19 operations of `ACE_Event_Handler` and
/// `suspend`/`resume` of `ACE_Service_Object`, the own virtual operations follow in the order below.
///
/// Ownership: the object owns the interface it points to, until `RemoveInterface` destroys it.
/// Threads: the framework constructs, drives and destroys service objects one at a time. `GetName` and
/// `GetInterface` may be called from any thread in between.
class PLATFORM_API ServiceObjectBase : public ACE_Service_Object {
 public:
  /// `bundle` and `service` are NUL-terminated names that must stay readable for the object's life; they
  /// are kept as pointers. From here on the framework lists the object as `service` of `bundle`.
  ServiceObjectBase(const char* bundle, const char* service);

  /// Withdraws what is still published (see `UnRegistSvc`) and removes the interface.
  ~ServiceObjectBase() override;

  ServiceObjectBase(const ServiceObjectBase&) = delete;
  ServiceObjectBase& operator=(const ServiceObjectBase&) = delete;

  /// Takes the object off its bundle's list and its interface out of the interface registry, so that
  /// nobody finds either of them any more. 0 when it was listed, -1 when it was not.
  virtual int UnRegistSvc();

  /// The service name given at construction.
  virtual const char* GetName() const;

  /// A hook for derived classes; does nothing here.
  virtual void SvcHook();

  /// The interface that the object publishes; null when it has none.
  virtual ServiceInterface* GetInterface();

  /// Makes the object's interface, keeps it and returns it; registers nothing. Null here, where there is
  /// nothing to make.
  virtual ServiceInterface* CreateInterface();

  /// Destroys the interface, if there is one, and forgets it.
  virtual void RemoveInterface();

 protected:
  /// The interface that `GetInterface` hands out and `RemoveInterface` destroys; null at first.
  ServiceInterface* interface_ = nullptr;

 private:
  const char* name_;
};

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_SERVICE_OBJECT_BASE_H_
