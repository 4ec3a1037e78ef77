// The splitting of a line's fields, which subclasses may call: separators, empty parts and the messages
// about them.

#include <list>
#include <string>

#include "tests/alarmconfig/almconfig/config_fixture.h"
#include "tests/freed_memory.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"

namespace {

using config_test::AlarmConfigTest;
using config_test::BadLine;
using NS_ASCII::FieldList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Split : public AlarmConfigTest {};

TEST_F(Split, AppendsThePartsBetweenSeparators) {
  FieldList fields{"before"};
  EXPECT_EQ(config.Split("a\tb c\t,", fields, "\t"), 0);
  EXPECT_THAT(fields, ElementsAre("before", "a", "b c", ","));
  EXPECT_EQ(config.Split("d", fields, "\t"), 0);
  EXPECT_THAT(fields, ElementsAre("before", "a", "b c", ",", "d"));
}

TEST_F(Split, OfNothingAppendsNothing) {
  FieldList fields;
  EXPECT_EQ(config.Split("", fields, "/"), 0);
  EXPECT_THAT(fields, IsEmpty());
}

TEST_F(Split, SeparatesAtAnyCharacterOfTheSet) {
  FieldList fields;
  EXPECT_EQ(config.Split("a/b\tc", fields, "\t/"), 0);
  EXPECT_THAT(fields, ElementsAre("a", "b", "c"));
  fields.clear();
  EXPECT_EQ(config.Split("a/b", fields, ""), 0);
  EXPECT_THAT(fields, ElementsAre("a/b"));
}

TEST_F(Split, AddsNoEmptyPartForATrailingSeparator) {
  FieldList fields;
  EXPECT_EQ(config.Split("a/", fields, "/"), 0);
  EXPECT_THAT(fields, ElementsAre("a"));
  fields.clear();
  EXPECT_EQ(config.Split("a/b/c/d/e/", fields, "/"), 0);
  EXPECT_THAT(fields, ElementsAre("a", "b", "c", "d", "e"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(Split, LogsAnEmptyPartAndKeepsWhatCameBefore) {
  FieldList fields;
  EXPECT_EQ(config.Split("a//b", fields, "/"), -1);
  EXPECT_THAT(fields, ElementsAre("a"));
  fields.clear();
  EXPECT_EQ(config.Split("/a", fields, "/"), -1);
  EXPECT_EQ(config.Split("/", fields, "/"), -1);
  EXPECT_THAT(fields, IsEmpty());
  EXPECT_EQ(config.Split("a//", fields, "/"), -1);
  EXPECT_THAT(framework.Messages(),
              ElementsAre(BadLine(195, "a//b"), BadLine(195, "/a"), BadLine(195, "/"), BadLine(195, "a//")));
}

TEST_F(Split, LogsTheSixthPartAndKeepsIt) {
  FieldList fields;
  EXPECT_EQ(config.Split("a/b/c/d/e/f/g", fields, "/"), -1);
  EXPECT_THAT(fields, ElementsAre("a", "b", "c", "d", "e", "f"));
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(203, "a/b/c/d/e/f/g")));
}

TEST_F(Split, LogsAnEmptySixthPartAsEmpty) {
  FieldList fields;
  EXPECT_EQ(config.Split("a/b/c/d/e//", fields, "/"), -1);
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(195, "a/b/c/d/e//")));
}

TEST_F(Split, LogsTheTextUpToItsFirstNul) {
  FieldList fields;
  EXPECT_EQ(config.Split(std::string("a\0b//c", 6), fields, "/"), -1);
  EXPECT_THAT(fields, ElementsAre(std::string("a\0b", 3)));
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(195, "a")));
}

TEST_F(Split, AcceptsATextAndSeparatorsThatAreElementsOfTheList) {
  constexpr std::size_t kFull = FreedMemoryOverwritten::kWholeBytes / sizeof(std::string);
  const std::string text = "a/b/c";
  for (const bool ownText : {true, false}) {
    FieldList fields(kFull, text);  // Appending the first part reallocates the vector.
    fields[1] = "/";
    ASSERT_EQ(fields.capacity(), kFull);
    const FreedMemoryOverwritten overwritten;
    EXPECT_EQ(ownText ? config.Split(fields[0], fields, "/") : config.Split(text, fields, fields[1]), 0);
    ASSERT_EQ(fields.size(), kFull + 3);
    EXPECT_EQ(fields[0], text);
    EXPECT_EQ(fields[kFull] + fields[kFull + 1] + fields[kFull + 2], "abc");
  }
}

TEST_F(Split, AgreesWithTheLiteralRule) {
  literal::AlarmConfig rules;
  testing_text::ForEachText("a/\t", 9, [&](const std::string& text) {
    FieldList fields;
    std::list<std::string> expected;
    framework.ForgetCalls();
    rules.complaints.clear();
    ASSERT_EQ(config.Split(text, fields, "/"), rules.Split(text, expected, "/")) << text;
    ASSERT_EQ(fields, FieldList(expected.begin(), expected.end())) << text;
    ASSERT_EQ(framework.Messages().size(), rules.complaints.size()) << text;
    if (!rules.complaints.empty()) {
      ASSERT_EQ(framework.Messages()[0], BadLine(rules.complaints[0].line, rules.complaints[0].text));
    }
  });
}

}  // namespace
