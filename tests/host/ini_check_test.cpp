#include "host/ini_check.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "host/config_items.h"

namespace {

class IniCheck : public testing::Test {
 protected:
  void TearDown() override { std::remove(file_.c_str()); }

  /// The problem, without the file's name.
  std::string Check(const std::string& text) {
    std::ofstream(file_, std::ios::binary) << text;
    const std::string problem = host::CheckIniFile(file_);
    return problem.compare(0, file_.size(), file_) == 0 ? problem.substr(file_.size()) : problem;
  }

  const std::string file_ = testing::TempDir() + std::to_string(getpid()) + "-ini_check_test.ini";
};

TEST_F(IniCheck, SectionsItemsCommentsAndEmptyLinesAreWell) {
  EXPECT_EQ(Check("; c\n# c\n\n  \t\r\n [items] \r\nA=1\n B = -2 \nC=\nD=x=y\n[a\\b]\nE=1"), "");
  EXPECT_EQ(Check(""), "");
}

TEST_F(IniCheck, AMistakeIsToldWithLineAndColumn) {
  EXPECT_EQ(Check("[items]\n  what\n"),
            ":2:3: neither a [SECTION], NAME=INTEGER, nor a comment behind ';' or '#'");
  EXPECT_EQ(Check("A=1\n"), ":1:1: an item in front of the first section; write [items] above it");
  EXPECT_EQ(Check("[items\n"), ":1:7: the section's name is not closed; write [NAME]");
  EXPECT_EQ(Check("\n[]\n"), ":2:2: the section has no name; write [NAME]");
  EXPECT_EQ(Check("[a[b]\n"), ":1:3: a name cannot hold a bracket, and an item's no backslash");
  EXPECT_EQ(Check("[ items]\n"),
            ":1:2: a blank within the brackets belongs to the section's name; write [NAME]");
  EXPECT_EQ(Check("[items\t]\n"),
            ":1:7: a blank within the brackets belongs to the section's name; write [NAME]");
  for (const char* const name : {"\\", "/", "//", "/\\/"}) {
    EXPECT_EQ(Check(std::string("[") + name + "]\n"), ":1:2: the section has no name; write [NAME]");
  }
  EXPECT_EQ(Check("[Items]\n"), ":1:2: 'Items' is 'items' in other letters; spell them the same");
  EXPECT_EQ(Check("[a]\nb=1\n[A/c]\n"), ":3:2: 'A' is 'a' in other letters; spell them the same");
  EXPECT_EQ(Check("[a\\b]\n[a/B\\c]\n"), ":2:2: 'a\\B' is 'a\\b' in other letters; spell them the same");
  EXPECT_EQ(Check("[a//b]\n[A]\n"), ":2:2: 'A' is 'a' in other letters; spell them the same");
  EXPECT_EQ(Check("[a\\b]\nc=1\n[a/b]\nc=2\n[/a//b/d/]\n[http://x]\n"), "");
  EXPECT_EQ(host::LoadItems(file_), "");
  EXPECT_EQ(Check("[a]\nb=1\nc=2\n[d]\nB=1\n[a]\nb=3\n B=4\n"),
            ":8:2: 'B' is 'b' in other letters; spell them the same");
  EXPECT_EQ(Check("[i]\n =3\n"), ":2:2: there is no name in front of the '='; write NAME=INTEGER");
  EXPECT_EQ(Check("[i]\na\\b=3\n"), ":2:2: a name cannot hold a bracket, and an item's no backslash");
  EXPECT_EQ(Check(std::string("[i]\nA=1\0\n", 9)), ":2:4: a NUL byte; this is a file of text lines");
  EXPECT_EQ(Check("\xef\xbb\xbf[i]\n"), ":1:1: a byte order mark; save the file without one");
}

TEST_F(IniCheck, LinesAndNamesMayBeAsLongAsTheImporterTakesThem) {
  const std::string name(255, 'n');
  const std::string value(4092, '1');
  EXPECT_EQ(Check("[i]\n" + name + " =1\nA=" + value + "\n"), "");
  EXPECT_EQ(host::LoadItems(file_), "");
  EXPECT_EQ(Check("[i]\n" + name + "n=1\n"), ":2:256: the name is longer than 255 bytes");
  EXPECT_EQ(Check("[i]\nA=" + value + "1\n"),
            ":2:4095: the line is longer than 4094 bytes; shorten or split it");
}

TEST_F(IniCheck, OnlyARegularFileIsRead) {
  EXPECT_EQ(host::CheckIniFile("/dev/null"), "/dev/null: is no regular file");
  EXPECT_EQ(host::CheckIniFile("/"), "/: is no regular file");
  EXPECT_EQ(host::CheckIniFile("/nonexistent/a"),
            "/nonexistent/a: cannot be opened: No such file or directory");
}

}  // namespace
