// The service object as the service configurator and the framework call it: by slot number.
//
// Slots: 1 and 2 the destructors, 3 to 21 the operations of ACE_Event_Handler, 22 and 23 those of
// ACE_Service_Object, 24 to 29 the framework's own, 30 and 31 `fini` and `init`.

#include <dlfcn.h>

#include <cstring>
#include <string>

#include "tests/contract/loaded_bundle.h"
#include "tests/contract/raw_slots.h"
#include "tests/recording_fixture.h"

namespace {

class ServiceSlots : public recording::FrameworkTest {
 protected:
  template <class Function, class... Arguments>
  auto Call(std::size_t slot, Arguments... arguments) {
    return raw::At<Function>(object, slot)(object, arguments...);
  }

  contract::LoadedBundle bundle;
  void* object = bundle.service();
};

TEST_F(ServiceSlots, Slots3To23AreThoseOfAce) {
  const char* const operations[] = {
      "_ZNK17ACE_Event_Handler10get_handleEv",
      "_ZN17ACE_Event_Handler10set_handleEi",
      "_ZNK17ACE_Event_Handler8priorityEv",
      "_ZN17ACE_Event_Handler8priorityEi",
      "_ZN17ACE_Event_Handler12handle_inputEi",
      "_ZN17ACE_Event_Handler13handle_outputEi",
      "_ZN17ACE_Event_Handler16handle_exceptionEi",
      "_ZN17ACE_Event_Handler14handle_timeoutERK14ACE_Time_ValuePKv",
      "_ZN17ACE_Event_Handler11handle_exitEP11ACE_Process",
      "_ZN17ACE_Event_Handler12handle_closeEim",
      "_ZN17ACE_Event_Handler13handle_signalEiP9siginfo_tP10ucontext_t",
      "_ZN17ACE_Event_Handler14resume_handlerEv",
      "_ZN17ACE_Event_Handler10handle_qosEi",
      "_ZN17ACE_Event_Handler16handle_group_qosEi",
      "_ZN17ACE_Event_Handler7reactorEP11ACE_Reactor",
      "_ZNK17ACE_Event_Handler7reactorEv",
      "_ZNK17ACE_Event_Handler23reactor_timer_interfaceEv",
      "_ZN17ACE_Event_Handler13add_referenceEv",
      "_ZN17ACE_Event_Handler16remove_referenceEv",
      "_ZN18ACE_Service_Object7suspendEv",
      "_ZN18ACE_Service_Object6resumeEv",
  };
  std::size_t slot = 3;
  for (const char* const operation : operations) {
    void* const address = dlsym(RTLD_DEFAULT, operation);
    ASSERT_NE(address, nullptr) << operation;
    EXPECT_EQ(raw::Entry(object, slot), address) << "slot " << slot << " is not " << operation;
    ++slot;
  }
  EXPECT_EQ(slot, 24U);
}

TEST_F(ServiceSlots, Slot24IsUnRegistSvc) {
  framework.ForgetCalls();
  Call<int(void*)>(24);
  EXPECT_THAT(framework.CallsWithoutLog(), testing::ElementsAre("UnRegistSvc(\"ii_ascii_util\")"));
}

TEST_F(ServiceSlots, Slot25IsGetName) { EXPECT_STREQ(Call<const char*(void*)>(25), "ii_ascii_util"); }

TEST_F(ServiceSlots, Slot26IsTheHookAndDoesNothing) {
  framework.ForgetCalls();
  Call<void(void*)>(26);
  EXPECT_THAT(framework.Calls(), testing::IsEmpty());
}

TEST_F(ServiceSlots, Slot27IsGetInterface) { EXPECT_EQ(Call<void*(void*)>(27), bundle.interface()); }

TEST_F(ServiceSlots, Slot28IsCreateInterface) {
  void* const first = bundle.interface();
  void* const second = Call<void*(void*)>(28);
  EXPECT_NE(second, first);
  EXPECT_EQ(Call<void*(void*)>(27), second);
  EXPECT_EQ(bundle.interface(), first) << "it must not register what it makes";
  raw::At<void(void*)>(first, 2)(first);
  framework.Unregister("AsciiUtilInterface");
}

TEST_F(ServiceSlots, Slot29IsRemoveInterface) {
  Call<void(void*)>(29);
  EXPECT_EQ(Call<void*(void*)>(27), nullptr);
  framework.Unregister("AsciiUtilInterface");
}

TEST_F(ServiceSlots, Slot30IsFini) {
  framework.ForgetCalls();
  EXPECT_EQ(Call<int(void*)>(30), 0);
  EXPECT_THAT(framework.Calls(), testing::IsEmpty());
}

TEST_F(ServiceSlots, Slot31IsInit) {
  framework.cfgDir = "";
  EXPECT_EQ((Call<int(void*, int, char**)>(31, 0, nullptr)), -1);
  framework.cfgDir = "/nonexistent/";
  EXPECT_EQ((Call<int(void*, int, char**)>(31, 0, nullptr)), 0);
}

TEST_F(ServiceSlots, ACEsSharedObjectAnswersInitAndFiniWithTheSameFunctions) {
  ACE_Shared_Object* const shared = bundle.service();
  framework.cfgDir = "";
  EXPECT_EQ(shared->init(0, nullptr), -1);
  framework.cfgDir = "/nonexistent/";
  EXPECT_EQ(shared->init(0, nullptr), 0);
  EXPECT_EQ(shared->fini(), 0);
}

}  // namespace
