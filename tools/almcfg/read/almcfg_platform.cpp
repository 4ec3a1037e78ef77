// The platform for the bundle's objects in this program: no bundles, no configuration, no log. With the host's
// text utilities (host/platform/platform_util.cpp) it defines every symbol that framework/ declares, so that
// answers come from the bundle's own operations. Any thread may call.

#include "framework/bundle_mgr.h"
#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "framework/platform_util.h"
#include "framework/service_object_base.h"

namespace {

class NoBundles : public NS_BUNDLEMGR1::BundleMgr {
 public:
  NS_BUNDLEMGR1::Bundle* GetBundle(const std::string& /*name*/) override { return nullptr; }
  void GetAllBundles(std::list<NS_BUNDLEMGR1::Bundle*>& /*bundles*/) override {}
};

}  // namespace

namespace NS_BUNDLEMGR1 {

ACE_Thread_Mutex _g_actualmutex;

int SetIFBuf(const std::string& /*name*/, ServiceInterface* /*interface*/) { return 0; }

std::vector<ServiceInterface*>* CheckIFBuf(const std::string& /*name*/) { return nullptr; }

BundleMgr* BundleMgr::Instance() {
  static NoBundles bundles;
  return &bundles;
}

std::string GetCfgDirPath() { return {}; }

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}

bool CorbaConfigItems::GetIntItemInfo(const std::string& /*name*/, int& /*value*/) { return false; }

ServiceObjectBase::ServiceObjectBase(const char* /*bundle*/, const char* service) : name_(service) {}
ServiceObjectBase::~ServiceObjectBase() { delete interface_; }
int ServiceObjectBase::UnRegistSvc() { return -1; }
const char* ServiceObjectBase::GetName() const { return name_; }
void ServiceObjectBase::SvcHook() {}
ServiceInterface* ServiceObjectBase::GetInterface() { return interface_; }
ServiceInterface* ServiceObjectBase::CreateInterface() { return nullptr; }
void ServiceObjectBase::RemoveInterface() {
  delete interface_;
  interface_ = nullptr;
}

}  // namespace NS_BUNDLEMGR1

namespace KelpGlobalUtils {

int KelpCodeSetConvert(const std::string& /*fromCode*/, const std::string& /*toCode*/,
                       const std::string& /*input*/, std::string& /*output*/) {
  return -1;
}

}  // namespace KelpGlobalUtils
