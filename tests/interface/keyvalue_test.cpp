// The value of a key in a text of pairs, compared with literal values and, for every short text, with the
// literal rules.

#include <string>

#include "tests/interface/interface_fixture.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using interface_test::InterfaceTest;
using interface_test::OwnStr2Num;
using interface_test::Texts;
using ::testing::ElementsAre;
using testing_text::ForEachText;

class GetKeyValue : public InterfaceTest {};
class IsKeyValueAboveOne : public InterfaceTest {};

TEST_F(GetKeyValue, FindsTheValueOfAPair) {
  EXPECT_EQ(impl.GetKeyValue("B", "A=1,B=2,C=3"), "2");
  EXPECT_EQ(impl.GetKeyValue("C", "A=1,B=2,C=3"), "3");
  EXPECT_EQ(impl.GetKeyValue("A", "A=1"), "1");
  EXPECT_EQ(impl.GetKeyValue("D", "A=1,B=2,C=3"), "");
  EXPECT_EQ(impl.GetKeyValue("a", "A=1"), "");
  EXPECT_EQ(impl.GetKeyValue("A", ""), "");
  EXPECT_EQ(impl.GetKeyValue("A", "A"), "");
  EXPECT_EQ(impl.GetKeyValue("A", ",,A=1,"), "1");
}

TEST_F(GetKeyValue, TrimsPairsButNotNextToTheEqualsSign) {
  EXPECT_EQ(impl.GetKeyValue("B", " A=1 , B=2 "), "2");
  EXPECT_EQ(impl.GetKeyValue("A", "A =1"), "");
  EXPECT_EQ(impl.GetKeyValue("A ", "A = 1"), " 1");
  EXPECT_EQ(impl.GetKeyValue("B", "A=1,\tB=2\r\n"), "2");
  EXPECT_EQ(impl.GetKeyValue("A", "\tA=1\r\n,B=2"), "1");
}

// Required: the search ends at the pair, and its empty value is replaced by the rest of the text. Callers
// rely on it.
TEST_F(GetKeyValue, AnswersAnEmptyValueWithTheRestOfTheText) {
  EXPECT_EQ(impl.GetKeyValue("A", "A=,B=2"), ",B=2");
  EXPECT_EQ(impl.GetKeyValue("A", "B=2,A="), "");
  EXPECT_EQ(impl.GetKeyValue("A", "A="), "");
  EXPECT_EQ(impl.GetKeyValue("A", " A=,B=2 ,C "), ",B=2 ,C");
  EXPECT_EQ(impl.GetKeyValue("A", "A=,A=2"), ",A=2");
}

TEST_F(GetKeyValue, TakesTheFirstPairAndEverythingAfterItsFirstEqualsSign) {
  EXPECT_EQ(impl.GetKeyValue("A", "A=1,A=2"), "1");
  EXPECT_EQ(impl.GetKeyValue("A", "A=b=c"), "b=c");
  EXPECT_EQ(impl.GetKeyValue("", "=1"), "");
}

TEST_F(GetKeyValue, FindsNothingForAnEmptyKey) {
  for (const char* const text : {"", "=1", "A=1", ",", "A=1,=2"}) {
    EXPECT_EQ(impl.GetKeyValue("", text), "");
    EXPECT_EQ(impl.GetKeyValue(std::string("\0A", 2), text), "");
    EXPECT_FALSE(impl.IsKeyValueAboveOne("", text));
  }
}

// The key of a pair ends before its first "=" and contains no ",", so no pair has one of these keys.
TEST_F(GetKeyValue, FindsNothingForAKeyWithASeparatorOrALeadingBlank) {
  EXPECT_EQ(impl.GetKeyValue("A=B", "A=B=1,A=B"), "");
  EXPECT_EQ(impl.GetKeyValue("A,B", "A,B=1"), "");
  EXPECT_EQ(impl.GetKeyValue("=", "==1"), "");
  EXPECT_EQ(impl.GetKeyValue(",B", ",B=1"), "");
  EXPECT_EQ(impl.GetKeyValue(" B", "A=1, B=2"), "");
  EXPECT_EQ(impl.GetKeyValue("\tB", "A=1,\tB=2"), "");
  EXPECT_EQ(impl.GetKeyValue(std::string("B\0=,", 4), "A=1,B=2"), "2");
}

TEST_F(GetKeyValue, ComparesKeysUpToTheirFirstNul) {
  EXPECT_EQ(impl.GetKeyValue(std::string("A\0x", 3), "A=1"), "1");
  EXPECT_EQ(impl.GetKeyValue("A", std::string("A\0y=1", 5)), "1");
}

TEST_F(GetKeyValue, ContinuesAfterAValueThatStartsWithNul) {
  EXPECT_EQ(impl.GetKeyValue("A", std::string("A=\0,B", 5)), std::string("\0,B", 3));
}

TEST_F(GetKeyValue, AgreesWithTheLiteralRuleOnEveryShortText) {
  const Texts keys = {"A", "A ", " A", "A=", "A,B", "", "B", std::string("A\0", 2)};
  ForEachText({"A=, 2\0", 6}, 7, [&](const std::string& text) {
    ASSERT_EQ(impl.GetKeyValue("A", text), literal::GetKeyValue("A", text)) << recording::Quoted(text);
  });
  ForEachText({"AB=, \t2\0", 8}, 5, [&](const std::string& text) {
    for (const std::string& key : keys) {
      ASSERT_EQ(impl.GetKeyValue(key, text), literal::GetKeyValue(key, text)) << recording::Quoted(text);
      ASSERT_EQ(impl.IsKeyValueAboveOne(key, text), literal::IsKeyValueAboveOne(key, text))
          << recording::Quoted(text);
    }
  });
}

TEST_F(GetKeyValue, IgnoresTheTextBetweenTheNulOfAPairsKeyAndItsEqualsSign) {
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    if (c != ',' && c != '=') {
      EXPECT_EQ(impl.GetKeyValue("A", std::string({'A', '\0', c, '=', '1'})), "1") << byte;
    }
  }
}

// A search in blocks must not depend on where a block ends: pairs with the key start after every kind of
// blank and separator, at every offset in a block.
TEST_F(GetKeyValue, AgreesWithTheLiteralRuleOnLongTexts) {
  testing_text::RandomText random(48);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const std::string text = random.Patchwork({"xyAB", "xA=1", "xB=2 ", ", \t\n\r", {",=\0", 3}}, 12, 40) +
                             random.Of(", \t\n\r-", 1) + random.Of("AB", 2) +
                             random.Patchwork({"=", "=9,x", "xA "}, 3, 20);
    const std::string key = random.Of("ABx", 2);
    ASSERT_EQ(impl.GetKeyValue(key, text), literal::GetKeyValue(key, text)) << recording::Quoted(text);
  }
}

TEST_F(IsKeyValueAboveOne, ReadsTheNumberThatTheValueStartsWith) {
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N=2"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=1"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=0"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=-3"));
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N=5x"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=x5"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=0x9"));
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N= 7"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "M=7"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", ""));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N="));
}

TEST_F(IsKeyValueAboveOne, ConvertsThroughTheVirtualTableAlsoWhenItIsReplaced) {
  OwnStr2Num own;
  EXPECT_FALSE(own.IsKeyValueAboveOne("N", "N=text,M=1"));
  EXPECT_FALSE(own.IsKeyValueAboveOne("N", "M=1"));
  EXPECT_THAT(own.asked, ElementsAre("text in 10"));
}

}  // namespace
