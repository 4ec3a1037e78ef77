// The registry, which owns its buffers until the process ends and borrows the interfaces. It has a lock of
// its own, changes also take `_g_actualmutex`; any thread may call.

#include "host/platform/interface_registry.h"

#include <ace/Guard_T.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

#include "host/base/mutex.h"

namespace NS_BUNDLEMGR1 {

ACE_Thread_Mutex _g_actualmutex;

}  // namespace NS_BUNDLEMGR1

namespace host {
namespace {

using NS_BUNDLEMGR1::ServiceInterface;
using Buffer = std::vector<ServiceInterface*>;

struct Name {
  /// Never shrinks. A deque keeps the addresses of the buffers, which callers hold.
  std::deque<Buffer> buffers;
  Buffer* current = nullptr;
  std::uint64_t lookups = 0;
};

struct Registry {
  Mutex lock;
  std::map<std::string, Name> names HOST_THREAD_SAFETY(guarded_by(lock));
};

/// Never destroyed: bundles may use it while static objects are destroyed.
Registry& TheRegistry() {
  static auto& registry = *new Registry;
  return registry;
}

Buffer& UnusedBuffer(Name& name) {
  for (Buffer& buffer : name.buffers) {
    if (buffer.empty()) {
      return buffer;
    }
  }
  return name.buffers.emplace_back();
}

bool IsFilled(const Buffer* buffer) { return buffer != nullptr && !buffer->empty(); }

}  // namespace

std::vector<InterfaceName> ListInterfaces() {
  Registry& registry = TheRegistry();
  const MutexLock guard(registry.lock);
  std::vector<InterfaceName> list;
  list.reserve(registry.names.size());
  for (const auto& [text, name] : registry.names) {
    list.push_back(
        {text, name.current == nullptr ? Buffer{} : *name.current, name.lookups, !name.buffers.empty()});
  }
  return list;
}

void WithdrawInterface(const ServiceInterface* interface) {
  const ACE_Guard<ACE_Thread_Mutex> searchGuard(NS_BUNDLEMGR1::_g_actualmutex);
  Registry& registry = TheRegistry();
  const MutexLock guard(registry.lock);
  for (auto& [text, name] : registry.names) {
    for (Buffer& buffer : name.buffers) {
      buffer.erase(std::remove(buffer.begin(), buffer.end(), interface), buffer.end());
    }
  }
}

}  // namespace host

namespace NS_BUNDLEMGR1 {

int SetIFBuf(const std::string& name, ServiceInterface* interface) {
  if (interface == nullptr) {
    return -1;
  }
  const ACE_Guard<ACE_Thread_Mutex> searchGuard(_g_actualmutex);
  host::Registry& registry = host::TheRegistry();
  const host::MutexLock guard(registry.lock);
  host::Name& entry = registry.names[name];
  host::Buffer newestFirst{interface};
  if (host::IsFilled(entry.current)) {
    newestFirst.insert(newestFirst.end(), entry.current->begin(), entry.current->end());
  }
  host::Buffer& buffer = host::UnusedBuffer(entry);  // May be the current one, when that is empty.
  buffer = std::move(newestFirst);
  entry.current = &buffer;
  return 0;
}

std::vector<ServiceInterface*>* CheckIFBuf(const std::string& name) {
  host::Registry& registry = host::TheRegistry();
  const host::MutexLock guard(registry.lock);
  host::Name& entry = registry.names[name];
  ++entry.lookups;
  return host::IsFilled(entry.current) ? entry.current : nullptr;
}

}  // namespace NS_BUNDLEMGR1
