#ifndef FRAMEWORK_INTERFACE_REGISTRY_H_
#define FRAMEWORK_INTERFACE_REGISTRY_H_

#include <ace/Thread_Mutex.h>

#include <string>
#include <vector>

#include "framework/service_interface.h"
#include "framework/visibility.h"

/// The process-wide registry of interfaces by name. Names are byte strings, compared exactly.
namespace NS_BUNDLEMGR1 {

/// Publishes `interface` under `name`. The registry borrows the pointer; its owner takes it out again.
/// 0 when it is registered. A name that is registered again leads to the interface registered last.
PLATFORM_API int SetIFBuf(const std::string& name, ServiceInterface* interface);

/// The buffer of interfaces registered under `name`, the one to use first in it; null when the name has
/// none. The buffer is the registry's: it stays valid for the life of the process, its elements only
/// until their bundles go. An interface lookup may append to it while it holds `_g_actualmutex`.
PLATFORM_API std::vector<ServiceInterface*>* CheckIFBuf(const std::string& name);

/// The framework's global mutex. Held while an interface search runs and while a null interface is made;
/// never across a call into a log service.
PLATFORM_API extern ACE_Thread_Mutex _g_actualmutex;

}  // namespace NS_BUNDLEMGR1

#endif  // FRAMEWORK_INTERFACE_REGISTRY_H_
