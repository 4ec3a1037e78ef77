// The list of bundles and their service objects. The process owns the list, objects are borrowed. The list
// has a lock of its own, changes also take `_g_actualmutex`; any thread may call.

#include "host/platform/bundle_mgr.h"

#include <ace/Guard_T.h>

#include <algorithm>
#include <map>
#include <memory>

#include "framework/interface_registry.h"
#include "host/base/mutex.h"

namespace host {
namespace {

using NS_BUNDLEMGR1::Bundle;
using NS_BUNDLEMGR1::BundleMgr;
using NS_BUNDLEMGR1::ServiceObjectBase;

struct Listed {
  std::string service;
  ServiceObjectBase* object;
};

class HostBundle : public Bundle {
 public:
  explicit HostBundle(Mutex& lock) : lock_(lock) {}

  void GetServiceObjects(std::map<std::string, ServiceObjectBase*>& objects) override {
    const MutexLock guard(lock_);
    for (const Listed& listed : services) {
      objects[listed.service] = listed.object;
    }
  }

  std::vector<Listed> services;  // guarded by the table's lock

 private:
  Mutex& lock_;
};

class Table : public BundleMgr {
 public:
  Bundle* GetBundle(const std::string& name) override {
    const MutexLock guard(lock);
    const auto found = bundles.find(name);
    return found == bundles.end() || found->second->services.empty() ? nullptr : found->second.get();
  }

  void GetAllBundles(std::list<Bundle*>& list) override {
    const MutexLock guard(lock);
    for (const auto& [name, bundle] : bundles) {
      if (!bundle->services.empty()) {
        list.push_back(bundle.get());
      }
    }
  }

  Mutex lock;
  std::map<std::string, std::unique_ptr<HostBundle>> bundles HOST_THREAD_SAFETY(guarded_by(lock));
};

/// Never destroyed: service objects may be unlisted while static objects are destroyed.
Table& TheTable() {
  static auto& table = *new Table;
  return table;
}

}  // namespace

void ListService(const std::string& bundle, const std::string& service, ServiceObjectBase* object) {
  const ACE_Guard<ACE_Thread_Mutex> searchGuard(NS_BUNDLEMGR1::_g_actualmutex);
  Table& table = TheTable();
  const MutexLock guard(table.lock);
  auto& place = table.bundles[bundle];
  if (place == nullptr) {
    place = std::make_unique<HostBundle>(table.lock);
  }
  place->services.push_back({service, object});
}

bool UnlistService(const ServiceObjectBase* object) {
  const ACE_Guard<ACE_Thread_Mutex> searchGuard(NS_BUNDLEMGR1::_g_actualmutex);
  Table& table = TheTable();
  const MutexLock guard(table.lock);
  for (const auto& [name, bundle] : table.bundles) {
    auto& services = bundle->services;
    const auto found = std::find_if(services.begin(), services.end(),
                                    [object](const Listed& listed) { return listed.object == object; });
    if (found != services.end()) {
      services.erase(found);
      return true;
    }
  }
  return false;
}

bool IsListed(const ServiceObjectBase* object) {
  const std::vector<ServiceEntry> services = ListServices();
  return std::any_of(services.begin(), services.end(),
                     [object](const ServiceEntry& entry) { return entry.object == object; });
}

std::vector<ServiceEntry> ListServices() {
  Table& table = TheTable();
  const MutexLock guard(table.lock);
  std::vector<ServiceEntry> list;
  for (const auto& [name, bundle] : table.bundles) {
    for (const Listed& listed : bundle->services) {
      list.push_back({name, listed.service, listed.object});
    }
  }
  return list;
}

}  // namespace host

NS_BUNDLEMGR1::BundleMgr* NS_BUNDLEMGR1::BundleMgr::Instance() { return &host::TheTable(); }
