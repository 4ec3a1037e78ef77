// The longest line, and the endless load of a longer one.

#include <unistd.h>

#include <string>

#include "tests/alarmconfig/almconfig/config_fixture.h"
#include "tests/child_process.h"

namespace {

using config_test::AlarmConfigTest;

class LineLength : public AlarmConfigTest {};

/// A line of exactly `length` characters; only its value is long.
std::string LineOf(std::size_t length) { return "A\tk\tc\t1\t" + std::string(length - 8, 'v'); }

TEST_F(LineLength, ReadsALineOf1022CharactersWhole) {
  Load(LineOf(1022) + "\nB\tk\tc\t1\tw\n");
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1014, 'v'));
  EXPECT_EQ(Value({"B", "k", "1", "c", ""}), "w");
}

TEST_F(LineLength, ReadsALastLineOf1022CharactersWithoutALineFeed) {
  Load(LineOf(1022));
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1014, 'v'));
}

TEST_F(LineLength, CountsACarriageReturnTowardsTheLimit) {
  Load(LineOf(1021) + "\r\n");
  EXPECT_EQ(Value({"A", "k", "1", "c", ""}), std::string(1013, 'v'));
  const std::string path = directory.Write("long.csv", LineOf(1022) + "\r\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

// Required: only the end of the file ends a load, and the stream never reaches it after an over-long line.
// The author of the file must keep to the limit.
TEST_F(LineLength, NeverEndsAfterALineOf1023CharactersAndReadsNoFurtherLine) {
  framework.On("LogF", [] { _exit(9); });
  const std::string path = directory.Write("long.csv", LineOf(1023) + "\nA//B\tk\tc\t1\tv\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LineLength, NeverEndsAfterALastLineOf1023CharactersWithoutALineFeed) {
  const std::string path = directory.Write("long.csv", LineOf(1023));
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LineLength, NeverEndsAfterALongComment) {
  const std::string path = directory.Write("long.csv", "#" + std::string(1022, '-') + "\n");
  EXPECT_EQ(child::EndOf([&] { config.LoadConfig(path.c_str()); }), child::End::kEndless);
}

TEST_F(LineLength, LoadsTheFirst1022CharactersOfALongLineAsALine) {
  const std::string complaint = "\"A\\x09\\x09" + std::string(1019, 'v') + "\")";
  framework.On("LogF", [&] { _exit(framework.Calls().back().find(complaint) != std::string::npos ? 7 : 8); });
  const std::string path = directory.Write("long.csv", "A\t\t" + std::string(1019, 'v') + "wwwww\n");
  EXPECT_EQ(child::ExitCodeOf([&] { config.LoadConfig(path.c_str()); }), 7);
}

}  // namespace
