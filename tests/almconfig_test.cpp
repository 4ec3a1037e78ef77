#include "src/almconfig.h"

#include <unistd.h>

#include <array>
#include <fstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "tests/child_process.h"
#include "tests/freed_memory.h"
#include "tests/literal_rules.h"
#include "tests/random_text.h"
#include "tests/recording_fixture.h"
#include "tests/temp_directory.h"

namespace {

using NS_ASCII::Alarm_Config_Param;
using NS_ASCII::AlarmConfigRecord;
using NS_ASCII::AlarmKey;
using NS_ASCII::FieldList;
using NS_ASCII::LineFate;
using recording::Message;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The message about a bad text. The conversion in it is written backwards; operators look for this text.
Message BadLine(int line, const std::string& text) {
  return {"almconfig", "unknown", line, 1, "almconfig.cfg file error. line=s%", text};
}

/// All entries in the store's order, as "key1|key2|key3|numKey=value".
std::vector<std::string> Entries(const Alarm_Config_Param& config) {
  std::vector<std::string> entries;
  config.values().ForEach([&entries](const AlarmKey& key, std::string_view value) {
    entries.push_back(std::string(key.key1) + '|' + std::string(key.key2) + '|' + std::string(key.key3) +
                      '|' + std::string(key.numKey) + '=' + std::string(value));
  });
  return entries;
}

std::vector<std::string> Entries(const literal::AlarmConfig& config) {
  std::vector<std::string> entries;
  for (const auto& [key, value] : config.valueMap) {
    entries.push_back(key.key1 + '|' + key.key2 + '|' + key.key3 + '|' + key.numKey + '=' + value);
  }
  return entries;
}

class AlarmConfigTest : public recording::FrameworkTest {
 protected:
  /// Loads a file of that content; the result must be 0 as always.
  void Load(const std::string& content) {
    EXPECT_EQ(config.LoadConfig(directory.Write("AlarmConfig.csv", content).c_str()), 0);
  }

  /// The value of the key; "(none)" when there is none.
  std::string Value(const AlarmConfigRecord& key) const {
    std::string value = "(none)";
    const int result = config.GetValue(key, value);
    EXPECT_EQ(result, value == "(none)" ? -1 : 0);
    return value;
  }

  TempDirectory directory;
  Alarm_Config_Param config;
};

class LoadConfig : public AlarmConfigTest {};
class Split : public AlarmConfigTest {};
class ListToRecord : public AlarmConfigTest {};
class ExpandField : public AlarmConfigTest {};
class AddLine : public AlarmConfigTest {};
class TakeLine : public AlarmConfigTest {};
class InsertRecord : public AlarmConfigTest {};
class GetValue : public AlarmConfigTest {};
class AlarmConfig : public AlarmConfigTest {};

// --- LoadConfig: which lines count -------------------------------------------------------------------------

TEST_F(LoadConfig, OfAMissingFileChangesAndLogsNothing) {
  EXPECT_EQ(config.LoadConfig((directory.path() / "missing.csv").c_str()), 0);
  EXPECT_EQ(config.LoadConfig(""), 0);
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_THAT(framework.Calls(), IsEmpty());
  std::string value = "as it was";
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{"A", "k", "1", "c", ""}, value), -1);
  EXPECT_EQ(value, "as it was");
}

// A stream opens a directory and then fails to read it, which would never end.
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

TEST_F(LoadConfig, TakesTheFiveColumnsCrossedOver) {
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

// Only a '#' in the very first place makes a comment; behind a blank the line counts, with one column here.
TEST_F(LoadConfig, TakesABlankBeforeANumberSignForText) {
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

TEST_F(LoadConfig, DropsLinesWithTooFewColumnsWithoutAWord) {
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

TEST_F(LoadConfig, TakesACommaForText) {
  Load("A,B\tk,l\tc,d\t1,2\tv,w\n");
  EXPECT_THAT(Entries(config), ElementsAre("A,B|k,l|c,d|1,2=v,w"));
}

TEST_F(LoadConfig, TwiceLeavesTheStoreAsAfterOnce) {
  const std::string content = "A/B\tk\tc\t1\tv\nC\tk\td\t2\tw\n";
  Load(content);
  const std::vector<std::string> once = Entries(config);
  const std::size_t reserved = config.values().ReservedBytes();
  Load(content);
  EXPECT_EQ(Entries(config), once);
  EXPECT_EQ(config.values().ReservedBytes(), reserved);
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

// --- LoadConfig: the length of a line ----------------------------------------------------------------------

/// A line of exactly `length` characters, whose value is all that can be long.
std::string LineOf(std::size_t length) { return "A\tk\tc\t1\t" + std::string(length - 8, 'v'); }

TEST_F(LoadConfig, ReadsALineOf1022CharactersWhole) {
  Load(LineOf(1022) + "\nB\tk\tc\t1\tw\n");
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1014, 'v'));
  EXPECT_EQ(Value({"B", "k", "1", "c", ""}), "w");
}

TEST_F(LoadConfig, ReadsALastLineOf1022CharactersWithoutALineFeed) {
  Load(LineOf(1022));
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1014, 'v'));
}

TEST_F(LoadConfig, CountsACarriageReturnTowardsTheLimit) {
  Load(LineOf(1021) + "\r\n");
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1013, 'v'));
  const std::string path = directory.Write("long.csv", LineOf(1022) + "\r\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

// Only the end of the file ends a load, and behind an over-long line it is never reached. Whoever writes the
// file keeps to the limit.
TEST_F(LoadConfig, NeverEndsBehindALineOf1023Characters) {
  const std::string path = directory.Write("long.csv", LineOf(1023) + "\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LoadConfig, NeverEndsBehindALastLineOf1023CharactersWithoutALineFeed) {
  const std::string path = directory.Write("long.csv", LineOf(1023));
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LoadConfig, NeverEndsBehindALongComment) {
  const std::string path = directory.Write("long.csv", "#" + std::string(1022, '-') + "\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LoadConfig, TakesTheFirst1022CharactersOfALongLineForALine) {
  const std::string complaint = "\"A\\x09\\x09" + std::string(1019, 'v') + "\")";
  framework.On("LogF", [&] { _exit(framework.Calls().back().find(complaint) != std::string::npos ? 7 : 8); });
  const std::string path = directory.Write("long.csv", "A\t\t" + std::string(1019, 'v') + "wwwww\n");
  EXPECT_EQ(child::ExitCodeOf([&] { config.LoadConfig(path.c_str()); }), 7);
}

TEST_F(LoadConfig, NeverReadsTheLineBehindALongOne) {
  framework.On("LogF", [] { _exit(9); });
  const std::string path = directory.Write("long.csv", LineOf(1023) + "\nA//B\tk\tc\t1\tv\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

// --- Split
// ---------------------------------------------------------------------------------------------------

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

TEST_F(Split, TakesAnyCharacterOfTheSetForASeparator) {
  FieldList fields;
  EXPECT_EQ(config.Split("a/b\tc", fields, "\t/"), 0);
  EXPECT_THAT(fields, ElementsAre("a", "b", "c"));
  fields.clear();
  EXPECT_EQ(config.Split("a/b", fields, ""), 0);
  EXPECT_THAT(fields, ElementsAre("a/b"));
}

TEST_F(Split, MakesNoEmptyPartOfATrailingSeparator) {
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

TEST_F(Split, WorksOnATextOutOfTheListItself) {
  constexpr std::size_t kFull = FreedMemoryOverwritten::kWholeBytes / sizeof(std::string);
  FieldList fields(kFull, "a/b/c");  // The first part finds no room and moves them all.
  ASSERT_EQ(fields.capacity(), kFull);
  const FreedMemoryOverwritten overwritten;
  EXPECT_EQ(config.Split(fields[0], fields, "/"), 0);
  ASSERT_EQ(fields.size(), kFull + 3);
  EXPECT_EQ(fields[0], "a/b/c");
  EXPECT_EQ(fields[kFull] + fields[kFull + 1] + fields[kFull + 2], "abc");
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

// --- ListToRecord, ExpandField, AddLine
// ----------------------------------------------------------------------

TEST_F(ListToRecord, PutsColumnThreeBehindColumnFour) {
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

TEST_F(AddLine, ExpandsColumnOneOutsideAndColumnTwoInside) {
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

TEST_F(TakeLine, SaysWhatBecameOfTheLine) {
  Alarm_Config_Param::LineWork work;
  EXPECT_EQ(config.TakeLine("", work), LineFate::kSkipped);
  EXPECT_EQ(config.TakeLine("#A\tk\tc\t1\tv", work), LineFate::kSkipped);
  EXPECT_EQ(config.TakeLine("A\tk\tc\t1", work), LineFate::kDropped);
  EXPECT_EQ(config.TakeLine("  ", work), LineFate::kDropped);
  EXPECT_EQ(config.TakeLine("A\t\tc\t1\tv", work), LineFate::kLogged);
  EXPECT_EQ(config.TakeLine("A\tk//l\tc\t1\tv", work), LineFate::kLogged);
  EXPECT_EQ(config.TakeLine("A/B/C/D/E/F\tk\tc\t1\tv", work), LineFate::kLogged);
  EXPECT_THAT(Entries(config), IsEmpty());
  EXPECT_EQ(config.TakeLine("A\tk/l\tc\t1\tv", work), LineFate::kStored);
  ASSERT_EQ(work.all.size(), 2U);
  EXPECT_EQ(work.all[1].key2, "l");
  EXPECT_EQ(config.TakeLine("B\tk\tc\t1\tv", work), LineFate::kStored);
  EXPECT_EQ(work.all.size(), 1U);
}

TEST_F(TakeLine, ExpandsColumnOneOutsideAndColumnTwoInside) {
  Alarm_Config_Param::LineWork work;
  EXPECT_EQ(config.TakeLine("A/B\tX/Y\tc\t1\tv", work), LineFate::kStored);
  std::vector<std::string> order;
  for (const NS_ASCII::AlarmRecordView& record : work.all) {
    order.push_back(std::string(record.key1) + std::string(record.key2));
  }
  EXPECT_THAT(order, ElementsAre("AX", "AY", "BX", "BY"));
}

// --- The store
// -----------------------------------------------------------------------------------------------

TEST_F(GetValue, FindsNothingInAnEmptyStore) {
  std::string value = "as it was";
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{}, value), -1);
  EXPECT_EQ(config.GetValue(AlarmConfigRecord{"A", "k", "1", "c", "v"}, value), -1);
  EXPECT_EQ(value, "as it was");
}

TEST_F(GetValue, DoesNotLookAtTheKeysOwnValue) {
  config.InsertRecord({"A", "k", "1", "c", "v"});
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), "v");
  EXPECT_EQ(Value({"A", "k", "1", "c", "anything"}), "v");
}

TEST_F(InsertRecord, LetsTheLastValueWin) {
  config.InsertRecord({"A", "k", "1", "c", "old"});
  config.InsertRecord({"A", "k", "1", "c", "new"});
  EXPECT_THAT(Entries(config), ElementsAre("A|k|c|1=new"));
}

TEST_F(InsertRecord, TellsKeysApartByteByByte) {
  config.InsertRecord({"A", "k", "7", "c", "seven"});
  config.InsertRecord({"A", "k", "07", "c", "nought seven"});
  config.InsertRecord({"A ", "k", "7", "c", "blank"});
  config.InsertRecord({"a", "k", "7", "c", "small"});
  EXPECT_EQ(config.values().size(), 4U);
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
  EXPECT_EQ(config.thirdColumns().size(), 2U);
  EXPECT_TRUE(config.thirdColumns().Contains("c"));
  EXPECT_TRUE(config.thirdColumns().Contains("d"));
  EXPECT_FALSE(config.thirdColumns().Contains("k"));
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

// --- Against the literal rules
// -------------------------------------------------------------------------------

std::string RandomLine(testing_text::RandomText& random) {
  if (random.Below(5) == 0) {
    return random.Of({"A/\t #\r\0", 7}, 16);
  }
  std::string line;
  const std::size_t columns = random.Below(20) == 0 ? random.Below(8) : 5;
  for (std::size_t column = 0; column < columns; ++column) {
    line += (column == 0 ? "" : "\t") + random.Of("ab", 1) + random.Of("AB", 1) + random.Of("//ab 7", 4);
  }
  return line + (random.Below(4) == 0 ? "\r" : "");
}

TEST_F(AlarmConfig, AgreesWithTheLiteralRulesOnRandomFiles) {
  testing_text::RandomText random(61);
  literal::AlarmConfig rules;
  for (int trial = 0; trial < testing_text::Trials(60); ++trial) {
    std::string content;
    for (std::size_t lines = random.Below(60); lines > 0; --lines) {
      content += RandomLine(random) + '\n';
    }
    content += random.Below(2) == 0 ? RandomLine(random) : "";
    framework.ForgetCalls();
    rules.complaints.clear();
    Load(content);
    std::ifstream file(directory.path() / "AlarmConfig.csv");
    rules.LoadConfig(file);
    ASSERT_EQ(Entries(config), Entries(rules)) << recording::Quoted(content);
    std::vector<Message> expected;
    for (const literal::Complaint& complaint : rules.complaints) {
      expected.push_back(BadLine(complaint.line, complaint.text.c_str()));
    }
    ASSERT_EQ(framework.Messages(), expected) << recording::Quoted(content);
    ASSERT_EQ(config.thirdColumns().size(), rules.key3Set.size());
    for (const std::string& text : rules.key3Set) {
      ASSERT_TRUE(config.thirdColumns().Contains(text));
    }
  }
  EXPECT_GT(Entries(config).size(), 100U);
}

}  // namespace
