// Loads and unloads bundles on some threads while others look up, list and log. Checks the results; built
// with ThreadSanitizer, also finds data races.
//
// Excluded, because callers must not do it: a search by type, or a call of an interface, while its service
// object is constructed or destroyed.

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "framework/interface_lookup.h"
#include "framework/interface_registry.h"
#include "host/platform/bundle_mgr.h"
#include "host/platform/interface_registry.h"
#include "host/platform/log_service.h"
#include "host/platform/log_sink.h"

namespace {

using NS_BUNDLEMGR1::CheckIFBuf;
using NS_BUNDLEMGR1::ServiceInterface;
using NS_LOG_SERVICE1::LogSvcInterface;

constexpr int kRounds = 300;

class Interface : public ServiceInterface {
 public:
  std::string GetSvcName() override { return "Interface"; }
  std::int64_t IsValid() override { return 1; }
};

class Service : public NS_BUNDLEMGR1::ServiceObjectBase {
 public:
  Service(const char* bundle, const std::string& interfaceName) : ServiceObjectBase(bundle, "service") {
    interface_ = new Interface;
    NS_BUNDLEMGR1::SetIFBuf(interfaceName, interface_);
  }
};

LogSvcInterface* FetchLog() {
  NS_BUNDLEMGR1::InterfaceRef ref;
  ref.buffer = CheckIFBuf("LogSvcInterface");
  ref.lock = &NS_BUNDLEMGR1::_g_actualmutex;
  return NS_BUNDLEMGR1::FetchInterface<LogSvcInterface>(ref);
}

/// Runs every action repeatedly on its own thread while two more threads construct and destroy service
/// objects.
void BesideLoads(const std::vector<std::function<void()>>& actions) {
  std::atomic<int> loading{2};
  std::vector<std::thread> threads;
  for (const char* const bundle : {"first", "second"}) {
    threads.emplace_back([bundle, &loading] {
      for (int round = 0; round < kRounds; ++round) {
        const Service own(bundle, bundle);
        const Service shared(bundle, "shared");
        EXPECT_EQ(CheckIFBuf(bundle)->front()->GetSvcName(), "Interface");
      }
      --loading;
    });
  }
  for (const std::function<void()>& action : actions) {
    threads.emplace_back([&action, &loading] {
      do {
        action();
      } while (loading > 0);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(HostRaces, WhatStaysIsFoundWhileBundlesComeAndGo) {
  const Service staying("staying", "Staying");
  BesideLoads({[] { EXPECT_EQ(CheckIFBuf("Staying")->front()->IsValid(), 1); },
               [] { EXPECT_EQ(CheckIFBuf("Absent"), nullptr); },
               [] {
                 for (const host::InterfaceName& name : host::ListInterfaces()) {
                   EXPECT_LE(name.interfaces.size(), 2U);
                 }
                 EXPECT_LE(host::ListServices().size(), 5U);
               },
               [&staying] {
                 EXPECT_TRUE(host::IsListed(&staying));
                 EXPECT_NE(NS_BUNDLEMGR1::BundleMgr::Instance()->GetBundle("staying"), nullptr);
                 std::list<NS_BUNDLEMGR1::Bundle*> bundles;
                 NS_BUNDLEMGR1::BundleMgr::Instance()->GetAllBundles(bundles);
                 for (NS_BUNDLEMGR1::Bundle* const bundle : bundles) {
                   std::map<std::string, NS_BUNDLEMGR1::ServiceObjectBase*> objects;
                   bundle->GetServiceObjects(objects);
                   EXPECT_LE(objects.size(), 1U);
                 }
               }});
  EXPECT_EQ(CheckIFBuf("first"), nullptr);
  EXPECT_EQ(CheckIFBuf("shared"), nullptr);
  EXPECT_EQ(host::ListServices().size(), 1U);
}

TEST(HostRaces, EveryRecordArrivesWhileBundlesComeAndGo) {
  const host::LogService service;
  const host::LogCapture all;
  std::atomic<std::size_t> written{0};
  const auto logTo = [&written](const char* channel) {
    return [&written, channel] {
      // Deleted at once, so that loggers are created and destroyed as well.
      const std::unique_ptr<NS_LOG_SERVICE1::Logger> logger(
          FetchLog()->GetLogger("bundle", "service", channel));
      logger->Log("unit", "f", 1, 1, channel);
      ++written;
    };
  };
  BesideLoads({logTo("one"), logTo("two"), [] {
                 const host::LogCapture passing;
                 host::SetLogLevel(host::LogLevel() == 0 ? 1 : 0);
                 const std::size_t kept = passing.Records().size();
                 EXPECT_LE(kept, passing.Count());
               }});
  host::SetLogLevel(0);
  EXPECT_EQ(all.Count(), written);
}

}  // namespace
