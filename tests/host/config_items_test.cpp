#include "host/config_items.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "host/config_dir.h"

namespace {

using host::ParseInt;
using NS_BUNDLEMGR1::CorbaConfigItems;

class ConfigItems : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto& [name, value] : host::ListItems()) host::UnsetItem(name);
  }
  void TearDown() override { std::remove(file_.c_str()); }

  std::string Load(const std::string& text) {
    std::ofstream(file_) << text;
    return host::LoadItems(file_);
  }

  const std::string file_ = testing::TempDir() + std::to_string(getpid()) + "-config_items_test.ini";
};

TEST_F(ConfigItems, AnItemOfTheFileIsRead) {
  EXPECT_EQ(Load("; comment\n# comment\n[items]\nIsTransQuelt=7\n"), "");
  int value = 0;
  EXPECT_TRUE(CorbaConfigItems::Instance()->GetIntItemInfo("IsTransQuelt", value));
  EXPECT_EQ(value, 7);
}

TEST_F(ConfigItems, ItemsOfAnotherSectionAreNotRead) {
  EXPECT_EQ(Load("[other]\nIsTransQuelt=7\n"), "");
  EXPECT_TRUE(host::ListItems().empty());
}

TEST_F(ConfigItems, AMissingItemCannotBeRead) {
  int value = 5;
  EXPECT_FALSE(CorbaConfigItems::Instance()->GetIntItemInfo("Missing", value));
}

TEST_F(ConfigItems, AnItemThatIsNoIntegerIsListedButCannotBeRead) {
  EXPECT_EQ(Load("[items]\nWord=abc\n"), "");
  int value = 5;
  EXPECT_FALSE(CorbaConfigItems::Instance()->GetIntItemInfo("Word", value));
  EXPECT_EQ(host::ListItems().at("Word"), "abc");
}

TEST_F(ConfigItems, AFileThatIsNotUnderstoodIsReportedAndChangesNothing) {
  host::SetItem("Kept", 3);
  EXPECT_NE(Load("[items]\nA=1\nwhat is this\n"), "");
  EXPECT_EQ(host::ListItems().size(), 1U);
}

TEST_F(ConfigItems, AMissingFileIsReported) {
  EXPECT_NE(host::LoadItems("/nonexistent/items.ini").find("cannot be opened"), std::string::npos);
}

TEST_F(ConfigItems, ASetItemIsSeenByTheNextRead) {
  host::SetItem("Item", -2);
  int value = 0;
  EXPECT_TRUE(CorbaConfigItems::Instance()->GetIntItemInfo("Item", value));
  EXPECT_EQ(value, -2);
  EXPECT_TRUE(host::UnsetItem("Item"));
  EXPECT_FALSE(CorbaConfigItems::Instance()->GetIntItemInfo("Item", value));
  EXPECT_FALSE(host::UnsetItem("Item"));
}

TEST(ParseIntOf, TakesWholeDecimalIntegersOfThirtyTwoBits) {
  EXPECT_EQ(ParseInt("2147483647"), 2147483647);
  EXPECT_EQ(ParseInt("-2147483648"), -2147483647 - 1);
  EXPECT_EQ(ParseInt("+7"), 7);
  for (const char* text : {"", "+", "-", "+-7", "2147483648", "7 ", " 7", "0x1", "7.0"}) {
    EXPECT_EQ(ParseInt(text), std::nullopt) << text;
  }
}

TEST(ConfigDir, EndsInASlashUnlessItIsUnknown) {
  host::SetConfigDir("/cfg");
  EXPECT_EQ(NS_BUNDLEMGR1::GetCfgDirPath(), "/cfg/");
  host::SetConfigDir("/cfg/");
  EXPECT_EQ(NS_BUNDLEMGR1::GetCfgDirPath(), "/cfg/");
  host::SetConfigDir("");
  EXPECT_EQ(NS_BUNDLEMGR1::GetCfgDirPath(), "");
}

}  // namespace
