// The platform of the benchmarks: as little as the bundle's objects need, so that the bundle is measured and
// not a framework. The conversion copies, nothing is configured, nobody logs.

#include <ace/Thread_Mutex.h>

#include <cstdarg>
#include <cstdio>

#include "framework/bundle_mgr.h"
#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "framework/platform_util.h"
#include "framework/service_object_base.h"

namespace NS_BUNDLEMGR1 {
namespace {

class NoBundles : public BundleMgr {
 public:
  Bundle* GetBundle(const std::string&) override { return nullptr; }
  void GetAllBundles(std::list<Bundle*>&) override {}
};

}  // namespace

ACE_Thread_Mutex _g_actualmutex;

BundleMgr* BundleMgr::Instance() {
  static NoBundles manager;
  return &manager;
}

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}
bool CorbaConfigItems::GetIntItemInfo(const std::string&, int&) { return false; }

std::string GetCfgDirPath() { return {}; }
int SetIFBuf(const std::string&, ServiceInterface*) { return 0; }
std::vector<ServiceInterface*>* CheckIFBuf(const std::string&) { return nullptr; }

ServiceObjectBase::ServiceObjectBase(const char* bundle, const char* service) : name_(service) {
  static_cast<void>(bundle);
}
ServiceObjectBase::~ServiceObjectBase() = default;
int ServiceObjectBase::UnRegistSvc() { return 0; }
const char* ServiceObjectBase::GetName() const { return name_; }
void ServiceObjectBase::SvcHook() {}
ServiceInterface* ServiceObjectBase::GetInterface() { return interface_; }
ServiceInterface* ServiceObjectBase::CreateInterface() { return nullptr; }
void ServiceObjectBase::RemoveInterface() {}

}  // namespace NS_BUNDLEMGR1

std::string NSTE_util::Trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string()
                                    : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string NSTE_util::Num2Str(int number) { return std::to_string(number); }

int KelpGlobalUtils::KelpCodeSetConvert(const std::string&, const std::string&, const std::string& input,
                                        std::string& output) {
  output = input;
  return 0;
}

extern "C" int sprintf_s(char* buffer, std::size_t size, const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const int length = std::vsnprintf(buffer, size, format, values);
  va_end(values);
  return length >= 0 && static_cast<std::size_t>(length) < size ? length : -1;
}
