// Percent-encoding and decoding, and the converter in front of the encoder. The odd results are required
// and compared with the literal rules.

#include <string>

#include "ascii_util/text_functions.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"
#include "tests/recording_fixture.h"

namespace {

using NS_ASCII::GetURLDecoding;
using NS_ASCII::GetURLEncoding;
using NS_ASCII::SetURLDecoding;
using NS_ASCII::utf8toiso8859;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Utf8ToIso8859 : public recording::FrameworkTest {};
class GetUrlEncoding : public recording::FrameworkTest {};
class GetUrlDecoding : public recording::FrameworkTest {};
class SetUrlDecoding : public recording::FrameworkTest {};

// --- utf8toiso8859 -----------------------------------------------------------------------------------------

TEST_F(Utf8ToIso8859, AsksThePlatformsConverterWithAnEmptyOutput) {
  EXPECT_EQ(utf8toiso8859("\xC3\xA9"), "\xE9");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(KelpCodeSetConvert("UTF-8", "ISO-8859-1", "\xc3\xa9", ""))"));
}

TEST_F(Utf8ToIso8859, AsksForTheEmptyTextToo) {
  EXPECT_EQ(utf8toiso8859(""), "");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(KelpCodeSetConvert("UTF-8", "ISO-8859-1", "", ""))"));
}

TEST_F(Utf8ToIso8859, ReturnsWhatAFailedConversionLeaves) {
  framework.convert = [](auto&, auto&, auto&, std::string& output) {
    output = "half";
    return -1;
  };
  EXPECT_EQ(utf8toiso8859("whole"), "half");
  framework.convert = [](auto&, auto&, auto&, std::string&) { return -1; };
  EXPECT_EQ(utf8toiso8859("whole"), "");
}

// --- GetURLEncoding ----------------------------------------------------------------------------------------

TEST_F(GetUrlEncoding, OfTheEmptyTextIsEmptyWithoutAskingTheConverter) {
  EXPECT_EQ(GetURLEncoding(""), "");
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(GetUrlEncoding, ConvertsTheWholeTextOnce) {
  EXPECT_EQ(GetURLEncoding("a\xC3\xA9z"), "a%e9z");
  EXPECT_THAT(framework.Calls(),
              ElementsAre(R"(KelpCodeSetConvert("UTF-8", "ISO-8859-1", "a\xc3\xa9z", ""))"));
}

TEST_F(GetUrlEncoding, OfATextThatConvertsToNothingIsEmpty) {
  framework.convert = [](auto&, auto&, auto&, std::string&) { return -1; };
  EXPECT_EQ(GetURLEncoding("text"), "");
}

TEST_F(GetUrlEncoding, EncodesWhatAFailedConversionLeaves) {
  framework.convert = [](auto&, auto&, auto&, std::string& output) {
    output = "a b/";
    return 7;
  };
  EXPECT_EQ(GetURLEncoding("text"), "a+b%2f");
}

TEST_F(GetUrlEncoding, KeepsLettersDigitsAndFourMarks) {
  EXPECT_EQ(GetURLEncoding("Hello World"), "Hello+World");
  EXPECT_EQ(GetURLEncoding("a-b_c.d*e"), "a-b_c.d*e");
  EXPECT_EQ(GetURLEncoding("100%"), "100%25");
  EXPECT_EQ(GetURLEncoding("a/b~"), "a%2fb%7e");
  EXPECT_EQ(GetURLEncoding("+"), "%2b");
  EXPECT_EQ(GetURLEncoding("!'():"), "%21%27%28%29%3a");
}

// Required: receivers decode one digit as well as two.
TEST_F(GetUrlEncoding, WritesSmallValuesWithoutALeadingZero) {
  EXPECT_EQ(GetURLEncoding("x\ty"), "x%9y");
  EXPECT_EQ(GetURLEncoding("a\x01z"), "a%1z");
  EXPECT_EQ(GetURLEncoding(std::string("a\0z", 3)), "a%0z");
  EXPECT_EQ(GetURLEncoding("\x0Fz"), "%fz");
  EXPECT_EQ(GetURLEncoding("\x10z"), "%10z");
}

TEST_F(GetUrlEncoding, WritesLineEndsAsCarriageReturnAndLineFeed) {
  EXPECT_EQ(GetURLEncoding("line1\r\nline2"), "line1%0d%0aline2");
  EXPECT_EQ(GetURLEncoding("a\n"), "a%0d%0a");
  EXPECT_EQ(GetURLEncoding("a\n/"), "a%0d%0a%2f");
  EXPECT_EQ(GetURLEncoding("\n\n"), "%0d%0a%0d%0a");
  EXPECT_EQ(GetURLEncoding("\n\n/"), "%0d%0a%0d%0a%2f");
  EXPECT_EQ(GetURLEncoding("\n"), "%0d%0a");
  EXPECT_EQ(GetURLEncoding("\r\n"), "%0d%0a");
}

// Required: the encoder once replaced text in finished escapes; receivers expect the result.
TEST_F(GetUrlEncoding, LeavesALineFeedBeforeAPlainCharacterAndALoneCarriageReturn) {
  EXPECT_EQ(GetURLEncoding("a\nb"), "a%ab");
  EXPECT_EQ(GetURLEncoding("a\n b"), "a%a+b");
  EXPECT_EQ(GetURLEncoding("a\rb"), "a%db");
  EXPECT_EQ(GetURLEncoding("a\r"), "a%d");
  EXPECT_EQ(GetURLEncoding("\r\r"), "%d%d");
}

TEST_F(GetUrlEncoding, EncodesACharacterOfIso8859AsOneByte) { EXPECT_EQ(GetURLEncoding("\xC3\xA9"), "%e9"); }

// Required: the escape of U+00A9 starts with "%a", so the carriage return is encoded as before a line feed.
TEST_F(GetUrlEncoding, TreatsTheEscapeAfterACarriageReturnAsALineFeed) {
  EXPECT_EQ(GetURLEncoding("\r\xC2\xA9"), "%0d%0a9");
  framework.convert = recording::CopyThrough;
  EXPECT_EQ(GetURLEncoding("\r\xA0"), "%0d%0a0");
  EXPECT_EQ(GetURLEncoding("\r\xAF"), "%0d%0af");
  EXPECT_EQ(GetURLEncoding("\r\x9F"), "%d%9f");
  EXPECT_EQ(GetURLEncoding("\r\xB0"), "%d%b0");
}

TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnEveryByteAndEveryPair) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  for (int first = 0; first < 256; ++first) {
    const std::string one(1, static_cast<char>(first));
    ASSERT_EQ(GetURLEncoding(one), literal::EncodeLatin1(one)) << first;
    for (int second = 0; second < 256; ++second) {
      const std::string two = one + static_cast<char>(second);
      ASSERT_EQ(GetURLEncoding(two), literal::EncodeLatin1(two)) << first << ' ' << second;
    }
  }
}

TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnEveryShortTextAroundLineEnds) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  testing_text::ForEachText({"\r\n\xA0\xAF\xB0"
                             "ad /%\0",
                             11},
                            5, [](const std::string& text) {
                              ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text))
                                  << recording::Quoted(text);
                            });
}

TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnRandomTexts) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  testing_text::RandomText random(42);
  for (int trial = 0; trial < testing_text::Trials(3000); ++trial) {
    const std::string text = trial % 2 == 0 ? random.Bytes(80) : random.Of("\r\n\xA5 /%az", 80);
    ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << recording::Quoted(text);
  }
}

// Runs of plain characters may take another path than single ones.
TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnLongTextsWithFewEscapes) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  const std::string plain = "ABCXYZabcxyz 0189-._*";
  testing_text::RandomText random(45);
  for (int trial = 0; trial < testing_text::Trials(2000); ++trial) {
    std::string text;
    for (std::size_t runs = random.Below(5); runs > 0; --runs) {
      text += random.Of(plain, trial % 10 == 0 ? 3000 : 150) + random.Bytes(2);
    }
    ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << recording::Quoted(text);
  }
}

// The result must not depend on where runs and blocks of the text end.
TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnLongTexts) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  testing_text::RandomText random(48);
  for (int trial = 0; trial < testing_text::Trials(100); ++trial) {
    const std::string text =
        random.Patchwork({"abcXYZ019-._* ", "\r\n", "\n", "/\xA5\x01", "ab\r\n\xAF /"}, 8, 500);
    ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << recording::Quoted(text);
  }
}

TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleOnEveryByteInEveryPlaceOfAPlainText) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  for (const char plain : {'a', 'Z', '0', '.'}) {
    for (int byte = 0; byte < 256; ++byte) {
      for (std::size_t place = 0; place < 70; ++place) {
        std::string text(70, plain);
        text[place] = static_cast<char>(byte);
        ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << byte << ' ' << place;
      }
    }
  }
}

// One text for each pair of plain characters; the characters between them are all escaped or of one plain
// kind.
TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleBetweenPlainCharacters) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  const std::string plain = "aZ09 -._*";
  for (const char first : plain) {
    for (const char last : plain) {
      for (const char between : plain + "/~!\x01\xE9") {
        for (const std::size_t escapes : {std::size_t{0}, std::size_t{1}, std::size_t{15}, std::size_t{30}}) {
          const std::string text =
              first + std::string(escapes, '/') + std::string(30 - escapes, between) + last;
          ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << recording::Quoted(text);
        }
      }
    }
  }
}

TEST_F(GetUrlEncoding, AgreesWithTheLiteralRuleAroundItsBlocks) {
  framework.SetRecording(false);
  framework.convert = recording::CopyThrough;
  for (const char* const end : {"\n", "\r", "\r\n", "\r\xA5", "\n\n/", "/", "%"}) {
    for (std::size_t length = 1000; length < 1050; ++length) {
      for (const char* const rest : {"", "a", "/"}) {
        const std::string text = std::string(length, 'a') + end + rest + std::string(40, '/');
        ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text)) << recording::Quoted(text);
      }
    }
  }
  for (const char c : {'\n', '\xFF'}) {  // Every byte escaped, in several blocks.
    const std::string text(5000, c);
    ASSERT_EQ(GetURLEncoding(text), literal::EncodeLatin1(text));
  }
  const std::string longest = std::string(1023, '\n') + "\r\xA5";  // The longest code of a block.
  EXPECT_EQ(GetURLEncoding(longest), literal::EncodeLatin1(longest));
}

// --- GetURLDecoding ----------------------------------------------------------------------------------------

TEST_F(GetUrlDecoding, DecodesPlusAndEscapes) {
  EXPECT_EQ(GetURLDecoding("Hello+World"), "Hello World");
  EXPECT_EQ(GetURLDecoding("a%2fb"), "a/b");
  EXPECT_EQ(GetURLDecoding("a%2Fb"), "a/b");
  EXPECT_EQ(GetURLDecoding("%41%42"), "AB");
  EXPECT_EQ(GetURLDecoding("line1%0d%0aline2"), "line1\r\nline2");
  EXPECT_EQ(GetURLDecoding("%e9"), "\xE9");
  EXPECT_EQ(GetURLDecoding("%2B"), "+");
  EXPECT_EQ(GetURLDecoding(""), "");
}

// The two characters after a '%' are always consumed, also when the second is not a digit.
TEST_F(GetUrlDecoding, DropsTheCharacterAfterAOneDigitEscape) {
  EXPECT_EQ(GetURLDecoding("x%9y"), "x\t");
  EXPECT_EQ(GetURLDecoding("x%9yz"), "x\tz");
  EXPECT_EQ(GetURLDecoding("%ax"), "\n");
}

// So decoding the encoded "a\nb" does not give "a\nb".
TEST_F(GetUrlDecoding, ReadsAFollowingHexDigitAsTheSecondDigit) {
  EXPECT_EQ(GetURLDecoding("a%ab"), "a\xAB");
  EXPECT_EQ(GetURLDecoding(GetURLEncoding("a\nb")), "a\xAB");
}

TEST_F(GetUrlDecoding, AnswersOddEscapesAsAStreamWould) {
  EXPECT_EQ(GetURLDecoding("ab%"), "ab");
  EXPECT_EQ(GetURLDecoding("%zz"), std::string(1, '\0'));
  EXPECT_EQ(GetURLDecoding("%4"), "\x04");
  EXPECT_EQ(GetURLDecoding("a%41%%"), "aAA");
  EXPECT_EQ(GetURLDecoding("%-1"), "\xFF");
  EXPECT_EQ(GetURLDecoding("% 7"), "\x07");
  EXPECT_EQ(GetURLDecoding("%+7"), "\x07");
  EXPECT_EQ(GetURLDecoding("%0x"), std::string(1, '\0'));
  EXPECT_EQ(GetURLDecoding("%0X9"), std::string("\0"
                                                "9",
                                                2));
}

TEST_F(GetUrlDecoding, RepeatsTheByteBeforeForAnEmptyOrBlankEscape) {
  EXPECT_EQ(GetURLDecoding("%41%%42"), "AAB");
  EXPECT_EQ(GetURLDecoding("%41% "), "AA");
  EXPECT_EQ(GetURLDecoding("%41%  x"), "AAx");
  EXPECT_EQ(GetURLDecoding("%41%\t\n%"), "AA");
  EXPECT_EQ(GetURLDecoding("%%"), std::string(1, '\0'));
  EXPECT_EQ(GetURLDecoding("% "), std::string(1, '\0'));
  EXPECT_EQ(GetURLDecoding("%41%zz%%"), std::string("A\0\0", 3));
}

TEST_F(GetUrlDecoding, KeepsNoByteBetweenCalls) {
  EXPECT_EQ(GetURLDecoding("%41"), "A");
  EXPECT_EQ(GetURLDecoding("%%"), std::string(1, '\0'));
}

TEST_F(GetUrlDecoding, ConvertsNoCodeSet) {
  EXPECT_EQ(GetURLDecoding("\xC3\xA9%c3%a9"), "\xC3\xA9\xC3\xA9");
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

/// The expected decoding of "%41%ESCAPE": 'A', then the byte that a stream extracts into a variable that
/// holds 0x41, and then nothing, as both characters are consumed.
std::string ByExtraction(const std::string& escape) {
  int value = 0x41;
  literal::ExtractHex(escape, value);
  return std::string("A") + static_cast<char>(static_cast<unsigned>(value) & 0xFFU);
}

std::string WithoutPlus(const std::string& text) {
  std::string blanks = text;
  for (char& c : blanks) {
    c = c == '+' ? ' ' : c;
  }
  return blanks;
}

// 1 empty, 256 of one byte and 65,536 of two. A '%' ends an escape text, so those with one are cut there.
TEST_F(GetUrlDecoding, ExtractsAll65793EscapeTextsAsAStreamDoes) {
  int texts = 0;
  const auto check = [&texts](const std::string& escape) {
    ++texts;
    const std::size_t percent = escape.find('%');
    if (percent == std::string::npos) {
      // The '%' after it makes the empty escape text an escape too; a '%' at the very end is dropped.
      ASSERT_EQ(GetURLDecoding("%41%" + escape + '%'), ByExtraction(WithoutPlus(escape)))
          << recording::Quoted(escape);
    }
    ASSERT_EQ(GetURLDecoding("%41%" + escape), literal::GetURLDecoding("%41%" + escape))
        << recording::Quoted(escape);
  };
  check("");
  for (int first = 0; first < 256; ++first) {
    check(std::string(1, static_cast<char>(first)));
    for (int second = 0; second < 256; ++second) {
      check(std::string(1, static_cast<char>(first)) + static_cast<char>(second));
    }
  }
  EXPECT_EQ(texts, 65793);
}

TEST_F(GetUrlDecoding, AgreesWithTheLiteralRuleOnEveryShortTextAroundEscapes) {
  testing_text::ForEachText("%+0xag -4", 6, [](const std::string& text) {
    ASSERT_EQ(GetURLDecoding(text), literal::GetURLDecoding(text)) << recording::Quoted(text);
  });
}

TEST_F(GetUrlDecoding, AgreesWithTheLiteralRuleOnRandomTexts) {
  testing_text::RandomText random(43);
  for (int trial = 0; trial < testing_text::Trials(5000); ++trial) {
    const std::string text = trial % 2 == 0 ? random.Bytes(60) : random.Of("%%%+ 0123abfFxX-\t\v", 60);
    ASSERT_EQ(GetURLDecoding(text), literal::GetURLDecoding(text)) << recording::Quoted(text);
  }
}

TEST_F(GetUrlDecoding, AgreesWithTheLiteralRuleOnLongTextsWithFewEscapes) {
  const std::string plain = "ABCXYZabcxyz +0189-._*";
  testing_text::RandomText random(46);
  for (int trial = 0; trial < testing_text::Trials(2000); ++trial) {
    std::string text;
    for (std::size_t runs = random.Below(5); runs > 0; --runs) {
      text += random.Of(plain, 150) + random.Of("%%0f4-+ ", 4);
    }
    ASSERT_EQ(GetURLDecoding(text), literal::GetURLDecoding(text)) << recording::Quoted(text);
  }
}

TEST_F(GetUrlDecoding, AgreesWithTheLiteralRuleOnLongTexts) {
  testing_text::RandomText random(49);
  for (int trial = 0; trial < testing_text::Trials(300); ++trial) {
    const std::string text =
        random.Patchwork({"abcXYZ019-._*+", "%", "%0a", "ab+%4", "%+ -0123afx"}, 12, 700);
    ASSERT_EQ(GetURLDecoding(text), literal::GetURLDecoding(text)) << recording::Quoted(text);
  }
}

// An escape may begin in one block of the text and end in the next, or at the end of the text.
TEST_F(GetUrlDecoding, AgreesWithTheLiteralRuleForEscapesInEveryPlace) {
  for (const char* const escape :
       {"%", "%4", "%41", "%%", "%%%41", "%4%41", "%-1", "% 7", "%zz", "+", "%41%"}) {
    for (std::size_t place = 0; place < 70; ++place) {
      for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{70}}) {
        const std::string text = std::string(place, 'a') + escape + std::string(length, 'b');
        ASSERT_EQ(GetURLDecoding(text), literal::GetURLDecoding(text)) << text;
      }
    }
  }
}

// --- SetURLDecoding ----------------------------------------------------------------------------------------

// Required: despite its name it only escapes percent signs.
TEST_F(SetUrlDecoding, EscapesEveryPercentAndTouchesNothingElse) {
  EXPECT_EQ(SetURLDecoding("abc"), "abc");
  EXPECT_EQ(SetURLDecoding("50% off"), "50%25 off");
  EXPECT_EQ(SetURLDecoding("%%"), "%25%25");
  EXPECT_EQ(SetURLDecoding("a+b"), "a+b");
  EXPECT_EQ(SetURLDecoding(""), "");
  EXPECT_EQ(SetURLDecoding(std::string("\0%\xFF", 3)), std::string("\0%25\xFF", 5));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(SetUrlDecoding, KeepsPercentSignsThroughTheDecoder) {
  EXPECT_EQ(GetURLDecoding(SetURLDecoding("50% of 100%")), "50% of 100%");
  EXPECT_EQ(GetURLDecoding(SetURLDecoding("%41")), "%41");
}

TEST_F(SetUrlDecoding, AgreesWithTheLiteralRule) {
  testing_text::RandomText random(44);
  for (int trial = 0; trial < testing_text::Trials(3000); ++trial) {
    const std::string text = trial % 2 == 0 ? random.Bytes(60) : random.Of("%2+a", 60);
    ASSERT_EQ(SetURLDecoding(text), literal::SetURLDecoding(text)) << recording::Quoted(text);
  }
}

}  // namespace
