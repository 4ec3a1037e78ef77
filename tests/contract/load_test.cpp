// Loading, unloading and loading again, by the dynamic linker and by ACE's service configurator.

#include <ace/DLL_Manager.h>
#include <ace/Service_Config.h>
#include <dlfcn.h>

#include <cstring>
#include <memory>
#include <string>

#include "ascii_util/ascii_util_interface.h"
#include "tests/contract/loaded_bundle.h"
#include "tests/recording_fixture.h"

namespace {

using contract::LoadedBundle;
using contract::MappingsOfBundle;

class Load : public recording::FrameworkTest {};

NS_ASCII::AsciiUtilInterface* RegisteredInterface() {
  recording::Framework::Buffer* const buffer =
      recording::Framework::Instance().BufferOf("AsciiUtilInterface");
  if (buffer == nullptr || buffer->empty()) {
    return nullptr;
  }
  return dynamic_cast<NS_ASCII::AsciiUtilInterface*>(buffer->front());
}

TEST_F(Load, ALoadedBundleOffersNoSymbolToOthers) {
  const LoadedBundle bundle;
  EXPECT_NE(bundle.Symbol("_make_ii_ascii_util"), nullptr);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "_make_ii_ascii_util"), nullptr);
}

TEST_F(Load, TheInterfaceOfALocallyLoadedBundleCanBeCastToItsType) {
  const LoadedBundle bundle;
  ASSERT_NE(RegisteredInterface(), nullptr);
  EXPECT_EQ(RegisteredInterface()->GetSvcName(), "AsciiUtilService");
}

TEST_F(Load, AnUnloadUnmapsTheBundle) {
  ASSERT_EQ(MappingsOfBundle(), 0);
  {
    const LoadedBundle bundle;
    EXPECT_GT(MappingsOfBundle(), 0);
  }
  EXPECT_EQ(MappingsOfBundle(), 0);
}

TEST_F(Load, AnUnloadUnmapsABundleThatHasLoggedAndLoaded) {
  framework.cfgDir = CONTRACT_BAD_CONFIG_DIR "/";
  {
    const LoadedBundle bundle;
    EXPECT_EQ(bundle.service()->init(0, nullptr), 0);
    EXPECT_EQ(RegisteredInterface()->WriteDbgLog("seen"), 0);
  }
  EXPECT_EQ(framework.Messages().back().text, "seen");
  EXPECT_EQ(MappingsOfBundle(), 0);
}

TEST_F(Load, ASecondLoadStartsWithoutState) {
  for (int round = 0; round < 3; ++round) {
    framework.ForgetCalls();
    const LoadedBundle bundle;
    framework.intItems["IsTransQuelt"] = 1;
    EXPECT_TRUE(RegisteredInterface()->IsTransQueltEnabled());
    // The logger of the previous load was dropped with it, so a new one is requested.
    EXPECT_THAT(framework.Calls(), testing::Contains(testing::StartsWith("GetLogger(")));
  }
}

TEST_F(Load, TheFactoryWithoutAPlaceForTheExterminatorMakesAnObject) {
  const LoadedBundle bundle;
  using Factory = ACE_Service_Object*(ACE_Service_Object_Exterminator*);
  void* const symbol = bundle.Symbol("_make_ii_ascii_util");
  Factory* make;
  std::memcpy(&make, &symbol, sizeof make);
  const std::unique_ptr<ACE_Service_Object> object(make(nullptr));
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->fini(), 0);
}

class LoadByAce : public Load {
 protected:
  // By default ACE uses each library's own unload policy; it keeps a library without a policy mapped until
  // exit.
  LoadByAce() { ACE_DLL_Manager::instance()->unload_policy(ACE_DLL_UNLOAD_POLICY_PER_PROCESS); }

  static int Process(const std::string& directive) {
    return ACE_Service_Config::process_directive(directive.c_str());
  }
  static std::string Dynamic() {
    return "dynamic ii_ascii_util Service_Object * " + contract::BundlePath() + ":_make_ii_ascii_util() \"\"";
  }
};

TEST_F(LoadByAce, TheServiceConfiguratorLoadsInitialisesAndRemovesTheBundle) {
  ASSERT_EQ(MappingsOfBundle(), 0);
  framework.cfgDir = CONTRACT_BAD_CONFIG_DIR "/";
  for (int round = 0; round < 3; ++round) {
    framework.ForgetCalls();
    ASSERT_EQ(Process(Dynamic()), 0);
    EXPECT_EQ(framework.Messages().back().text, "run successfull!! ");
    ASSERT_NE(RegisteredInterface(), nullptr);
    EXPECT_EQ(RegisteredInterface()->ToUpper("abc"), "ABC");
    EXPECT_EQ(Process("remove ii_ascii_util"), 0);
    EXPECT_EQ(RegisteredInterface(), nullptr);
    EXPECT_EQ(MappingsOfBundle(), 0) << "after round " << round;
  }
}

TEST_F(LoadByAce, AFailingInitIsAFailingDirective) {
  framework.cfgDir = "";
  EXPECT_NE(Process(Dynamic()), 0);
  EXPECT_EQ(framework.Messages().back().text, "Get environment variable kelp failed !!");
  EXPECT_EQ(MappingsOfBundle(), 0);
}

}  // namespace
