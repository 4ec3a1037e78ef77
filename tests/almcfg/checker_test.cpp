// The findings of the checker, one rule after the other, on short texts.

#include "tools/almcfg/check/checker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/almcfg/check_text.h"

namespace {

using almcfg_test::Check;
using almcfg_test::CheckWhole;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kGood = "A\tB\tC\t7\t1\n";

TEST(Checker, IsSilentAboutGoodLinesCommentsAndBlankLines) {
  EXPECT_THAT(Check(kGood + "\n# B\t\xFC\n#\n  \t \nA1/A2\tB1/B2\tC c\t-7\t-42\n"), IsEmpty());
}

TEST(Checker, AcceptsTheLimitsOf32Bits) {
  EXPECT_THAT(Check("A\tB\tC\t2147483647\t2147483647\nA\tB\tC\t-2147483648\t-2147483648\n"), IsEmpty());
  EXPECT_THAT(Check("A\tB\tC\t2147483648\t2147483648\n"),
              ElementsAre("1:7+10 number-never-matches", "1:18+10 value-wraps"));
}

TEST(Checker, WarnsBelowTheLimitsOf32BitsToo) {
  EXPECT_THAT(Check("A\tB\tC\t-2147483649\t-2147483649\n"),
              ElementsAre("1:7+11 number-never-matches", "1:19+11 value-wraps"));
  EXPECT_EQ(CheckWhole("A\tB\tC\t-2147483649\t1\n").at(0).hint,
            "write a decimal integer from -2147483648 to 2147483647");
  EXPECT_THAT(CheckWhole("A\tB\tC\t7\t-2147483649\n").at(0).message, HasSubstr("callers get 2147483647"));
  EXPECT_THAT(CheckWhole("A\tB\tC\t7\t-99999999999999999999\n").at(0).message, HasSubstr("callers get 0"));
}

TEST(Checker, SaysWhatAValueWrapsTo) {
  EXPECT_THAT(CheckWhole("A\tB\tC\t7\t2147483648\n").at(0).message, HasSubstr("callers get -2147483648"));
  EXPECT_THAT(CheckWhole("A\tB\tC\t7\t99999999999999999999\n").at(0).message, HasSubstr("callers get -1"));
}

TEST(Checker, AcceptsEveryValueThatTheConversionAccepts) {
  EXPECT_THAT(Check("A\tB\tC\t7\t+5\nA\tB\tC\t8\t007\n"), IsEmpty());
  EXPECT_THAT(Check("A\tB\tC\t7\t5x\n"), ElementsAre("1:9+2 value-not-integer"));
  EXPECT_THAT(Check("A\tB\tC\t7\t0b1\n"), ElementsAre("1:9+3 value-not-integer"));
  EXPECT_THAT(Check("A\tB\tC\t7\t5\v\n"), ElementsAre("1:9+2 value-not-integer", "1:10+1 edge-blank"));
}

TEST(Checker, FindsNumbersThatNoQueryAsksWith) {
  for (const std::string number : {"07", "+7", " 7", "7 ", "-0", "seven", "7.0", "0x7"}) {
    const auto findings = CheckWhole("A\tB\tC\t" + number + "\t1\n");
    ASSERT_EQ(findings.size(), 1U) << number;
    EXPECT_EQ(findings[0].code, almcfg::Code::kNumberNeverMatches) << number;
  }
}

TEST(Checker, SaysWhichNumberWasMeant) {
  EXPECT_EQ(CheckWhole("A\tB\tC\t+07 \t1\n").at(0).hint, "write 7");
  EXPECT_EQ(CheckWhole("A\tB\tC\t-0\t1\n").at(0).hint, "write 0");
  EXPECT_THAT(CheckWhole("A\tB\t7\tC\t1\n").at(0).hint, HasSubstr("swapped"));
}

TEST(Checker, CountsColumnsOfABadLineFromItsFirstByte) {
  EXPECT_THAT(Check("  A\tB\t\tC\t7\t1\n"), ElementsAre("1:7+1 empty-column"));
  EXPECT_THAT(Check("A\tB\tC\t7\t1\tx\ty\n"), ElementsAre("1:11+3 too-many-columns"));
}

TEST(Checker, ReportsTheFaultThatTheBundleFindsFirst) {
  // Five good parts and an empty sixth: the empty one comes first.
  EXPECT_THAT(Check("A\tB\tC\t7\t1\t\tx\n"), ElementsAre("1:11+1 empty-column"));
  EXPECT_THAT(Check("A/B/C/D/E//F\tB\tC\t7\t1\n"), ElementsAre("1:11+1 empty-alternative"));
  EXPECT_THAT(Check("A/B/C/D/E/F//\tB\tC\t7\t1\n"), ElementsAre("1:11+3 too-many-alternatives"));
}

TEST(Checker, DistinguishesTheColumnsOfABadAlternative) {
  EXPECT_THAT(CheckWhole("A//B\tA//B\tC\t7\t1\n").at(0).message, HasSubstr("column 1"));
  EXPECT_THAT(CheckWhole("A/B\tA//B\tC\t7\t1\n").at(0).message, HasSubstr("column 2"));
}

TEST(Checker, FindsTheEmptyAlternativeAtEachPlace) {
  EXPECT_THAT(Check("/A/\tB\tC\t7\t1\n"), ElementsAre("1:1+1 empty-alternative"));
  EXPECT_THAT(Check("A//\tB\tC\t7\t1\n"), ElementsAre("1:3+1 empty-alternative"));
  EXPECT_THAT(Check("A\t/B/\tC\t7\t1\n"), ElementsAre("1:3+1 empty-alternative"));
  EXPECT_THAT(Check("A/\t/\tC\t7\t1\n"), ElementsAre("1:4+1 empty-alternative"));
}

TEST(Checker, CountsAlternativesWithoutTheTrailingSlash) {
  EXPECT_EQ(CheckWhole("A/B/C/D/E/F/\tB\tC\t7\t1\n").at(0).message,
            "column 1 has 6 alternatives, five are allowed: the line is not loaded");
}

TEST(Checker, DoesNotTakeALineWithANumberForAHeading) {
  EXPECT_THAT(Check("A\tB\t7\tCritical\tHigh\n"),
              ElementsAre("1:7+8 number-never-matches", "1:16+4 value-not-integer"));
}

TEST(Checker, DoesNotSayThatCallersAskWithAValue) {
  EXPECT_EQ(CheckWhole("A \tB\tC\t7\t1\n").at(0).hint, "remove the blank, unless callers ask with it");
  EXPECT_EQ(CheckWhole("A\tB\tC\t7\t 1\n").at(0).hint, "remove the blank");
}

TEST(Checker, AcceptsATrailingSlashAfterFiveAlternativesLikeTheBundle) {
  EXPECT_THAT(Check("A/B/C/D/E/\tB\tC\t7\t1\n"), ElementsAre("1:10+1 trailing-slash"));
}

TEST(Checker, DoesNotTakeProseForALineWithBlanks) {
  EXPECT_THAT(Check("this is a remark without the sign\n"), ElementsAre("1:1+33 too-few-columns"));
  EXPECT_THAT(Check("A B C 7 1\n"), ElementsAre("1:2+1 wrong-separator"));
  EXPECT_THAT(Check("one, two and, three\n"), ElementsAre("1:1+19 too-few-columns"));
}

TEST(Checker, NamesAnEmptyLastColumnOnlyWhenThatColumnIsMissing) {
  EXPECT_THAT(Check("A\tB\tC\t7\t\n"), ElementsAre("1:8+1 empty-edge-column"));
  EXPECT_THAT(Check("A\tB\t7\t\n"), ElementsAre("1:1+5 too-few-columns"));
  EXPECT_THAT(Check("A\tB\tC\t7\t1\t\n"), ElementsAre("1:10+1 outer-blank"));
}

TEST(Checker, NamesThePreviousLineWithTheKey) {
  const auto findings = CheckWhole(kGood + "A\tB\tC\t7\t2\nA\tB\tC\t7\t3\n");
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0].code, almcfg::Code::kValueReplaced);
  EXPECT_EQ(findings[0].otherLine, 1U);
  EXPECT_EQ(findings[1].otherLine, 2U);
  EXPECT_THAT(findings[1].message, HasSubstr("the value \"2\" of line 2 is REPLACED by \"3\""));
}

TEST(Checker, ReportsOneDuplicateForTwoLinesHoweverManyKeysTheyShare) {
  EXPECT_THAT(Check("A/B\tC/D\tE\t7\t1\nB/A\tD/C\tE\t7\t1\n"), ElementsAre("2:1+11 duplicate-key"));
  EXPECT_THAT(Check("A/B\tC\tE\t7\t1\nA/B\tC\tE\t7\t1\n"), ElementsAre("2:1+9 repeated-line"));
}

TEST(Checker, ReportsARepeatedLineThatNamesAnAlternativeTwiceAsOneRepeat) {
  EXPECT_THAT(Check("A/A\tC\tE\t7\t1\nA/A\tC\tE\t7\t1\n"),
              ElementsAre("1:1+9 duplicate-key", "2:1+9 repeated-line"));
}

TEST(Checker, ReportsNoDuplicatesThatALoadDoesNotReach) {
  const std::string endless(1023, 'x');
  EXPECT_THAT(Check(kGood + endless + "\n" + kGood + "A\n"),
              ElementsAre("2:1023+1 overlong-line", "4:1+1 too-few-columns"));
}

TEST(Checker, CountsTheLinesThatAnOverlongOneLoses) {
  const std::string endless(1022, 'x');
  EXPECT_THAT(CheckWhole(endless + "\r\nA\nB").at(0).message,
              HasSubstr("1,023 bytes, a load reads 1,022 of them and then NEVER ENDS: 2 lines after it "
                        "are never read"));
}

TEST(Checker, SaysThatALoadDoesNotReachALaterOverlongLine) {
  const auto findings = CheckWhole(std::string(1023, 'x') + "\n" + std::string(1024, 'y') + "\nA\n");
  EXPECT_THAT(findings.at(0).message, testing::EndsWith(" NEVER ENDS: 2 lines after it are never read"));
  EXPECT_THAT(findings.at(1).message,
              testing::EndsWith(" NEVER ENDS (it does not reach this line: an earlier one is too long)"));
}

TEST(Checker, MeasuresCommentsToo) {
  EXPECT_THAT(Check("#" + std::string(1022, 'x') + "\n"), ElementsAre("1:1023+1 overlong-line"));
}

TEST(Checker, LetsALineOf1022CharactersPass) {
  const std::string columns = "\tB\tC\t7\t1";
  EXPECT_THAT(Check(std::string(1022 - columns.size(), 'A') + columns + "\n"), IsEmpty());
}

TEST(Checker, DistinguishesAByteOrderMarkBeforeACommentFromOneBeforeAKey) {
  EXPECT_THAT(Check("\xEF\xBB\xBF# x\n" + kGood), ElementsAre("1:1+3 byte-order-mark"));
  EXPECT_THAT(Check("\xEF\xBB\xBF" + kGood), ElementsAre("1:1+3 byte-order-mark"));
  EXPECT_THAT(Check(kGood + "\xEF\xBB\xBF" + kGood), ElementsAre("2:1+3 not-ascii"));
}

TEST(Checker, SaysWhatANulLeavesOfALine) {
  EXPECT_THAT(CheckWhole(std::string("A\tB\tC\t7\t1\0x\n", 12)).at(0).message,
              HasSubstr("what is before it is loaded"));
  EXPECT_THAT(Check(std::string("A\tB\0\0\tC\t7\t1\n", 12)), ElementsAre("1:4+2 nul-byte"));
}

TEST(Checker, ReportsLineEndsOncePerFile) {
  EXPECT_THAT(Check("# x\n" + std::string("A\tB\tC\t7\t1\r\nB\tB\tC\t7\t1\r\n")),
              ElementsAre("2:10+1 cr-line-ends"));
  EXPECT_THAT(Check("A\tB\tC\t7\t1"), ElementsAre("1:10+1 no-final-line-feed"));
}

TEST(Checker, HintsAtALineEndThatIsACrAlone) {
  EXPECT_THAT(CheckWhole("A\tB\tC\t7\t1\rB\tB\tC\t7\t1\r").at(0).hint, HasSubstr("not with CR alone"));
}

TEST(Checker, OrdersFindingsOfOneLineByColumn) {
  EXPECT_THAT(Check("A \tB/\tC\t07\tx\n"),
              ElementsAre("1:2+1 edge-blank", "1:5+1 trailing-slash", "1:9+2 number-never-matches",
                          "1:12+1 value-not-integer"));
}

TEST(Checker, WarnsFrom16RecordsOn) {
  EXPECT_THAT(Check("A/B/C/D\tA/B/C/D\tC\t7\t1\n"), ElementsAre("1:1+15 many-records"));
  EXPECT_THAT(Check("A/B/C/D/E\tA/B/C\tC\t7\t1\n"), IsEmpty());
}

}  // namespace
