// A caller as another team writes it: it includes the published headers, links the bundle and the platform,
// fetches the interface by name and calls everything. It is also compiled by another compiler than the
// bundle.
//
//   contract_caller BUNDLE    BUNDLE is the file from which the loader must have loaded the bundle
//
// Prints each broken promise; the exit code is then 1, otherwise 0.

#include <dlfcn.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "ascii_util/ascii_util_interface.h"
#include "ascii_util/text_functions.h"
#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "framework/service_object_base.h"

extern "C" ACE_Service_Object* _make_ii_ascii_util(ACE_Service_Object_Exterminator* exterminator);

namespace {

using Texts = std::vector<std::string>;

int failures = 0;

void Expect(bool holds, const char* what) {
  if (!holds) {
    std::cerr << "contract_caller: not as promised: " << what << '\n';
    ++failures;
  }
}

#define EXPECT_HOLDS(condition) Expect((condition), #condition)

NS_ASCII::AsciiUtilInterface* Fetch(const std::string& name) {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = NS_BUNDLEMGR1::CheckIFBuf(name);
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  return NS_BUNDLEMGR1::FetchInterface<NS_ASCII::AsciiUtilInterface>(ref);
}

void UseSimpleOperations(NS_ASCII::AsciiUtilInterface& util) {
  EXPECT_HOLDS(util.GetSvcName() == "AsciiUtilService");
  EXPECT_HOLDS(util.IsValid() == 1);
  int number = 99;
  EXPECT_HOLDS(util.Str2Num("0x1A", number, 16) && number == 26);
  EXPECT_HOLDS(!util.Str2Num("12abc", number, 10) && number == 12);
  EXPECT_HOLDS(util.GetTimeStamp().size() == 19);
  static_cast<void>(util.IsTransQueltEnabled());
  std::int64_t value = 99;
  EXPECT_HOLDS(util.GetAlmCfgValue(value, "no", "such", "key", 7) == 0 && value == 0);
  EXPECT_HOLDS(util.ToUpper("abc-Xy9") == "ABC-XY9");
  EXPECT_HOLDS(util.IsContain("bc", "abc") && !util.IsContain("abc", "bc"));
  EXPECT_HOLDS(util.WriteDbgLog("a caller's position") == 0);
}

void UseParsingOperations(NS_ASCII::AsciiUtilInterface& util) {
  EXPECT_HOLDS(util.IsKeyValueAboveOne("N", "N=2") && !util.IsKeyValueAboveOne("N", "N=1"));
  EXPECT_HOLDS(util.GetKeyValue("B", "A=1,B=2,C=3") == "2");
  EXPECT_HOLDS(util.GetKeyValue("A", "A=,B=2") == ",B=2");
  NS_ASCII::ListMap map = {{"old", {"gone"}}};
  EXPECT_HOLDS(util.ParseListMap(map, "ALM=x|y, PATH=a-b|c, ALM=z") == 0);
  EXPECT_HOLDS(map == (NS_ASCII::ListMap{{"ALM", {"x", "y"}}, {"PATH", {"a", "b|c"}}}));
  Texts items = {"old"};
  EXPECT_HOLDS(util.GetMapList(map, "PATH", items) == 0 && items == (Texts{"a", "b|c"}));
  EXPECT_HOLDS(util.GetMapList(map, "none", items) == 1 && items == (Texts{"a", "b|c"}));
  Texts pieces = {"kept"};
  EXPECT_HOLDS(util.SplitStr("a, b ,c", ",", pieces) == 0 && pieces == (Texts{"kept", "a", "b", "c"}));
}

void UseTextFunctions() {
  EXPECT_HOLDS(NS_ASCII::Trim("\tab c\r\n") == "ab c");
  EXPECT_HOLDS(NS_ASCII::StrToUpper("abc-xyz 09") == "ABC-XYZ 09");
  EXPECT_HOLDS(NS_ASCII::StrToLower("MiXeD") == "mixed");
  EXPECT_HOLDS(NS_ASCII::Num2Str(-5) == "-5");
  EXPECT_HOLDS(NS_ASCII::utf8toiso8859("\xC3\xA9") == "\xE9");
  EXPECT_HOLDS(NS_ASCII::GetURLEncoding("a/b~") == "a%2fb%7e");
  EXPECT_HOLDS(NS_ASCII::GetURLDecoding("a%2fb") == "a/b");
  EXPECT_HOLDS(NS_ASCII::SetURLDecoding("50% off") == "50%25 off");
}

void MissTheInterface() {
  bool missed = false;
  try {
    Fetch("AsciiUtilInterface");
  } catch (const NS_BUNDLEMGR1::InterfaceNotExistException& missing) {
    missed = missing.code == 0x41180004;
  }
  EXPECT_HOLDS(missed);
}

/// The file that the exported function was loaded from.
std::string FileOfBundle() {
  auto* const factory = &_make_ii_ascii_util;
  void* address;
  std::memcpy(&address, &factory, sizeof address);
  Dl_info info;
  return dladdr(address, &info) == 0 ? std::string() : info.dli_fname;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2 || !std::filesystem::equivalent(FileOfBundle(), argv[1])) {
    std::cerr << "contract_caller: expected one argument, the bundle's file; the loader took "
              << FileOfBundle() << '\n';
    return 1;
  }
  ACE_Service_Object_Exterminator destroy = nullptr;
  ACE_Service_Object* const service = _make_ii_ascii_util(&destroy);
  NS_ASCII::AsciiUtilInterface* const util = Fetch("AsciiUtilInterface");
  EXPECT_HOLDS(util != nullptr);
  EXPECT_HOLDS(dynamic_cast<NS_BUNDLEMGR1::ServiceObjectBase*>(service) != nullptr);
  if (util != nullptr) {
    UseSimpleOperations(*util);
    UseParsingOperations(*util);
  }
  UseTextFunctions();
  EXPECT_HOLDS(service->fini() == 0);
  destroy(service);
  MissTheInterface();
  return failures == 0 ? 0 : 1;
}
