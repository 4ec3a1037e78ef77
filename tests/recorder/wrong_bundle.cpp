// A copy of the bundle in which one operation is wrong; the environment variable WRONG_OPERATION names it.

#include <cstdlib>
#include <string>

#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "framework/service_object_base.h"
#include "src/alarmconfig/almconfig.h"
#include "src/interface/asciiutilifimpl.h"

namespace {

bool IsWrong(const char* operation) {
  const char* const wrong = std::getenv("WRONG_OPERATION");
  return wrong != nullptr && std::string(wrong) == operation;
}

class WrongImplementation : public NS_ASCII::AsciiUtilInterfaceImpl {
  using Right = NS_ASCII::AsciiUtilInterfaceImpl;

 public:
  std::string ToUpper(const std::string& text) override {
    return IsWrong("ToUpper") ? Right::ToUpper(text) + '\n' : Right::ToUpper(text);
  }
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override {
    const std::int64_t before = value;
    const std::int64_t result = Right::GetAlmCfgValue(value, key1, key2, key3, numKey);
    if (IsWrong("GetAlmCfgValue") && result == 0 && value == 0) {
      value = before;  // Leaves the out value unchanged instead of writing 0.
    }
    return result;
  }
  std::int64_t SplitStr(const std::string& text, const std::string& separator,
                        std::vector<std::string>& pieces) override {
    if (IsWrong("SplitStr")) {
      pieces.clear();
    }
    return Right::SplitStr(text, separator, pieces);
  }
  std::int64_t ParseListMap(NS_ASCII::ListMap& map, const std::string& text) override {
    if (IsWrong("ParseListMap")) {
      throw std::string("not an exception of the standard library");
    }
    return Right::ParseListMap(map, text);
  }
};

class WrongBundle : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  WrongBundle() : ServiceObjectBase("ii_asciiagent_bundle", "wrong_bundle") {
    interface_ = new WrongImplementation;
    NS_BUNDLEMGR1::SetIFBuf("AsciiUtilInterface", interface_);
  }
  int fini() override { return 0; }
  int init(int /*argc*/, ACE_TCHAR* /*argv*/[]) override {
    const std::string path = NS_BUNDLEMGR1::GetCfgDirPath() + "ii_asciiagent_bundle/AlarmConfig.csv";
    return NS_ASCII::Alarm_Config_Param::Instance()->LoadConfig(path.c_str());
  }
};

void Destroy(void* object) { delete static_cast<ACE_Service_Object*>(object); }

}  // namespace

extern "C" PLATFORM_API ACE_Service_Object* _make_wrong_bundle(
    ACE_Service_Object_Exterminator* exterminator) {
  if (exterminator != nullptr) {
    *exterminator = Destroy;
  }
  return new WrongBundle;
}
