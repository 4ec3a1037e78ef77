// Upper case and substrings. The test program runs in the "C" locale; tests/text/locale_test.cpp has the
// others.

#include <string>

#include "tests/interface/interface_fixture.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using interface_test::InterfaceTest;
using testing_text::RandomText;

class ToUpper : public InterfaceTest {};
class IsContain : public InterfaceTest {};

TEST_F(ToUpper, RaisesLettersOnly) {
  const std::string text = "abc-Xy9";
  EXPECT_EQ(impl.ToUpper(text), "ABC-XY9");
  EXPECT_EQ(text, "abc-Xy9");
  EXPECT_EQ(impl.ToUpper(""), "");
  EXPECT_EQ(impl.ToUpper(std::string("a\0b", 3)), std::string("A\0B", 3));
}

TEST_F(ToUpper, LeavesAllOtherBytesInTheCLocale) {
  for (int byte = 0; byte < 256; ++byte) {
    const int expected = byte >= 'a' && byte <= 'z' ? byte - 0x20 : byte;
    EXPECT_EQ(impl.ToUpper(std::string(1, static_cast<char>(byte))),
              std::string(1, static_cast<char>(expected)));
  }
}

TEST_F(IsContain, FindsASubString) {
  EXPECT_FALSE(impl.IsContain("", "abc"));
  EXPECT_TRUE(impl.IsContain("bc", "abc"));
  EXPECT_FALSE(impl.IsContain("abc", "ab"));
  EXPECT_FALSE(impl.IsContain("a", ""));
  EXPECT_FALSE(impl.IsContain("", ""));
  EXPECT_TRUE(impl.IsContain("abc", "abc"));
  EXPECT_FALSE(impl.IsContain("B", "abc"));
}

// Only a NUL as the first character is special; a later one is an ordinary character.
TEST_F(IsContain, FindsNothingThatStartsWithNul) {
  EXPECT_FALSE(impl.IsContain(std::string("\0b", 2), std::string("a\0b", 3)));
  EXPECT_TRUE(impl.IsContain(std::string("a\0b", 3), std::string("xa\0b", 4)));
  EXPECT_FALSE(impl.IsContain(std::string("a\0c", 3), std::string("xa\0b", 4)));
}

TEST_F(IsContain, AgreesWithTheLiteralRule) {
  RandomText random(71);
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    const std::string sub = random.Of({"ab\0", 3}, 3);
    const std::string text = random.Of({"ab\0", 3}, 9);
    ASSERT_EQ(impl.IsContain(sub, text), literal::IsContain(sub, text))
        << recording::Quoted(sub) << recording::Quoted(text);
  }
}

}  // namespace
