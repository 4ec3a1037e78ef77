// The lookup that the header compiles into every bundle: registry first, then a search through all service
// objects under the lock. Callers were compiled with it, so each step and its order are fixed.

#include "framework/interface_lookup.h"

#include <ace/Thread_Mutex.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "framework/interface_registry.h"
#include "tests/counters_at_abort.h"
#include "tests/recording_fixture.h"

// The handler of unexpected exceptions is deprecated; these tests install one.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

using NS_BUNDLEMGR1::FetchInterface;
using NS_BUNDLEMGR1::InterfaceNotExistException;
using NS_BUNDLEMGR1::InterfaceRef;
using NS_BUNDLEMGR1::NULLServiceInterface;
using NS_BUNDLEMGR1::ServiceInterface;
using NS_BUNDLEMGR1::ServiceObjectBase;
using NS_LOG_SERVICE1::LogSvcInterface;
using recording::LogService;
using recording::OtherInterface;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The next allocation after this buffer was filled empties it, as if another thread did so.
std::vector<ServiceInterface*>* emptiedByNextAllocation = nullptr;

}  // namespace

// Not inlined: the compiler would otherwise warn about a mismatched pair of new and delete.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (emptiedByNextAllocation != nullptr && !emptiedByNextAllocation->empty()) {
    emptiedByNextAllocation->clear();
    emptiedByNextAllocation = nullptr;
  }
  if (void* const piece = std::malloc(size); piece != nullptr) {
    return piece;
  }
  throw std::bad_alloc();
}
// ACE allocates with this form and frees with the plain one; both must use the same heap.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* piece) noexcept { std::free(piece); }
[[gnu::noinline]] void operator delete(void* piece, std::size_t) noexcept { std::free(piece); }

namespace {

/// A service object with the interface that the test gives it, or none.
class ServiceObject : public ServiceObjectBase {
 public:
  explicit ServiceObject(ServiceInterface* interface = nullptr) : ServiceObjectBase("bundle", "service") {
    interface_ = interface;
  }
};

class FetchInterfaceTest : public recording::FrameworkTest {
 protected:
  FetchInterfaceTest() {
    ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
    framework.bundles = {&first, &second};
    framework.ForgetCalls();
  }

  LogSvcInterface* Fetch(std::vector<ServiceInterface*>* out = nullptr) {
    return FetchInterface<LogSvcInterface>(ref, out);
  }

  /// The code of the exception that the lookup throws; 0 when it throws none.
  int CodeThrown(std::vector<ServiceInterface*>* out = nullptr) {
    try {
      Fetch(out);
    } catch (InterfaceNotExistException& missing) {
      EXPECT_EQ(missing.detail, 0);
      EXPECT_EQ(missing.stream1.str() + missing.stream2.str() + missing.stream3.str() + missing.stream4.str(),
                "");
      EXPECT_STREQ(missing.what(), "std::exception");
      return missing.code;
    }
    return 0;
  }

  /// A service object whose interface is a log service, which it owns.
  ServiceObject* NewLogObject() { return Keep(new LogService); }
  ServiceObject* Keep(ServiceInterface* interface) {
    objects.push_back(std::make_unique<ServiceObject>(interface));
    framework.ForgetCalls();
    return objects.back().get();
  }
  static LogSvcInterface* InterfaceOf(ServiceObject* object) {
    return dynamic_cast<LogSvcInterface*>(object->GetInterface());
  }

  InterfaceRef ref;
  std::vector<ServiceInterface*> buffer;
  recording::Bundle first{"first"};
  recording::Bundle second{"second"};
  std::vector<std::unique_ptr<ServiceObject>> objects;
};

class FetchInterfaceFast : public FetchInterfaceTest {};
class FetchInterfaceSearch : public FetchInterfaceTest {};
class FetchInterfaceDeath : public FetchInterfaceTest {};

// --- A filled buffer

TEST_F(FetchInterfaceFast, ReturnsTheFirstElementWithoutAskingTheBundleManager) {
  LogService one;
  LogService two;
  buffer = {&one, &two};
  ref.buffer = &buffer;
  EXPECT_EQ(Fetch(), &one);
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(FetchInterfaceFast, TakesNoLock) {
  LogService one;
  buffer = {&one};
  ref.buffer = &buffer;
  const recording::MutexHeld held;
  EXPECT_EQ(Fetch(), &one);
}

TEST_F(FetchInterfaceFast, CopiesTheBufferToOut) {
  LogService one;
  OtherInterface two;
  buffer = {&one, &two};
  ref.buffer = &buffer;
  std::vector<ServiceInterface*> out(5);
  EXPECT_EQ(Fetch(&out), &one);
  EXPECT_THAT(out, ElementsAre(&one, &two));
}

TEST_F(FetchInterfaceFast, TreatsAnElementOfAnotherTypeAsAMissingInterface) {
  OtherInterface other;
  buffer = {&other};
  ref.buffer = &buffer;
  EXPECT_EQ(Fetch(), nullptr);
  buffer = {nullptr};
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

// --- The search

TEST_F(FetchInterfaceSearch, ReturnsAMatchWithoutABufferAndCachesNothing) {
  ServiceObject* const object = NewLogObject();
  first.objects["log"] = object;
  EXPECT_EQ(Fetch(), InterfaceOf(object));
  EXPECT_EQ(ref.buffer, nullptr);
  EXPECT_THAT(framework.Calls(), ElementsAre("GetAllBundles()", "GetServiceObjects(\"first\") [mutex held]"));
}

TEST_F(FetchInterfaceSearch, CachesTheOnlyMatchInAnEmptyBufferAndReturnsIt) {
  ServiceObject* const object = NewLogObject();
  second.objects["log"] = object;
  ref.buffer = &buffer;
  std::vector<ServiceInterface*> out;
  EXPECT_EQ(Fetch(&out), InterfaceOf(object));
  EXPECT_THAT(buffer, ElementsAre(object->GetInterface()));
  EXPECT_THAT(out, ElementsAre(object->GetInterface()));
  EXPECT_THAT(framework.Calls(), ElementsAre("GetAllBundles()", "GetServiceObjects(\"first\") [mutex held]",
                                             "GetServiceObjects(\"second\") [mutex held]"));
  framework.ForgetCalls();
  EXPECT_EQ(Fetch(), InterfaceOf(object));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

// Required: the first match is cached and the second is returned.
TEST_F(FetchInterfaceSearch, CachesTheFirstOfTwoMatchesAndReturnsTheSecond) {
  ServiceObject* const one = NewLogObject();
  ServiceObject* const two = NewLogObject();
  first.objects["a"] = one;
  first.objects["b"] = two;
  ref.buffer = &buffer;
  std::vector<ServiceInterface*> out;
  EXPECT_EQ(Fetch(&out), InterfaceOf(two));
  EXPECT_THAT(buffer, ElementsAre(one->GetInterface()));
  EXPECT_THAT(out, IsEmpty());
  EXPECT_EQ(Fetch(), InterfaceOf(one));
}

TEST_F(FetchInterfaceSearch, ContinuesInTheNextBundleAfterTheFirstMatch) {
  ServiceObject* const one = NewLogObject();
  ServiceObject* const two = NewLogObject();
  ServiceObject* const three = NewLogObject();
  first.objects["z"] = one;
  second.objects["b"] = three;
  second.objects["a"] = two;
  ref.buffer = &buffer;
  EXPECT_EQ(Fetch(), InterfaceOf(two));
  EXPECT_THAT(buffer, ElementsAre(one->GetInterface()));
}

TEST_F(FetchInterfaceSearch, VisitsServiceObjectsInTheOrderOfTheirNames) {
  ServiceObject* const late = NewLogObject();
  ServiceObject* const early = NewLogObject();
  first.objects["b"] = late;
  first.objects["a"] = early;
  EXPECT_EQ(Fetch(), InterfaceOf(early));
}

TEST_F(FetchInterfaceSearch, SkipsObjectsWithoutAnInterfaceOrWithAnotherOne) {
  ServiceObject* const object = NewLogObject();
  first.objects["a"] = nullptr;
  first.objects["b"] = Keep(nullptr);
  first.objects["c"] = Keep(new OtherInterface);
  first.objects["d"] = object;
  EXPECT_EQ(Fetch(), InterfaceOf(object));
}

TEST_F(FetchInterfaceSearch, ThrowsWhenNothingMatches) {
  first.objects["a"] = Keep(new OtherInterface);
  ref.buffer = &buffer;
  std::vector<ServiceInterface*> out(1);
  EXPECT_EQ(CodeThrown(&out), 0x41180004);
  EXPECT_THAT(buffer, IsEmpty());
  EXPECT_EQ(out.size(), 1U);
}

TEST_F(FetchInterfaceSearch, ThrowsWhenTheBufferIsEmptyAgainAfterItWasCopied) {
  first.objects["log"] = NewLogObject();
  framework.bundles = {&first};
  ref.buffer = &buffer;
  std::vector<ServiceInterface*> out;
  emptiedByNextAllocation = &buffer;
  EXPECT_EQ(CodeThrown(&out), 0x41180004);
  EXPECT_EQ(emptiedByNextAllocation, nullptr);
  EXPECT_EQ(out.size(), 1U);
}

TEST_F(FetchInterfaceSearch, ThrowsWithoutABufferAndWithoutBundles) {
  framework.bundles.clear();
  EXPECT_EQ(CodeThrown(), 0x41180004);
  EXPECT_THAT(framework.Calls(), ElementsAre("GetAllBundles()"));
}

TEST_F(FetchInterfaceSearch, ReleasesTheLockHoweverItEnds) {
  EXPECT_EQ(CodeThrown(), 0x41180004);
  EXPECT_EQ(NS_BUNDLEMGR1::_g_actualmutex.tryacquire(), 0);
  NS_BUNDLEMGR1::_g_actualmutex.release();
  first.objects["log"] = NewLogObject();
  Fetch();
  EXPECT_EQ(NS_BUNDLEMGR1::_g_actualmutex.tryacquire(), 0);
  NS_BUNDLEMGR1::_g_actualmutex.release();
}

TEST_F(FetchInterfaceSearch, SearchesTheNamedBundleOnly) {
  ServiceObject* const object = NewLogObject();
  first.objects["log"] = NewLogObject();
  second.objects["log"] = object;
  ref.bundleName = "second";
  framework.ForgetCalls();
  EXPECT_EQ(Fetch(), InterfaceOf(object));
  EXPECT_THAT(framework.Calls(),
              ElementsAre("GetBundle(\"second\")", "GetServiceObjects(\"second\") [mutex held]"));
}

TEST_F(FetchInterfaceSearch, ThrowsWhenTheNamedBundleIsNotLoaded) {
  first.objects["log"] = NewLogObject();
  ref.bundleName = "third";
  EXPECT_EQ(CodeThrown(), 0x41180004);
  EXPECT_THAT(framework.Calls(), ElementsAre("GetBundle(\"third\")"));
}

TEST_F(FetchInterfaceSearch, ExaminesTheNamedServiceObjectOfEachBundleOnly) {
  ServiceObject* const one = NewLogObject();
  ServiceObject* const two = NewLogObject();
  first.objects["a"] = NewLogObject();
  first.objects["log"] = one;
  first.objects["z"] = NewLogObject();
  second.objects["log"] = two;
  ref.serviceName = "log";
  EXPECT_EQ(Fetch(), InterfaceOf(one));
  ref.buffer = &buffer;
  EXPECT_EQ(Fetch(), InterfaceOf(two));
  EXPECT_THAT(buffer, ElementsAre(one->GetInterface()));
}

TEST_F(FetchInterfaceSearch, ContinuesWithTheNextBundleWhenTheNamedObjectIsMissing) {
  ServiceObject* const object = NewLogObject();
  first.objects["a"] = NewLogObject();
  first.objects["logg"] = NewLogObject();
  second.objects["log"] = object;
  ref.serviceName = "log";
  EXPECT_EQ(Fetch(), InterfaceOf(object));
}

TEST_F(FetchInterfaceSearch, ReturnsNullWhenTheLockCannotBeTaken) {
  first.objects["log"] = NewLogObject();
  framework.ForgetCalls();
  const recording::MutexHeld held;
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_THAT(framework.Calls(), ElementsAre("GetAllBundles() [mutex held]"));
}

// Another thread may fill the buffer between the first check and the lock.
TEST_F(FetchInterfaceSearch, ChecksTheBufferAgainUnderTheLock) {
  LogService other;
  first.objects["log"] = NewLogObject();
  ref.buffer = &buffer;
  framework.On("GetAllBundles", [&] { buffer.push_back(&other); });
  std::vector<ServiceInterface*> out;
  EXPECT_EQ(Fetch(&out), &other);
  EXPECT_THAT(out, ElementsAre(&other));
  EXPECT_THAT(framework.Calls(), ElementsAre("GetAllBundles()"));
}

TEST_F(FetchInterfaceSearch, AnswersSeveralThreadsAtOnce) {
  ServiceObject* const object = NewLogObject();
  first.objects["log"] = object;
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      // The fast path reads the buffer without a lock, so each thread starts after it, with an empty buffer.
      std::vector<ServiceInterface*> empty;
      InterfaceRef own;
      own.buffer = &empty;
      own.lock = &NS_BUNDLEMGR1::_g_actualmutex;
      for (int turn = 0; turn < 50; ++turn) {
        wrong += FetchInterface<LogSvcInterface>(own) == InterfaceOf(object) && empty.size() == 1 ? 0 : 1;
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong.load(), 0);
}

// --- Other exceptions

[[noreturn]] void SayGoodbye() {
  std::fputs("handler called\n", stderr);
  std::_Exit(3);
}

[[noreturn]] void ThrowNotExist() {
  InterfaceNotExistException replacement;
  replacement.code = 77;
  throw replacement;
}

[[noreturn]] void ThrowSomethingElse() {
  KeepCountersAtAbort();
  throw NS_BUNDLEMGR1::ProcessException();
}

TEST_F(FetchInterfaceDeath, AnyOtherExceptionEndsTheProcess) {
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  EXPECT_EXIT(Fetch(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(FetchInterfaceDeath, AnExceptionOfTheBaseClassEndsTheProcessToo) {
  framework.On("GetAllBundles", [] { throw NS_BUNDLEMGR1::ProcessException(); });
  EXPECT_EXIT(Fetch(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(FetchInterfaceDeath, AnExceptionUnderTheLockEndsTheProcessToo) {
  framework.On("GetServiceObjects", [] { throw 5; });
  EXPECT_EXIT(Fetch(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(FetchInterfaceDeath, HonoursTheProcesssOwnHandler) {
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  std::set_unexpected(SayGoodbye);
  EXPECT_EXIT(Fetch(), ::testing::ExitedWithCode(3), "handler called");
}

TEST_F(FetchInterfaceDeath, PassesOnAnInterfaceNotExistExceptionOfTheHandler) {
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  const std::unexpected_handler before = std::set_unexpected(ThrowNotExist);
  EXPECT_EQ(CodeThrown(), 77);
  std::set_unexpected(before);
}

TEST_F(FetchInterfaceDeath, EndsTheProcessWhenTheHandlerThrowsSomethingElse) {
  framework.On("GetAllBundles", [] { throw std::runtime_error("bundle manager"); });
  std::set_unexpected(ThrowSomethingElse);
  EXPECT_EXIT(Fetch(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(FetchInterfaceSearch, PassesOnAnInterfaceNotExistExceptionOfTheBundleManager) {
  framework.On("GetAllBundles", ThrowNotExist);
  EXPECT_EQ(CodeThrown(), 77);
}

// --- The null interface

TEST(NullServiceInterface, SaysThatItIsNone) {
  NULLServiceInterface none;
  ServiceInterface& interface = none;
  EXPECT_EQ(interface.GetSvcName(), "NULLServiceInterface!");
  EXPECT_EQ(interface.IsValid(), 0);
}

template <class Base>
class Derived : public Base {};

TEST(NullServiceInterface, CannotBeDerivedFrom) {
  EXPECT_TRUE(std::is_default_constructible_v<NULLServiceInterface>);
  EXPECT_FALSE(std::is_default_constructible_v<Derived<NULLServiceInterface>>);
  EXPECT_TRUE(std::is_default_constructible_v<Derived<OtherInterface>>);
}

}  // namespace
