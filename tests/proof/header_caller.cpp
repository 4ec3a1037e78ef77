// A caller of the interface that uses only headers: looks the interface up by name and casts it.

#include <string>

#include "ascii_util/ascii_util_interface.h"
#include "framework/interface_registry.h"

extern "C" PLATFORM_API const char* service_name() {
  static std::string name;
  const auto* const found = NS_BUNDLEMGR1::CheckIFBuf("AsciiUtilInterface");
  auto* const util = found == nullptr || found->empty()
                         ? nullptr
                         : dynamic_cast<NS_ASCII::AsciiUtilInterface*>(found->front());
  name = util == nullptr ? "(none)" : util->GetSvcName();
  return name.c_str();
}
