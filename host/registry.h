#ifndef HOST_REGISTRY_H_
#define HOST_REGISTRY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "framework/interface_registry.h"

/// The host's side of the interface registry: what its own parts need beyond the platform's two functions.
///
/// How the buffers behave: a name without a living interface has none, so `CheckIFBuf` answers null and a
/// lookup has nothing to cache into. A registration behind an existing one makes a new buffer and leaves the
/// old one as it is, because lookups read buffers without a lock; only a withdrawal changes a buffer that was
/// handed out, and whoever still reads the withdrawn interface then has lost anyway. Emptied buffers are
/// used again for the same name, so loading and unloading for ever does not grow.
///
/// Threads: any, at any time. Changes are made under `_g_actualmutex`, as an interface search may be
/// appending.
namespace host {

/// One name of the registry, as it is now.
struct InterfaceName {
  std::string name;
  std::vector<NS_BUNDLEMGR1::ServiceInterface*> interfaces;  ///< first the one in use; borrowed
  std::uint64_t lookups = 0;                                 ///< how often the name was asked for
  bool everRegistered = false;                               ///< false: somebody waits for it in vain
};

/// Every name that was ever registered or looked up, in byte order.
PLATFORM_API std::vector<InterfaceName> ListInterfaces();

/// Takes `interface` out of every buffer of every name. The one registered before it, if it still lives,
/// leads again. Nothing happens when it is not registered.
PLATFORM_API void WithdrawInterface(const NS_BUNDLEMGR1::ServiceInterface* interface);

}  // namespace host

#endif  // HOST_REGISTRY_H_
