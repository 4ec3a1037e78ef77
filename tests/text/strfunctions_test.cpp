#include "src/strfunctions.h"

#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <string>
#include <vector>

#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using NS_ASCII::CountOf;
using NS_ASCII::IsElementOf;
using NS_ASCII::Num2Str;
using NS_ASCII::StrToLower;
using NS_ASCII::StrToUpper;
using NS_ASCII::Trim;
using NS_ASCII::TrimLeft;
using NS_ASCII::TrimRight;
using NS_ASCII::TrimView;

TEST(Trim, OfNothingOrOnlyBlanksIsEmpty) {
  EXPECT_EQ(Trim(""), "");
  EXPECT_EQ(Trim(" "), "");
  EXPECT_EQ(Trim(" \t\r\n"), "");
  EXPECT_EQ(Trim("\n\r\t "), "");
  EXPECT_EQ(Trim("\r\r\n \t\t"), "");
}

TEST(Trim, TakesBlanksOffBothEndsAndLeavesThoseInside) {
  EXPECT_EQ(Trim("\tab c\r\n"), "ab c");
  EXPECT_EQ(Trim("x"), "x");
  EXPECT_EQ(Trim("  a \t\r\n b  "), "a \t\r\n b");
}

// Wrong at first sight, but a line that ends in a form feed keeps it.
TEST(Trim, LeavesVerticalTabAndFormFeed) {
  EXPECT_EQ(Trim("\vabc\f"), "\vabc\f");
  EXPECT_EQ(Trim(" \vabc\f "), "\vabc\f");
}

TEST(Trim, TakesExactlyFourOfAllBytesForBlank) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    const bool blank = byte == 0x20 || byte == 0x09 || byte == 0x0A || byte == 0x0D;
    EXPECT_EQ(Trim(one), blank ? "" : one) << byte;
    EXPECT_EQ(Trim(one + "x" + one), blank ? "x" : one + "x" + one) << byte;
  }
}

TEST(TrimLeft, TakesLeadingBlanksOnly) {
  EXPECT_EQ(TrimLeft("  a "), "a ");
  EXPECT_EQ(TrimLeft(""), "");
  EXPECT_EQ(TrimLeft(" \t\n\r"), "");
  EXPECT_EQ(TrimLeft("a"), "a");
}

TEST(TrimRight, TakesTrailingBlanksOnly) {
  EXPECT_EQ(TrimRight("  a "), "  a");
  EXPECT_EQ(TrimRight(""), "");
  EXPECT_EQ(TrimRight(" \t\n\r"), "");
  EXPECT_EQ(TrimRight("a"), "a");
}

void ExpectTrimmedAsByTheLiteralRule(const std::string& text) {
  ASSERT_EQ(Trim(text), literal::Trim(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimView(text), literal::Trim(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimLeft(text), literal::TrimLeft(text)) << ::testing::PrintToString(text);
  ASSERT_EQ(TrimRight(text), literal::TrimRight(text)) << ::testing::PrintToString(text);
}

TEST(Trim, AgreesWithTheLiteralRuleInAllItsForms) {
  testing_text::ForEachText({" \t\n\r\v\0a\xA0", 8}, 5,
                            [](const std::string& text) { ExpectTrimmedAsByTheLiteralRule(text); });
}

// Long runs of blanks may be passed in another way than short ones.
TEST(Trim, AgreesWithTheLiteralRuleOnLongRunsOfBlanks) {
  testing_text::RandomText random(40);
  for (std::size_t blanks = 0; blanks < 600; blanks += blanks < 140 ? 1 : 37) {
    for (const char odd : {'x', '\v', '\0', '\xA0', '\x08', '\x0B', '\x1F', '!'}) {
      std::string run(blanks, ' ');
      for (char& c : run) {
        c = " \t\n\r"[random.Below(4)];
      }
      std::string broken = run;
      if (blanks != 0) {
        broken[random.Below(blanks)] = odd;
      }
      for (const std::string& text :
           {run, broken, run + odd, odd + run, run + odd + run, broken + "text" + broken}) {
        ExpectTrimmedAsByTheLiteralRule(text);
      }
    }
  }
}

TEST(Trim, EndsLongRunsOfBlanksAtEveryOtherByte) {
  const std::size_t places[] = {0, 1, 31, 32, 33, 100, 127, 128, 129, 159, 160, 200, 267, 268, 299};
  for (const char blank : {' ', '\t', '\n', '\r'}) {
    for (int byte = 0; byte < 256; ++byte) {
      for (const std::size_t place : places) {
        std::string text(300, blank);
        text[place] = static_cast<char>(byte);
        ExpectTrimmedAsByTheLiteralRule(text);
      }
    }
  }
}

TEST(Trim, AgreesWithTheLiteralRuleOnRunsOfOneByte) {
  testing_text::RandomText random(47);
  const std::size_t lengths[] = {0, 1, 5, 31, 32, 33, 64, 127, 128, 129, 160, 255, 256, 257, 300};
  for (int trial = 0; trial < testing_text::Trials(3000); ++trial) {
    std::string text;
    for (std::size_t runs = random.Below(5); runs > 0; --runs) {
      text += std::string(lengths[random.Below(std::size(lengths))], " \t\n\rx~\x0B!"[random.Below(8)]);
    }
    ExpectTrimmedAsByTheLiteralRule(text);
  }
}

TEST(CountOf, CountsLongTextsToo) {
  const std::size_t lengths[] = {0, 1, 254, 255, 256, 257, 510, 511, 5000};
  for (const std::size_t length : lengths) {
    EXPECT_EQ(CountOf('x', std::string(length, 'x')), length);
    EXPECT_EQ(CountOf('y', std::string(length, 'x')), 0U);
    EXPECT_EQ(CountOf('y', std::string(length, 'x') + 'y'), 1U);
  }
}

TEST(IsElementOf, KnowsTheStringsOfAListByTheirPlace) {
  static const std::string kStatic = "a";
  const std::string onStack = "a";
  const std::vector<std::string> list(3, "a");
  const std::vector<std::string> other(3, "a");
  for (const std::string& element : list) {
    EXPECT_TRUE(IsElementOf(element, list));
    EXPECT_FALSE(IsElementOf(element, other));
  }
  for (const std::string& element : other) {
    EXPECT_FALSE(IsElementOf(element, list));
  }
  EXPECT_FALSE(IsElementOf(onStack, list));
  EXPECT_FALSE(IsElementOf(kStatic, list));
  EXPECT_FALSE(IsElementOf(onStack, {}));
}

TEST(StrToUpper, RaisesLettersAndNothingElse) {
  EXPECT_EQ(StrToUpper("abc-xyz 09"), "ABC-XYZ 09");
  EXPECT_EQ(StrToUpper(""), "");
  EXPECT_EQ(StrToUpper("\xC3\xA9"), "\xC3\xA9");  // Small e with acute accent in UTF-8.
  EXPECT_EQ(StrToUpper(std::string("a\0b", 3)), std::string("A\0B", 3));
}

TEST(StrToLower, LowersLettersAndNothingElse) {
  EXPECT_EQ(StrToLower("MiXeD"), "mixed");
  EXPECT_EQ(StrToLower(""), "");
  EXPECT_EQ(StrToLower("\xC3\x89"), "\xC3\x89");
  EXPECT_EQ(StrToLower(std::string("A\0B", 3)), std::string("a\0b", 3));
}

TEST(StrToUpper, MapsOnlyATozOfAllBytesInTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'a' && byte <= 'z' ? byte - 0x20 : byte;
    EXPECT_EQ(StrToUpper(std::string(1, static_cast<char>(byte))),
              std::string(1, static_cast<char>(expected)));
  }
}

TEST(StrToLower, MapsOnlyAToZOfAllBytesInTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'A' && byte <= 'Z' ? byte + 0x20 : byte;
    EXPECT_EQ(StrToLower(std::string(1, static_cast<char>(byte))),
              std::string(1, static_cast<char>(expected)));
  }
}

TEST(StrToUpper, LeavesTheCallersTextAlone) {
  const std::string text = "abc";
  EXPECT_EQ(StrToUpper(text), "ABC");
  EXPECT_EQ(text, "abc");
}

TEST(Num2Str, WritesPlainDecimals) {
  EXPECT_EQ(Num2Str(0), "0");
  EXPECT_EQ(Num2Str(-5), "-5");
  EXPECT_EQ(Num2Str(2147483647), "2147483647");
  EXPECT_EQ(Num2Str(INT_MIN), "-2147483648");
}

TEST(Num2Str, AgreesWithTheLiteralRule) {
  testing_text::RandomText random(41);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const auto bits = static_cast<unsigned>(random.Below(std::size_t{1} << 32)) >> random.Below(32);
    const int number = static_cast<int>(bits);
    ASSERT_EQ(Num2Str(number), literal::Num2Str(number));
    ASSERT_EQ(Num2Str(number), std::to_string(number));
  }
}

}  // namespace
