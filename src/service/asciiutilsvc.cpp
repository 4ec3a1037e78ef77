#include "src/asciiutilsvc.h"

#include <ace/Assert.h>

#include <string>

#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "src/almconfig.h"
#include "src/asciiutilifimpl.h"
#include "src/logmsg.h"

namespace NS_ASCII {
namespace {

constexpr const char* kTag = "asciiutilsvc";
constexpr int kLevel = 2;

}  // namespace

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
    LogMessage(kTag, 25, kLevel, "Get environment variable kelp failed !!");
    return -1;
  }
  const std::string path = NS_BUNDLEMGR1::GetCfgDirPath() + "ii_asciiagent_bundle/AlarmConfig.csv";
  // Loaded or not, the service runs.
  static_cast<void>(Alarm_Config_Param::Instance()->LoadConfig(path.c_str()));
  LogMessage(kTag, 32, kLevel, "run successfull!! ");
  return 0;
}

}  // namespace NS_ASCII

namespace {

/// The exterminator. ACE's own assertion is called directly, so that it holds in every build.
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
