// The registry of interfaces. A buffer that was returned changes only when an interface is withdrawn,
// because lookups read it without a lock.

#include "host/platform/interface_registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

namespace {

using NS_BUNDLEMGR1::CheckIFBuf;
using NS_BUNDLEMGR1::ServiceInterface;
using NS_BUNDLEMGR1::SetIFBuf;

class Named : public ServiceInterface {
 public:
  ~Named() override { host::WithdrawInterface(this); }
  std::string GetSvcName() override { return "Named"; }
  std::int64_t IsValid() override { return 1; }
};

host::InterfaceName Listed(const std::string& name) {
  const auto list = host::ListInterfaces();
  const auto found =
      std::find_if(list.begin(), list.end(), [&](const auto& entry) { return entry.name == name; });
  return found == list.end() ? host::InterfaceName{} : *found;
}

TEST(Registry, AnUnregisteredNameHasNoBuffer) { EXPECT_EQ(CheckIFBuf("Unregistered"), nullptr); }

TEST(Registry, ARegisteredInterfaceIsTheFirstOfItsBuffer) {
  Named one;
  EXPECT_EQ(SetIFBuf("One", &one), 0);
  ASSERT_NE(CheckIFBuf("One"), nullptr);
  EXPECT_EQ(*CheckIFBuf("One"), std::vector<ServiceInterface*>{&one});
}

TEST(Registry, NoInterfaceIsRefused) {
  EXPECT_NE(SetIFBuf("Null", nullptr), 0);
  EXPECT_EQ(CheckIFBuf("Null"), nullptr);
}

TEST(Registry, TheInterfaceRegisteredLastLeadsUntilItIsWithdrawn) {
  Named older;
  SetIFBuf("Twice", &older);
  {
    Named newer;
    SetIFBuf("Twice", &newer);
    EXPECT_EQ(CheckIFBuf("Twice")->front(), &newer);
  }
  ASSERT_NE(CheckIFBuf("Twice"), nullptr);
  EXPECT_EQ(CheckIFBuf("Twice")->front(), &older);
}

TEST(Registry, TheOlderOneMayGoFirst) {
  auto older = std::make_unique<Named>();
  Named newer;
  SetIFBuf("Order", older.get());
  SetIFBuf("Order", &newer);
  older.reset();
  EXPECT_EQ(*CheckIFBuf("Order"), std::vector<ServiceInterface*>{&newer});
}

TEST(Registry, AWithdrawnInterfaceIsInNoBufferAnyMore) {
  std::vector<ServiceInterface*>* kept = nullptr;
  std::vector<ServiceInterface*>* other = nullptr;
  Named living;
  SetIFBuf("Other", &living);
  {
    Named gone;
    SetIFBuf("Gone", &gone);
    kept = CheckIFBuf("Gone");
    other = CheckIFBuf("Other");
    other->push_back(&gone);  // A lookup caches its result in this way.
  }
  EXPECT_TRUE(kept->empty());
  EXPECT_EQ(*other, std::vector<ServiceInterface*>{&living});
  EXPECT_EQ(CheckIFBuf("Gone"), nullptr);
}

TEST(Registry, ABufferThatWasHandedOutIsNotChangedByAnotherRegistration) {
  Named first;
  Named second;
  SetIFBuf("Stable", &first);
  const auto* const handedOut = CheckIFBuf("Stable");
  SetIFBuf("Stable", &second);
  EXPECT_EQ(*handedOut, std::vector<ServiceInterface*>{&first});
}

TEST(Registry, RegisteringAndWithdrawingForEverUsesTheSameBuffer) {
  const void* buffer = nullptr;
  for (int i = 0; i < 100; ++i) {
    Named named;
    SetIFBuf("Again", &named);
    if (i == 0) buffer = CheckIFBuf("Again");
    EXPECT_EQ(CheckIFBuf("Again"), buffer);
    EXPECT_EQ(*CheckIFBuf("Again"), std::vector<ServiceInterface*>{&named});
  }
}

TEST(Registry, LookupsAreCountedAlsoForNamesThatAreNeverRegistered) {
  CheckIFBuf("Wanted");
  CheckIFBuf("Wanted");
  EXPECT_EQ(Listed("Wanted").lookups, 2U);
  EXPECT_FALSE(Listed("Wanted").everRegistered);
  Named named;
  SetIFBuf("Wanted", &named);
  EXPECT_TRUE(Listed("Wanted").everRegistered);
}

TEST(Registry, AWithdrawnInterfaceLeavesTheBufferThatWasHandedOut) {
  auto first = std::make_unique<Named>();
  SetIFBuf("Handed out", first.get());
  const std::vector<ServiceInterface*>* const buffer = CheckIFBuf("Handed out");
  ASSERT_NE(buffer, nullptr);
  Named second;
  SetIFBuf("Handed out", &second);
  first.reset();
  EXPECT_TRUE(buffer->empty());
}

TEST(Registry, SuccessfulLookupsAreCounted) {
  Named one;
  SetIFBuf("Counted", &one);
  CheckIFBuf("Counted");
  CheckIFBuf("Counted");
  EXPECT_EQ(Listed("Counted").lookups, 2U);
}

TEST(Registry, NamesAreByteStrings) {
  Named named;
  SetIFBuf(std::string("a\0b", 3), &named);
  EXPECT_EQ(CheckIFBuf("a"), nullptr);
  EXPECT_NE(CheckIFBuf(std::string("a\0b", 3)), nullptr);
}

TEST(Registry, LookupsMayRunWhileOthersRegister) {
  Named first;
  SetIFBuf("Busy", &first);
  std::atomic<bool> done{false};
  std::thread reader([&] {
    while (!done) {
      const auto* const buffer = CheckIFBuf("Busy");
      ASSERT_NE(buffer, nullptr);
      ASSERT_NE(buffer->front(), nullptr);
    }
  });
  std::vector<std::unique_ptr<Named>> more;
  for (int i = 0; i < 200; ++i) SetIFBuf("Busy", more.emplace_back(std::make_unique<Named>()).get());
  done = true;
  reader.join();
}

}  // namespace
