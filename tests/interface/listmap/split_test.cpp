// Splitting at a separator: pieces, aliasing arguments, the number of allocations. Required: a call
// with an empty separator appends pieces until memory runs out, which a child process shows.

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "tests/child_process.h"
#include "tests/freed_memory.h"
#include "tests/interface/interface_fixture.h"
#include "tests/literal_rules.h"
#include "tests/private_member.h"
#include "tests/random_text.h"

namespace private_member {
struct SplitFirst {
  friend constexpr auto Of(SplitFirst);
};
template struct Opened<SplitFirst, &NS_ASCII::AsciiUtilInterfaceImpl::SplitFirst>;
}  // namespace private_member

namespace {

using interface_test::InterfaceTest;
using interface_test::Texts;
using NS_ASCII::AsciiUtilInterfaceImpl;
using ::testing::ElementsAre;
using testing_text::RandomText;

constexpr auto kSplitFirst = Of(private_member::SplitFirst());

class SplitStr : public InterfaceTest {};

TEST(SplitFirst, LeavesBothTextsAloneWithoutADelimiter) {
  std::string head = "head";
  std::string tail = "tail";
  EXPECT_FALSE(kSplitFirst("kv", head, tail, "="));
  EXPECT_FALSE(kSplitFirst("k=v", head, tail, ""));
  EXPECT_FALSE(kSplitFirst(std::string("k\0v", 3), head, tail, ""));
  EXPECT_FALSE(kSplitFirst("", head, tail, "="));
  EXPECT_EQ(head + tail, "headtail");
}

TEST(SplitFirst, SplitsAtTheFirstDelimiter) {
  std::string head = "head";
  std::string tail = "tail";
  EXPECT_TRUE(kSplitFirst("k=v", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "k|v");
  EXPECT_TRUE(kSplitFirst("k=", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "k|");
  EXPECT_TRUE(kSplitFirst("=v", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "|v");
  EXPECT_TRUE(kSplitFirst("a=b=c", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "a|b=c");
}

// Required: the tail starts as many characters later as the set has, instead of one.
TEST(SplitFirst, SkipsAsManyCharactersAsTheSetHas) {
  std::string head;
  std::string tail = "tail";
  EXPECT_TRUE(kSplitFirst("k=xyz", head, tail, ":="));
  EXPECT_EQ(head + '|' + tail, "k|yz");
  EXPECT_TRUE(kSplitFirst("k=x", head, tail, ":="));
  EXPECT_EQ(head + '|' + tail, "k|");
  EXPECT_THROW(kSplitFirst("long=", head, tail, ":="), std::out_of_range);
  EXPECT_EQ(head + '|' + tail, "long|");
}

Texts Pieces(AsciiUtilInterfaceImpl& impl, const std::string& text, const std::string& separator) {
  Texts pieces;
  EXPECT_EQ(impl.SplitStr(text, separator, pieces), 0);
  return pieces;
}

TEST_F(SplitStr, KeepsEveryPieceTrimmed) {
  EXPECT_THAT(Pieces(impl, "a, b ,c", ","), ElementsAre("a", "b", "c"));
  EXPECT_THAT(Pieces(impl, "a,,b", ","), ElementsAre("a", "", "b"));
  EXPECT_THAT(Pieces(impl, "a,", ","), ElementsAre("a", ""));
  EXPECT_THAT(Pieces(impl, ",", ","), ElementsAre("", ""));
  EXPECT_THAT(Pieces(impl, "", ","), ElementsAre(""));
  EXPECT_THAT(Pieces(impl, "\ta\r\n,\vb\f", ","), ElementsAre("a", "\vb\f"));
}

TEST_F(SplitStr, MatchesTheSeparatorWhole) {
  EXPECT_THAT(Pieces(impl, "a--b", "--"), ElementsAre("a", "b"));
  EXPECT_THAT(Pieces(impl, "a-b", "--"), ElementsAre("a-b"));
  EXPECT_THAT(Pieces(impl, "a---b", "--"), ElementsAre("a", "-b"));
  EXPECT_THAT(Pieces(impl, std::string("a\0b", 3), std::string(1, '\0')), ElementsAre("a", "b"));
}

TEST_F(SplitStr, AppendsToTheList) {
  Texts pieces;
  EXPECT_EQ(impl.SplitStr("a,b", ",", pieces), 0);
  EXPECT_EQ(impl.SplitStr("c,", ",", pieces), 0);
  EXPECT_THAT(pieces, ElementsAre("a", "b", "c", ""));
}

TEST_F(SplitStr, UsesTheCapacityThatTheListHas) {
  Texts pieces;
  pieces.reserve(10);
  const std::string* const place = pieces.data();
  EXPECT_EQ(impl.SplitStr("a,b,c,d", ",", pieces), 0);
  EXPECT_EQ(impl.SplitStr("a,b,c,d,e,f", ",", pieces), 0);
  EXPECT_EQ(pieces.size(), 10U);
  EXPECT_EQ(pieces.data(), place);
}

TEST_F(SplitStr, AllocatesOnceForUpToEightPieces) {
  Texts pieces;
  impl.SplitStr("a", ",", pieces);
  EXPECT_EQ(pieces.capacity(), 8U);
}

TEST_F(SplitStr, ReallocatesRarelyWhenItAppendsRepeatedly) {
  Texts pieces;
  int moves = 0;
  for (int i = 0; i < 1000; ++i) {
    const std::string* const before = pieces.data();
    EXPECT_EQ(impl.SplitStr("a,b", ",", pieces), 0);
    moves += pieces.data() != before ? 1 : 0;
  }
  EXPECT_EQ(pieces.size(), 2000U);
  EXPECT_LE(moves, 12);
}

TEST_F(SplitStr, AcceptsATextInAnyKindOfMemory) {
  static const std::string kStatic = "a,b";
  const std::string onStack = "a,b";
  const auto onHeap = std::make_unique<std::string>("a,b");
  for (const std::string* const text : {&kStatic, &onStack, static_cast<const std::string*>(onHeap.get())}) {
    Texts pieces(3);
    EXPECT_EQ(impl.SplitStr(*text, ",", pieces), 0);
    EXPECT_THAT(pieces, ElementsAre("", "", "", "a", "b"));
  }
}

TEST_F(SplitStr, AcceptsATextAndASeparatorThatAreElementsOfTheList) {
  constexpr std::size_t kFull = FreedMemoryOverwritten::kWholeBytes / sizeof(std::string);
  for (const char* const separator : {",", "--"}) {
    const std::string text = std::string("a") + separator + "b" + separator + "c";
    for (const std::size_t at : {std::size_t{0}, std::size_t{1}, kFull - 1}) {
      for (const bool ownText : {true, false}) {
        Texts pieces(kFull, text);  // Appending the first piece reallocates the vector.
        pieces[at] = ownText ? text : separator;
        ASSERT_EQ(pieces.capacity(), kFull);
        const FreedMemoryOverwritten overwritten;
        EXPECT_EQ(
            ownText ? impl.SplitStr(pieces[at], separator, pieces) : impl.SplitStr(text, pieces[at], pieces),
            0);
        ASSERT_EQ(pieces.size(), kFull + 3);
        EXPECT_EQ(pieces[at], ownText ? text : separator);
        EXPECT_EQ(pieces[kFull] + pieces[kFull + 1] + pieces[kFull + 2], "abc");
      }
    }
  }
}

// Required: an empty separator is found at the same offset forever, until memory runs out.
TEST_F(SplitStr, NeverReturnsForAnEmptySeparator) {
  const child::End end = child::EndOf([this] {
    child::LimitMemory(std::size_t{64} << 20);
    Pieces(impl, "text", "");
  });
  EXPECT_NE(end, child::End::kReturned);
}

TEST_F(SplitStr, AgreesWithTheLiteralRule) {
  RandomText random(72);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const std::string text = random.Of({"ab, \t-|\0", 8}, 20);
    const std::string separator = random.Of("ab,-|", 2) + ',';
    Texts expected;
    literal::SplitStr(text, separator, expected);
    ASSERT_EQ(Pieces(impl, text, separator), expected) << recording::Quoted(text);
  }
}

// Long separators are searched for in another way than short ones.
TEST_F(SplitStr, AgreesWithTheLiteralRuleForSeparatorsOfEveryLength) {
  RandomText random(73);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const std::string separator = 'a' + random.Of("ab", 11);
    const std::string text =
        random.Of("ab ", 12) + separator + random.Of("ab ", 3) + separator + random.Of("ab", 12);
    Texts expected;
    literal::SplitStr(text, separator, expected);
    ASSERT_EQ(Pieces(impl, text, separator), expected) << recording::Quoted(text);
  }
}

}  // namespace
