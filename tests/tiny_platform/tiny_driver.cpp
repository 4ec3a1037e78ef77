// Loads a bundle on the tiny platform, calls it and unloads it: tiny_driver BUNDLE. Prints one line for each
// answer, which a test compares; exits 1 when the bundle cannot be loaded.

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include <ace/Service_Object.h>

#include "ascii_util/ascii_util_interface.h"
#include "framework/interface_registry.h"

namespace {

using Factory = ACE_Service_Object* (*)(ACE_Service_Object_Exterminator*);

void Use(NS_ASCII::AsciiUtilInterface& text) {
  std::int64_t value = -1;
  const std::int64_t result = text.GetAlmCfgValue(value, "LINK", "DOWN", "trunk", 7);
  std::printf("GetAlmCfgValue %d %d\n", static_cast<int>(result), static_cast<int>(value));
  std::printf("ToUpper %s\n", text.ToUpper("abc-Xy9").c_str());
  std::printf("GetKeyValue %s\n", text.GetKeyValue("B", "A=1,B=2,C=3").c_str());
  std::printf("GetTimeStamp %zu characters\n", text.GetTimeStamp().size());
  std::printf("IsTransQueltEnabled %d\n", text.IsTransQueltEnabled() ? 1 : 0);
  std::printf("WriteDbgLog %d\n", static_cast<int>(text.WriteDbgLog("dropped")));
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: tiny_driver BUNDLE\n");
    return 2;
  }
  void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::fprintf(stderr, "tiny_driver: %s\n", dlerror());
    return 1;
  }
  const auto factory = reinterpret_cast<Factory>(dlsym(library, "_make_ii_ascii_util"));
  if (factory == nullptr) {
    std::fprintf(stderr, "tiny_driver: %s\n", dlerror());
    return 1;
  }
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const service = factory(&destroy);
  std::printf("init %d\n", service->init(0, nullptr));

  const auto* const buffer = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  if (buffer == nullptr || buffer->empty()) {
    std::fprintf(stderr, "tiny_driver: the bundle has registered no interface\n");
    return 1;
  }
  Use(dynamic_cast<NS_ASCII::AsciiUtilInterface&>(*buffer->front()));

  std::printf("fini %d\n", service->fini());
  destroy(service);
  std::printf("withdrawn %d\n", buffer->empty() ? 1 : 0);
  return dlclose(library) == 0 ? 0 : 1;
}
