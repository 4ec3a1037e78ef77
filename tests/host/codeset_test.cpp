// Code-set conversion by iconv: each character that cannot be converted becomes one '?', and a text of any
// length is whole.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <thread>

#include "framework/platform_util.h"

namespace {

/// Allocations of more bytes than this fail.
std::size_t mostBytes = SIZE_MAX;

}  // namespace

// noinline: the compiler would otherwise warn of mismatched allocation functions at inlined pairs.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const piece = size <= mostBytes ? std::malloc(size) : nullptr;
  if (piece == nullptr) {
    throw std::bad_alloc();
  }
  return piece;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
  return size <= mostBytes ? std::malloc(size) : nullptr;
}
[[gnu::noinline]] void operator delete(void* piece) noexcept { std::free(piece); }
[[gnu::noinline]] void operator delete(void* piece, std::size_t) noexcept { std::free(piece); }

namespace {

struct Converted {
  int result;
  std::string text;
};

Converted Convert(const std::string& from, const std::string& to, const std::string& input) {
  Converted converted{0, "left over"};
  converted.result = KelpGlobalUtils::KelpCodeSetConvert(from, to, input, converted.text);
  return converted;
}

Converted Latin(const std::string& input) { return Convert("UTF-8", "ISO-8859-1", input); }

std::string Repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
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

// Takes minutes if each such character makes iconv convert the rest of the text again.
TEST(CodeSet, ALongTextOfCharactersThatLatinLacksBecomesAsManyQuestionMarks) {
  EXPECT_EQ(Latin(Repeated("\xE2\x82\xAC", 200000)).text, std::string(200000, '?'));
}

// Long texts are converted in pieces; the result must not depend on where a piece ends.
TEST(CodeSet, CharactersAreWholeAtEveryPlaceOfALongText) {
  for (std::size_t before = 240; before < 270; ++before) {
    EXPECT_EQ(Latin(std::string(before, 'a') + "\xC3\xA9\xF0\x9F\x98\x80z").text,
              std::string(before, 'a') + "\xE9?z");
    EXPECT_EQ(Latin(std::string(before, 'a') + "\xF0\x9F\x98").text, std::string(before, 'a') + "???");
  }
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

TEST(CodeSet, TextsOfEveryLengthAreWhole) {
  for (std::size_t times = 0; times < 700; ++times) {
    EXPECT_EQ(Latin(Repeated("x\xC3\xA9", times)).text, Repeated("x\xE9", times));
    EXPECT_EQ(Latin(Repeated("\xC3\xA9\xFF", times)).text, Repeated("\xE9?", times));
  }
}

TEST(CodeSet, TextsThatBecomeLongerAreWhole) {
  for (std::size_t times = 0; times < 700; ++times) {
    const std::string latin = Repeated("\xE9", times);
    EXPECT_EQ(Convert("ISO-8859-1", "UTF-8", latin).text, Repeated("\xC3\xA9", times));
    EXPECT_EQ(Convert("ISO-8859-1", "UTF-8", "x" + latin).text, "x" + Repeated("\xC3\xA9", times));
    EXPECT_EQ(Convert("ISO-8859-1", "UTF-32LE", latin).text, Repeated(std::string("\xE9\0\0\0", 4), times));
  }
}

TEST(CodeSet, TheOutputGrowsForAQuestionMarkToo) {
  for (std::size_t times = 0; times < 100; ++times) {
    const std::string hiragana = Repeated("\xE3\x81\x82", times) + '\xFF';
    EXPECT_EQ(Convert("UTF-8", "UTF-32LE", hiragana).text,
              Repeated(std::string("\x42\x30\0\0", 4), times) + '?');
  }
}

TEST(CodeSet, AStatefulTargetIsEndedAndBegunAgain) {
  const std::string hiragana = "\x1B$B$\"\x1B(B";
  EXPECT_EQ(Convert("UTF-8", "ISO-2022-JP", "\xE3\x81\x82").text, hiragana);
  EXPECT_EQ(Convert("UTF-8", "ISO-2022-JP", "\xE3\x81\x82").text, hiragana);
}

TEST(CodeSet, AStatefulSourceIsBegunAgain) {
  EXPECT_EQ(Convert("ISO-2022-JP", "UTF-8", "\x1B$B$\"").text, "\xE3\x81\x82");
  EXPECT_EQ(Convert("ISO-2022-JP", "UTF-8", "$\"").text, "$\"");
}

TEST(CodeSet, AConversionThatRanOutOfMemoryIsForgotten) {
  std::string output;
  const std::string from = "ISO-2022-JP";
  const std::string input = "\x1B$B" + Repeated("$\"", 100);
  KelpGlobalUtils::KelpCodeSetConvert(from, "UTF-8", "", output);
  mostBytes = 250;
  EXPECT_THROW(KelpGlobalUtils::KelpCodeSetConvert(from, "UTF-8", input, output), std::bad_alloc);
  mostBytes = SIZE_MAX;
  EXPECT_EQ(Convert(from, "UTF-8", "$\"").text, "$\"");
}

TEST(CodeSet, InputAndOutputMayBeTheSame) {
  std::string text = "\xC3\xA9\xE2\x82\xAC";
  EXPECT_NE(KelpGlobalUtils::KelpCodeSetConvert("UTF-8", "ISO-8859-1", text, text), 0);
  EXPECT_EQ(text, "\xE9?");
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
