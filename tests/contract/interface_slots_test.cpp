// The operations as compiled callers call them: by slot number, through the raw table of the interface that
// the loaded bundle registers.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/contract/loaded_bundle.h"
#include "tests/contract/raw_slots.h"
#include "tests/recording_fixture.h"

namespace {

using Text = const std::string&;
using Texts = std::vector<std::string>;
using Map = std::map<std::string, Texts>;

class InterfaceSlots : public recording::FrameworkTest {
 protected:
  template <class Function, class... Arguments>
  auto Call(std::size_t slot, Arguments&&... arguments) {
    void* const object = bundle.interface();
    return raw::At<Function>(object, slot)(object, std::forward<Arguments>(arguments)...);
  }

  contract::LoadedBundle bundle;
};

TEST_F(InterfaceSlots, Slots1And2AreTheDestructors) {
  // The second entry frees the object, the first leaves its memory to the caller; under AddressSanitizer a
  // mix-up of the two is a double free or a leak. Slot 28 of the service object makes a new interface.
  const auto make = raw::At<void*(void*)>(bundle.service(), 28);
  void* const first = bundle.interface();
  raw::At<void(void*)>(first, 2)(first);
  framework.Unregister("AsciiUtilInterface");
  void* const second = make(bundle.service());
  raw::At<void(void*)>(second, 1)(second);
  ::operator delete(second);
  make(bundle.service());  // The service object destroys this one.
}

TEST_F(InterfaceSlots, Slot3IsGetSvcName) { EXPECT_EQ(Call<std::string(void*)>(3), "AsciiUtilService"); }

TEST_F(InterfaceSlots, Slot4IsIsValid) { EXPECT_EQ(Call<std::int64_t(void*)>(4), 1); }

TEST_F(InterfaceSlots, Slot5IsStr2Num) {
  int value = 99;
  EXPECT_FALSE((Call<bool(void*, Text, int&, int)>(5, std::string("1Gx"), value, 17)));
  EXPECT_EQ(value, 33);
}

TEST_F(InterfaceSlots, Slot6IsGetTimeStamp) {
  const std::string stamp = Call<std::string(void*)>(6);
  ASSERT_EQ(stamp.size(), 19U);
  EXPECT_EQ(stamp[10], 'T');
}

TEST_F(InterfaceSlots, Slot7IsIsTransQueltEnabled) {
  framework.intItems["IsTransQuelt"] = 1;
  EXPECT_TRUE(Call<bool(void*)>(7));
  framework.intItems["IsTransQuelt"] = 0;
  EXPECT_FALSE(Call<bool(void*)>(7));
}

TEST_F(InterfaceSlots, Slot8IsGetAlmCfgValue) {
  std::int64_t value = 99;
  const int number = 7;
  EXPECT_EQ((Call<std::int64_t(void*, std::int64_t&, Text, Text, Text, const int&)>(
                8, value, std::string("A"), std::string("B"), std::string("C"), number)),
            0);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(framework.Calls().back(), "Trim(\"7\")");
}

TEST_F(InterfaceSlots, Slot9IsToUpper) {
  EXPECT_EQ((Call<std::string(void*, Text)>(9, std::string("abc-Xy9"))), "ABC-XY9");
}

TEST_F(InterfaceSlots, Slot10IsIsContain) {
  EXPECT_TRUE((Call<bool(void*, Text, Text)>(10, std::string("bc"), std::string("abc"))));
  EXPECT_FALSE((Call<bool(void*, Text, Text)>(10, std::string("abc"), std::string("bc"))));
}

TEST_F(InterfaceSlots, Slot11IsIsKeyValueAboveOne) {
  EXPECT_TRUE((Call<bool(void*, Text, Text)>(11, std::string("N"), std::string("N=2"))));
  EXPECT_FALSE((Call<bool(void*, Text, Text)>(11, std::string("N"), std::string("N=1"))));
}

TEST_F(InterfaceSlots, Slot12IsGetKeyValue) {
  EXPECT_EQ((Call<std::string(void*, Text, Text)>(12, std::string("B"), std::string("A=1,B=2,C=3"))), "2");
}

TEST_F(InterfaceSlots, Slot13IsParseListMap) {
  Map map = {{"old", {"x"}}};
  EXPECT_EQ((Call<std::int64_t(void*, Map&, Text)>(13, map, std::string("ALM=x|y, PATH=a-b|c"))), 0);
  EXPECT_EQ(map, (Map{{"ALM", {"x", "y"}}, {"PATH", {"a", "b|c"}}}));
}

TEST_F(InterfaceSlots, Slot14IsGetMapList) {
  const Map map = {{"ALM", {"x", "y"}}};
  Texts items = {"old"};
  EXPECT_EQ((Call<std::int64_t(void*, const Map&, Text, Texts&)>(14, map, std::string("ALM"), items)), 0);
  EXPECT_EQ(items, (Texts{"x", "y"}));
  EXPECT_EQ((Call<std::int64_t(void*, const Map&, Text, Texts&)>(14, map, std::string("B"), items)), 1);
}

TEST_F(InterfaceSlots, Slot15IsSplitStr) {
  Texts pieces = {"old"};
  EXPECT_EQ(
      (Call<std::int64_t(void*, Text, Text, Texts&)>(15, std::string("a, b ,c"), std::string(","), pieces)),
      0);
  EXPECT_EQ(pieces, (Texts{"old", "a", "b", "c"}));
}

TEST_F(InterfaceSlots, Slot16IsWriteDbgLog) {
  EXPECT_EQ((Call<std::int64_t(void*, Text)>(16, std::string("position"))), 0);
  ASSERT_EQ(framework.Messages().size(), 1U);
  EXPECT_EQ(framework.Messages()[0].text, "position");
}

}  // namespace
