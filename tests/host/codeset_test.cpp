#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "framework/platform_util.h"

namespace {

struct Converted {
  int result;
  std::string text;
};

Converted Latin(const std::string& input) {
  Converted converted{0, "left over"};
  converted.result = KelpGlobalUtils::KelpCodeSetConvert("UTF-8", "ISO-8859-1", input, converted.text);
  return converted;
}

TEST(CodeSet, AsciiTextIsCopied) {
  const Converted converted = Latin("plain text\t\n~");
  EXPECT_EQ(converted.text, "plain text\t\n~");
  EXPECT_EQ(converted.result, 0);
}

TEST(CodeSet, EmptyTextGivesEmptyText) {
  EXPECT_EQ(Latin("").text, "");
  EXPECT_EQ(Latin("").result, 0);
}

TEST(CodeSet, NulBytesAreKept) {
  EXPECT_EQ(Latin(std::string("a\0\xC3\xA9", 4)).text, std::string("a\0\xE9", 3));
}

TEST(CodeSet, EveryLatinCharacterBecomesItsByte) {
  for (int code = 0x80; code <= 0xFF; ++code) {
    const std::string utf8{static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
    const Converted converted = Latin(utf8);
    EXPECT_EQ(converted.text, std::string(1, static_cast<char>(code)));
    EXPECT_EQ(converted.result, 0);
  }
}

TEST(CodeSet, ACharacterThatLatinLacksBecomesOneQuestionMark) {
  EXPECT_EQ(Latin("a\xE2\x82\xAC"
                  "b")
                .text,
            "a?b");
  EXPECT_EQ(Latin("\xF0\x9F\x98\x80").text, "?");
  EXPECT_EQ(Latin("\xC4\x80\xC4\x81").text, "??");
  EXPECT_NE(Latin("\xE2\x82\xAC").result, 0);
}

TEST(CodeSet, AMalformedByteBecomesOneQuestionMarkAndTheRestIsKept) {
  EXPECT_EQ(Latin("a\xFFz").text, "a?z");
  EXPECT_EQ(Latin("\x80\x81\xC3\xA9").text, "??\xE9");
  EXPECT_EQ(Latin("\xC3(").text, "?(");
  EXPECT_NE(Latin("a\xFF").result, 0);
}

TEST(CodeSet, EachByteOfACharacterThatIsCutOffAtTheEndBecomesAQuestionMark) {
  EXPECT_EQ(Latin("ab\xC3").text, "ab?");
  EXPECT_EQ(Latin("ab\xE2\x82").text, "ab??");
}

TEST(CodeSet, TextsLongerThanTheWorkingBufferAreWhole) {
  std::string input;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    input += "x\xC3\xA9";
    expected += "x\xE9";
  }
  EXPECT_EQ(Latin(input).text, expected);
}

TEST(CodeSet, AnUnknownCodeSetLeavesTheOutputEmpty) {
  std::string output = "left over";
  EXPECT_NE(KelpGlobalUtils::KelpCodeSetConvert("NO-SUCH-SET", "ISO-8859-1", "text", output), 0);
  EXPECT_EQ(output, "");
  output = "left over";
  EXPECT_NE(KelpGlobalUtils::KelpCodeSetConvert("UTF-8", "NO-SUCH-SET", "text", output), 0);
  EXPECT_EQ(output, "");
}

TEST(CodeSet, OtherPairsAreConvertedTooAndAFailureIsForgottenByTheNextCall) {
  std::string output;
  EXPECT_EQ(KelpGlobalUtils::KelpCodeSetConvert("ISO-8859-1", "UTF-8", "\xE9", output), 0);
  EXPECT_EQ(output, "\xC3\xA9");
  EXPECT_EQ(Latin("\xFF").text, "?");
  EXPECT_EQ(Latin("\xC3\xA9").result, 0);
}

TEST(CodeSet, ThreadsConvertWithDescriptorsOfTheirOwn) {
  std::string texts[4];
  std::thread threads[4];
  for (int at = 0; at < 4; ++at) {
    threads[at] = std::thread([&text = texts[at]] {
      for (int i = 0; i < 500; ++i) text = Latin("\xC3\xA9\xE2\x82\xAC").text;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& text : texts) EXPECT_EQ(text, "\xE9?");
}

}  // namespace
