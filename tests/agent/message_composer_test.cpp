// From the line of an alarm to its message. The interface is the bundle's own, except for its clock and
// configuration, which the tests set.

#include "examples/alarm_agent/message_composer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "src/interface/asciiutilifimpl.h"

namespace alarm_agent {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The real interface with its clock, its configuration and its switch replaced.
class SetUtil : public NS_ASCII::AsciiUtilInterfaceImpl {
 public:
  std::string GetTimeStamp() override { return "2026-11-15T09:11:44"; }
  bool IsTransQueltEnabled() override { return isTranslated; }
  std::int64_t GetAlmCfgValue(std::int64_t& value, const std::string& key1, const std::string& key2,
                              const std::string& key3, const int& numKey) override {
    if (isNotANumber) return 1;
    const auto entry = values.find(key1 + ' ' + key2 + ' ' + key3 + ' ' + std::to_string(numKey));
    value = entry == values.end() ? 0 : entry->second;
    return 0;
  }
  std::int64_t WriteDbgLog(const std::string& message) override {
    debugLog.push_back(message);
    return 0;
  }

  std::map<std::string, std::int64_t> values = {{"COM BTS LOS 7", 1}};
  bool isTranslated = false;
  bool isNotANumber = false;  ///< every query finds a value that is not a number
  std::vector<std::string> debugLog;
};

class MessageComposerTest : public testing::Test {
 protected:
  std::string Compose(const std::string& text) const { return composer_.Compose({17, text, true}); }

  /// The text in the message for the configured severity `value`.
  std::string Severity(std::int64_t value) {
    util_.values["COM BTS LOS 7"] = value;
    return Compose(kAlarm).substr(20, Compose(kAlarm).find(" COM ") - 20);
  }

  static std::string Malformed(const std::string& problem) {
    return "2026-11-15T09:11:44 MALFORMED line 17 of the feed is not an alarm: " + problem;
  }

  static constexpr const char* kAlarm =
      "ID=4711,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=TRX1|TRX2,PATH=North-BSC07-BTS0217,"
      "COUNT=3,TEXT=Abis link down";
  static constexpr const char* kShortAlarm =
      "ID=1,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=TRX1,PATH=BTS0217";

  SetUtil util_;
  const MessageComposer composer_{util_, "http://noc/a"};
};

TEST_F(MessageComposerTest, AnAlarmHasAllItsPartsInTheMessage) {
  EXPECT_EQ(Compose(kAlarm),
            "2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at North/BSC07/BTS0217: ABIS LINK DOWN, 3 times "
            "[TRX1, TRX2] http://noc/a?id=4711&at=North%2fBSC07%2fBTS0217");
  EXPECT_THAT(util_.debugLog, IsEmpty());
}

TEST_F(MessageComposerTest, CountAndTextMayBeMissing) {
  EXPECT_EQ(Compose(kShortAlarm),
            "2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at BTS0217 [TRX1] http://noc/a?id=1&at=BTS0217");
}

TEST_F(MessageComposerTest, ACountIsOnlyShownAboveOne) {
  const std::string alarm = kShortAlarm;
  for (const char* once : {"1", "0", "-3", "x5", ""}) {
    EXPECT_EQ(Compose(alarm + ",COUNT=" + once), Compose(alarm)) << once;
  }
  EXPECT_THAT(Compose(alarm + ",COUNT=2"), testing::HasSubstr("BTS0217, 2 times ["));
  EXPECT_THAT(Compose(alarm + ",COUNT=240 so far"), testing::HasSubstr("BTS0217, 240 times ["));
}

TEST_F(MessageComposerTest, EachConfiguredSeverityHasItsWord) {
  EXPECT_EQ(Severity(0), "INDETERMINATE");
  EXPECT_EQ(Severity(1), "CRITICAL");
  EXPECT_EQ(Severity(2), "MAJOR");
  EXPECT_EQ(Severity(3), "MINOR");
  EXPECT_EQ(Severity(4), "WARNING");
  EXPECT_EQ(Severity(5), "CLEARED");
  EXPECT_EQ(Severity(6), "SEVERITY=6");
  EXPECT_EQ(Severity(-1), "SEVERITY=-1");
}

TEST_F(MessageComposerTest, WithTheTranslationOnTheSeverityIsTheOperatorsPriority) {
  util_.isTranslated = true;
  EXPECT_EQ(Severity(0), "P5");
  EXPECT_EQ(Severity(1), "P1");
  EXPECT_EQ(Severity(2), "P2");
  EXPECT_EQ(Severity(3), "P3");
  EXPECT_EQ(Severity(4), "P4");
  EXPECT_EQ(Severity(5), "P0");
  EXPECT_EQ(Severity(6), "SEVERITY=6");
}

TEST_F(MessageComposerTest, AnAlarmThatIsNotConfiguredIsIndeterminate) {
  util_.values.clear();
  EXPECT_EQ(Compose(kShortAlarm).substr(20, 17), "INDETERMINATE COM");
}

TEST_F(MessageComposerTest, AConfiguredSeverityThatIsNotANumberIsNotGuessed) {
  util_.isNotANumber = true;
  EXPECT_EQ(Compose(kShortAlarm).substr(20, 13), "SEVERITY? COM");
}

TEST_F(MessageComposerTest, AnAlarmThatCeasedIsClearedForEveryConfiguration) {
  EXPECT_EQ(Compose(std::string(kShortAlarm) + ",TEXT=link down: ceased").substr(20, 11), "CLEARED COM");
  util_.isNotANumber = true;
  EXPECT_EQ(Compose(std::string(kShortAlarm) + ",TEXT=Ceased").substr(20, 11), "CLEARED COM");
}

TEST_F(MessageComposerTest, KindEquipmentAndCauseAreLookedUpInUpperCase) {
  EXPECT_EQ(Compose("ID=1,KIND=com,EQUIPMENT=Bts,CAUSE=los,NUMBER=7,AFFECTED=x,PATH=y"),
            "2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at y [x] http://noc/a?id=1&at=y");
}

TEST_F(MessageComposerTest, FieldsMayComeInAnyOrderWithBlanksAndOthersBetweenThem) {
  EXPECT_EQ(Compose("  PATH = a - b"), Malformed("ID is missing or empty"));
  EXPECT_EQ(
      Compose(
          " PATH=a - b, X=, NUMBER= 7 , CAUSE= LOS , EQUIPMENT=BTS ,KIND=COM\t, AFFECTED= x | y ,ID=1 \r"),
      "2026-11-15T09:11:44 CRITICAL COM BTS LOS/7 at a/b [x, y] http://noc/a?id=1&at=a%2fb");
}

TEST_F(MessageComposerTest, TheLinkIsEncoded) {
  // U+00FC as two bytes of UTF-8 becomes the one byte of ISO-8859-1.
  EXPECT_THAT(Compose("ID=1&2,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=x,PATH=Z\xC3\xBCrich-Hub 1"),
              testing::EndsWith("http://noc/a?id=1%262&at=Z%fcrich%2fHub+1"));
}

TEST_F(MessageComposerTest, ControlCharactersDoNotReachTheMessage) {
  EXPECT_THAT(Compose(std::string(kShortAlarm) + ",TEXT=a\x1b[2Jb\tc\x7f" + std::string(1, '\0') + "d"),
              testing::HasSubstr(": A?[2JB?C??D ["));
  EXPECT_THAT(Compose(std::string(kShortAlarm) + ",TEXT=a\rb"), testing::HasSubstr(": A?B ["));
}

TEST_F(MessageComposerTest, AMissingFieldIsNamed) {
  for (const std::string field : {"ID", "KIND", "EQUIPMENT", "CAUSE", "NUMBER"}) {
    std::string alarm = kShortAlarm;
    alarm.replace(alarm.find(field + "="), field.size(), "OTHER");
    EXPECT_EQ(Compose(alarm), Malformed(field + " is missing or empty"));
  }
  for (const std::string list : {"AFFECTED", "PATH"}) {
    std::string alarm = kShortAlarm;
    alarm.replace(alarm.find(list + "="), list.size(), "OTHER");
    EXPECT_EQ(Compose(alarm), Malformed(list + " is missing"));
  }
}

TEST_F(MessageComposerTest, AnEmptyFieldIsNotTheRestOfTheLine) {
  EXPECT_EQ(Compose("ID=,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=x,PATH=y"),
            Malformed("ID is missing or empty"));
  EXPECT_EQ(Compose("KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=x,PATH=y,ID="),
            Malformed("ID is missing or empty"));
  EXPECT_THAT(Compose("TEXT=,ID=1,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=x,PATH=y"),
              testing::HasSubstr(" at y [x] "));
}

TEST_F(MessageComposerTest, AnEmptyItemOfAListIsRefused) {
  EXPECT_EQ(Compose("ID=1,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=a||b,PATH=y"),
            Malformed("AFFECTED has an empty item"));
  EXPECT_EQ(Compose("ID=1,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=7,AFFECTED=a,PATH=y-"),
            Malformed("PATH has an empty item"));
}

TEST_F(MessageComposerTest, ANumberThatIsNoneOrTooLongIsRefused) {
  for (const std::string bad : {"7x", "x", "7O", "0b111", "1234567890", "4294967303"}) {
    EXPECT_EQ(Compose("ID=1,KIND=COM,EQUIPMENT=BTS,CAUSE=LOS,NUMBER=" + bad + ",AFFECTED=a,PATH=y"),
              Malformed("NUMBER is \"" + bad + "\", not an integer of at most nine characters"));
  }
}

TEST_F(MessageComposerTest, ALineThatIsNotMadeOfPairsIsMalformed) {
  const std::string problem = "not every part is KEY=VALUE";
  EXPECT_EQ(Compose(""), Malformed(problem));
  EXPECT_EQ(Compose("this line came out of a broken pipe"), Malformed(problem));
  EXPECT_EQ(Compose(std::string(kAlarm) + ","), Malformed(problem));
  EXPECT_EQ(Compose(std::string(kAlarm) + ", again"), Malformed(problem));
}

TEST_F(MessageComposerTest, ALineThatWasTooLongIsMalformed) {
  EXPECT_EQ(composer_.Compose({17, kAlarm, false}), Malformed("longer than 65536 bytes"));
}

TEST_F(MessageComposerTest, AMalformedLineIsAlsoReportedInTheDebugLog) {
  Compose("x");
  EXPECT_THAT(util_.debugLog,
              ElementsAre("line 17 of the feed is not an alarm: not every part is KEY=VALUE"));
}

}  // namespace
}  // namespace alarm_agent
