// The smallest provider of the platform that the bundle can use: a registry, a configuration directory from
// the environment, no configuration items, no other bundles, no log service. It shows in one file what a
// provider must implement, and proves that the bundle needs nothing that only the host has: for both reasons
// it shares no code with other providers. One thread at a time.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "framework/bundle_mgr.h"
#include "framework/config_items.h"
#include "framework/interface_registry.h"
#include "framework/platform_util.h"
#include "framework/service_object_base.h"

namespace NS_BUNDLEMGR1 {
namespace {

/// Buffers are never destroyed, because lookups keep pointers to them.
std::map<std::string, std::vector<ServiceInterface*>>& Registry() {
  static std::map<std::string, std::vector<ServiceInterface*>> registry;
  return registry;
}

class NoBundles : public BundleMgr {
 public:
  Bundle* GetBundle(const std::string& /*name*/) override { return nullptr; }
  void GetAllBundles(std::list<Bundle*>& /*bundles*/) override {}
};

}  // namespace

ACE_Thread_Mutex _g_actualmutex;

int SetIFBuf(const std::string& name, ServiceInterface* interface) {
  Registry()[name].assign(1, interface);
  return 0;
}

std::vector<ServiceInterface*>* CheckIFBuf(const std::string& name) {
  const auto entry = Registry().find(name);
  return entry == Registry().end() ? nullptr : &entry->second;
}

BundleMgr* BundleMgr::Instance() {
  static NoBundles bundles;
  return &bundles;
}

std::string GetCfgDirPath() {
  const char* const directory = std::getenv("TINY_CONFIG_DIR");
  return directory == nullptr ? "" : std::string(directory) + "/";
}

CorbaConfigItems* CorbaConfigItems::Instance() {
  static CorbaConfigItems items;
  return &items;
}

bool CorbaConfigItems::GetIntItemInfo(const std::string& /*name*/, int& /*value*/) { return false; }

ServiceObjectBase::ServiceObjectBase(const char* /*bundle*/, const char* service) : name_(service) {}

ServiceObjectBase::~ServiceObjectBase() {
  ServiceObjectBase::UnRegistSvc();
  ServiceObjectBase::RemoveInterface();
}

int ServiceObjectBase::UnRegistSvc() {
  for (auto& entry : Registry()) {
    auto& buffer = entry.second;
    if (!buffer.empty() && buffer.front() == interface_) {
      buffer.clear();
      return 0;
    }
  }
  return -1;
}

const char* ServiceObjectBase::GetName() const { return name_; }
void ServiceObjectBase::SvcHook() {}
ServiceInterface* ServiceObjectBase::GetInterface() { return interface_; }
ServiceInterface* ServiceObjectBase::CreateInterface() { return nullptr; }

void ServiceObjectBase::RemoveInterface() {
  delete interface_;
  interface_ = nullptr;
}

}  // namespace NS_BUNDLEMGR1

std::string NSTE_util::Trim(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\n\r");
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\n\r") - first + 1);
}

std::string NSTE_util::Num2Str(int number) { return std::to_string(number); }

// ASCII only: every other byte cannot be converted.
int KelpGlobalUtils::KelpCodeSetConvert(const std::string& /*fromCode*/, const std::string& /*toCode*/,
                                        const std::string& input, std::string& output) {
  output = input;
  int unknown = 0;
  for (char& c : output) {
    if (static_cast<unsigned char>(c) > 0x7F) {
      c = '?';
      ++unknown;
    }
  }
  return unknown;
}

int sprintf_s(char* buffer, std::size_t size, const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  const int written = std::vsnprintf(buffer, size, format, values);
  va_end(values);
  return written >= 0 && static_cast<std::size_t>(written) < size ? written : -1;
}
