// A bundle with one fault, selected by the macro BROKEN_... that it is compiled with.

#include <ace/Log_Msg.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "framework/interface_registry.h"
#include "framework/service_object_base.h"

#define TEXT_OF_TOKENS(a) #a
#define TEXT_OF(a) TEXT_OF_TOKENS(a)

#ifdef BROKEN_MISSING_SYMBOL
extern "C" int MissingEverywhere();
#endif
#ifdef BROKEN_VERSION
/// The version that the fixture is built with, by which tests distinguish old code from new.
extern "C" PLATFORM_API int FixtureVersion() { return BROKEN_VERSION; }
#endif
#ifdef BROKEN_PAIR_BASE
extern "C" PLATFORM_API int PairBase() { return 1; }
#endif
#ifdef BROKEN_PAIR_USER
extern "C" int PairBase();
#endif

namespace {

#ifdef BROKEN_CONSTRUCTOR_CRASHES
[[maybe_unused]] const int atLoad = std::raise(SIGSEGV);
#endif
#ifdef BROKEN_CONSTRUCTOR_EXITS
[[maybe_unused]] const int atLoad = (std::exit(3), 0);
#endif
#ifdef BROKEN_CONSTRUCTOR_HANGS
[[maybe_unused]] const int atLoad = [] {
  for (;;) pause();
  return 0;
}();
#endif

#ifdef BROKEN_CONSTRUCTOR_READS
[[maybe_unused]] const int atLoad = [] {
  char byte = '-';
  static_cast<void>(read(STDIN_FILENO, &byte, 1));
  std::printf("constructor read %c\n", byte);
  std::fflush(stdout);
  return 0;
}();
#endif
#ifdef BROKEN_INIT_OVERFLOWS
int Recurse(volatile char* from) {  // NOLINT(misc-no-recursion): overflows the stack.
  volatile char page[4096];
  page[0] = *from;
  return page[0] == 1 ? 0 : Recurse(page) + page[0];
}
#endif

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
#ifdef BROKEN_FACTORY_CRASHES
    std::abort();
#endif
  }

  int init([[maybe_unused]] int argc, [[maybe_unused]] ACE_TCHAR* argv[]) override {
#if defined(BROKEN_TALKS) || defined(BROKEN_TALKS_TOO)
    std::printf("%s: init with %d arguments%s\n", TEXT_OF(BUNDLE), argc,
                argv[argc] == nullptr ? " and a null after them" : "");
    for (int at = 0; at < argc; ++at) std::puts(argv[at]);
    std::fflush(stdout);
#endif
    if (argc == 1 && std::strcmp(argv[0], "fail") == 0) return -1;
#ifdef BROKEN_INIT_OVERFLOWS
    volatile char start = 0;
    return Recurse(&start);
#endif
#ifdef BROKEN_WRAPS
    NS_BUNDLEMGR1::CheckIFBuf("BrokenInterface");
#endif
#ifdef BROKEN_INIT_CRASHES
    std::raise(SIGSEGV);
#endif
#ifdef BROKEN_MISSING_SYMBOL
    MissingEverywhere();
#endif
#ifdef BROKEN_PAIR_USER
    PairBase();
#endif
    NS_BUNDLEMGR1::CheckIFBuf("WantedInterface");
#ifdef BROKEN_LAZY_EXTERMINATOR
    ACE_ERROR((LM_ERROR, ACE_TEXT("a warning of init\n")));
#endif
#ifdef BROKEN_THROWING
    throw std::runtime_error("no wheels");
#endif
#ifdef BROKEN_INIT_HANGS
    static_cast<void>(write(STDOUT_FILENO, "init begins\n", 12));
    ssize_t size = 1;
    for (char byte = 0; size > 0;)
      size = read(STDIN_FILENO, &byte, 1);  // Until the test closes its standard input.
    if (size < 0) static_cast<void>(write(STDOUT_FILENO, "read failed\n", 12));
#endif
#ifdef BROKEN_INIT_FAILS
    ACE_ERROR((LM_ERROR, ACE_TEXT("a reason of init\n")));
    return -1;
#else
    return 0;
#endif
  }

#ifdef BROKEN_SUSPEND_THROWS
  int suspend() override { throw 42; }
#endif

  int fini() override {
#if defined(BROKEN_TALKS) || defined(BROKEN_TALKS_TOO)
    std::printf("%s: fini\n", TEXT_OF(BUNDLE));
    std::fflush(stdout);
#endif
#ifdef BROKEN_FINI_RAISES
    std::raise(SIGTERM);
#endif
#ifdef BROKEN_FINI_CRASHES
    std::raise(SIGFPE);
#endif
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
  new Broken;
  return nullptr;
#else
  *exterminator = Destroy;
  return new Broken;
#endif
}
#endif
