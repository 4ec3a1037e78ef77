// Case mapping follows the current locale, byte by byte, also where long texts take a fast path. The locales
// are made when the tests are built (see CMakeLists.txt) and found through LOCPATH.

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>
#include <string>
#include <vector>

#include "ascii_util/text_functions.h"
#include "src/interface/asciiutilifimpl.h"

namespace {

/// Sets the process's locale for the time of a test.
class InLocale {
 public:
  explicit InLocale(const char* name) : found_(std::setlocale(LC_ALL, name) != nullptr) {}
  ~InLocale() { std::setlocale(LC_ALL, "C"); }
  InLocale(const InLocale&) = delete;
  InLocale& operator=(const InLocale&) = delete;
  [[nodiscard]] bool found() const { return found_; }

 private:
  bool found_;
};

std::string LiteralToUpper(std::string text) {
  for (char& c : text) {
    const int code = static_cast<signed char>(c);
    if (std::islower(code) != 0) {
      c = static_cast<char>(std::toupper(code));
    }
  }
  return text;
}

std::string LiteralStrToUpper(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return text;
}

std::string LiteralStrToLower(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

/// A text of each byte alone, one long text of all bytes, and for each byte a long text that is otherwise
/// ASCII.
std::vector<std::string> Texts() {
  std::vector<std::string> texts(1);
  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    texts.emplace_back(1, c);
    texts.push_back(std::string(70, 'i') + c + std::string(70, 'I'));
    texts.front() += c;
  }
  return texts;
}

class Locale : public testing::TestWithParam<const char*> {};

TEST_P(Locale, MapsEveryByteAsTheCLibraryDoes) {
  const InLocale locale(GetParam());
  ASSERT_TRUE(locale.found()) << "LOCPATH must lead to the locales that the build made";
  NS_ASCII::AsciiUtilInterfaceImpl impl;
  for (const std::string& text : Texts()) {
    ASSERT_EQ(impl.ToUpper(text), LiteralToUpper(text));
    ASSERT_EQ(NS_ASCII::StrToUpper(text), LiteralStrToUpper(text));
    ASSERT_EQ(NS_ASCII::StrToLower(text), LiteralStrToLower(text));
  }
}

INSTANTIATE_TEST_SUITE_P(All, Locale,
                         testing::Values("C", "tr_TR.ISO-8859-9", "ru_RU.CP1251", "ru_RU.KOI8-R",
                                         "de_DE.ISO-8859-15", "C.UTF-8"));

TEST(CaseOfTheLastByte, IsMappedByTheFunctionsButNotByToUpper) {
  // 0xFF is a small letter in this code set. As a signed character it is -1, which the C library reads as the
  // end of a file.
  const InLocale locale("ru_RU.CP1251");
  ASSERT_TRUE(locale.found());
  NS_ASCII::AsciiUtilInterfaceImpl impl;
  EXPECT_EQ(NS_ASCII::StrToUpper("\xFF"), "\xDF");
  EXPECT_EQ(impl.ToUpper("\xFF"), "\xFF");
  EXPECT_EQ(impl.ToUpper("\xFE"), "\xDE");
}

TEST(CaseAfterAChangeOfLocale, IsThatOfTheNewOne) {
  const std::string text(100, '\xE0');
  EXPECT_EQ(NS_ASCII::StrToUpper(text), text);
  const InLocale locale("ru_RU.CP1251");
  ASSERT_TRUE(locale.found());
  EXPECT_EQ(NS_ASCII::StrToUpper(text), std::string(100, '\xC0'));
}

}  // namespace
