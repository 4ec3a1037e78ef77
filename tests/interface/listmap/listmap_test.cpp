// Texts of entries as maps of lists. The operations use SplitStr through the virtual table, because
// subclasses override it.

#include <cstdint>
#include <string>

#include "tests/interface/interface_fixture.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using interface_test::InterfaceTest;
using interface_test::Texts;
using NS_ASCII::AsciiUtilInterfaceImpl;
using NS_ASCII::ListMap;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using testing_text::RandomText;

class ParseListMap : public InterfaceTest {};
class GetMapList : public InterfaceTest {};

ListMap Parsed(AsciiUtilInterfaceImpl& impl, const std::string& text) {
  ListMap map = {{"old", {"gone"}}};
  EXPECT_EQ(impl.ParseListMap(map, text), 0);
  return map;
}

TEST_F(ParseListMap, MakesAMapOfListsFromEntries) {
  EXPECT_THAT(Parsed(impl, "ALM=x|y, PATH=a-b|c, ALM=z"),
              ElementsAre(Pair("ALM", ElementsAre("x", "y")), Pair("PATH", ElementsAre("a", "b|c"))));
  EXPECT_THAT(Parsed(impl, "A=1-2|3,B=,C==|="),
              ElementsAre(Pair("A", ElementsAre("1-2", "3")), Pair("B", ElementsAre("")),
                          Pair("C", ElementsAre("=", "="))));
}

TEST_F(ParseListMap, SplitsAnEntryAtTheFirstEqualsSign) {
  EXPECT_THAT(Parsed(impl, "N=a| b=c"), ElementsAre(Pair("N", ElementsAre("a", "b=c"))));
}

TEST_F(ParseListMap, KeepsABlankBeforeTheEqualsSignInTheName) {
  EXPECT_THAT(Parsed(impl, "ALM = x"), ElementsAre(Pair("ALM ", ElementsAre("x"))));
}

TEST_F(ParseListMap, CountsAnEntryWithoutAnEqualsSignAsTheEmptyName) {
  EXPECT_THAT(Parsed(impl, ""), ElementsAre(Pair("", ElementsAre(""))));
  EXPECT_THAT(Parsed(impl, "junk"), ElementsAre(Pair("", ElementsAre(""))));
  EXPECT_THAT(Parsed(impl, "A=1,"), ElementsAre(Pair("", ElementsAre("")), Pair("A", ElementsAre("1"))));
}

TEST_F(ParseListMap, ClearsTheMapFirst) { EXPECT_EQ(Parsed(impl, "A=1").count("old"), 0U); }

TEST_F(ParseListMap, TakesOnlyPathForAPath) {
  EXPECT_THAT(Parsed(impl, "path=a-b,PATH =a-b,PATHS=a-b"),
              ElementsAre(Pair("PATH ", ElementsAre("a-b")), Pair("PATHS", ElementsAre("a-b")),
                          Pair("path", ElementsAre("a-b"))));
  EXPECT_THAT(Parsed(impl, std::string("PATH\0x=a-b", 10)),
              ElementsAre(Pair(std::string("PATH\0x", 6), ElementsAre("a", "b"))));
}

/// Overrides the splitting.
class OwnSplitStr : public AsciiUtilInterfaceImpl {
 public:
  std::int64_t SplitStr(const std::string& text, const std::string& separator, Texts& pieces) override {
    asked.push_back(text + " at " + separator);
    if (separator == ",") {
      pieces = entries;
    } else {
      pieces.push_back("own");
    }
    return 0;
  }
  Texts asked;
  Texts entries = {"A=1|2", "PATH=3"};
};

TEST_F(ParseListMap, SplitsThroughTheVirtualTable) {
  OwnSplitStr own;
  EXPECT_THAT(Parsed(own, "text"),
              ElementsAre(Pair("A", ElementsAre("own")), Pair("PATH", ElementsAre("own"))));
  EXPECT_THAT(own.asked, ElementsAre("text at ,", "1|2 at |", "3 at -"));
}

TEST_F(ParseListMap, LeavesAnEmptyMapWhenThereAreNoEntries) {
  OwnSplitStr own;
  own.entries.clear();
  EXPECT_THAT(Parsed(own, "text"), IsEmpty());
}

TEST_F(ParseListMap, AcceptsATextThatIsAnItemOfTheMap) {
  ListMap map{{"A", {"a text that is too long to be kept in place=1, B=2"}}};
  EXPECT_EQ(impl.ParseListMap(map, map["A"].front()), 0);
  EXPECT_THAT(map, ElementsAre(Pair("B", ElementsAre("2")),
                               Pair("a text that is too long to be kept in place", ElementsAre("1"))));
}

TEST_F(ParseListMap, AgreesWithTheLiteralRule) {
  RandomText random(73);
  const Texts parts = {"PATH", "ALM", "A", "=", "=", "|", "-", ",", ",", " ", "\t", std::string(1, '\0')};
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    std::string text;
    for (std::size_t count = random.Below(16); count > 0; --count) {
      text += parts[random.Below(parts.size())];
    }
    ListMap expected;
    literal::ParseListMap(expected, text);
    ASSERT_EQ(Parsed(impl, text), expected) << recording::Quoted(text);
  }
}

TEST_F(GetMapList, CopiesTheListInPlaceOfWhatWasThere) {
  const ListMap map = {{"A", {"x", "y"}}, {"", {""}}};
  Texts items = {"old"};
  EXPECT_EQ(impl.GetMapList(map, "A", items), 0);
  EXPECT_THAT(items, ElementsAre("x", "y"));
  EXPECT_EQ(impl.GetMapList(map, "", items), 0);
  EXPECT_THAT(items, ElementsAre(""));
}

TEST_F(GetMapList, LeavesTheListAloneWithoutAListForTheName) {
  const ListMap map = {{"A", {"x"}}, {"empty", {}}};
  Texts items = {"old"};
  EXPECT_EQ(impl.GetMapList(map, "B", items), 1);
  EXPECT_EQ(impl.GetMapList(map, "empty", items), 1);
  EXPECT_EQ(impl.GetMapList(map, std::string("A\0", 2), items), 1);
  EXPECT_THAT(items, ElementsAre("old"));
}

}  // namespace
