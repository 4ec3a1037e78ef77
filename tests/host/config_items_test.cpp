// The file of configuration items: what is read, what is reported with its place, and that a rejected file
// changes nothing.

#include "host/platform/config_items.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <map>

#include "host/base/problem.h"

namespace {

using host::ParseInt;
using NS_BUNDLEMGR1::CorbaConfigItems;

class ConfigItems : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto& [name, value] : host::ListItems()) host::UnsetItem(name);
  }
  void TearDown() override { std::remove(file_.c_str()); }

  /// Returns the warnings, or the problem, each without the file's name and followed by '|'.
  std::string Load(const std::string& text) {
    std::ofstream(file_, std::ios::binary) << text;
    std::string all;
    const auto add = [&](const std::string& line) {
      all += line.substr(line.find(file_) + file_.size()) + "|";
    };
    try {
      for (const std::string& warning : host::LoadItems(file_)) add(warning);
    } catch (const host::Failure& problem) {
      add(problem.what());
    }
    return all;
  }

  const std::string file_ = testing::TempDir() + std::to_string(getpid()) + "-config_items_test.ini";
};

TEST_F(ConfigItems, AnItemOfTheFileIsRead) {
  EXPECT_EQ(Load("; comment\n# comment\n[items]\nIsTransQuelt=7\n"), "");
  int value = 0;
  EXPECT_TRUE(CorbaConfigItems::Instance()->GetIntItemInfo("IsTransQuelt", value));
  EXPECT_EQ(value, 7);
}

TEST_F(ConfigItems, AnItemOfTheFileReplacesOneOfTheSameName) {
  host::SetItem("A", 1);
  host::SetItem("B", 2);
  EXPECT_EQ(Load("[items]\nA=3\n"), "");
  EXPECT_EQ(host::ListItems(), (std::map<std::string, std::string>{{"A", "3"}, {"B", "2"}}));
}

TEST_F(ConfigItems, ItemsOfAnotherSectionAreNotRead) {
  EXPECT_EQ(Load("[other]\nIsTransQuelt=7\n"), "");
  EXPECT_TRUE(host::ListItems().empty());
}

TEST_F(ConfigItems, AMissingItemCannotBeRead) {
  int value = 5;
  EXPECT_FALSE(CorbaConfigItems::Instance()->GetIntItemInfo("Missing", value));
}

TEST_F(ConfigItems, AnItemThatIsNotAnIntegerIsReportedListedAndCannotBeRead) {
  EXPECT_EQ(
      Load("[items]\n Word = abc\n"),
      ":2:2: Word: 'abc' is not an integer from -2147483648 to 2147483647; the item counts as missing|");
  int value = 5;
  EXPECT_FALSE(CorbaConfigItems::Instance()->GetIntItemInfo("Word", value));
  EXPECT_EQ(host::ListItems().at("Word"), "abc");
}

TEST_F(ConfigItems, CommentsSectionsBlanksAndCarriageReturnsAreTaken) {
  EXPECT_EQ(Load("; c\n# c\n\n  \t\r\n [items] \r\nA=1\n B = -2 \nb=+3\n[a\\b]\nA=4\nA=x=y\n[items]\nC=5"),
            "");
  EXPECT_EQ(host::ListItems(),
            (std::map<std::string, std::string>{{"A", "1"}, {"B", "-2"}, {"C", "5"}, {"b", "+3"}}));
  EXPECT_EQ(Load(""), "");
}

TEST_F(ConfigItems, AWrongLineIsReportedByPlaceAndChangesNothing) {
  host::SetItem("Kept", 3);
  const std::string noSection = "not the name of a section; write [NAME] and nothing else on the line|";
  for (const auto& [text, problem] : std::map<std::string, std::string>{
           {"[items]\nA=1\n  what\n",
            ":3:3: neither a [SECTION], NAME=INTEGER, nor a comment, which starts with ';' or '#'|"},
           {"A=1\n", ":1:1: an item before the first section; write [items] above it|"},
           {" [items\n", ":1:2: " + noSection},
           {"[\n", ":1:1: " + noSection},
           {"[]\n", ":1:1: " + noSection},
           {"[ items]\n", ":1:1: " + noSection},
           {"[items\t]\n", ":1:1: " + noSection},
           {"[items]x]\n", ":1:1: " + noSection},
           {"[items] ; c\n", ":1:1: " + noSection},
           {"[Items]\n", ":1:2: there is no section 'Items'; did you mean [items]?|"},
           {" [item]\n", ":1:3: there is no section 'item'; did you mean [items]?|"},
           {"[items]\n =3\n", ":2:2: there is no name before the '='; write NAME=INTEGER|"},
           {"[items]\nA=1\n[x]\nA=2\n[items]\n A=1\n",
            ":6:2: 'A' is set a second time; keep one of the lines|"},
           {std::string("[items]\nA=1\0\n", 13), ":2:4: a NUL byte; expected a text file|"},
           {"\xef\xbb\xbf[items]\n", ":1:1: a byte order mark; save the file without one|"},
       }) {
    EXPECT_EQ(Load(text), problem) << text;
    EXPECT_EQ(host::ListItems(), (std::map<std::string, std::string>{{"Kept", "3"}})) << text;
  }
}

TEST_F(ConfigItems, AMisspeltItemIsReportedAndKept) {
  EXPECT_EQ(Load("[items]\nIsTransQuelt=1\nistransquelt=0\nOther=1\n"),
            ":3:1: 'istransquelt' looks misspelt; did you mean IsTransQuelt?|");
  EXPECT_EQ(host::ListItems().size(), 3U);
}

TEST_F(ConfigItems, OnlyARegularFileIsRead) {
  const auto problemOf = [](const std::string& file) -> std::string {
    try {
      host::LoadItems(file);
      return "";
    } catch (const host::Failure& problem) {
      return problem.what();
    }
  };
  EXPECT_EQ(problemOf("/dev/null"), "/dev/null: is not a regular file");
  EXPECT_EQ(problemOf("/"), "/: is not a regular file");
  EXPECT_EQ(problemOf("/nonexistent/a"), "/nonexistent/a: cannot be opened: No such file or directory");
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
