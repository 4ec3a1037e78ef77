#include "src/asciiutilifimpl.h"

#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "src/almconfig.h"
#include "src/logmgr.h"
#include "tests/child_process.h"
#include "tests/freed_memory.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"
#include "tests/recording_fixture.h"

namespace {

std::optional<std::time_t> clockReads;            ///< what `time` answers; else the real time
std::vector<std::string>* strtolTexts = nullptr;  ///< where `strtol` notes its texts

}  // namespace

// The linker sends the unit's calls into the C library here (--wrap), so that a test can see and answer them.
extern "C" {
std::time_t __real_time(std::time_t*);
std::time_t __wrap_time(std::time_t* place) { return clockReads ? *clockReads : __real_time(place); }

long __real_strtol(const char*, char**, int);
long __wrap_strtol(const char* text, char** end, int base) {
  if (strtolTexts != nullptr) {
    strtolTexts->push_back(std::string(text) + " in " + std::to_string(base));
  }
  if (base < 0 || base == 1 || base > 36) {
    // What the C library does, which leaves `end` alone; AddressSanitizer's stand-in for it hands on a
    // pointer that nobody set.
    errno = EINVAL;
    return 0;
  }
  return __real_strtol(text, end, base);
}
}

namespace {

using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AsciiUtilInterfaceImpl;
using NS_ASCII::ListMap;
using recording::Message;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using testing_text::ForEachText;
using testing_text::RandomText;

using Texts = std::vector<std::string>;

Message Said(int line, int level, const std::string& text) {
  return {"asciiutilifimpl", "unknown", line, level, text, {}};
}

class InterfaceTest : public recording::FrameworkTest {
 protected:
  ~InterfaceTest() override {
    clockReads.reset();
    strtolTexts = nullptr;
  }

  AsciiUtilInterfaceImpl impl;
};

class GetSvcName : public InterfaceTest {};
class IsValid : public InterfaceTest {};
class Str2Num : public InterfaceTest {};
class GetTimeStamp : public InterfaceTest {};
class IsTransQueltEnabled : public InterfaceTest {};
class GetAlmCfgValue : public InterfaceTest {};
class ToUpper : public InterfaceTest {};
class IsContain : public InterfaceTest {};
class IsKeyValueAboveOne : public InterfaceTest {};
class GetKeyValue : public InterfaceTest {};
class SplitFirst : public InterfaceTest {};
class ParseListMap : public InterfaceTest {};
class ParseListEntry : public InterfaceTest {};
class GetMapList : public InterfaceTest {};
class SplitStr : public InterfaceTest {};
class WriteDbgLog : public InterfaceTest {};

// --- Names and numbers
// ---------------------------------------------------------------------------------------

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

// Callers read a missing configured value with it and count on the 0.
TEST_F(Str2Num, TakesTheEmptyTextForZero) {
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

TEST_F(Str2Num, KeepsTheLow32Bits) {
  EXPECT_EQ(Converted(impl, "4294967297", 10), "true 1");
  EXPECT_EQ(Converted(impl, "2147483648", 10), "true -2147483648");
  EXPECT_EQ(Converted(impl, "-4294967295", 10), "true 1");
  EXPECT_EQ(Converted(impl, "99999999999999999999", 10), "true -1");
}

TEST_F(Str2Num, CountsATextUpToItsFirstNul) {
  EXPECT_EQ(Converted(impl, std::string("5\0x", 3), 10), "true 5");
}

TEST_F(Str2Num, ReadsNothingInABaseThatDoesNotExist) {
  EXPECT_EQ(Converted(impl, "42", 1), "false 0");
  EXPECT_EQ(Converted(impl, "42", 37), "false 0");
  EXPECT_EQ(Converted(impl, "", 1), "true 0");
}

TEST_F(Str2Num, AsksTheCLibrary) {
  Texts texts;
  strtolTexts = &texts;
  Converted(impl, "42", 7);
  EXPECT_THAT(texts, ElementsAre("42 in 7"));
}

TEST_F(Str2Num, AgreesWithTheLiteralRule) {
  for (const int base : {0, 2, 10, 16, 36}) {
    ForEachText({"0x19f- \0", 8}, 5, [&](const std::string& text) {
      int expected = 0;
      int value = 1;
      ASSERT_EQ(impl.Str2Num(text, value, base), literal::Str2Num(text, expected, base)) << text;
      ASSERT_EQ(value, expected) << text;
    });
  }
}

// --- GetTimeStamp
// --------------------------------------------------------------------------------------------

constexpr std::time_t kYear10000 = 253402300800;

TEST_F(GetTimeStamp, WritesTheTimeInUtcWhateverTheTimeZone) {
  clockReads = 1794733904;
  for (const char* const zone : {"UTC", "America/New_York", "XYZ-5:30"}) {
    setenv("TZ", zone, 1);
    tzset();
    EXPECT_EQ(impl.GetTimeStamp(), "2026-11-15T09:11:44") << zone;
  }
  unsetenv("TZ");
  tzset();
}

TEST_F(GetTimeStamp, PadsMonthDayAndTimeWithZeros) {
  clockReads = 946684800;
  EXPECT_EQ(impl.GetTimeStamp(), "2000-01-01T00:00:00");
}

TEST_F(GetTimeStamp, AsksThePlatformsFormatter) {
  clockReads = 0;
  EXPECT_EQ(impl.GetTimeStamp(), "1970-01-01T00:00:00");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(sprintf_s(20, "%4d-%02d-%02d%s%02d:%02d:%02d"))"));
}

TEST_F(GetTimeStamp, ReachesToTheEndOfTheYear9999) {
  clockReads = kYear10000 - 1;
  EXPECT_EQ(impl.GetTimeStamp(), "9999-12-31T23:59:59");
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedFromTheYear10000On) {
  clockReads = kYear10000;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedForAYearThatNoIntHolds) {
  clockReads = 67768036191676799;  // The last second whose years since 1900 still fit.
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, PadsAYearBelow1000WithBlanks) {
  clockReads = -30625858677;
  EXPECT_EQ(impl.GetTimeStamp(), " 999-07-04T01:02:03");
  clockReads = -62135596800;
  EXPECT_EQ(impl.GetTimeStamp(), "   1-01-01T00:00:00");
}

TEST_F(GetTimeStamp, FitsDownToTheYearMinus999) {
  clockReads = -93692592000;
  EXPECT_EQ(impl.GetTimeStamp(), "-999-01-01T00:00:00");
  EXPECT_THAT(framework.Messages(), IsEmpty());
  clockReads = -93692592001;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, IsEmptyWithoutAWordWhenTheClockCannotBeBrokenDown) {
  clockReads = 67768036191676800;  // The first second whose years since 1900 no int holds.
  EXPECT_EQ(impl.GetTimeStamp(), "");
  clockReads = INT64_MAX;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedWheneverTheFormatterFails) {
  framework.sprintfResult = -1;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

// --- IsTransQueltEnabled
// -------------------------------------------------------------------------------------

TEST_F(IsTransQueltEnabled, IsTrueWhenTheItemIsOne) {
  framework.intItems["IsTransQuelt"] = 1;
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  EXPECT_THAT(framework.CallsWithoutLog(), ElementsAre(R"(GetIntItemInfo("IsTransQuelt", 1))"));
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(57, 1, "Trans QueltTools ")));
}

TEST_F(IsTransQueltEnabled, IsFalseForEveryOtherValue) {
  for (const int value : {0, 2, -1}) {
    framework.ForgetCalls();
    framework.intItems["IsTransQuelt"] = value;
    EXPECT_FALSE(impl.IsTransQueltEnabled()) << value;
    EXPECT_THAT(framework.Messages(), ElementsAre(Said(53, 1, "acces QueltTools ")));
  }
}

// An unreadable item switches the translation on.
TEST_F(IsTransQueltEnabled, IsTrueWhenTheItemIsAbsent) {
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(49, 0, "read conf item IsTransQuelt failed."),
                                                Said(57, 1, "Trans QueltTools ")));
}

TEST_F(IsTransQueltEnabled, ForgetsWhatAFailedReadLeftBehind) {
  framework.unreadable = 0;
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(49, 0, "read conf item IsTransQuelt failed."),
                                                Said(57, 1, "Trans QueltTools ")));
}

TEST_F(IsTransQueltEnabled, AsksAfreshOnEveryCall) {
  framework.intItems["IsTransQuelt"] = 1;
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  framework.intItems["IsTransQuelt"] = 0;
  EXPECT_FALSE(impl.IsTransQueltEnabled());
}

// --- GetAlmCfgValue
// ------------------------------------------------------------------------------------------

/// The result and the value that the query leaves: "0 15".
std::string Queried(AsciiUtilInterfaceImpl& impl, const std::string& key1, int numKey) {
  std::int64_t value = 777;
  const std::int64_t result = impl.GetAlmCfgValue(value, key1, "B", "C", numKey);
  return std::to_string(result) + ' ' + std::to_string(value);
}

void Configure(const std::string& key1, const std::string& numKey, const std::string& value) {
  Alarm_Config_Param::Instance()->InsertRecord({key1, "B", numKey, "C", value});
}

// A missing key is no failure; it answers 0.
TEST_F(GetAlmCfgValue, AnswersZeroForAKeyWithoutARecord) { EXPECT_EQ(Queried(impl, "absent", 7), "0 0"); }

TEST_F(GetAlmCfgValue, AnswersTheConfiguredNumber) {
  Configure("fifteen", "7", "15");
  Configure("negative", "7", "-1");
  Configure("wrapped", "7", "4294967297");
  Configure("empty", "7", "");
  EXPECT_EQ(Queried(impl, "fifteen", 7), "0 15");
  EXPECT_EQ(Queried(impl, "negative", 7), "0 -1");
  EXPECT_EQ(Queried(impl, "wrapped", 7), "0 1");
  EXPECT_EQ(Queried(impl, "empty", 7), "0 0");
}

TEST_F(GetAlmCfgValue, LeavesTheValueAloneWhenTheTextIsNoNumber) {
  Configure("blank", "7", "15 ");
  Configure("letter", "7", "x");
  EXPECT_EQ(Queried(impl, "blank", 7), "1 777");
  EXPECT_EQ(Queried(impl, "letter", 7), "1 777");
}

TEST_F(GetAlmCfgValue, ComparesTheNumberAsItsDecimalText) {
  Configure("plain", "7", "70");
  Configure("padded", "07", "70");
  Configure("minus", "-2147483648", "70");
  EXPECT_EQ(Queried(impl, "plain", 7), "0 70");
  EXPECT_EQ(Queried(impl, "padded", 7), "0 0");
  EXPECT_EQ(Queried(impl, "minus", INT32_MIN), "0 70");
}

TEST_F(GetAlmCfgValue, ComparesAllFourParts) {
  Alarm_Config_Param::Instance()->InsertRecord({"k1", "k2", "7", "k3", "5"});
  std::int64_t value = 777;
  EXPECT_EQ(impl.GetAlmCfgValue(value, "k1", "k2", "k3", 7), 0);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(impl.GetAlmCfgValue(value, "k1", "k3", "k2", 7), 0);
  EXPECT_EQ(value, 0);
}

TEST_F(GetAlmCfgValue, MakesTheNumbersTextWithThePlatformsHelpersAndLogsNothing) {
  Configure("helpers", "seven", "15");
  framework.num2Str = [](int number) { return number == 7 ? " seven " : "?"; };
  framework.trim = [](const std::string& text) { return text == " seven " ? "seven" : "?"; };
  EXPECT_EQ(Queried(impl, "helpers", 7), "0 15");
  EXPECT_THAT(framework.Calls(), ElementsAre("Num2Str(7)", "Trim(\" seven \")"));
}

/// Answers number conversions itself.
class OwnStr2Num : public AsciiUtilInterfaceImpl {
 public:
  bool Str2Num(const std::string& text, int& value, int base) override {
    asked.push_back(text + " in " + std::to_string(base));
    value = -3;
    return answer;
  }
  Texts asked;
  bool answer = true;
};

TEST_F(GetAlmCfgValue, ConvertsThroughTheVirtualTable) {
  Configure("virtual", "7", "text");
  OwnStr2Num own;
  EXPECT_EQ(Queried(own, "virtual", 7), "0 -3");
  own.answer = false;
  EXPECT_EQ(Queried(own, "absent", 7), "1 777");
  EXPECT_THAT(own.asked, ElementsAre("text in 10", " in 10"));
}

// --- ToUpper, IsContain
// --------------------------------------------------------------------------------------

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

// Only the first character is looked at, so a NUL behind it is a character like any other.
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

// --- GetKeyValue, IsKeyValueAboveOne
// ---------------------------------------------------------------------------

TEST_F(GetKeyValue, FindsTheValueOfAPair) {
  EXPECT_EQ(impl.GetKeyValue("B", "A=1,B=2,C=3"), "2");
  EXPECT_EQ(impl.GetKeyValue("C", "A=1,B=2,C=3"), "3");
  EXPECT_EQ(impl.GetKeyValue("A", "A=1"), "1");
  EXPECT_EQ(impl.GetKeyValue("D", "A=1,B=2,C=3"), "");
  EXPECT_EQ(impl.GetKeyValue("a", "A=1"), "");
  EXPECT_EQ(impl.GetKeyValue("A", ""), "");
  EXPECT_EQ(impl.GetKeyValue("A", "A"), "");
  EXPECT_EQ(impl.GetKeyValue("A", ",,A=1,"), "1");
}

TEST_F(GetKeyValue, TrimsPairsButNotNextToTheEqualsSign) {
  EXPECT_EQ(impl.GetKeyValue("B", " A=1 , B=2 "), "2");
  EXPECT_EQ(impl.GetKeyValue("A", "A =1"), "");
  EXPECT_EQ(impl.GetKeyValue("A ", "A = 1"), " 1");
  EXPECT_EQ(impl.GetKeyValue("B", "A=1,\tB=2\r\n"), "2");
  EXPECT_EQ(impl.GetKeyValue("A", "\tA=1\r\n,B=2"), "1");
}

// The search ends at the pair, but as it found no value the rest of the text counts as one. Callers rely on
// it.
TEST_F(GetKeyValue, AnswersAnEmptyValueWithTheRestOfTheText) {
  EXPECT_EQ(impl.GetKeyValue("A", "A=,B=2"), ",B=2");
  EXPECT_EQ(impl.GetKeyValue("A", "B=2,A="), "");
  EXPECT_EQ(impl.GetKeyValue("A", "A="), "");
  EXPECT_EQ(impl.GetKeyValue("A", " A=,B=2 ,C "), ",B=2 ,C");
  EXPECT_EQ(impl.GetKeyValue("A", "A=,A=2"), ",A=2");
}

TEST_F(GetKeyValue, TakesTheFirstPairAndEverythingBehindItsFirstEqualsSign) {
  EXPECT_EQ(impl.GetKeyValue("A", "A=1,A=2"), "1");
  EXPECT_EQ(impl.GetKeyValue("A", "A=b=c"), "b=c");
  EXPECT_EQ(impl.GetKeyValue("", "=1"), "");
}

TEST_F(GetKeyValue, FindsNothingForAnEmptyKey) {
  for (const char* const text : {"", "=1", "A=1", ",", "A=1,=2"}) {
    EXPECT_EQ(impl.GetKeyValue("", text), "");
    EXPECT_EQ(impl.GetKeyValue(std::string("\0A", 2), text), "");
    EXPECT_FALSE(impl.IsKeyValueAboveOne("", text));
  }
}

TEST_F(GetKeyValue, ComparesKeysUpToTheirFirstNul) {
  EXPECT_EQ(impl.GetKeyValue(std::string("A\0x", 3), "A=1"), "1");
  EXPECT_EQ(impl.GetKeyValue("A", std::string("A\0y=1", 5)), "1");
}

TEST_F(GetKeyValue, GoesOnBehindAValueThatStartsWithNul) {
  EXPECT_EQ(impl.GetKeyValue("A", std::string("A=\0,B", 5)), std::string("\0,B", 3));
}

TEST_F(GetKeyValue, AgreesWithTheLiteralRuleOnEveryShortText) {
  const Texts keys = {"A", "A ", "", "B", std::string("A\0", 2)};
  ForEachText({"A=, 2\0", 6}, 7, [&](const std::string& text) {
    ASSERT_EQ(impl.GetKeyValue("A", text), literal::GetKeyValue("A", text)) << recording::Quoted(text);
  });
  ForEachText({"AB=, \t2\0", 8}, 5, [&](const std::string& text) {
    for (const std::string& key : keys) {
      ASSERT_EQ(impl.GetKeyValue(key, text), literal::GetKeyValue(key, text)) << recording::Quoted(text);
      ASSERT_EQ(impl.IsKeyValueAboveOne(key, text), literal::IsKeyValueAboveOne(key, text))
          << recording::Quoted(text);
    }
  });
}

TEST_F(IsKeyValueAboveOne, ReadsTheNumberThatTheValueStartsWith) {
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N=2"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=1"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=0"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=-3"));
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N=5x"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=x5"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N=0x9"));
  EXPECT_TRUE(impl.IsKeyValueAboveOne("N", "N= 7"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "M=7"));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", ""));
  EXPECT_FALSE(impl.IsKeyValueAboveOne("N", "N="));
}

TEST_F(IsKeyValueAboveOne, ConvertsThroughTheVirtualTableWhateverThatAnswers) {
  OwnStr2Num own;
  EXPECT_FALSE(own.IsKeyValueAboveOne("N", "N=text,M=1"));
  EXPECT_FALSE(own.IsKeyValueAboveOne("N", "M=1"));
  EXPECT_THAT(own.asked, ElementsAre("text in 10"));
}

// --- SplitFirst
// ----------------------------------------------------------------------------------------------

TEST_F(SplitFirst, LeavesBothTextsAloneWithoutADelimiter) {
  std::string head = "head";
  std::string tail = "tail";
  EXPECT_FALSE(impl.SplitFirst("kv", head, tail, "="));
  EXPECT_FALSE(impl.SplitFirst("k=v", head, tail, ""));
  EXPECT_FALSE(impl.SplitFirst("", head, tail, "="));
  EXPECT_EQ(head + tail, "headtail");
}

TEST_F(SplitFirst, SplitsAtTheFirstDelimiter) {
  std::string head = "head";
  std::string tail = "tail";
  EXPECT_TRUE(impl.SplitFirst("k=v", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "k|v");
  EXPECT_TRUE(impl.SplitFirst("k=", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "k|");
  EXPECT_TRUE(impl.SplitFirst("=v", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "|v");
  EXPECT_TRUE(impl.SplitFirst("a=b=c", head, tail, "="));
  EXPECT_EQ(head + '|' + tail, "a|b=c");
}

// It goes on behind as many characters as the set has, not behind the one it found.
TEST_F(SplitFirst, SkipsAsManyCharactersAsTheSetHas) {
  std::string head;
  std::string tail = "tail";
  EXPECT_TRUE(impl.SplitFirst("k=xyz", head, tail, ":="));
  EXPECT_EQ(head + '|' + tail, "k|yz");
  EXPECT_TRUE(impl.SplitFirst("k=x", head, tail, ":="));
  EXPECT_EQ(head + '|' + tail, "k|");
  EXPECT_THROW(impl.SplitFirst("long=", head, tail, ":="), std::out_of_range);
  EXPECT_EQ(head + '|' + tail, "long|");
}

// --- SplitStr
// ------------------------------------------------------------------------------------------------

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

TEST_F(SplitStr, WorksOnATextOutOfTheListItself) {
  constexpr std::size_t kFull = FreedMemoryOverwritten::kWholeBytes / sizeof(std::string);
  for (const char* const separator : {",", "--"}) {
    const std::string text = std::string("a") + separator + "b" + separator + "c";
    Texts pieces(kFull, text);  // The first piece finds no room and moves them all.
    ASSERT_EQ(pieces.capacity(), kFull);
    const FreedMemoryOverwritten overwritten;
    EXPECT_EQ(impl.SplitStr(pieces[1], separator, pieces), 0);
    ASSERT_EQ(pieces.size(), kFull + 3);
    EXPECT_EQ(pieces[1], text);
    EXPECT_EQ(pieces[kFull] + pieces[kFull + 1] + pieces[kFull + 2], "abc");
  }
}

// Nothing guards against an empty separator: it is found again and again, and memory runs out.
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

// --- ParseListMap, ParseListEntry, GetMapList
// ------------------------------------------------------------------

ListMap Parsed(AsciiUtilInterfaceImpl& impl, const std::string& text) {
  ListMap map = {{"old", {"gone"}}};
  EXPECT_EQ(impl.ParseListMap(map, text), 0);
  return map;
}

TEST_F(ParseListMap, MakesAMapOfListsFromEntries) {
  EXPECT_THAT(Parsed(impl, "ALM=x|y, PATH=a-b|c, ALM=z"),
              ElementsAre(Pair("ALM", ElementsAre("x", "y")), Pair("PATH", ElementsAre("a", "b|c"))));
  EXPECT_THAT(Parsed(impl, "A=1-2|3,B=,C==|="),
              ElementsAre(Pair("A", ElementsAre("1-2", "3")), Pair("B", ElementsAre("")),
                          Pair("C", ElementsAre("=", "="))));
}

TEST_F(ParseListMap, KeepsABlankBeforeTheEqualsSignInTheName) {
  EXPECT_THAT(Parsed(impl, "ALM = x"), ElementsAre(Pair("ALM ", ElementsAre("x"))));
}

TEST_F(ParseListMap, TakesAnEntryWithoutAnEqualsSignForTheEmptyName) {
  EXPECT_THAT(Parsed(impl, ""), ElementsAre(Pair("", ElementsAre(""))));
  EXPECT_THAT(Parsed(impl, "junk"), ElementsAre(Pair("", ElementsAre(""))));
  EXPECT_THAT(Parsed(impl, "A=1,"), ElementsAre(Pair("", ElementsAre("")), Pair("A", ElementsAre("1"))));
}

TEST_F(ParseListMap, ClearsTheMapFirst) { EXPECT_EQ(Parsed(impl, "A=1").count("old"), 0U); }

TEST_F(ParseListMap, TakesOnlyPathForAPath) {
  EXPECT_THAT(Parsed(impl, "path=a-b,PATH =a-b,PATHS=a-b"),
              ElementsAre(Pair("PATH ", ElementsAre("a-b")), Pair("PATHS", ElementsAre("a-b")),
                          Pair("path", ElementsAre("a-b"))));
  EXPECT_THAT(Parsed(impl, std::string("PATH\0x=a-b", 10)),
              ElementsAre(Pair(std::string("PATH\0x", 6), ElementsAre("a", "b"))));
}

/// Answers splits itself.
class OwnSplitStr : public AsciiUtilInterfaceImpl {
 public:
  std::int64_t SplitStr(const std::string& text, const std::string& separator, Texts& pieces) override {
    asked.push_back(text + " at " + separator);
    if (separator == ",") {
      pieces = entries;
    } else {
      pieces.push_back("own");
    }
    return 0;
  }
  Texts asked;
  Texts entries = {"A=1|2", "PATH=3"};
};

TEST_F(ParseListMap, SplitsThroughTheVirtualTable) {
  OwnSplitStr own;
  EXPECT_THAT(Parsed(own, "text"),
              ElementsAre(Pair("A", ElementsAre("own")), Pair("PATH", ElementsAre("own"))));
  EXPECT_THAT(own.asked, ElementsAre("text at ,", "1|2 at |", "3 at -"));
}

TEST_F(ParseListMap, LeavesAnEmptyMapWhenThereAreNoEntries) {
  OwnSplitStr own;
  own.entries.clear();
  EXPECT_THAT(Parsed(own, "text"), IsEmpty());
}

TEST_F(ParseListMap, AgreesWithTheLiteralRule) {
  RandomText random(73);
  const Texts parts = {"PATH", "ALM", "A", "=", "=", "|", "-", ",", ",", " ", "\t", std::string(1, '\0')};
  for (int trial = 0; trial < testing_text::Trials(20000); ++trial) {
    std::string text;
    for (std::size_t count = random.Below(16); count > 0; --count) {
      text += parts[random.Below(parts.size())];
    }
    ListMap expected;
    literal::ParseListMap(expected, text);
    ASSERT_EQ(Parsed(impl, text), expected) << recording::Quoted(text);
  }
}

TEST_F(ParseListEntry, KeepsTheNameWithoutAnEqualsSign) {
  std::string name = "PATH";
  Texts items = {"before"};
  impl.ParseListEntry("a-b", name, items);
  EXPECT_EQ(name, "PATH");
  EXPECT_THAT(items, ElementsAre("before", ""));
}

TEST_F(ParseListEntry, SplitsAtTheFirstEqualsSign) {
  std::string name;
  Texts items;
  impl.ParseListEntry("N =a| b=c", name, items);
  EXPECT_EQ(name, "N ");
  EXPECT_THAT(items, ElementsAre("a", "b=c"));
}

TEST_F(GetMapList, CopiesTheListInPlaceOfWhatWasThere) {
  const ListMap map = {{"A", {"x", "y"}}, {"", {""}}};
  Texts items = {"old"};
  EXPECT_EQ(impl.GetMapList(map, "A", items), 0);
  EXPECT_THAT(items, ElementsAre("x", "y"));
  EXPECT_EQ(impl.GetMapList(map, "", items), 0);
  EXPECT_THAT(items, ElementsAre(""));
}

TEST_F(GetMapList, LeavesTheListAloneWithoutAListForTheName) {
  const ListMap map = {{"A", {"x"}}, {"empty", {}}};
  Texts items = {"old"};
  EXPECT_EQ(impl.GetMapList(map, "B", items), 1);
  EXPECT_EQ(impl.GetMapList(map, "empty", items), 1);
  EXPECT_EQ(impl.GetMapList(map, std::string("A\0", 2), items), 1);
  EXPECT_THAT(items, ElementsAre("old"));
}

// --- WriteDbgLog
// ---------------------------------------------------------------------------------------------

TEST_F(WriteDbgLog, LogsTheTextAtLevelZeroWithAnEmptyPosition) {
  EXPECT_EQ(impl.WriteDbgLog("x"), 0);
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"", "", 0, 0, "x", {}}));
}

TEST_F(WriteDbgLog, LogsAnEmptyPositionOnAThreadThatNeverLoggedBefore) {
  EXPECT_EQ(impl.WriteDbgLog("before"), 0);
  framework.ForgetCalls();
  std::thread([this] { EXPECT_EQ(impl.WriteDbgLog("x"), 0); }).join();
  EXPECT_THAT(framework.Messages(), ElementsAre(Message{"", "", 0, 0, "x", {}}));
}

TEST_F(WriteDbgLog, AnswersZeroWithoutALogger) {
  framework.logger = [] { return nullptr; };
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(WriteDbgLog, AnswersZeroWhenTheLogServiceThrows) {
  framework.On("GetLogger", [] { throw std::runtime_error("log service"); });
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(WriteDbgLog, AnswersZeroWithoutALogService) {
  framework.Unregister("LogSvcInterface");
  EXPECT_EQ(impl.WriteDbgLog("dropped"), 0);
  EXPECT_EQ(impl.WriteDbgLog(""), 0);
}

TEST_F(WriteDbgLog, AsksForTheLogManagersOwnLoggerOnce) {
  impl.WriteDbgLog("x");
  impl.WriteDbgLog("y");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(CheckIFBuf("LogSvcInterface"))",
                                             R"(GetLogger("ii_ascii_bundle", "QueltAni", "corbaoper"))",
                                             R"(Log("", "", 0, 0, "x"))", R"(Log("", "", 0, 0, "y"))"));
}

}  // namespace
