// Tables as aligned text and as JSON. No byte of a cell may break the line.

#include "host/base/table.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

TEST(Table, ColumnsAreAsWideAsTheirWidestText) {
  std::ostringstream out;
  host::PrintTable(out, {{"A", "LONG"}, {{"xyz", "1"}, {"", "2"}}});
  EXPECT_EQ(out.str(), "A    LONG\nxyz  1\n     2\n");
}

TEST(Table, WithoutRowsOnlyTheColumnNamesAreShown) {
  std::ostringstream out;
  host::PrintTable(out, {{"A", "B"}, {}});
  EXPECT_EQ(out.str(), "A  B\n");
}

TEST(Table, BytesThatWouldBreakTheLineAreEscaped) {
  std::ostringstream out;
  host::PrintTable(out, {{"A", "B"}, {{"x\ny", "z"}}});
  EXPECT_EQ(out.str(), "A       B\nx\\x0ay  z\n");
}

TEST(Table, JsonIsAnArrayOfObjectsWithLowerCaseKeys) {
  std::ostringstream out;
  host::PrintJson(out, {{"NAME", "VALUE"}, {{"a\"b", "\xff"}, {"c", "d"}}});
  const auto json = nlohmann::json::parse(out.str());
  ASSERT_EQ(json.size(), 2U);
  EXPECT_EQ(json[0]["name"], "a\"b");
  EXPECT_EQ(json[0]["value"], "\\xff");
  EXPECT_EQ(json[1]["value"], "d");
}

TEST(Table, JsonWithoutRowsIsAnEmptyArray) {
  std::ostringstream out;
  host::PrintJson(out, {{"NAME"}, {}});
  EXPECT_EQ(out.str(), "[]\n");
}

}  // namespace
