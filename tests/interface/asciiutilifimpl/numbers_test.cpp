// Texts to numbers as C17's strtol reads them, and the operations that answer with constants. The out
// value is written also when the text is not a complete number.

#include <cstdint>
#include <string>

#include "tests/interface/c_library.h"
#include "tests/interface/interface_fixture.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using c_library::strtolTexts;
using interface_test::InterfaceTest;
using interface_test::Texts;
using NS_ASCII::AsciiUtilInterfaceImpl;
using ::testing::ElementsAre;
using testing_text::ForEachText;

class GetSvcName : public InterfaceTest {};
class IsValid : public InterfaceTest {};
class Str2Num : public InterfaceTest {
 protected:
  ~Str2Num() override { strtolTexts = nullptr; }
};

TEST_F(GetSvcName, IsAsciiUtilService) { EXPECT_EQ(impl.GetSvcName(), "AsciiUtilService"); }

TEST_F(IsValid, IsOne) { EXPECT_EQ(impl.IsValid(), 1); }

/// Whether all of the text was read, and the number: "true 42".
std::string Converted(AsciiUtilInterfaceImpl& impl, const std::string& text, int base) {
  int value = 12345;
  const bool all = impl.Str2Num(text, value, base);
  return (all ? "true " : "false ") + std::to_string(value);
}

TEST_F(Str2Num, ReadsWholeNumbers) {
  EXPECT_EQ(Converted(impl, "42", 10), "true 42");
  EXPECT_EQ(Converted(impl, " -7", 10), "true -7");
  EXPECT_EQ(Converted(impl, "+8", 10), "true 8");
  EXPECT_EQ(Converted(impl, "\n\v 9", 10), "true 9");
}

TEST_F(Str2Num, WritesWhatItCouldReadAlsoWhenThatWasNotAll) {
  EXPECT_EQ(Converted(impl, "7 ", 10), "false 7");
  EXPECT_EQ(Converted(impl, "12abc", 10), "false 12");
  EXPECT_EQ(Converted(impl, "abc", 10), "false 0");
  EXPECT_EQ(Converted(impl, " ", 10), "false 0");
  EXPECT_EQ(Converted(impl, "-", 10), "false 0");
}

// Required: callers convert a missing configured value with it and rely on the 0.
TEST_F(Str2Num, ReadsTheEmptyTextAsZero) {
  EXPECT_EQ(Converted(impl, "", 10), "true 0");
  EXPECT_EQ(Converted(impl, std::string("\0junk", 5), 10), "true 0");
}

TEST_F(Str2Num, ReadsPrefixesAsTheBaseAllows) {
  EXPECT_EQ(Converted(impl, "0x1A", 16), "true 26");
  EXPECT_EQ(Converted(impl, "0x1A", 0), "true 26");
  EXPECT_EQ(Converted(impl, "010", 0), "true 8");
  EXPECT_EQ(Converted(impl, "0x1A", 10), "false 0");
  EXPECT_EQ(Converted(impl, "z", 36), "true 35");
}

// Headers of newer C libraries redirect strtol to a function that accepts it.
TEST_F(Str2Num, AcceptsNoBinaryPrefix) {
  EXPECT_EQ(Converted(impl, "0b101", 0), "false 0");
  EXPECT_EQ(Converted(impl, "0B1", 0), "false 0");
  EXPECT_EQ(Converted(impl, "0b11", 2), "false 0");
  EXPECT_EQ(Converted(impl, "-0b1", 2), "false 0");
  EXPECT_EQ(Converted(impl, "0b1", 16), "true 177");
}

TEST_F(Str2Num, KeepsTheLow32Bits) {
  EXPECT_EQ(Converted(impl, "4294967297", 10), "true 1");
  EXPECT_EQ(Converted(impl, "2147483648", 10), "true -2147483648");
  EXPECT_EQ(Converted(impl, "-4294967295", 10), "true 1");
  EXPECT_EQ(Converted(impl, "99999999999999999999", 10), "true -1");
}

TEST_F(Str2Num, ReadsNumbersOfEveryLength) {
  for (const std::string sign : {"", "-", "+"}) {
    for (const std::string suffix : {"", " ", "x"}) {
      for (std::int64_t number : {0LL, 1LL, 42LL, 2147483647LL, 2147483648LL, 2147483649LL, 9876543210LL}) {
        const std::string text = sign + std::to_string(number) + suffix;
        const int low = static_cast<int>(sign == "-" ? -number : number);
        EXPECT_EQ(Converted(impl, text, 10), (suffix.empty() ? "true " : "false ") + std::to_string(low))
            << text;
      }
    }
  }
}

TEST_F(Str2Num, CountsATextUpToItsFirstNul) {
  EXPECT_EQ(Converted(impl, std::string("5\0x", 3), 10), "true 5");
}

TEST_F(Str2Num, ReadsNothingInABaseThatDoesNotExist) {
  EXPECT_EQ(Converted(impl, "42", 1), "false 0");
  EXPECT_EQ(Converted(impl, "42", 37), "false 0");
  EXPECT_EQ(Converted(impl, "", 1), "true 0");
}

// A platform may replace strtol.
TEST_F(Str2Num, AsksTheCLibrary) {
  Texts texts;
  strtolTexts = &texts;
  Converted(impl, "42", 7);
  Converted(impl, "42", 10);
  EXPECT_THAT(texts, ElementsAre("42 in 7", "42 in 10")) << "bind the plain symbol, see src/text/c_strtol.h";
}

TEST_F(Str2Num, AgreesWithTheLiteralRule) {
  for (const int base : {0, 2, 9, 10, 11, 16, 36}) {
    ForEachText({"0x1bf- \0", 8}, 5, [&](const std::string& text) {
      int expected = 0;
      int value = 1;
      ASSERT_EQ(impl.Str2Num(text, value, base), literal::Str2Num(text, expected, base)) << text;
      ASSERT_EQ(value, expected) << text;
    });
  }
}

}  // namespace
