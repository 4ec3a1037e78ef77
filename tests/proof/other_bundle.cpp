// A library with the bundle's factory whose interface has another service name.

#include "framework/interface_registry.h"
#include "framework/service_object_base.h"
#include "src/interface/asciiutilifimpl.h"
#include "src/service/asciiutilsvc.h"

namespace {

class OtherInterface : public NS_ASCII::AsciiUtilInterfaceImpl {
 public:
  std::string GetSvcName() override { return "OtherService"; }
};

class OtherService : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  OtherService() : ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util") {
    interface_ = new OtherInterface;
    NS_BUNDLEMGR1::SetIFBuf("AsciiUtilInterface", interface_);
  }
};

}  // namespace

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator) {
  *exterminator = [](void* object) { delete static_cast<ACE_Service_Object*>(object); };
  return new OtherService;
}
