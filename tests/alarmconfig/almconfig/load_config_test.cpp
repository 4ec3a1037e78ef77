// Which lines of a file are accepted, and the records that they yield.

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/alarmconfig/almconfig/config_fixture.h"

namespace {

using config_test::AlarmConfigTest;
using config_test::BadLine;
using config_test::Entries;
using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AlarmConfigRecord;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LoadConfig : public AlarmConfigTest {};

TEST_F(LoadConfig, OfAMissingFileChangesAndLogsNothing) {
  EXPECT_EQ(config.LoadConfig((directory.path() / "missing.csv").c_str()), 0);
  EXPECT_EQ(config.LoadConfig(""), 0);
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Calls(), IsEmpty());
  std::string value = "as it was";
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{"A", "k", "1", "c", ""}, value), -1);
  EXPECT_EQ(value, "as it was");
}

// A stream opens a directory and then fails to read it, so the load would never end.
TEST_F(LoadConfig, OfADirectoryChangesAndLogsNothing) {
  EXPECT_EQ(config.LoadConfig(directory.path().c_str()), 0);
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, OfAnEmptyFileStoresNothing) {
  Load("");
  Load("\n\n\n");
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, AssignsTheFiveColumnsToTheRecord) {
  Load("A1/A2\tB1\tC\t7\t42\n");
  EXPECT_THAT(Entries(config), ElementsAre("A2|B1|C|7=42", "A1|B1|C|7=42"));
  EXPECT_EQ(Value({"A1", "B1", "7", "C", ""}), "42");
  EXPECT_EQ(Value({"A1", "B1", "C", "7", ""}), "(none)");
}

TEST_F(LoadConfig, SkipsCommentsAndEmptyLines) {
  Load("#A\tk\tc\t1\tv\n\n#\nB\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("B|k|c|1=v"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

// Only a '#' as the first character makes a comment; after a blank it is text, here a line with one column.
TEST_F(LoadConfig, ReadsABlankBeforeANumberSignAsText) {
  Load(" #x\n");
  EXPECT_THAT(Entries(config), IsEmpty());
  Load(" #x\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("#x|k|c|1=v"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, ReadsCrLfFilesLikeLfFiles) {
  Load("#c\r\nA/B\tk\tc\t1\tv\r\n\r\nC\tk\tc\t1\tw\r\n");
  const std::vector<std::string> entries = Entries(config);
  EXPECT_THAT(entries, ElementsAre("C|k|c|1=w", "B|k|c|1=v", "A|k|c|1=v"));
  Alarm_Config_Param other;
  other.LoadConfig(directory.Write("lf.csv", "#c\nA/B\tk\tc\t1\tv\n\nC\tk\tc\t1\tw\n").c_str());
  EXPECT_EQ(Entries(other), entries);
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, ReadsTheLastLineWithoutALineFeed) {
  Load("A\tk\tc\t1\tv\nB\tk\tc\t1\tw");
  EXPECT_THAT(Entries(config), ElementsAre("B|k|c|1=w", "A|k|c|1=v"));
}

TEST_F(LoadConfig, EndsALineAtItsFirstNul) {
  Load(std::string("A\tk\tc\t1\tv\0w\tx\n\0B\tk\tc\t1\tv\nC\tk\tc\t1\tv\n", 35));
  EXPECT_THAT(Entries(config), ElementsAre("C|k|c|1=v", "A|k|c|1=v"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, DropsLinesWithTooFewColumnsWithoutAMessage) {
  Load("A\nA\tk\nA\tk\tc\nA\tk\tc\t1\nA\tk\tc\t1\t\n   \n\t\t\n \r\n");
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, LogsASixthColumnAndTwoTabsInARow) {
  Load("A\tk\tc\t1\tv\tw\nB\t\tk\tc\t1\tv\nC\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("C|k|c|1=v"));
  EXPECT_THAT(framework.Messages(),
              ElementsAre(BadLine(203, "A\tk\tc\t1\tv\tw"), BadLine(195, "B\t\tk\tc\t1\tv")));
}

TEST_F(LoadConfig, LogsTheTrimmedLineWhenItsColumnsAreBad) {
  Load("  \tA\t\tc\t1\tv\t \r\n");
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(195, "A\t\tc\t1\tv")));
}

TEST_F(LoadConfig, ExpandsUpToFiveAlternatives) {
  Load("A/B/C/D/E\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("E|k|c|1=v", "D|k|c|1=v", "C|k|c|1=v", "B|k|c|1=v", "A|k|c|1=v"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, LogsASixthAlternativeAndStoresNone) {
  Load("A/B/C/D/E/F\tk\tc\t1\tv\n");
  Load("A\tk/l/m/n/o/p\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(203, "A/B/C/D/E/F"), BadLine(203, "k/l/m/n/o/p")));
}

TEST_F(LoadConfig, LogsAnEmptyAlternativeAndStoresNone) {
  Load("A//B\tk\tc\t1\tv\n/A\tk\tc\t1\tv\nA/B\tk//l\tc\t1\tv\nA\t/k\tc\t1\tv\n/\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Messages(), ElementsAre(BadLine(195, "A//B"), BadLine(195, "/A"),
                                                BadLine(195, "k//l"), BadLine(195, "/k"), BadLine(195, "/")));
}

TEST_F(LoadConfig, ToleratesOneTrailingSlash) {
  Load("A/\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c|1=v"));
  Load("A/\tk/\tc/\t1/\tv/\n");
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c/|1/=v/", "A|k|c|1=v"));
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(LoadConfig, KeepsBlanksInsideTheLine) {
  Load("A \tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("A |k|c|1=v"));
  EXPECT_EQ(Value({"A ", "k", "1", "c", ""}), "v");
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), "(none)");
}

TEST_F(LoadConfig, ReadsACommaAsText) {
  Load("A,B\tk,l\tc,d\t1,2\tv,w\n");
  EXPECT_THAT(Entries(config), ElementsAre("A,B|k,l|c,d|1,2=v,w"));
}

TEST_F(LoadConfig, SplitsAtNoOtherCharacter) {
  const std::string others = " !\"#$%&'()*+,-.0:;<=>?@[\\]^_`{|}~\v\f\xA0";
  Load("A" + others + "A\tk" + others + "k\tc" + others + "c\t1" + others + "1\tv" + others + "v\n");
  EXPECT_EQ(Value({"A" + others + "A", "k" + others + "k", "1" + others + "1", "c" + others + "c", ""}),
            "v" + others + "v");
  EXPECT_EQ(config.Values().size(), 1U);
}

TEST_F(LoadConfig, TwiceLeavesTheStoreAsAfterOnce) {
  const std::string content = "A/B\tk\tc\t1\tv\nC\tk\td\t2\tw\n";
  Load(content);
  const std::vector<std::string> once = Entries(config);
  const std::size_t reserved = config.Values().ReservedBytes();
  Load(content);
  EXPECT_EQ(Entries(config), once);
  EXPECT_EQ(config.Values().ReservedBytes(), reserved);
}

TEST_F(LoadConfig, MergesASecondFileWhoseValuesWin) {
  Load("A\tk\tc\t1\told\nB\tk\tc\t1\tkept\n");
  Load("A\tk\tc\t1\tnew\nC\tk\tc\t1\tadded\n");
  EXPECT_THAT(Entries(config), ElementsAre("C|k|c|1=added", "B|k|c|1=kept", "A|k|c|1=new"));
}

TEST_F(LoadConfig, KeepsTheLaterOfTwoLinesAndOfTwoAlternatives) {
  Load("A\tk\tc\t1\tfirst\nA\tk\tc\t1\tsecond\nB/B\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("B|k|c|1=v", "A|k|c|1=second"));
}

TEST_F(LoadConfig, LogsNothingAndAnswersTheSameWithoutALogService) {
  framework.Unregister("LogSvcInterface");
  Load("A//B\tk\tc\t1\tv\nC\tk\tc\t1\tv\n");
  EXPECT_THAT(Entries(config), ElementsAre("C|k|c|1=v"));
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(LoadConfig, StopsBeforeTheNextLineWhenTheLoggerThrows) {
  framework.On("LogF", [] { throw std::runtime_error("log"); });
  const std::string path =
      directory.Write("AlarmConfig.csv", "A\tk\tc\t1\tv\nB//\tk\tc\t1\tv\nC\tk\tc\t1\tv\n");
  EXPECT_THROW(config.LoadConfig(path.c_str()), std::runtime_error);
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c|1=v"));
}

}  // namespace
