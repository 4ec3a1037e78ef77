// Base class of service objects: lists the object from construction to destruction and owns its interface.
// Threads: one at a time for each object.

#include "framework/service_object_base.h"

#include "host/platform/bundle_mgr.h"
#include "host/platform/interface_registry.h"

namespace NS_BUNDLEMGR1 {

ServiceObjectBase::ServiceObjectBase(const char* bundle, const char* service) : name_(service) {
  host::ListService(bundle, service, this);
}

// The bundle's code is still mapped here, so the interface's own destructor can be called.
ServiceObjectBase::~ServiceObjectBase() {
  ServiceObjectBase::UnRegistSvc();
  ServiceObjectBase::RemoveInterface();
}

int ServiceObjectBase::UnRegistSvc() {
  const bool wasListed = host::UnlistService(this);
  if (interface_ != nullptr) {
    host::WithdrawInterface(interface_);
  }
  return wasListed ? 0 : -1;
}

const char* ServiceObjectBase::GetName() const { return name_; }

void ServiceObjectBase::SvcHook() {}

ServiceInterface* ServiceObjectBase::GetInterface() { return interface_; }

ServiceInterface* ServiceObjectBase::CreateInterface() { return nullptr; }

void ServiceObjectBase::RemoveInterface() {
  delete interface_;
  interface_ = nullptr;
}

}  // namespace NS_BUNDLEMGR1
