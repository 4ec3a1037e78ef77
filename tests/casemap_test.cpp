#include "src/casemap.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <utility>

// How ToUpper, StrToUpper and StrToLower use this is tested with those, and in other locales with
// locale_test.

namespace {

using NS_ASCII::BuiltInLocale;
using NS_ASCII::IsAscii;
using NS_ASCII::kPlainLower;
using NS_ASCII::kPlainUpper;
using NS_ASCII::MapCase;
using NS_ASCII::PlainCase;
using NS_ASCII::SignedUpper;

TEST(PlainCase, MapsAllBytesAsTheCLocaleDoes) {
  for (int byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(kPlainUpper.mapped[static_cast<std::size_t>(byte)], std::toupper(byte)) << byte;
    EXPECT_EQ(kPlainLower.mapped[static_cast<std::size_t>(byte)], std::tolower(byte)) << byte;
  }
}

TEST(IsAscii, LooksAtEveryByte) {
  EXPECT_TRUE(IsAscii(""));
  for (const char other : {'\0', 'a'}) {
    for (int byte = 0; byte < 256; ++byte) {
      for (std::size_t place = 0; place < 40; ++place) {
        std::string text(40, other);
        text[place] = static_cast<char>(byte);
        EXPECT_EQ(IsAscii(text), byte < 128) << byte << ' ' << place;
      }
    }
  }
}

TEST(BuiltInLocale, IsTheOneInForceAtTheStart) {
  EXPECT_EQ(BuiltInLocale().__ctype_toupper, *__ctype_toupper_loc());
  EXPECT_EQ(BuiltInLocale().__ctype_tolower, *__ctype_tolower_loc());
  EXPECT_TRUE(SignedUpper().IsBuiltIn());
}

TEST(BuiltInLocale, IsNoOtherOne) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  EXPECT_NE(BuiltInLocale().__ctype_toupper, *__ctype_toupper_loc());
  EXPECT_FALSE(SignedUpper().IsBuiltIn());
  setlocale(LC_ALL, "C");
  EXPECT_TRUE(SignedUpper().IsBuiltIn());
}

TEST(SignedUpper, IsPlainInTheCLocale) {
  EXPECT_TRUE(SignedUpper().IsPlain(false));
  EXPECT_TRUE(SignedUpper().IsPlain(true));
}

/// Looking a byte up gives '?'. Counts how often it is asked whether bytes are mapped plainly.
struct FakeMapper {
  bool allPlain;
  bool asciiPlain;
  bool builtIn;
  int* questions;

  char operator()(char) const { return '?'; }
  [[nodiscard]] static const PlainCase& plain() { return kPlainUpper; }
  [[nodiscard]] bool IsBuiltIn() const { return builtIn; }
  [[nodiscard]] bool IsPlain(bool ascii) const {
    ++*questions;
    return ascii ? asciiPlain : allPlain;
  }
};

/// What MapCase makes of the text, and the number of questions.
std::pair<std::string, int> Mapped(std::string text, bool allPlain, bool asciiPlain, bool builtIn = false) {
  int questions = 0;
  MapCase(text, FakeMapper{allPlain, asciiPlain, builtIn, &questions});
  return {text, questions};
}

TEST(MapCase, LooksNoByteUpAndAsksNothingInTheBuiltInLocale) {
  EXPECT_EQ(Mapped("", false, false, true), std::pair(std::string(), 0));
  EXPECT_EQ(Mapped("a", false, false, true), std::pair(std::string("A"), 0));
  EXPECT_EQ(Mapped(std::string(99, '\xE4') + "az", false, false, true),
            std::pair(std::string(99, '\xE4') + "AZ", 0));
}

TEST(MapCase, LooksUpEachByteOfAShortTextWithoutAQuestion) {
  EXPECT_EQ(Mapped("", true, true), std::pair(std::string(), 0));
  EXPECT_EQ(Mapped(std::string(31, 'a'), true, true), std::pair(std::string(31, '?'), 0));
}

TEST(MapCase, LooksNoByteUpWhereAllAreMappedPlainly) {
  EXPECT_EQ(Mapped(std::string(32, 'a'), true, false), std::pair(std::string(32, 'A'), 1));
  EXPECT_EQ(Mapped(std::string(99, '\xE4') + "az", true, true), std::pair(std::string(99, '\xE4') + "AZ", 1));
}

TEST(MapCase, LooksNoByteOfAnAsciiTextUpWhereThoseAreMappedPlainly) {
  EXPECT_EQ(Mapped(std::string(32, 'z'), false, true), std::pair(std::string(32, 'Z'), 2));
  EXPECT_EQ(Mapped(std::string(32, '\xE4'), false, true), std::pair(std::string(32, '?'), 2));
  EXPECT_EQ(Mapped(std::string(32, 'z'), false, false), std::pair(std::string(32, '?'), 2));
}

}  // namespace
