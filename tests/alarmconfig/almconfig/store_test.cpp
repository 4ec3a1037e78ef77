// Inserting records and looking them up without a file; the class's shape, on which existing callers
// depend.

#include <array>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "tests/alarmconfig/almconfig/config_fixture.h"

namespace {

using config_test::AlarmConfigTest;
using config_test::Entries;
using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AlarmConfigRecord;
using ::testing::ElementsAre;

class GetValue : public AlarmConfigTest {};
class InsertRecord : public AlarmConfigTest {};
class AlarmConfig : public AlarmConfigTest {};

TEST_F(GetValue, FindsNothingInAnEmptyStore) {
  std::string value = "as it was";
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{}, value), -1);
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{"A", "k", "1", "c", "v"}, value), -1);
  EXPECT_EQ(value, "as it was");
}

TEST_F(GetValue, IgnoresTheValueInTheKey) {
  config.InsertRecord({"A", "k", "1", "c", "v"});
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), "v");
  EXPECT_EQ(Value({"A", "k", "1", "c", "anything"}), "v");
}

TEST_F(InsertRecord, LetsTheLastValueWin) {
  config.InsertRecord({"A", "k", "1", "c", "old"});
  config.InsertRecord({"A", "k", "1", "c", "new"});
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c|1=new"));
}

TEST_F(InsertRecord, DistinguishesKeysByteByByte) {
  config.InsertRecord({"A", "k", "7", "c", "seven"});
  config.InsertRecord({"A", "k", "07", "c", "nought seven"});
  config.InsertRecord({"A ", "k", "7", "c", "blank"});
  config.InsertRecord({"a", "k", "7", "c", "small"});
  EXPECT_EQ(config.Values().size(), 4U);
  EXPECT_EQ(Value({"A", "k", "7", "c", ""}), "seven");
  EXPECT_EQ(Value({"A", "k", "07", "c", ""}), "nought seven");
  EXPECT_EQ(Value({"A ", "k", "7", "c", ""}), "blank");
  EXPECT_EQ(Value({"a", "k", "7", "c", ""}), "small");
}

TEST_F(AlarmConfig, TwoLinesThatDifferInColumnFourAreTwoEntries) {
  Load("A\tk\tc\t7\tx\nA\tk\tc\t07\ty\n");
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c|7=x", "A|k|c|07=y"));
}

TEST_F(AlarmConfig, KeepsEveryThirdColumnOnce) {
  Load("A/B\tk\tc\t1\tv\nC\tk\tc\t2\tv\nC\tk\td\t2\tv\n");
  EXPECT_EQ(config.ThirdColumns().size(), 2U);
  EXPECT_TRUE(config.ThirdColumns().Contains("c"));
  EXPECT_TRUE(config.ThirdColumns().Contains("d"));
  EXPECT_FALSE(config.ThirdColumns().Contains("k"));
}

TEST(AlarmConfigParam, IsOneObjectForTheProcess) {
  std::array<Alarm_Config_Param*, 4> seen{};
  std::vector<std::thread> threads;
  for (auto& instance : seen) {
    threads.emplace_back([&instance] { instance = Alarm_Config_Param::Instance(); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_NE(seen[0], nullptr);
  EXPECT_THAT(seen, ::testing::Each(Alarm_Config_Param::Instance()));
}

TEST(AlarmConfigParam, HasAVirtualLoadAndNoVirtualDestructor) {
  EXPECT_TRUE(std::is_polymorphic_v<Alarm_Config_Param>);
  EXPECT_FALSE(std::has_virtual_destructor_v<Alarm_Config_Param>);
}

}  // namespace
