#ifndef HOST_PLATFORM_INTERFACE_REGISTRY_H_
#define HOST_PLATFORM_INTERFACE_REGISTRY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "framework/interface_registry.h"

/// The interface registry: the functions that the host needs beyond the platform's two. Interfaces are
/// borrowed; the registry owns the buffers and never frees one.
///
/// A name without a registered interface has no buffer: `CheckIFBuf` returns null. Another registration uses
/// a new buffer and leaves the old one unchanged, because lookups read buffers without a lock. Only
/// `WithdrawInterface` changes a buffer that was returned; callers must have dropped the interface by then.
/// Emptied buffers are reused for the same name, so repeated loads do not grow the registry.
///
/// Threads: any, at any time. Changes are made under `_g_actualmutex`, because an interface search appends to
/// buffers under it.
namespace host {

/// The current state of one name of the registry.
struct InterfaceName {
  std::string name;
  std::vector<NS_BUNDLEMGR1::ServiceInterface*> interfaces;  ///< the one in use first; borrowed
  std::uint64_t lookups = 0;
  bool everRegistered = false;  ///< false: every lookup has failed so far
};

/// Every name that was ever registered or looked up, in byte order.
PLATFORM_API std::vector<InterfaceName> ListInterfaces();

/// Removes `interface` from every buffer of every name; the one registered before it is in use again. Does
/// nothing when it is not registered.
PLATFORM_API void WithdrawInterface(const NS_BUNDLEMGR1::ServiceInterface* interface);

}  // namespace host

#endif  // HOST_PLATFORM_INTERFACE_REGISTRY_H_
