#ifndef FRAMEWORK_INTERFACE_REGISTRY_H_
#define FRAMEWORK_INTERFACE_REGISTRY_H_

#include <ace/Thread_Mutex.h>

#include <string>
#include <vector>

#include "framework/service_interface.h"
#include "framework/visibility.h"

/// The process-wide registry of interfaces by name. Names are byte strings, compared exactly.
namespace NS_BUNDLEMGR1 {

/// Registers `interface`, which must not be null, under `name` and returns 0. The registry borrows the
/// pointer; `ServiceObjectBase::UnRegistSvc` removes it. If the name is registered again, lookups find the
/// interface that was registered last.
PLATFORM_API int SetIFBuf(const std::string& name, ServiceInterface* interface);

/// The interfaces registered under `name`; the one registered last comes first. Null when there are none; a
/// platform may return an empty buffer instead, to which an interface lookup appends what it finds, holding
/// `_g_actualmutex`. The buffer belongs to the registry and stays valid until the process ends, its elements
/// until their bundles are unloaded. A later registration may use another buffer.
PLATFORM_API std::vector<ServiceInterface*>* CheckIFBuf(const std::string& name);

/// The framework's global mutex, by the framework's name. Held while an interface search runs and while a
/// null interface is created, never during a call into a log service.
PLATFORM_API extern ACE_Thread_Mutex _g_actualmutex;

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_INTERFACE_REGISTRY_H_
