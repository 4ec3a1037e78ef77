// Escapes in the host's output and input: every byte that is written comes back when it is read.

#include "host/base/text_escape.h"

#include <gtest/gtest.h>

namespace {

TEST(TextEscape, PrintableAsciiStaysExceptTheBackslash) {
  EXPECT_EQ(host::EscapeBytes(" !\"aZ~"), " !\"aZ~");
  EXPECT_EQ(host::EscapeBytes("\\"), "\\x5c");
}

TEST(TextEscape, OtherBytesBecomeTwoDigits) {
  EXPECT_EQ(host::EscapeBytes(std::string("\0\n\x7f\xe9", 4)), "\\x00\\x0a\\x7f\\xe9");
}

TEST(TextEscape, AValueShowsABlankAtEitherEnd) {
  EXPECT_EQ(host::EscapeValue(" a b "), "\\x20a b\\x20");
  EXPECT_EQ(host::EscapeValue(" "), "\\x20");
  EXPECT_EQ(host::EscapeValue(""), "");
}

TEST(TextEscape, EveryByteComesBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(host::UnescapeBytes(host::EscapeBytes(all)), all);
  EXPECT_EQ(host::UnescapeBytes(host::EscapeValue(all)), all);
}

TEST(TextEscape, DigitsOfEitherCaseAreTaken) { EXPECT_EQ(host::UnescapeBytes("\\xE9\\xe9"), "\xE9\xE9"); }

TEST(TextEscape, ABackslashWithoutTwoDigitsIsABackslash) {
  for (const char* text : {"\\", "\\x", "\\x4", "\\xg1", "\\x1g", "\\n", "\\X41"}) {
    EXPECT_EQ(host::UnescapeBytes(text), text);
  }
}

TEST(OneLine, KeepsTextAndFileNamesAndEscapesControls) {
  EXPECT_EQ(host::OneLine("a\nb\x1b \xc3\xa9\x7f \\"), "a\\x0ab\\x1b \xc3\xa9\\x7f \\");
}

TEST(OneLine, LosesTheMiddleOfAVeryLongText) {
  EXPECT_EQ(host::OneLine(std::string(2000, 'a')), std::string(2000, 'a'));
  EXPECT_EQ(host::OneLine(std::string(2000, 'a') + "b"),
            std::string(1000, 'a') + "..." + std::string(999, 'a') + "b");
}

}  // namespace
