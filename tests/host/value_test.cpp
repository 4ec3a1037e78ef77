// Arguments of `call` from text, and results as text.

#include "host/commands/value.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/base/problem.h"

namespace {

using host::Kind;
using host::ParseValue;
using host::TextList;
using host::Value;
using NS_ASCII::ListMap;

std::string Printed(const Value& value) {
  std::ostringstream out;
  host::PrintValue(out, "x", value, 2);
  return out.str();
}

TEST(Value, AMapIsNamesWithListsOfItems) {
  const ListMap expected{{"A", {"1", "2"}}, {"B", {""}}, {"C", {}}, {"d=,|", {"=,|"}}};
  EXPECT_EQ(std::get<ListMap>(ParseValue({"map", Kind::kMap}, R"(A=1|2,B=,C,d\x3d\x2c\x7c==\x2c\x7c)")),
            expected);
  EXPECT_TRUE(std::get<ListMap>(ParseValue({"map", Kind::kMap}, "")).empty());
}

TEST(Value, ANameThatAMapContainsTwiceIsRefused) {
  EXPECT_THROW(ParseValue({"map", Kind::kMap}, "A=1,A=2"), host::UsageError);
}

TEST(Value, AnIntegerIsTakenWholeOrNotAtAll) {
  EXPECT_EQ(std::get<std::int64_t>(ParseValue({"n", Kind::kInteger}, "-7")), -7);
  EXPECT_THROW(ParseValue({"n", Kind::kInteger}, "7x"), host::UsageError);
}

TEST(Value, ATextTakesEscapes) {
  EXPECT_EQ(std::get<std::string>(ParseValue({"t", Kind::kText}, "a\\x00b")), std::string("a\0b", 3));
}

TEST(Value, ATextThatMustNotBeEmptyIsRefusedWhenItIs) {
  EXPECT_THROW(ParseValue({"t", Kind::kText, false}, ""), host::UsageError);
}

TEST(Value, SingleValuesArePrintedAfterTheirLabel) {
  EXPECT_EQ(Printed(true), "  x: true\n");
  EXPECT_EQ(Printed(std::int64_t{-1}), "  x: -1\n");
  EXPECT_EQ(Printed(std::string("a\n ")), "  x: a\\x0a\\x20\n");
  EXPECT_EQ(Printed(std::string()), "  x:\n");
}

TEST(Value, ListsAndMapsArePrintedIndented) {
  EXPECT_EQ(Printed(TextList{"a", ""}), "  x:\n    a\n    \n");
  EXPECT_EQ(Printed(ListMap{{"A", {"1"}}, {"B", {}}}), "  x:\n    A:\n      1\n    B:\n");
}

}  // namespace
