// The two operations that answer from the configuration.

#include <cstdint>
#include <string>

#include "src/alarmconfig/almconfig.h"
#include "tests/interface/interface_fixture.h"

namespace {

using interface_test::InterfaceTest;
using interface_test::OwnStr2Num;
using interface_test::Said;
using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AsciiUtilInterfaceImpl;
using ::testing::ElementsAre;

class IsTransQueltEnabled : public InterfaceTest {};
class GetAlmCfgValue : public InterfaceTest {};

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

// Required: an unreadable item switches the translation on.
TEST_F(IsTransQueltEnabled, IsTrueWhenTheItemIsAbsent) {
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(49, 0, "read conf item IsTransQuelt failed."),
                                                Said(57, 1, "Trans QueltTools ")));
}

TEST_F(IsTransQueltEnabled, IgnoresTheValueThatAFailedReadLeft) {
  framework.unreadable = 0;
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(49, 0, "read conf item IsTransQuelt failed."),
                                                Said(57, 1, "Trans QueltTools ")));
}

TEST_F(IsTransQueltEnabled, ReadsTheItemOnEveryCall) {
  framework.intItems["IsTransQuelt"] = 1;
  EXPECT_TRUE(impl.IsTransQueltEnabled());
  framework.intItems["IsTransQuelt"] = 0;
  EXPECT_FALSE(impl.IsTransQueltEnabled());
}

/// The result and the value of the query: "0 15".
std::string Queried(AsciiUtilInterfaceImpl& impl, const std::string& key1, int numKey) {
  std::int64_t value = 777;
  const std::int64_t result = impl.GetAlmCfgValue(value, key1, "B", "C", numKey);
  return std::to_string(result) + ' ' + std::to_string(value);
}

void Configure(const std::string& key1, const std::string& numKey, const std::string& value) {
  Alarm_Config_Param::Instance()->InsertRecord({key1, "B", numKey, "C", value});
}

// Required: a missing key is a success with the value 0.
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

TEST_F(GetAlmCfgValue, LeavesTheValueAloneWhenTheTextIsNotANumber) {
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

TEST_F(GetAlmCfgValue, ConvertsThroughTheVirtualTable) {
  Configure("virtual", "7", "text");
  OwnStr2Num own;
  EXPECT_EQ(Queried(own, "virtual", 7), "0 -3");
  own.answer = false;
  EXPECT_EQ(Queried(own, "absent", 7), "1 777");
  EXPECT_THAT(own.asked, ElementsAre("text in 10", " in 10"));
}

}  // namespace
