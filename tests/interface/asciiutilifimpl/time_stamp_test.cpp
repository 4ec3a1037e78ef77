// The time stamp in UTC, from a clock that the test sets. Years that do not fit must yield an empty text
// and a message.

#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "tests/interface/c_library.h"
#include "tests/interface/interface_fixture.h"

namespace {

using c_library::clockReads;
using interface_test::InterfaceTest;
using interface_test::Said;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GetTimeStamp : public InterfaceTest {
 protected:
  ~GetTimeStamp() override { clockReads.reset(); }
};

constexpr std::time_t kYear10000 = 253402300800;

TEST_F(GetTimeStamp, WritesTheTimeInUtcInEveryTimeZone) {
  clockReads = 1794733904;
  for (const char* const zone : {"UTC", "America/New_York", "XYZ-5:30"}) {
    setenv("TZ", zone, 1);
    tzset();
    EXPECT_EQ(impl.GetTimeStamp(), "2026-11-15T09:11:44") << zone;
  }
  unsetenv("TZ");
  tzset();
}

// -1 is also what `time` returns when it fails.
TEST_F(GetTimeStamp, WritesTimesBefore1970) {
  clockReads = -1;
  EXPECT_EQ(impl.GetTimeStamp(), "1969-12-31T23:59:59");
}

TEST_F(GetTimeStamp, PadsMonthDayAndTimeWithZeros) {
  clockReads = 946684800;
  EXPECT_EQ(impl.GetTimeStamp(), "2000-01-01T00:00:00");
}

TEST_F(GetTimeStamp, AsksThePlatformsFormatter) {
  clockReads = 0;
  EXPECT_EQ(impl.GetTimeStamp(), "1970-01-01T00:00:00");
  EXPECT_THAT(framework.Calls(), ElementsAre(R"(sprintf_s(20, "%4d-%02d-%02d%s%02d:%02d:%02d"))"));
}

TEST_F(GetTimeStamp, ReachesToTheEndOfTheYear9999) {
  clockReads = kYear10000 - 1;
  EXPECT_EQ(impl.GetTimeStamp(), "9999-12-31T23:59:59");
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedFromTheYear10000On) {
  clockReads = kYear10000;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedForAYearThatDoesNotFitAnInt) {
  clockReads = 67768036191676799;  // The last second whose years since 1900 fit an int.
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, PadsAYearBelow1000WithBlanks) {
  clockReads = -30625858677;
  EXPECT_EQ(impl.GetTimeStamp(), " 999-07-04T01:02:03");
  clockReads = -62135596800;
  EXPECT_EQ(impl.GetTimeStamp(), "   1-01-01T00:00:00");
}

TEST_F(GetTimeStamp, FitsDownToTheYearMinus999) {
  clockReads = -93692592000;
  EXPECT_EQ(impl.GetTimeStamp(), "-999-01-01T00:00:00");
  EXPECT_THAT(framework.Messages(), IsEmpty());
  clockReads = -93692592001;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

TEST_F(GetTimeStamp, IsEmptyWithoutAMessageWhenTheTimeCannotBeBrokenDown) {
  clockReads = 67768036191676800;  // The first second whose years since 1900 do not fit an int.
  EXPECT_EQ(impl.GetTimeStamp(), "");
  clockReads = INT64_MAX;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Calls(), IsEmpty());
}

TEST_F(GetTimeStamp, IsEmptyAndLoggedWheneverTheFormatterFails) {
  framework.sprintfResult = -1;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), ElementsAre(Said(86, 1, "sprintf_s failed.")));
}

// Only a negative result is a failure.
TEST_F(GetTimeStamp, IsWhatTheFormatterWroteWhenThatIsNothing) {
  framework.sprintfResult = 0;
  EXPECT_EQ(impl.GetTimeStamp(), "");
  EXPECT_THAT(framework.Messages(), IsEmpty());
}

}  // namespace
