// A bundle that goes wrong in the one way that BROKEN_... names.

#include <ace/Log_Msg.h>

#include <stdexcept>

#include "framework/interface_registry.h"
#include "framework/service_object_base.h"

namespace {

class Interface : public NS_BUNDLEMGR1::ServiceInterface {
 public:
  std::string GetSvcName() override { return "BrokenService"; }
  std::int64_t IsValid() override { return 1; }
};

class Broken : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  Broken() : ServiceObjectBase("broken_bundle", "broken") {
    interface_ = new Interface;
    NS_BUNDLEMGR1::SetIFBuf("BrokenInterface", interface_);
#ifdef BROKEN_FACTORY_THROWS
    throw 42;
#endif
  }

  int init(int /*argc*/, ACE_TCHAR* /*argv*/[]) override {
    NS_BUNDLEMGR1::CheckIFBuf("WantedInterface");
#ifdef BROKEN_LAZY_EXTERMINATOR
    ACE_ERROR((LM_ERROR, ACE_TEXT("a warning of init\n")));
#endif
#ifdef BROKEN_THROWING
    throw std::runtime_error("no wheels");
#endif
#ifdef BROKEN_INIT_FAILS
    return -1;
#else
    return 0;
#endif
  }

  int fini() override {
#if defined(BROKEN_FINI_FAILS)
    return -1;
#elif defined(BROKEN_FINI_THROWS)
    throw std::runtime_error("no brakes");
#else
    return 0;
#endif
  }
};

[[maybe_unused]] void Destroy([[maybe_unused]] void* object) {
#ifndef BROKEN_LAZY_EXTERMINATOR
  delete static_cast<ACE_Service_Object*>(object);
#endif
}

}  // namespace

#define PASTE_TOKENS(a, b) a##b
#define PASTE(a, b) PASTE_TOKENS(a, b)

#ifndef BROKEN_NO_FACTORY
extern "C" PLATFORM_API ACE_Service_Object* PASTE(_make_,
                                                  BUNDLE)(ACE_Service_Object_Exterminator* exterminator) {
#ifdef BROKEN_NULL_FACTORY
  *exterminator = nullptr;
  return nullptr;
#else
  *exterminator = Destroy;
  return new Broken;
#endif
}
#endif
