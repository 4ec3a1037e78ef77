// Trim, Num2Str and sprintf_s of the host's platform. Required: sprintf_s is negative when the text does
// not fit.

#include <gtest/gtest.h>

#include <cstring>

#include "framework/platform_util.h"

namespace {

TEST(PlatformText, TrimRemovesBlankTabAndLineEndsAtBothEnds) {
  EXPECT_EQ(NSTE_util::Trim(" \t\n\ra b\r\n\t "), "a b");
  EXPECT_EQ(NSTE_util::Trim(" \t\n\r"), "");
  EXPECT_EQ(NSTE_util::Trim("\va\f"), "\va\f");
}

TEST(PlatformText, Num2StrWritesPlainDecimals) {
  EXPECT_EQ(NSTE_util::Num2Str(0), "0");
  EXPECT_EQ(NSTE_util::Num2Str(-2147483647 - 1), "-2147483648");
}

TEST(PlatformText, SprintfWritesATextThatFits) {
  char buffer[5];
  EXPECT_EQ(sprintf_s(buffer, sizeof buffer, "%d", 1234), 4);
  EXPECT_STREQ(buffer, "1234");
}

TEST(PlatformText, SprintfTakesEveryFormatAndReadsTheValuesAgain) {
  char buffer[30];
  EXPECT_EQ(sprintf_s(buffer, sizeof buffer, "%d-%s-%5s|%x", 12, "a", "b", 255U), 13);
  EXPECT_STREQ(buffer, "12-a-    b|ff");
}

TEST(PlatformText, SprintfIsNegativeWhenTheTextDoesNotFitAndLeavesAnEmptyOne) {
  char buffer[5] = "old";
  EXPECT_LT(sprintf_s(buffer, sizeof buffer, "%d", 12345), 0);
  EXPECT_STREQ(buffer, "");
}

TEST(PlatformText, SprintfWithoutSpaceIsNegative) {
  char buffer[1] = {'x'};
  EXPECT_LT(sprintf_s(buffer, 0, "a"), 0);
  EXPECT_EQ(buffer[0], 'x');
  EXPECT_LT(sprintf_s(nullptr, 5, "a"), 0);
}

}  // namespace
