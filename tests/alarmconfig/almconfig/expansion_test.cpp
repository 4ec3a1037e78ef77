// The expansion of a line's fields into its records.

#include <string>
#include <vector>

#include "tests/alarmconfig/almconfig/config_fixture.h"

namespace {

using config_test::AlarmConfigTest;
using config_test::BadLine;
using config_test::Entries;
using NS_ASCII::AlarmConfigRecord;
using NS_ASCII::FieldList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ListToRecord : public AlarmConfigTest {};
class ExpandField : public AlarmConfigTest {};
class AddLine : public AlarmConfigTest {};

TEST_F(ListToRecord, PutsColumnThreeAfterColumnFour) {
  AlarmConfigRecord record;
  EXPECT_EQ(config.ListToRecord({"1", "2", "3", "4", "5"}, record, "line"), 0);
  EXPECT_EQ(record.key1, "1");
  EXPECT_EQ(record.key2, "2");
  EXPECT_EQ(record.key3, "3");
  EXPECT_EQ(record.numKey, "4");
  EXPECT_EQ(record.value, "5");
  const AlarmConfigRecord byPosition{"1", "2", "4", "3", "5"};
  EXPECT_EQ(byPosition.numKey, record.numKey);
  EXPECT_EQ(byPosition.key3, record.key3);
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(ListToRecord, LogsAnyOtherNumberOfFieldsAndLeavesTheRecordAlone) {
  AlarmConfigRecord record{"a", "b", "c", "d", "e"};
  EXPECT_EQ(config.ListToRecord({"1", "2", "3", "4"}, record, "four\tfields"), -1);
  EXPECT_EQ(config.ListToRecord({}, record, ""), -1);
  EXPECT_EQ(config.ListToRecord({"1", "2", "3", "4", "5", "6"}, record, "six"), -1);
  EXPECT_EQ(record.key1 + record.key2 + record.numKey + record.key3 + record.value, "abcde");
  EXPECT_THAT(framework.Messages(),
              ElementsAre(BadLine(148, "four\tfields"), BadLine(148, ""), BadLine(148, "six")));
}

TEST_F(ExpandField, AppendsOneRecordForEachAlternative) {
  AlarmConfigRecord record{"k1", "k2", "n", "k3", "v"};
  std::vector<AlarmConfigRecord> records(1);
  config.ExpandField({"a", "b"}, record, records, 1);
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(records[1].key1 + ' ' + records[1].key2, "a k2");
  EXPECT_EQ(records[2].key1 + ' ' + records[2].key2, "b k2");
  EXPECT_EQ(records[2].numKey + records[2].key3 + records[2].value, "nk3v");
  EXPECT_EQ(record.key1, "b");
  config.ExpandField({"c"}, record, records, 2);
  ASSERT_EQ(records.size(), 4U);
  EXPECT_EQ(records[3].key1 + ' ' + records[3].key2, "b c");
  config.ExpandField({"x", "y"}, record, records, 3);
  ASSERT_EQ(records.size(), 6U);
  EXPECT_EQ(records[5].key1 + ' ' + records[5].key2, "b c");
  config.ExpandField({"z"}, record, records, 0);
  ASSERT_EQ(records.size(), 7U);
  EXPECT_EQ(records[6].key1 + ' ' + records[6].key2, "b c");
  EXPECT_EQ(record.key1 + ' ' + record.key2, "b c");
  config.ExpandField({}, record, records, 1);
  EXPECT_EQ(records.size(), 7U);
}

TEST_F(AddLine, ExpandsColumnTwoWithinColumnOne) {
  FieldList fields{"A/B", "X/Y", "c", "1", "v"};
  std::vector<AlarmConfigRecord> first;
  std::vector<AlarmConfigRecord> second;
  config.AddLine(fields, first, second, "line");
  std::vector<std::string> order;
  for (const AlarmConfigRecord& record : second) {
    order.push_back(record.key1 + record.key2 + record.key3 + record.numKey + record.value);
  }
  EXPECT_THAT(order, ElementsAre("AXc1v", "AYc1v", "BXc1v", "BYc1v"));
  ASSERT_EQ(first.size(), 2U);
  EXPECT_EQ(first[0].key1, "A");
  EXPECT_EQ(first[1].key1, "B");
  EXPECT_THAT(Entries(config), ElementsAre("B|Y|c|1=v", "B|X|c|1=v", "A|Y|c|1=v", "A|X|c|1=v"));
}

TEST_F(AddLine, LogsAWrongNumberOfFieldsAndStoresNothing) {
  FieldList fields{"A", "X", "c", "1"};
  std::vector<AlarmConfigRecord> first;
  std::vector<AlarmConfigRecord> second;
  config.AddLine(fields, first, second, "the line");
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(148, "the line")));
  EXPECT_THAT(second, IsEmpty());
  EXPECT_THAT(Entries(config), IsEmpty());
}

// The second list may have elements already: an accepted line inserts them too, a rejected one inserts
// nothing.
TEST_F(AddLine, StoresWhatTheSecondListHoldsUnlessTheLineIsBad) {
  std::vector<AlarmConfigRecord> first;
  std::vector<AlarmConfigRecord> second = {{"before", "k", "1", "c", "v"}};
  for (FieldList fields : {FieldList{"A", "X", "c", "1"}, FieldList{"A//", "X", "c", "1", "v"},
                           FieldList{"A", "X//", "c", "1", "v"}}) {
    first.clear();
    config.AddLine(fields, first, second, "line");
    EXPECT_EQ(second.size(), 1U);
    EXPECT_THAT(Entries(config), IsEmpty());
  }
  FieldList fields{"A", "X", "c", "1", "v"};
  first.clear();
  config.AddLine(fields, first, second, "line");
  EXPECT_THAT(Entries(config), ElementsAre("before|k|c|1=v", "A|X|c|1=v"));
}

TEST_F(AddLine, StoresEveryThirdColumn) {
  FieldList fields{"A", "X", "c", "1", "v"};
  std::vector<AlarmConfigRecord> first;
  std::vector<AlarmConfigRecord> second;
  config.AddLine(fields, first, second, "line");
  EXPECT_TRUE(config.ThirdColumns().Contains("c"));
  EXPECT_EQ(config.ThirdColumns().size(), 1U);
}

}  // namespace
