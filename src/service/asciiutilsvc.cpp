// The bundle's service object, its factory and its exterminator. The framework owns the service object and
// calls it from one thread at a time.

#include "src/service/asciiutilsvc.h"

#include <ace/Assert.h>

#include <string>

#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"
#include "src/log/logmsg.h"

namespace NS_ASCII {

ii_ascii_util::ii_ascii_util() : ServiceObjectBase("ii_asciiagent_bundle", "ii_ascii_util") {
  interface_ = new AsciiUtilInterfaceImpl;
  NS_BUNDLEMGR1::SetIFBuf("AsciiUtilInterface", interface_);
}

ii_ascii_util::~ii_ascii_util() = default;

void ii_ascii_util::SvcHook() {}

NS_BUNDLEMGR1::ServiceInterface* ii_ascii_util::CreateInterface() {
  interface_ = new AsciiUtilInterfaceImpl;
  return interface_;
}

int ii_ascii_util::fini() { return 0; }

int ii_ascii_util::init(int /*argc*/, ACE_TCHAR* /*argv*/[]) {
  if (NS_BUNDLEMGR1::GetCfgDirPath().empty()) {
    LogMessage(messages::kNoConfigDirectory);
    return -1;
  }
  const std::string path = NS_BUNDLEMGR1::GetCfgDirPath() + "ii_asciiagent_bundle/AlarmConfig.csv";
  // Required: the service runs without a configuration file too.
  static_cast<void>(Alarm_Config_Param::Instance()->LoadConfig(path.c_str()));
  LogMessage(messages::kInitSucceeded);
  return 0;
}

}  // namespace NS_ASCII

namespace {

/// The exterminator. Calls ACE's assertion function directly, so that builds without assertions check it too.
void destroy_ii_ascii_util(void* object) {
  auto* const service = static_cast<ACE_Service_Object*>(object);
  if (service == nullptr) {
    __ace_assert("asciiutilsvc", 17, ACE_TEXT("_p != 0"));
  }
  delete service;
}

}  // namespace

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) {
    *exterminator = destroy_ii_ascii_util;
  }
  return new NS_ASCII::ii_ascii_util;
}
