// The base class of service objects: listed from construction to destruction, and owner of its interface.

#include "framework/service_object_base.h"

#include <gtest/gtest.h>

#include <list>
#include <map>
#include <memory>

#include "framework/bundle_mgr.h"
#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "host/platform/bundle_mgr.h"

namespace {

using NS_BUNDLEMGR1::Bundle;
using NS_BUNDLEMGR1::BundleMgr;
using NS_BUNDLEMGR1::ServiceObjectBase;

int living = 0;

class Interface : public NS_BUNDLEMGR1::ServiceInterface {
 public:
  Interface() { ++living; }
  ~Interface() override { --living; }
  std::string GetSvcName() override { return "Interface"; }
  std::int64_t IsValid() override { return 1; }
};

class Service : public ServiceObjectBase {
 public:
  Service(const char* bundle, const char* service) : ServiceObjectBase(bundle, service) {
    interface_ = new Interface;
    NS_BUNDLEMGR1::SetIFBuf("TestInterface", interface_);
  }
};

std::map<std::string, ServiceObjectBase*> ObjectsOf(const std::string& bundle) {
  std::map<std::string, ServiceObjectBase*> objects;
  if (Bundle* const found = BundleMgr::Instance()->GetBundle(bundle); found != nullptr) {
    found->GetServiceObjects(objects);
  }
  return objects;
}

TEST(ServiceObject, IsListedUnderItsBundleFromConstructionToDestruction) {
  EXPECT_EQ(BundleMgr::Instance()->GetBundle("b"), nullptr);
  {
    Service service("b", "s");
    EXPECT_STREQ(service.GetName(), "s");
    EXPECT_EQ(ObjectsOf("b"), (std::map<std::string, ServiceObjectBase*>{{"s", &service}}));
    std::list<Bundle*> all;
    BundleMgr::Instance()->GetAllBundles(all);
    EXPECT_EQ(all, std::list<Bundle*>{BundleMgr::Instance()->GetBundle("b")});
  }
  EXPECT_EQ(BundleMgr::Instance()->GetBundle("b"), nullptr);
  std::list<Bundle*> none;
  BundleMgr::Instance()->GetAllBundles(none);
  EXPECT_TRUE(none.empty());
}

TEST(ServiceObject, DestructionWithdrawsAndDestroysTheInterface) {
  {
    const Service service("b", "s");
    EXPECT_EQ(living, 1);
    EXPECT_NE(NS_BUNDLEMGR1::CheckIFBuf("TestInterface"), nullptr);
  }
  EXPECT_EQ(living, 0);
  EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("TestInterface"), nullptr);
}

TEST(ServiceObject, UnregisteringIsZeroOnceAndMinusOneAfterwards) {
  Service service("b", "s");
  EXPECT_EQ(service.UnRegistSvc(), 0);
  EXPECT_TRUE(ObjectsOf("b").empty());
  EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("TestInterface"), nullptr);
  EXPECT_EQ(living, 1);
  EXPECT_EQ(service.UnRegistSvc(), -1);
}

TEST(ServiceObject, RemovingTheInterfaceForgetsIt) {
  Service service("b", "s");
  service.UnRegistSvc();
  service.RemoveInterface();
  EXPECT_EQ(living, 0);
  EXPECT_EQ(service.GetInterface(), nullptr);
  service.RemoveInterface();
}

TEST(ServiceObject, TheBaseMakesNoInterfaceAndItsHookDoesNothing) {
  ServiceObjectBase service("b", "s");
  EXPECT_EQ(service.GetInterface(), nullptr);
  EXPECT_EQ(service.CreateInterface(), nullptr);
  service.SvcHook();
}

TEST(ServiceObject, OfTwoWithOneNameTheNewerIsFoundAndTheOlderRemains) {
  Service older("b", "s");
  {
    Service newer("b", "s");
    EXPECT_EQ(ObjectsOf("b").at("s"), &newer);
    EXPECT_EQ(host::ListServices().size(), 2U);
  }
  EXPECT_EQ(ObjectsOf("b").at("s"), &older);
  EXPECT_EQ(NS_BUNDLEMGR1::CheckIFBuf("TestInterface")->front(), older.GetInterface());
}

TEST(ServiceObject, ALookupByTypeFindsItAndNothingOnceItIsGone) {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  {
    Service service("b", "s");
    EXPECT_EQ(NS_BUNDLEMGR1::FetchInterface<Interface>(ref), service.GetInterface());
  }
  EXPECT_THROW(NS_BUNDLEMGR1::FetchInterface<Interface>(ref), NS_BUNDLEMGR1::InterfaceNotExistException);
}

}  // namespace
